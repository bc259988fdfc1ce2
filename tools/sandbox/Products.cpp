#include "sandbox/Products.h"

#include "session/ProductVersions.h"

#include <algorithm>
#include <array>

namespace sandbox {
namespace {

const Product kStar{"STAR", "Starcraft", "StarCraft USA-1", 1, 13, false, 1};
const Product kSexp{"SEXP", "Starcraft Broodwar", "Brood War USA-1", 1, 13, false, 2};
const Product kW2bn{"W2BN", "Warcraft II BNE", "WarCraft II USA-1", 1, 16, false, 3};
const Product kD2dv{"D2DV", "Diablo II", "Diablo II USA-1", 1, 16, false, 4};
const Product kD2xp{
    "D2XP", "Diablo II Lord of Destruction", "Lord of Destruction USA-1", 2, 16, false, 5};
const Product kWar3{"WAR3", "Warcraft III", "WarCraft III USA-1", 1, 26, true, 7};
const Product kW3xp{"W3XP", "Warcraft III The Frozen Throne", "Frozen Throne USA-1", 2, 26, true,
                    8};

const std::array<const Product*, 7> kProducts{&kStar, &kSexp, &kW2bn, &kD2dv,
                                              &kD2xp, &kWar3, &kW3xp};

QByteArray reversedCode(const Product& product) {
    QByteArray code(product.code);
    std::reverse(code.begin(), code.end());
    return code;
}

} // namespace

quint32 Product::versionByte() const {
    return ProductVersions::Current(QString::fromLatin1(code));
}

bool Product::starNames() const {
    return this == &kD2dv || this == &kD2xp;
}

const Product* findProduct(const QString& code) {
    const QString upper = code.toUpper();
    for (const Product* p : kProducts)
        if (upper == QLatin1String(p->code)) return p;
    return nullptr;
}

const Product* findBnlsProduct(quint32 id) {
    for (const Product* p : kProducts)
        if (p->bnlsId == id) return p;
    return nullptr;
}

std::span<const Product* const> allProducts() {
    return kProducts;
}

QByteArray defaultStatstring(const Product& product) {
    const QByteArray code = reversedCode(product);
    if (product.starNames()) return code; // a client in chat without a character
    if (product.newLogon) return code + " 1R3W 0";
    return code + " 0 0 0 0 0 0 0 0 " + code;
}

} // namespace sandbox
