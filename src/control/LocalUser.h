#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>
#include <sys/types.h>

// Who is who among the accounts of this machine, as the control socket asks
// it: the user this process runs as, the owner of a file, the user at the
// other end of a local socket.
namespace LocalUser {

uid_t Me();
// The account's name ("nobody"), or its number when it has none.
QString Name(uid_t uid);
// The owner of the path itself (a link is not followed); none when it is
// missing.
std::optional<uid_t> OwnerOf(const QString& path);
// The user of the process at the other end of a connected local socket, as
// the kernel saw it when that end was made.
std::optional<uid_t> PeerOf(qintptr descriptor);

} // namespace LocalUser
