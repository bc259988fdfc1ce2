#include "sandbox/KeyRing.h"

#include <QFile>

namespace sandbox {

const QStringList& KeyRing::builtInKeys() {
    // Eight of each length: 13 digits for StarCraft, 16 characters for WarCraft II and
    // Diablo II, 26 for WarCraft III.
    static const QStringList keys{
        "7178075237576",
        "9230867218823",
        "0309186773148",
        "1201114591730",
        "5352563532819",
        "6783933054225",
        "2434061274015",
        "3588667406411",
        "WF4G4B99KVMB2DTT",
        "8K4NNCFJPXKW7CNW",
        "KGC6RPK4X4G2DXGT",
        "HFXMFMW78PX7CWBR",
        "W8RGC4RBEN44NWTC",
        "VPH6BDGVJ9969TJD",
        "MMZTHFXZ6M9GVPBG",
        "VRN26V249GR9PVTF",
        "V9FBR8JC4RJWCGPCMGPT9J2CND",
        "7TGH6YHF7KTDNCJGEFTVDCGKCV",
        "BV6C66KR2HZ9NNWCHP4HEXPH4M",
        "M8CB97ZYD4J8VJKH4GJPKD77M6",
        "JYHCC62GDF88GFWDKBGYBHK7HR",
        "EYC6FVTNW7G6ZYB2J2V2J62YRW",
        "BXN2HKRMHCZKEYX8B94VTVV9VD",
        "E8RXMY6R6FDRF6WJP9WHPP24E8",
    };
    return keys;
}

KeyRing::KeyRing() {
    for (const QString& key : builtInKeys())
        add(key);
}

bool KeyRing::add(const QString& key) {
    const QByteArray text = key.trimmed().toLatin1();
    const auto decoded = logon::ProductKey::decode({text.constData(), size_t(text.size())});
    if (!decoded) return false;
    m_keys.emplace(std::pair{decoded->product(), decoded->val1()}, *decoded);
    return true;
}

int KeyRing::addFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return -1;
    int refused = 0;
    while (!file.atEnd()) {
        const QString line = QString::fromLatin1(file.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        if (!add(line)) ++refused;
    }
    return refused;
}

const logon::ProductKey* KeyRing::match(quint32 product, quint32 val1, const logon::Digest& hash,
                                        quint32 clientToken, quint32 serverToken) const {
    const auto [first, last] = m_keys.equal_range({product, val1});
    for (auto it = first; it != last; ++it)
        if (it->second.hash(clientToken, serverToken) == hash) return &it->second;
    return nullptr;
}

} // namespace sandbox
