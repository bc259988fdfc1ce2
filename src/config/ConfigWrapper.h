#pragma once

#include <QString>

// The settings of one loaded profile. Every property reads or writes the
// store directly; nothing is kept here but the profile's name.
class ConfigWrapper {
public:
    QString Profile;
};
