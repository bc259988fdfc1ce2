#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

// The fixed order in which the process comes up. Each step has the text the
// splash shows while it runs; a step that returns false ends the start there
// (the process must close silently).
class StartupSequence : public QObject {
    Q_OBJECT
public:
    struct Step {
        QString text;
        std::function<bool()> run;
    };

    StartupSequence();
    const std::vector<Step>& steps() const { return m_steps; }
    // True when every step ran; false when one asked for a silent exit.
    bool run();

Q_SIGNALS:
    void stepStarted(const QString& text);

private:
    std::vector<Step> m_steps;
};

// The console line of a start-up step, in the Warning colour.
void WriteStartupLine(const QString& text);
