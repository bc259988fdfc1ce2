#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// What the user list's tooltip says about a user of a slot's channel: the
// user's name as its title, then one line each for the clan, flags, group,
// ping, product, statistics and time in the channel, leaving out those with
// nothing to say. Nothing for a name that isn't in the channel.
struct UserTooltip {
    QString title;
    QStringList lines;
};
std::optional<UserTooltip> BuildUserTooltip(int Index, const QString& Username);
