#include "session/ProductVersions.h"

#include "config/ConfigWrapper.h"
#include "session/ConnectionWrapper.h"

namespace ProductVersions {

quint32 Current(const QString& Client) {
    // By the product numbers of BNLS: StarCraft and Brood War 1.16.1,
    // WarCraft II 2.02, Diablo II 1.14d, WarCraft III 1.26a.
    static constexpr quint32 kBytes[] = {0, 0xD3, 0xD3, 0x4F, 0x0E, 0x0E, 0, 0x1A, 0x1A};
    const int product = ProductCode(Client);
    return product > 0 && product < int(std::size(kBytes)) ? kBytes[product] : 0;
}

QString Text(quint32 verbyte) {
    return QStringLiteral("%1").arg(verbyte, 2, 16, QLatin1Char('0')).toUpper();
}

quint32 Of(const ConfigWrapper& config) {
    const QString own = config.Verbyte().trimmed();
    return own.isEmpty() ? Current(config.Client()) : own.toUInt(nullptr, 16);
}

} // namespace ProductVersions
