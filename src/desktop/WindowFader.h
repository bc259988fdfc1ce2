#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>

class QWidget;

// The main window's fade: in to the opacity of the setting Transparency when
// the start is over, out to nothing before it closes, in steps of 12.5 per
// cent every 100 ms. Where the desktop ignores opacity, the window simply
// shows and goes.
class WindowFader : public QObject {
    Q_OBJECT
public:
    explicit WindowFader(QWidget* window);

    // The next opacity, in per cent, on the way to `target` (fading in) or
    // to 0 (fading out); `done` is set at the last step.
    static int NextOpacity(int current, int target, bool fadeIn, bool& done);

    void FadeIn();
    // Calls `then` once the window has faded out.
    void FadeOut(std::function<void()> then);
    bool FadeDone() const { return m_fadeDone; }
    int Opacity() const { return m_opacity; }
    // Sets the opacity at once (the menu's Opacity rows).
    void SetOpacity(int percent);

private:
    void tick();

    QPointer<QWidget> m_window;
    QTimer m_tmrTransparent;
    int m_opacity = 0;
    bool m_fadeIn = true;
    bool m_fadeDone = false;
    std::function<void()> m_then;
};
