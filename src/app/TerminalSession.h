#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class HeadlessConsole;
class WebSite;

// The person at the terminal of a bot without a window. A typed line goes to
// the chosen profile as its input box would send it; a line behind "//" is
// the terminal's own (any verb of `corvantide --help`, and //help) and never
// reaches the server. The prompt (or a line, when input is not edited) says
// which profile typed lines go to; the status line and the count of people
// using the program show as a line each time they change.
class TerminalSession : public QObject {
    Q_OBJECT
public:
    TerminalSession(HeadlessConsole& console, WebSite& site);

    void typed(const QString& line);
    // Candidates for completion: commands, profile names, users in the channel.
    QStringList candidates(const QString& before, const QString& word) const;

private:
    void runLocal(const QString& words);
    void activeSlotChanged();
    void statusChanged();

    HeadlessConsole& m_console;
    QString m_target;     // the profile typed lines go to, as last told
    QString m_statusShape; // the status line without its countdown, as last printed
};
