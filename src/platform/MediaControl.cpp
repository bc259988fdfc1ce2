#include "platform/MediaControl.h"

namespace {

MediaControl& playerless() {
    static MediaControl none;
    return none;
}

MediaControl* g_installed = nullptr;

} // namespace

MediaControl& MediaControl::instance() {
    return g_installed ? *g_installed : playerless();
}

void MediaControl::install(MediaControl* control) {
    g_installed = control;
}
