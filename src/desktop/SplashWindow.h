#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;

// frmLoading: the small window that shows the progress of the start, the
// latest step at the bottom of thirteen lines, and comes back at shutdown.
class SplashWindow : public QWidget {
    Q_OBJECT
public:
    static constexpr int kLines = 13;

    explicit SplashWindow(const QIcon& icon = {}, QWidget* parent = nullptr);

    // One line of progress: every line moves up one place and the text
    // takes the last; the window paints at once, before the step runs.
    void Status(const QString& text);
    void ClearStatus();
    const QStringList& lines() const { return m_status; }

private:
    QStringList m_status;
    QLabel* m_lbl;
};
