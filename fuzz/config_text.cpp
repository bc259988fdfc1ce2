// Text that users write by hand: REGEDIT4 files given to --import-reg, and
// section-and-key .ini files. The first byte chooses the reader; the rest is
// the file.
#include "config/FileHandler.h"
#include "config/IniFile.h"
#include "config/RegistryWrapper.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Walks the tree the import left, reading every value the way callers do.
void walk(RegistryWrapper& store, const QString& key, int depth) {
    QStringList names;
    QStringList values;
    store.EnumValues(key, names, values);
    for (const QString& name : names) {
        store.ReadSTRING(key, name);
        store.ReadBinary(key, name);
    }
    QStringList keys;
    if (depth > 8 || store.EnumKeys(key, keys) <= 0) return;
    for (const QString& child : keys)
        walk(store, key + u'\\' + child, depth + 1);
}

void importRegistryText(QByteArrayView text) {
    RegistryWrapper store(QStringLiteral(":memory:"));
    if (!store.isOpen()) std::abort();
    store.ImportRegText(text);
    walk(store, QStringLiteral("HKCU"), 0);
}

void readIni(QByteArrayView text) {
    IniFile file = IniFile::parse(text);
    for (const QString& section : {QStringLiteral("Main"), QStringLiteral("")}) {
        for (const QString& key : file.keys(section)) {
            const QString value = file.value(section, key).value_or(QString());
            LeadingNumber(value);
        }
    }
    // Writing a key and reading it back must agree, whatever the file held.
    file.setValue(QStringLiteral("Main"), QStringLiteral("Fuzz"), QStringLiteral("value"));
    const IniFile again = IniFile::parse(file.toBytes());
    if (again.value(u"main", u"fuzz") != QStringLiteral("value")) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const QByteArrayView text(reinterpret_cast<const char*>(data) + 1, qsizetype(size - 1));
    if (data[0] & 1)
        readIni(text);
    else
        importRegistryText(text);
    return 0;
}
