#pragma once

#include <QByteArray>
#include <QString>

// The label of the count of running copies, from the web site's users file
// ("Users online: 12"): "12 people using Corvantide now", "1 person ...",
// and empty for no count, 0 or a file that doesn't match.
QString UsersOnlineLabel(const QByteArray& data);
