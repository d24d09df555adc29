#include "tests/support/PictureSuite.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/WindowKit.h"

namespace obtest {

void BeAwareOfTheScale() {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

int ExpectedDpi() {
    const char* const text = std::getenv("OB_EXPECTED_DPI");
    return text ? std::atoi(text) : 0;
}

int AtScale(int pixels) { return MulDiv(pixels, ExpectedDpi(), 96); }

void KeepPicture(const Picture& picture, const std::wstring& name, int leastWidth,
                 int leastHeight) {
    EXPECT_GE(picture.width, AtScale(leastWidth));
    EXPECT_GE(picture.height, AtScale(leastHeight));
    const wchar_t* const folder = _wgetenv(L"OB_PICTURES");
    if (!folder) return;
    const std::wstring file =
        std::wstring(folder) + L"\\" + name + L"-" + std::to_wstring(ExpectedDpi()) + L".png";
    EXPECT_TRUE(WritePng(picture, file)) << testing::PrintToString(file);
}

void LookAt(HWND window, const std::wstring& name, int leastWidth, int leastHeight) {
    const auto picture = TakeSettledPicture(window);
    ASSERT_TRUE(picture) << "the window stays blank or never comes to rest";
    KeepPicture(*picture, name, leastWidth, leastHeight);
}

void ExpectWholeText(HWND control, int margin) {
    const std::wstring text = TextOf(control);
    RECT room{};
    GetClientRect(control, &room);
    RECT needed{0, 0, room.right - margin, 0};
    const HDC context = GetDC(control);
    const HGDIOBJ old =
        SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    DrawTextW(context, text.c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
    SelectObject(context, old);
    ReleaseDC(control, context);
    EXPECT_LE(needed.bottom, room.bottom) << testing::PrintToString(text);
    EXPECT_LE(needed.right, room.right - margin) << testing::PrintToString(text);
}

} // namespace obtest
