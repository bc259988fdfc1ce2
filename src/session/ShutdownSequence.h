#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

// The orderly end of the process, once the user has agreed to close. No
// logoff goes to any server: the sockets end with the process.
class ShutdownSequence : public QObject {
    Q_OBJECT
public:
    struct Step {
        QString text;
        std::function<void()> run;
    };

    ShutdownSequence();
    const std::vector<Step>& steps() const { return m_steps; }
    void run();

Q_SIGNALS:
    void stepStarted(const QString& text);

private:
    std::vector<Step> m_steps;
};
