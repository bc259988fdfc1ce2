#include "desktop/WindowFader.h"

#include "config/SettingsWrapper.h"

#include <QWidget>
#include <cmath>

namespace {

constexpr double kStep = 12.5;

// Halves go to the even neighbour: 12.5 is 12, 37.5 is 38.
int roundHalfEven(double value) {
    return int(std::nearbyint(value));
}

} // namespace

WindowFader::WindowFader(QWidget* window) : QObject(window), m_window(window) {
    m_tmrTransparent.setInterval(100);
    connect(&m_tmrTransparent, &QTimer::timeout, this, &WindowFader::tick);
}

int WindowFader::NextOpacity(int current, int target, bool fadeIn, bool& done) {
    done = false;
    if (fadeIn) {
        if (current >= target || current + kStep >= 100) {
            done = true;
            return target;
        }
        return roundHalfEven(current + kStep);
    }
    if (current > 12.4) return roundHalfEven(current - kStep);
    done = true;
    return 0;
}

void WindowFader::SetOpacity(int percent) {
    m_opacity = percent;
    if (m_window) m_window->setWindowOpacity(percent / 100.0);
}

void WindowFader::FadeIn() {
    m_fadeIn = true;
    m_fadeDone = false;
    SetOpacity(0);
    m_tmrTransparent.start();
}

void WindowFader::FadeOut(std::function<void()> then) {
    m_fadeIn = false;
    m_then = std::move(then);
    m_tmrTransparent.start();
}

void WindowFader::tick() {
    bool done = false;
    SetOpacity(NextOpacity(m_opacity, SettingsWrapper::instance().Transparency(), m_fadeIn, done));
    if (!done) return;
    m_tmrTransparent.stop();
    if (m_fadeIn) return;
    m_fadeDone = true;
    if (m_then) std::exchange(m_then, nullptr)();
}
