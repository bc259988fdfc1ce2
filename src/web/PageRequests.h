#pragma once

#include <QJsonObject>
#include <QString>

// What a page may ask of the bot, run with the code the window's menus and
// input box run: type a line into a profile, load or unload a profile,
// connect or disconnect it. Settings stay with the verbs and the window.
namespace PageRequests {

struct Answer {
    bool ok;
    QString text;
};

// `request` is the page's message: {"t": "send", "profile": ..., "line": ...}
// and so on. Anything else is answered with a refusal, never a crash.
Answer Run(const QJsonObject& request);

} // namespace PageRequests
