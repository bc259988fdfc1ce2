#include "control/TypedValue.h"

#include "config/RegistryWrapper.h"
#include "config/SettingLimits.h"

namespace {

bool parseNumber(const QString& text, qint32& value) {
    bool ok = false;
    const QString trimmed = text.trimmed();
    const qint64 wide = trimmed.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)
                            ? qint64(trimmed.mid(2).toUInt(&ok, 16))
                            : trimmed.toLongLong(&ok);
    if (!ok || wide < INT32_MIN || wide > UINT32_MAX) return false;
    value = qint32(wide);
    return true;
}

bool parseSwitch(const QString& text, qint32& value) {
    const QString word = text.trimmed().toLower();
    for (const char* on : {"1", "on", "yes", "true"}) {
        if (word == QLatin1String(on)) {
            value = 1;
            return true;
        }
    }
    for (const char* off : {"0", "off", "no", "false"}) {
        if (word == QLatin1String(off)) {
            value = 0;
            return true;
        }
    }
    return false;
}

} // namespace

namespace TypedValue {

bool Parse(SettingsCatalogue::Type type, const QString& text, qint32& value) {
    return type == SettingsCatalogue::Type::Dword ? parseNumber(text, value)
                                                  : parseSwitch(text, value);
}

VerbResult WrongType(const QString& valueName, SettingsCatalogue::Type type, const QString& text) {
    return VerbResult::refused(valueName + QStringLiteral(" takes ") +
                               (type == SettingsCatalogue::Type::Dword
                                    ? QStringLiteral("a number")
                                    : QStringLiteral("on or off")) +
                               QStringLiteral(", not '") + text + QStringLiteral("'."));
}

VerbResult Write(const QString& key, const QString& valueName, SettingsCatalogue::Type type,
                 const QString& text) {
    RegistryWrapper& store = RegistryWrapper::instance();
    int result = 0;
    if (type == SettingsCatalogue::Type::String) {
        result = store.WriteSTRING(key, valueName, text);
    } else {
        qint32 value = 0;
        if (!Parse(type, text, value)) return WrongType(valueName, type, text);
        result = store.WriteDWORD(key, valueName, value);
    }
    if (result == 0)
        return VerbResult::refused(QStringLiteral("Could not save ") + valueName +
                                   QStringLiteral(": the settings store refused the write."));
    return {};
}

bool Read(const QString& key, const QString& valueName, QString& text) {
    RegistryWrapper& store = RegistryWrapper::instance();
    QStringList names;
    QStringList values;
    store.EnumValues(key, names, values);
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (names[i].compare(valueName, Qt::CaseInsensitive) == 0) {
            text = values.value(i);
            return true;
        }
    }
    return false;
}

VerbResult Limit(const QString& keyBelowRoot, const QString& valueName,
                 SettingsCatalogue::Type type, const QString& text) {
    const QList<qint32> choices = SettingLimits::Choices(keyBelowRoot, valueName);
    qint32 value = 0;
    if (choices.isEmpty() || !Parse(type, text, value) || choices.contains(value)) return {};
    return VerbResult::refused(valueName + QStringLiteral(" takes ") +
                               SettingLimits::ChoicesText(choices) + QStringLiteral(", not '") +
                               text + QStringLiteral("'."));
}

bool IsSecret(const QString& keyBelowRoot, const QString& valueName) {
    return keyBelowRoot.startsWith(QStringLiteral("Profiles\\"), Qt::CaseInsensitive) &&
           valueName.compare(QStringLiteral("Password"), Qt::CaseInsensitive) == 0;
}

QString Shown(const QString& keyBelowRoot, const QString& valueName, const QString& text) {
    if (IsSecret(keyBelowRoot, valueName))
        return text.isEmpty() ? text : QStringLiteral("********");
    return SettingLimits::AsUsed(keyBelowRoot, valueName, text);
}

} // namespace TypedValue
