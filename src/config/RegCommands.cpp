#include "config/RegCommands.h"

#include "config/RegistryWrapper.h"

#include <QFile>
#include <QTextStream>

namespace {

bool storeUsable(RegistryWrapper& store, QTextStream& err) {
    if (store.isOpen()) return true;
    err << "Could not open the settings store " << store.fileName()
        << " (is Corvantide running?)\n";
    return false;
}

} // namespace

int ImportRegCommand(RegistryWrapper& store, const QString& file, QTextStream& out,
                     QTextStream& err) {
    if (!storeUsable(store, err)) return 1;
    if (!QFile::exists(file)) {
        err << "Could not import " << file << ": no such file\n";
        return 1;
    }
    if (!store.ImportFromReg(file)) {
        err << "Could not import " << file
            << ": not a REGEDIT4 file with CR LF lines, or a bad value line"
               " (the lines before it were imported)\n";
        return 1;
    }
    out << "Imported " << file << '\n';
    return 0;
}

int ExportRegCommand(RegistryWrapper& store, const QString& key, const QString& file,
                     QTextStream& out, QTextStream& err) {
    if (!storeUsable(store, err)) return 1;
    if (!store.KeyExists(key)) {
        err << "Could not export " << key << ": no such key\n";
        return 1;
    }
    if (QFile::exists(file)) {
        err << "Could not export to " << file << ": the file already exists\n";
        return 1;
    }
    if (!store.ExportToReg(key, file, true)) {
        err << "Could not write " << file << '\n';
        return 1;
    }
    out << "Exported " << key << " to " << file << '\n';
    return 0;
}
