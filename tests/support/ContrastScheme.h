// The colours of two of the system's high contrast schemes.
#pragma once

#include <windows.h>

#include <cstdio>
#include <vector>

namespace obtest {

struct SchemeColour {
    int element;
    COLORREF dark;
    COLORREF light;
};

inline constexpr SchemeColour kScheme[] = {
    {COLOR_WINDOW, RGB(0, 0, 0), RGB(255, 255, 255)},
    {COLOR_WINDOWTEXT, RGB(255, 255, 255), RGB(0, 0, 0)},
    {COLOR_WINDOWFRAME, RGB(255, 255, 255), RGB(0, 0, 0)},
    {COLOR_SCROLLBAR, RGB(0, 0, 0), RGB(255, 255, 255)},
    {COLOR_BTNFACE, RGB(0, 0, 0), RGB(255, 255, 255)},
    {COLOR_BTNTEXT, RGB(255, 255, 255), RGB(0, 0, 0)},
    {COLOR_BTNHIGHLIGHT, RGB(192, 192, 192), RGB(192, 192, 192)},
    {COLOR_BTNSHADOW, RGB(128, 128, 128), RGB(128, 128, 128)},
    {COLOR_3DLIGHT, RGB(255, 255, 255), RGB(0, 0, 0)},
    {COLOR_3DDKSHADOW, RGB(255, 255, 255), RGB(0, 0, 0)},
    {COLOR_HIGHLIGHT, RGB(26, 235, 255), RGB(55, 0, 110)},
    {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 0), RGB(255, 255, 255)},
    {COLOR_HOTLIGHT, RGB(255, 255, 0), RGB(0, 0, 159)},
    {COLOR_GRAYTEXT, RGB(63, 242, 63), RGB(96, 0, 0)},
    {COLOR_ACTIVECAPTION, RGB(128, 0, 128), RGB(224, 224, 224)},
    {COLOR_GRADIENTACTIVECAPTION, RGB(128, 0, 128), RGB(224, 224, 224)},
    {COLOR_CAPTIONTEXT, RGB(255, 255, 255), RGB(0, 0, 0)},
};

// The system's colours are those of a scheme from now on, in the whole prefix. The question about
// high contrast is ContrastFake.h.
inline void UseScheme(bool isDark) {
    std::vector<int> elements;
    std::vector<COLORREF> colours;
    for (const SchemeColour& row : kScheme) {
        elements.push_back(row.element);
        colours.push_back(isDark ? row.dark : row.light);
    }
    SetSysColors(static_cast<int>(elements.size()), elements.data(), colours.data());
    printf("high contrast: a fake of the question, and the colours of a %s scheme\n",
           isDark ? "dark" : "light");
}

} // namespace obtest
