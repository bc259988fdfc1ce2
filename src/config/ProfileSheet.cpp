#include "config/ProfileSheet.h"

#include "config/ConfigWrapper.h"
#include "config/FileHandler.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"

#include <array>

namespace {

struct ProductEntry {
    const char* name;
    const char* code;
};

constexpr std::array<ProductEntry, 7> kProducts{{
    {"StarCraft", "STAR"},
    {"StarCraft: BroodWar", "SEXP"},
    {"Diablo II", "D2DV"},
    {"Diablo II: Lord of Destruction", "D2XP"},
    {"WarCraft II", "W2BN"},
    {"WarCraft III", "WAR3"},
    {"WarCraft III: Frozen Throne", "W3XP"},
}};

constexpr int kPingChoices = 5;

QString verbytesKey() {
    return SettingsWrapper::RootKey() + QStringLiteral("Verbytes");
}

// What the form shows for values that were never stored.
const QString& defaultIdleMessage() {
    static const QString text =
        QStringLiteral("Corvantide: many Battle.net profiles, one window -- $v");
    return text;
}

ConfigWrapper configOf(const QString& profile) {
    ConfigWrapper config;
    config.Profile = profile;
    return config;
}

} // namespace

std::optional<ProfileSheet> ProfileSheet::read(const QString& profile) {
    const ConfigWrapper config = configOf(profile);
    RegistryWrapper& store = RegistryWrapper::instance();
    const QString key = config.profileKey();
    if (profile.isEmpty() || !store.KeyExists(key)) return std::nullopt;
    // A stored value wins even when it is empty; only a missing one takes the
    // form's default.
    const auto stored = [&](const char* name, const QString& value, const QString& fallback) {
        return store.ValueExists(key, QString::fromLatin1(name)) ? value : fallback;
    };

    ProfileSheet sheet;
    sheet.Account = config.Account();
    sheet.Password = config.Password();
    sheet.Cdkey1 = config.Cdkey();
    sheet.Cdkey2 = config.Cdkey2();
    sheet.Product = productIndex(stored("Product", config.Client(), QStringLiteral("STAR")));
    // Empty, the profile sends its product's current version byte.
    sheet.Verbyte = config.Verbyte();
    sheet.Server = stored("Server", config.Server(), SettingsWrapper::Gateways().front());
    sheet.ServerBNLS =
        stored("ServerBNLS", config.ServerBNLS(), SettingsWrapper::BnlsServers().front());
    sheet.Channel = config.Channel();
    sheet.Owner = stored("Owner", config.Owner(), QStringLiteral("Corvantide4.0"));
    sheet.Email = config.Email();
    sheet.Trigger = stored("Trigger", config.Trigger(), QStringLiteral("."));
    sheet.IdleMsg = stored("IdleMsg", config.IdleMsg(), defaultIdleMessage());
    sheet.IdleTime = QString::number(store.ReadDWORD(key, QStringLiteral("IdleTime"), 5));
    sheet.Database = store.ReadSTRING(key, QStringLiteral("Database"));
    const int ping = config.PingSpoof();
    sheet.PingSpoof = ping >= 0 && ping < kPingChoices ? ping : 0;
    sheet.LagPlug = config.LagPlug();
    return sheet;
}

bool ProfileSheet::write(const QString& profile) const {
    RegistryWrapper& store = RegistryWrapper::instance();
    ConfigWrapper config = configOf(profile);
    if (profile.isEmpty() || !store.KeyExists(config.profileKey())) return false;
    config.setAccount(Account);
    config.setPassword(Password);
    config.setServer(Server);
    config.setServerBNLS(ServerBNLS);
    config.setVerbyte(Verbyte);
    config.setCdkey(Cdkey1);
    config.setCdkey2(Cdkey2);
    config.setOwner(Owner);
    config.setChannel(Channel);
    config.setTrigger(Trigger);
    config.setIdleMsg(IdleMsg);
    const bool databaseStored =
        store.WriteSTRING(config.profileKey(), QStringLiteral("Database"), Database) != 0;
    // An empty byte follows the product; the one kept for it stays.
    const bool verbyteKept =
        Verbyte.isEmpty() ||
        store.WriteSTRING(verbytesKey(), QString::number(Product), Verbyte) != 0;
    config.setIdleTime(LeadingNumber(IdleTime));
    config.setPingSpoof(PingSpoof);
    config.setEmail(Email);
    config.setLagPlug(LagPlug);
    config.setClient(productCode(Product));

    // The wrapper's sets don't say whether the store took them: read back.
    ProfileSheet expected = *this;
    expected.IdleTime = QString::number(LeadingNumber(IdleTime));
    return databaseStored && verbyteKept && read(profile) == expected;
}

QStringList ProfileSheet::ProductNames() {
    QStringList names;
    for (const ProductEntry& product : kProducts)
        names << QString::fromLatin1(product.name);
    return names;
}

QString ProfileSheet::productCode(int index) {
    if (index < 0 || index >= int(kProducts.size())) index = 0;
    return QString::fromLatin1(kProducts[size_t(index)].code);
}

int ProfileSheet::productIndex(const QString& code) {
    for (size_t i = 0; i < kProducts.size(); ++i) {
        if (code.compare(QLatin1String(kProducts[i].code), Qt::CaseInsensitive) == 0) return int(i);
    }
    return 0;
}

bool ProfileSheet::hasSecondKey(int index) {
    return productCode(index) == u"D2XP" || productCode(index) == u"W3XP";
}

QString ProfileSheet::storedVerbyte(int index) {
    return RegistryWrapper::instance().ReadSTRING(verbytesKey(), QString::number(index));
}

QStringList ProfileSheet::PingNames() {
    return {QStringLiteral("Normal"), QStringLiteral("Negative (-1ms)"),
            QStringLiteral("Zero (0ms)"), QStringLiteral("Below Normal"),
            QStringLiteral("Above Normal")};
}
