#include "presentation/UserIcons.h"

#include "chat/BotElement.h"
#include "config/FileHandler.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"

#include <QHash>
#include <QSet>
#include <algorithm>

namespace {

QStringList buildKeys() {
    QStringList keys{QStringLiteral("Operator"),  QStringLiteral("Representative"),
                     QStringLiteral("Squelched"), QStringLiteral("Unknown"),
                     QStringLiteral("CHAT"),      QStringLiteral("UDP")};
    for (const char* product :
         {"SSHR", "STAR", "SEXP", "JSTR", "W2BN", "DRTL", "DSHR", "D2DV", "D2XP", "WAR3", "W3XP"})
        keys << QString::fromLatin1(product);
    for (const char* ping : {"Clear", "Green", "Lime", "Yellow", "Orange", "Red", "Maroon"})
        keys << QString::fromLatin1(ping);
    // Ladder wins in eleven steps, the top rank, rated and ironman icons.
    for (const char* prefix : {"SC", "W2"}) {
        const QString p = QString::fromLatin1(prefix);
        for (int wins = 0; wins <= 10; ++wins)
            keys << p + QString::number(wins);
        keys << p + QStringLiteral("H1") << p + QStringLiteral("H");
    }
    keys << QStringLiteral("SCL") << QStringLiteral("W2L1") << QStringLiteral("W2L");
    // Diablo: warrior, rogue and sorcerer with zero to three dots.
    for (const char* cls : {"D1W", "D1R", "D1S"}) {
        for (int dots = 0; dots <= 3; ++dots)
            keys << QString::fromLatin1(cls) + QString::number(dots);
    }
    // WarCraft III: the peon, then race letter and tier.
    keys << QStringLiteral("W31");
    for (const char race : {'H', 'O', 'N', 'U', 'R'}) {
        for (int tier = 2; tier <= 5; ++tier)
            keys << QStringLiteral("W3") + QLatin1Char(race) + QString::number(tier);
    }
    for (const char race : {'H', 'O', 'N', 'U', 'R', 'T'}) {
        for (int tier = 2; tier <= 6; ++tier)
            keys << QStringLiteral("WX") + QLatin1Char(race) + QString::number(tier);
    }
    return keys;
}

// Numbered icons made so far, by their key.
QHash<QString, NumberedIcon>& numberedIcons() {
    static QHash<QString, NumberedIcon> icons;
    return icons;
}

QString productIcon(const QString& product) {
    static const QSet<QString> products{
        QStringLiteral("SSHR"), QStringLiteral("STAR"), QStringLiteral("SEXP"),
        QStringLiteral("JSTR"), QStringLiteral("W2BN"), QStringLiteral("DRTL"),
        QStringLiteral("DSHR"), QStringLiteral("D2DV"), QStringLiteral("D2XP"),
        QStringLiteral("WAR3"), QStringLiteral("W3XP")};
    return products.contains(product) ? product : QStringLiteral("Unknown");
}

QString pingIcon(qint32 ping, qint32 flags) {
    if (flags & 0x10) return QStringLiteral("UDP");
    if (ping >= 0 && ping <= 9) return QStringLiteral("Clear");
    if (ping >= 10 && ping <= 200) return QStringLiteral("Green");
    if (ping >= 201 && ping <= 300) return QStringLiteral("Lime");
    if (ping >= 301 && ping <= 400) return QStringLiteral("Yellow");
    if (ping >= 401 && ping <= 500) return QStringLiteral("Orange");
    if (ping >= 501 && ping <= 600) return QStringLiteral("Red");
    return QStringLiteral("Maroon");
}

// A key with a number on it when the number is above 0, else the plain key.
QString tryIcon(const QString& key, qint32 value, quint32 colour) {
    QString result;
    if (value > 0) result = DrawIconNumber(key, QString::number(value), colour);
    return result.isEmpty() ? FindIcon(key) : result;
}

// The top-rank step of the ladder icons: rank 1 has its own icon, a lower
// rank shows the rating on the rank icon.
void rankIcon(QString& result, const QString& key, qint32 rank, qint32 rating) {
    if (rank == 1) {
        result = FindIcon(key + QLatin1Char('1'));
    } else if (rank > 1) {
        if (rating > 0) result = DrawIconNumber(key, QString::number(rating), 0xFFFF);
        if (result.isEmpty()) result = FindIcon(key);
    }
}

QString ladderIcon(const QString& product, const QStringList& fields) {
    const auto field = [&](int i) { return LeadingNumber(fields.value(i)); };
    const bool warcraft2 = product == QLatin1String("W2BN");
    const QString prefix = warcraft2 ? QStringLiteral("W2") : QStringLiteral("SC");
    const qint32 rating = field(1);
    const qint32 rank = field(2);
    const qint32 wins = field(3);
    QString result;
    if (wins >= 0) result = tryIcon(prefix + QString::number(std::min(wins, 10)), rating, 0xFFFF);
    rankIcon(result, prefix + QLatin1Char('H'), rank, rating);
    if (!warcraft2 && rating > 0 && rating < 1000) {
        result = DrawIconNumber(QStringLiteral("SCL"), QString::number(rating), 0xFFFF);
        if (result.isEmpty()) result = FindIcon(QStringLiteral("SCL"));
    }
    if (warcraft2) rankIcon(result, QStringLiteral("W2L"), field(8), rating);
    return result;
}

QString diabloIcon(const QStringList& fields) {
    const qint32 level = LeadingNumber(fields.value(1));
    const qint32 cls = LeadingNumber(fields.value(2));
    const qint32 dots = LeadingNumber(fields.value(3));
    if (dots < 0 || dots > 3 || cls < 0 || cls > 2) return {};
    static const char* const classes[] = {"D1W", "D1R", "D1S"};
    return tryIcon(QString::fromLatin1(classes[cls]) + QString::number(dots), level, 0xFFFFFF);
}

QString warcraft3Icon(const QString& product, const QStringList& fields) {
    const QString icon = fields.value(1);
    QString key;
    if (icon.startsWith(u'1')) {
        key = QStringLiteral("W31");
    } else {
        QString tierRace = icon.left(2);
        std::reverse(tierRace.begin(), tierRace.end());
        key = (product == QLatin1String("W3XP") ? QStringLiteral("WX") : QStringLiteral("W3")) +
              tierRace;
    }
    const QString drawn = DrawIconNumber(key, key.right(1), 0xFFFF);
    return drawn.isEmpty() ? FindIcon(key) : drawn;
}

} // namespace

const QStringList& SmallIconKeys() {
    static const QStringList keys = buildKeys();
    return keys;
}

QString FindIcon(const QString& Key) {
    static const QSet<QString> known(SmallIconKeys().begin(), SmallIconKeys().end());
    if (known.contains(Key) || numberedIcons().contains(Key)) return Key;
    return {};
}

QString DrawIconNumber(const QString& Key, const QString& Text, quint32 Colour) {
    if (!SettingsWrapper::instance().IconDraw()) return {};
    const QString text = Text.trimmed();
    const QString key = Key + QLatin1Char('_') + text;
    if (numberedIcons().contains(key)) return key;
    if (!SmallIconKeys().contains(Key)) return {};
    // One character stands in a field of eight, longer numbers in six; what
    // passes the field is cut from the left.
    const int width = text.size() == 1 ? 8 : 6;
    const QString shown = text.right(width);
    numberedIcons().insert(key, {Key, shown, Colour & 0xFFFFFF});
    return key;
}

std::optional<NumberedIcon> NumberedIconOf(const QString& key) {
    const auto it = numberedIcons().constFind(key);
    if (it == numberedIcons().constEnd()) return std::nullopt;
    return *it;
}

void GetUserIcons(int Index, const QString& Statstring, qint32 Flags, qint32 Ping, QString& Icon,
                  QString& PingIcon) {
    QString product = Statstring.left(4);
    std::reverse(product.begin(), product.end());
    Icon = productIcon(product);

    const qint32 display = SettingsWrapper::instance().IconDisp();
    const bool ownProduct = Index >= 0 && Index <= SlotTable::instance().highestIndex() &&
                            Bots(Index).Config.Client().compare(product, Qt::CaseInsensitive) == 0;
    if (Statstring.size() > 4 && (display == 2 || (display == 1 && ownProduct))) {
        const QStringList fields = Statstring.split(u' ');
        QString stats;
        if (product == QLatin1String("STAR") || product == QLatin1String("SEXP") ||
            product == QLatin1String("W2BN"))
            stats = ladderIcon(product, fields);
        else if (product == QLatin1String("DRTL") || product == QLatin1String("DSHR"))
            stats = diabloIcon(fields);
        else if (product == QLatin1String("WAR3") || product == QLatin1String("W3XP"))
            stats = warcraft3Icon(product, fields);
        if (!stats.isEmpty()) Icon = stats;
    }

    if (Flags & 0x02) Icon = QStringLiteral("Operator");
    if (Flags & 0x01) Icon = QStringLiteral("Representative");
    if (Flags & 0x20) Icon = QStringLiteral("Squelched");
    PingIcon = pingIcon(Ping, Flags);
}
