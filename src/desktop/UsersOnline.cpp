#include "desktop/UsersOnline.h"

#include "config/FileHandler.h"

QString UsersOnlineLabel(const QByteArray& data) {
    static const QString prefix = QStringLiteral("Users online: ");
    const QString text = QString::fromLatin1(data);
    if (!text.startsWith(prefix)) return {};
    const qint32 count = LeadingNumber(text.section(prefix, 1, 1));
    if (count == 0) return {};
    return QString::number(count) + (count <= 1 ? QStringLiteral(" person using Corvantide now")
                                                : QStringLiteral(" people using Corvantide now"));
}
