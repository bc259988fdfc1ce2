#pragma once

#include <QString>
#include <span>

namespace sandbox {

// What the server knows of each game client it lets in.
struct Product {
    const char* code;        // "STAR"
    const char* title;       // as the server names it in its texts
    const char* homeChannel; // where a first join lands
    int keyCount;            // product keys that 0x51 carries
    int keyLength;           // characters of each key
    bool newLogon;           // WarCraft III logs on with the proof exchange
    quint32 bnlsId;          // the number BNLS requests name the product by
    bool starNames() const;  // Diablo II sees names as character*account
    // What BNLS reports as current: the bot's own table, so the two agree.
    quint32 versionByte() const;
};

// Looks a product up by its code ("STAR"), in any case; nullptr if unknown.
const Product* findProduct(const QString& code);
// By the number BNLS uses for it.
const Product* findBnlsProduct(quint32 id);
// The seven products, in their customary order.
std::span<const Product* const> allProducts();

// The statstring a freshly logged-on client of this product shows in chat.
QByteArray defaultStatstring(const Product& product);

} // namespace sandbox
