#pragma once

#include "logon/ProductKey.h"

#include <QList>
#include <QString>
#include <map>
#include <utility>

namespace sandbox {

// The product keys the server knows. A client proves it holds a key by its hash under both
// tokens; the server finds the key by the public values that travel beside the hash and
// works the same hash out.
class KeyRing {
public:
    // With the keys every sandbox knows.
    KeyRing();
    static const QStringList& builtInKeys();

    // False for a key the decoder refuses.
    bool add(const QString& key);
    // Reads one key a line (blank lines and lines starting with '#' are skipped); the number
    // of keys refused, or -1 when the file can't be read.
    int addFile(const QString& path);

    // The key with these values whose hash under the tokens is `hash`; nullptr if none.
    const logon::ProductKey* match(quint32 product, quint32 val1, const logon::Digest& hash,
                                   quint32 clientToken, quint32 serverToken) const;

private:
    std::multimap<std::pair<quint32, quint32>, logon::ProductKey> m_keys;
};

} // namespace sandbox
