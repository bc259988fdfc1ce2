#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>
#include <QString>

class QPainter;

// The program's own pictures, drawn as shapes on a 16 by 16 grid so that they
// stay sharp at every size and pixel ratio. Keys are those of the lists
// (products, flag marks, ping bars, statistics icons, numbered icons) plus
// the window's own: the tab states, the tab strip's buttons and the program.
class IconPainter {
public:
    // Keys of the window's own pictures.
    static const QString TabActive;
    static const QString TabOnline;
    static const QString TabTalk;
    static const QString TabOffline;
    static const QString ButtonAdd;
    static const QString ButtonDrop;
    static const QString ButtonClose;
    static const QString ButtonJoin;
    static const QString Program;

    // Whether there is a drawing for the key.
    static bool knows(const QString& key);
    // Draws the key's picture into the rectangle; an unknown key draws nothing.
    static void paint(QPainter& painter, const QRectF& rect, const QString& key);
    // An icon that draws the key at whatever size and ratio it is asked for.
    static QIcon icon(const QString& key);
    // A 24-bit colour with red in the low byte, as the core gives it.
    static QColor fromBgr(quint32 color);
};
