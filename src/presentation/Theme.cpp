#include "presentation/Theme.h"

ThemeRecord& CurrentTheme() {
    static ThemeRecord theme;
    return theme;
}
