#pragma once

#include <QString>
#include <QStringList>

// Where the bot's control socket lives: in a folder only this user may
// enter, so that no other account can listen under the socket's name first
// or connect to it. That is $XDG_RUNTIME_DIR when it is the user's alone,
// else corvantide-<uid> in the temporary folder, made 0700 by the first bot.
namespace ControlSocketFolder {

// The socket's file name for the settings folder in use: one per home.
QString SocketName();
// Where the bot listens, the folder made when missing. Empty, with the
// reason, when the folder is another user's or open to others.
QString ListeningPath(QString* error);
// Where a bot of this home may listen, the likelier first. A folder that is
// not the user's alone is left out and its reason kept in `refusal`.
QStringList ConnectingPaths(QString* refusal);

} // namespace ControlSocketFolder
