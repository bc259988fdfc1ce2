#pragma once

#include <QByteArray>
#include <QString>

// The secret a web page must offer before it sees or steers anything: made
// at first use, kept in a file of the settings folder that only the user can
// read, printed by `corvantide web-token`. It travels in the page's first
// WebSocket message, never in an address that could land in a log.
namespace WebToken {

QString FilePath();
// The stored token, made and stored when there is none yet. Empty, with the
// reason in `error`, when the file can neither be read nor written.
QString Ensure(QString* error);
// Whether `offered` is `expected`, in a time that does not depend on where
// they first differ.
bool Matches(const QByteArray& offered, const QByteArray& expected);

} // namespace WebToken
