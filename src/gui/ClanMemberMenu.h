#pragma once

#include <QString>

class QMenu;
class QWidget;

// The clan list's menu on a member: promote, demote or remove, each offered
// only when the viewer's own rank lets the server allow it. Null when none is.
QMenu* ClanMemberMenu(int Index, const QString& Member, QWidget* parent);
