#include "config/SettingLimits.h"

#include "config/SettingsCatalogue.h"

namespace SettingLimits {
namespace {

struct Limit {
    const char* key; // the key's first element below the root
    const char* value;
    QList<qint32> choices;
};

const QList<Limit>& limits() {
    static const QList<Limit> list{
        {"settings", "FloodMode", {0, 500, 1000, 2000}},
        {"settings", "Transparency", {20, 40, 60, 80, 100}},
        {"settings", "ColorDisp", {0, 1, 2}},
        {"settings", "IconDisp", {0, 1, 2}},
        {"profiles", "PingSpoof", {0, 1, 2, 3, 4}},
    };
    return list;
}

} // namespace

QList<qint32> Choices(const QString& keyBelowRoot, const QString& valueName) {
    if (!SettingsCatalogue::Find(keyBelowRoot, valueName)) return {};
    const QString first = keyBelowRoot.section(u'\\', 0, 0, QString::SectionSkipEmpty).toLower();
    for (const Limit& limit : limits()) {
        if (first == QLatin1String(limit.key) &&
            valueName.compare(QLatin1String(limit.value), Qt::CaseInsensitive) == 0)
            return limit.choices;
    }
    return {};
}

QString ChoicesText(const QList<qint32>& choices) {
    QString text;
    for (qsizetype i = 0; i < choices.size(); ++i) {
        if (i > 0) text += i + 1 == choices.size() ? QStringLiteral(" or ") : QStringLiteral(", ");
        text += QString::number(choices[i]);
    }
    return text;
}

QString AsUsed(const QString& keyBelowRoot, const QString& valueName, const QString& stored) {
    const QList<qint32> choices = Choices(keyBelowRoot, valueName);
    bool number = false;
    const qint32 value = stored.toInt(&number);
    if (choices.isEmpty() || (number && choices.contains(value))) return stored;
    return SettingsCatalogue::Find(keyBelowRoot, valueName)->defaultText;
}

} // namespace SettingLimits
