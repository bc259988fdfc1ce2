#include "config/RegCommands.h"

#include "config/RegistryWrapper.h"

#include <QFile>
#include <QTextStream>

namespace {

QString valuesText(int count) {
    return QString::number(count) +
           (count == 1 ? QStringLiteral(" value") : QStringLiteral(" values"));
}

bool storeUsable(RegistryWrapper& store, QTextStream& err) {
    if (store.isOpen()) return true;
    err << store.openError() << '\n';
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
    RegistryWrapper::ImportReport report;
    const bool read = store.ImportFromReg(file, &report);
    for (const QString& note : report.notes)
        err << file << ' ' << note << '\n';
    if (!read) {
        if (report.failure.isEmpty())
            err << "Could not import " << file << ": not a REGEDIT4 file with CR LF lines\n";
        else
            err << "Could not import " << file << ", " << report.failure << " ("
                << valuesText(report.values) << " before it went in)\n";
        return 1;
    }
    if (!report.notes.isEmpty()) {
        // What was noted did not go in as written: no success to report.
        err << "Imported " << valuesText(report.values) << " from " << file << ", but "
            << report.notes.size() << (report.notes.size() == 1 ? " line was" : " lines were")
            << " not read as written (see above)\n";
        return 1;
    }
    out << "Imported " << valuesText(report.values) << " from " << file << '\n';
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
