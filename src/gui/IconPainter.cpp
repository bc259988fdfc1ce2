#include "gui/IconPainter.h"

#include "presentation/UserIcons.h"

#include <QFont>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

const QString IconPainter::TabActive = QStringLiteral("TabActive");
const QString IconPainter::TabOnline = QStringLiteral("TabOnline");
const QString IconPainter::TabTalk = QStringLiteral("TabTalk");
const QString IconPainter::TabOffline = QStringLiteral("TabOffline");
const QString IconPainter::ButtonAdd = QStringLiteral("ButtonAdd");
const QString IconPainter::ButtonDrop = QStringLiteral("ButtonDrop");
const QString IconPainter::ButtonClose = QStringLiteral("ButtonClose");
const QString IconPainter::ButtonJoin = QStringLiteral("ButtonJoin");
const QString IconPainter::Program = QStringLiteral("Program");

namespace {

// A product badge: its colour and the two letters it carries.
struct Badge {
    QColor fill;
    QString letters;
};

const QHash<QString, Badge>& productBadges() {
    static const QHash<QString, Badge> badges{
        {QStringLiteral("STAR"), {QColor(0x2f, 0x6f, 0xd0), QStringLiteral("SC")}},
        {QStringLiteral("SEXP"), {QColor(0x7a, 0x3f, 0xc0), QStringLiteral("BW")}},
        {QStringLiteral("SSHR"), {QColor(0x6b, 0x7b, 0x8c), QStringLiteral("SC")}},
        {QStringLiteral("JSTR"), {QColor(0xc0, 0x3f, 0x6f), QStringLiteral("JS")}},
        {QStringLiteral("W2BN"), {QColor(0xb8, 0x61, 0x2a), QStringLiteral("W2")}},
        {QStringLiteral("DRTL"), {QColor(0x8c, 0x1c, 0x1c), QStringLiteral("D1")}},
        {QStringLiteral("DSHR"), {QColor(0x7d, 0x5a, 0x5a), QStringLiteral("D1")}},
        {QStringLiteral("D2DV"), {QColor(0xc0, 0x30, 0x2a), QStringLiteral("D2")}},
        {QStringLiteral("D2XP"), {QColor(0x9a, 0x7a, 0x1c), QStringLiteral("LD")}},
        {QStringLiteral("WAR3"), {QColor(0x2e, 0x8b, 0x3e), QStringLiteral("W3")}},
        {QStringLiteral("W3XP"), {QColor(0x1f, 0x7f, 0x99), QStringLiteral("FT")}},
        {QStringLiteral("CHAT"), {QColor(0x5a, 0x5a, 0x5a), QStringLiteral("CH")}},
        {QStringLiteral("Unknown"), {QColor(0x40, 0x40, 0x40), QStringLiteral("?")}},
    };
    return badges;
}

QColor raceColor(QChar race) {
    switch (race.unicode()) {
    case u'H':
        return QColor(0x2f, 0x62, 0xc4);
    case u'O':
        return QColor(0xa8, 0x3c, 0x1e);
    case u'N':
        return QColor(0x2e, 0x8b, 0x3e);
    case u'U':
        return QColor(0x6a, 0x3f, 0x9e);
    case u'R':
        return QColor(0x1c, 0x8a, 0x8a);
    case u'T':
        return QColor(0x80, 0x16, 0x16);
    default:
        return QColor(0x50, 0x50, 0x50);
    }
}

QFont gridFont(qreal pixelSize) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(qRound(pixelSize));
    return font;
}

// The rounded square every badge stands on, with a darker rim.
void badge(QPainter& p, const QColor& fill, bool doubleRim = false) {
    p.setPen(QPen(fill.darker(170), 1));
    p.setBrush(fill);
    p.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
    if (doubleRim) {
        p.setPen(QPen(QColor(255, 255, 255, 120), 1));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(2.5, 2.5, 11, 11), 2, 2);
    }
}

void letters(QPainter& p, const QString& text, const QRectF& box = QRectF(1, 1, 14, 14),
             qreal size = 8, const QColor& color = Qt::white) {
    p.setFont(gridFont(size));
    p.setPen(color);
    p.drawText(box, Qt::AlignCenter, text);
}

// Small square pips along the bottom edge of a badge.
void pips(QPainter& p, int count) {
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    const qreal width = count * 2 + (count - 1);
    qreal x = 8 - width / 2;
    for (int i = 0; i < count; ++i, x += 3)
        p.drawRect(QRectF(x, 11, 2, 2));
}

void drawProduct(QPainter& p, const Badge& b) {
    badge(p, b.fill);
    letters(p, b.letters, QRectF(1, 1, 14, 14), b.letters.size() > 1 ? 7.5 : 10);
}

void drawOperator(QPainter& p) {
    QPainterPath crown;
    crown.moveTo(2, 12.5);
    crown.lineTo(1.5, 4);
    crown.lineTo(5, 8);
    crown.lineTo(8, 2.5);
    crown.lineTo(11, 8);
    crown.lineTo(14.5, 4);
    crown.lineTo(14, 12.5);
    crown.closeSubpath();
    p.setPen(QPen(QColor(0x8a, 0x6a, 0x00), 1));
    p.setBrush(QColor(0xf2, 0xc1, 0x2e));
    p.drawPath(crown);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xd9, 0x3a, 0x2b));
    p.drawEllipse(QRectF(7, 9, 2, 2));
}

void drawRepresentative(QPainter& p) {
    QPainterPath shield;
    shield.moveTo(8, 1);
    shield.lineTo(14.5, 3);
    shield.lineTo(14.5, 8);
    shield.cubicTo(14.5, 11.5, 11, 13.8, 8, 15);
    shield.cubicTo(5, 13.8, 1.5, 11.5, 1.5, 8);
    shield.lineTo(1.5, 3);
    shield.closeSubpath();
    p.setPen(QPen(QColor(0x0e, 0x2f, 0x6a), 1));
    p.setBrush(QColor(0x1e, 0x5f, 0xbf));
    p.drawPath(shield);
    QPainterPath star;
    for (int i = 0; i < 10; ++i) {
        const qreal radius = (i % 2) ? 1.6 : 4;
        const qreal angle = M_PI / 2 + i * M_PI / 5;
        const QPointF point(8 + radius * std::cos(angle), 7.5 - radius * std::sin(angle));
        i ? star.lineTo(point) : star.moveTo(point);
    }
    star.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPath(star);
}

// A speech bubble over the upper part of the grid, its tail at the lower left.
void speechBubble(QPainter& p, qreal height, const QColor& fill, const QColor& rim) {
    QPainterPath bubble;
    bubble.addRoundedRect(QRectF(1.5, 2.5, 13, height), 3.5, 3.5);
    bubble.moveTo(4, 2 + height);
    bubble.lineTo(3.5, 14.5);
    bubble.lineTo(8, 2 + height);
    p.setPen(QPen(rim, 1));
    p.setBrush(fill);
    p.drawPath(bubble.simplified());
}

void drawSquelched(QPainter& p) {
    speechBubble(p, 8, QColor(0xb0, 0xb0, 0xb0), QColor(0x50, 0x50, 0x50));
    p.setPen(QPen(QColor(0xd0, 0x20, 0x20), 2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(3, 13), QPointF(13, 2));
}

// A clan rank ("ClanRank1" to "ClanRank4"): a shield with one chevron a rank,
// the chieftain's in gold.
bool drawClanRank(QPainter& p, const QString& key) {
    if (!key.startsWith(QLatin1String("ClanRank"))) return false;
    const int rank = key.mid(8).toInt();
    if (rank < 1 || rank > 4) return false;
    QPainterPath shield;
    shield.moveTo(2, 2);
    shield.lineTo(14, 2);
    shield.lineTo(14, 8);
    shield.quadTo(14, 13, 8, 15);
    shield.quadTo(2, 13, 2, 8);
    shield.closeSubpath();
    p.setPen(QPen(QColor(0x30, 0x30, 0x30), 1));
    p.setBrush(rank == 4 ? QColor(0xd4, 0xa0, 0x17) : QColor(0x3a, 0x5f, 0x9e));
    p.drawPath(shield);
    p.setPen(QPen(QColor(0xf0, 0xf0, 0xf0), 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    for (int i = 0; i < rank; ++i) {
        const qreal y = 4.5 + 2.5 * i;
        p.drawPolyline(QPolygonF({QPointF(5, y), QPointF(8, y + 2), QPointF(11, y)}));
    }
    return true;
}

// Five bars rising to the right, `lit` of them in colour.
void drawPingBars(QPainter& p, int lit, const QColor& color) {
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 5; ++i) {
        const int height = 3 + 2 * i;
        const QRectF bar(1 + 3 * i, 14 - height, 2, height);
        p.setBrush(i < lit ? color : QColor(0x70, 0x70, 0x70, 150));
        p.drawRect(bar);
    }
}

void drawLagPlug(QPainter& p) {
    drawPingBars(p, 0, Qt::transparent);
    p.setPen(QPen(QColor(0xd0, 0x20, 0x20), 1.5, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(2, 2), QPointF(7, 7));
    p.drawLine(QPointF(7, 2), QPointF(2, 7));
}

bool drawPing(QPainter& p, const QString& key) {
    struct Ping {
        const char* key;
        int lit;
        QColor color;
    };
    static const Ping pings[] = {
        {"Clear", 0, QColor()},
        {"Green", 5, QColor(0x2e, 0xcc, 0x40)},
        {"Lime", 4, QColor(0x9b, 0xe2, 0x2d)},
        {"Yellow", 3, QColor(0xf4, 0xd0, 0x3f)},
        {"Orange", 2, QColor(0xf3, 0x9c, 0x12)},
        {"Red", 1, QColor(0xe7, 0x4c, 0x3c)},
        {"Maroon", 1, QColor(0x90, 0x10, 0x10)},
    };
    for (const Ping& ping : pings) {
        if (key == QLatin1String(ping.key)) {
            drawPingBars(p, ping.lit, ping.color);
            return true;
        }
    }
    if (key == QLatin1String("UDP")) {
        drawLagPlug(p);
        return true;
    }
    return false;
}

// Ladder icons of StarCraft and WarCraft II: the wins as a bar along the
// bottom, the top-rank, rated and ironman icons in metal colours.
bool drawLadder(QPainter& p, const QString& key) {
    const bool sc = key.startsWith(QLatin1String("SC"));
    if (!sc && !key.startsWith(QLatin1String("W2"))) return false;
    const QString rest = key.mid(2);
    const Badge& product = productBadges()[sc ? QStringLiteral("STAR") : QStringLiteral("W2BN")];
    bool ok = false;
    const int wins = rest.toInt(&ok);
    if (ok && wins >= 0 && wins <= 10) {
        badge(p, product.fill);
        letters(p, product.letters, QRectF(1, 1, 14, 10), 7);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0, 0, 0, 110));
        p.drawRect(QRectF(3, 11, 10, 2));
        p.setBrush(QColor(0xff, 0xe0, 0x60));
        p.drawRect(QRectF(3, 11, wins, 2));
        return true;
    }
    static const QHash<QString, std::pair<QColor, QString>> special{
        {QStringLiteral("H1"), {QColor(0xd4, 0xa0, 0x17), QStringLiteral("1")}},
        {QStringLiteral("H"), {QColor(0x9a, 0xa4, 0xae), QStringLiteral("#")}},
        {QStringLiteral("L"), {QColor(0x4a, 0x70, 0x9a), QStringLiteral("L")}},
        {QStringLiteral("L1"), {QColor(0xa8, 0x6a, 0x32), QStringLiteral("1")}},
    };
    const auto it = special.constFind(rest);
    if (it == special.constEnd()) return false;
    // Metal for the rank, the product's colour around it.
    badge(p, it->first);
    p.setPen(QPen(product.fill, 1.5));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(2.25, 2.25, 11.5, 11.5), 2.5, 2.5);
    letters(p, it->second, QRectF(1, 1, 14, 14), 9, QColor(0x20, 0x20, 0x20));
    return true;
}

// Diablo characters: the class letter and the dots of their difficulty.
bool drawDiablo(QPainter& p, const QString& key) {
    if (key.size() != 4 || !key.startsWith(QLatin1String("D1"))) return false;
    const int dots = key.at(3).digitValue();
    if (dots < 0 || dots > 3) return false;
    badge(p, QColor(0x8c, 0x1c, 0x1c));
    letters(p, key.mid(2, 1), QRectF(1, 1, 14, 10), 8);
    if (dots > 0) pips(p, dots);
    return true;
}

// WarCraft III: the peon, or the race colour with the race letter and one pip
// per tier above the first; the expansion has a second rim.
bool drawWarcraft3(QPainter& p, const QString& key) {
    if (key == QLatin1String("W31")) {
        badge(p, QColor(0x7a, 0x5a, 0x32));
        letters(p, QStringLiteral("P"), QRectF(1, 1, 14, 14), 9);
        return true;
    }
    if (key.size() != 4 ||
        !(key.startsWith(QLatin1String("W3")) || key.startsWith(QLatin1String("WX"))))
        return false;
    const int tier = key.at(3).digitValue();
    if (tier < 2 || tier > 6) return false;
    badge(p, raceColor(key.at(2)), key.startsWith(QLatin1String("WX")));
    letters(p, key.mid(2, 1), QRectF(1, 1, 14, 10), 8);
    pips(p, tier - 1);
    return true;
}

void drawTabState(QPainter& p, const QString& key) {
    if (key == IconPainter::TabTalk) {
        speechBubble(p, 9, QColor(0xff, 0xa8, 0x20), QColor(0x9a, 0x5a, 0x00));
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::white);
        for (int i = 0; i < 3; ++i)
            p.drawEllipse(QRectF(4 + 3 * i, 6, 2, 2));
        return;
    }
    QColor fill;
    QColor rim;
    if (key == IconPainter::TabActive) {
        fill = QColor(0x3d, 0xa5, 0xff);
        rim = Qt::white;
    } else if (key == IconPainter::TabOnline) {
        fill = QColor(0x2e, 0xcc, 0x40);
        rim = QColor(0x14, 0x60, 0x1e);
    } else {
        fill = QColor(0x60, 0x60, 0x60);
        rim = QColor(0x30, 0x30, 0x30);
    }
    p.setPen(QPen(rim, 1.5));
    p.setBrush(fill);
    p.drawEllipse(QRectF(3, 3, 10, 10));
}

void drawButton(QPainter& p, const QString& key) {
    p.setPen(QPen(QColor(0xe0, 0xe0, 0xe0), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    if (key == IconPainter::ButtonAdd) {
        p.drawLine(QPointF(8, 3), QPointF(8, 13));
        p.drawLine(QPointF(3, 8), QPointF(13, 8));
    } else if (key == IconPainter::ButtonClose) {
        p.drawLine(QPointF(4, 4), QPointF(12, 12));
        p.drawLine(QPointF(12, 4), QPointF(4, 12));
    } else if (key == IconPainter::ButtonJoin) {
        p.drawLine(QPointF(3, 8), QPointF(12, 8));
        p.drawPolyline(QPolygonF({QPointF(8, 4), QPointF(12, 8), QPointF(8, 12)}));
    } else {
        p.drawPolyline(QPolygonF({QPointF(3, 6), QPointF(8, 11), QPointF(13, 6)}));
    }
}

// The program: a dark disc with a stylised bird's head turned right.
void drawProgram(QPainter& p) {
    p.setPen(QPen(QColor(0x10, 0x20, 0x40), 1));
    p.setBrush(QColor(0x1e, 0x3c, 0x78));
    p.drawEllipse(QRectF(0.5, 0.5, 15, 15));
    QPainterPath head;
    head.moveTo(4, 12);
    head.cubicTo(3, 6, 6, 3.5, 9.5, 4);
    head.lineTo(14, 7);
    head.lineTo(10, 8);
    head.cubicTo(8.5, 9, 8, 11, 8.5, 13);
    head.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xe8, 0xe8, 0xf0));
    p.drawPath(head);
    p.setBrush(QColor(0x1e, 0x3c, 0x78));
    p.drawEllipse(QRectF(8, 5, 1.6, 1.6));
}

bool drawFixed(QPainter& p, const QString& key) {
    const auto product = productBadges().constFind(key);
    if (product != productBadges().constEnd()) {
        drawProduct(p, *product);
        return true;
    }
    if (key == QLatin1String("Operator")) {
        drawOperator(p);
        return true;
    }
    if (key == QLatin1String("Representative")) {
        drawRepresentative(p);
        return true;
    }
    if (key == QLatin1String("Squelched")) {
        drawSquelched(p);
        return true;
    }
    if (key == IconPainter::TabActive || key == IconPainter::TabOnline ||
        key == IconPainter::TabTalk || key == IconPainter::TabOffline) {
        drawTabState(p, key);
        return true;
    }
    if (key == IconPainter::ButtonAdd || key == IconPainter::ButtonDrop ||
        key == IconPainter::ButtonClose || key == IconPainter::ButtonJoin) {
        drawButton(p, key);
        return true;
    }
    if (key == IconPainter::Program) {
        drawProgram(p);
        return true;
    }
    return drawPing(p, key) || drawLadder(p, key) || drawDiablo(p, key) || drawWarcraft3(p, key) ||
           drawClanRank(p, key);
}

// The number of a numbered icon along the bottom, with a dark outline so
// that it reads on any badge.
void drawNumber(QPainter& p, const QString& text, const QColor& color) {
    p.setFont(gridFont(text.size() > 3 ? 4.5 : 6));
    const QRectF box(0, 8, 15.5, 8);
    p.setPen(QColor(0, 0, 0, 200));
    for (const QPointF offset :
         {QPointF(-0.5, 0), QPointF(0.5, 0), QPointF(0, -0.5), QPointF(0, 0.5)})
        p.drawText(box.translated(offset), Qt::AlignRight | Qt::AlignBottom, text);
    p.setPen(color);
    p.drawText(box, Qt::AlignRight | Qt::AlignBottom, text);
}

class DrawnIconEngine : public QIconEngine {
public:
    explicit DrawnIconEngine(QString key) : m_key(std::move(key)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        if (mode == QIcon::Disabled) painter->setOpacity(0.4);
        IconPainter::paint(*painter, rect, m_key);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }
    // `size` counts device pixels; the pixmap carries the ratio.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override {
        QPixmap pixmap(size);
        pixmap.setDevicePixelRatio(scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        if (mode == QIcon::Disabled) painter.setOpacity(0.4);
        IconPainter::paint(painter, QRectF(QPointF(0, 0), QSizeF(size) / scale), m_key);
        return pixmap;
    }
    QIconEngine* clone() const override { return new DrawnIconEngine(m_key); }
    QString key() const override { return QStringLiteral("CorvantideDrawn"); }

private:
    QString m_key;
};

} // namespace

bool IconPainter::knows(const QString& key) {
    static const QStringList own{TabActive,  TabOnline,   TabTalk,    TabOffline, ButtonAdd,
                                 ButtonDrop, ButtonClose, ButtonJoin, Program};
    return NumberedIconOf(key) || SmallIconKeys().contains(key) || own.contains(key) ||
           key.startsWith(QLatin1String("ClanRank"));
}

void IconPainter::paint(QPainter& painter, const QRectF& rect, const QString& key) {
    if (key.isEmpty() || rect.isEmpty()) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    // Square and centred, on the 16-unit grid.
    const qreal side = std::min(rect.width(), rect.height());
    painter.translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
    painter.scale(side / 16, side / 16);
    if (const auto numbered = NumberedIconOf(key)) {
        drawFixed(painter, numbered->base);
        drawNumber(painter, numbered->text, fromBgr(numbered->color));
    } else {
        drawFixed(painter, key);
    }
    painter.restore();
}

QIcon IconPainter::icon(const QString& key) {
    return QIcon(new DrawnIconEngine(key));
}

QColor IconPainter::fromBgr(quint32 color) {
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}
