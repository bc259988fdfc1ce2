#pragma once

#include <QString>

class ConfigWrapper;

// The version byte each product's current client sends at logon. A profile
// whose Verbyte is empty sends its product's byte from here; the sandbox
// serves the same table, and a server that refuses it is answered by asking
// BNLS for the byte of the day.
namespace ProductVersions {

// The byte of a product code ("STAR", either spelling, any case); 0 for an
// unknown product.
quint32 Current(const QString& Client);
// As the profile form and the settings write it: "D3".
QString Text(quint32 verbyte);
// The byte a profile sends: its own Verbyte, or its product's current one.
quint32 Of(const ConfigWrapper& config);

} // namespace ProductVersions
