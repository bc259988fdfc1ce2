#pragma once

#include <QtGlobal>

// Colours of the lines the program writes itself.
struct StatusColors {
    quint32 Success = 0x00FF00;
    quint32 Information = 0x00FFFF;
    quint32 Error = 0x0000FF;
    quint32 Failure = 0x0000FF;
    quint32 Warning = 0x00FFFF;
    quint32 Neutral = 0xFFFF00;
    quint32 Time = 0xC0C0C0;
};

// The theme in force: one record for the whole program, replaced on each load.
struct ThemeRecord {
    StatusColors status;
};

ThemeRecord& CurrentTheme();
