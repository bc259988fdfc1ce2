#include "statistics/NameFormat.h"

QString FormatHex(quint32 Value, int Width) {
    return QStringLiteral("0x") +
           QStringLiteral("%1").arg(Value, Width, 16, QLatin1Char('0')).toUpper();
}

void AppendWithSeparator(QString& Target, const QString& Text, const QString& Separator) {
    if (Target.isEmpty())
        Target = Text;
    else
        Target += Separator + Text;
}
