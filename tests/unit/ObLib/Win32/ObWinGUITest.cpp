#include "ObLib/Src/Win32/ObWinGUI.h"

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::GetWindowTextString;
using ObLib::ObString;
using ObLib::UniqueWindow;

UniqueWindow WindowWith(const std::wstring& text) {
    return UniqueWindow(CreateWindowExW(0, L"STATIC", text.c_str(), WS_POPUP, 0, 0, 10, 10, nullptr,
                                        nullptr, nullptr, nullptr));
}

// Claims a length of its own.
LRESULT g_claimed = 0;
LRESULT CALLBACK ClaimLength(HWND window, UINT message, WPARAM wide, LPARAM longer) {
    if (message == WM_GETTEXTLENGTH) return g_claimed;
    return DefWindowProcW(window, message, wide, longer);
}

TEST(WindowText, ComesWithItsLength) {
    for (const std::size_t units : {1, 12, 13, 300, 5000}) {
        const std::wstring text(units, L't');
        const UniqueWindow window = WindowWith(text);
        ObString out(L"before");
        EXPECT_EQ(static_cast<int>(units), GetWindowTextString(window.Get(), out));
        EXPECT_EQ(text, out.CStr());
    }
}

TEST(WindowText, IsEmptiedFirst) {
    const UniqueWindow window = WindowWith(L"");
    ObString out(L"before");
    EXPECT_EQ(0, GetWindowTextString(window.Get(), out));
    EXPECT_STREQ(L"", out.CStr());
    out.AssignText(L"before");
    EXPECT_EQ(0, GetWindowTextString(nullptr, out));
    EXPECT_STREQ(L"", out.CStr());
}

TEST(WindowText, OfAWindowThatAnnouncesMoreHasTheLengthThatCame) {
    const UniqueWindow window = WindowWith(L"text");
    SetWindowLongPtrW(window.Get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ClaimLength));
    g_claimed = 100;
    ObString out;
    const int length = GetWindowTextString(window.Get(), out);
    EXPECT_EQ(static_cast<int>(out.Length()), length);
    EXPECT_LT(length, 100);
}

TEST(WindowText, OfNoPossibleLengthEndsTheProcess) {
    EXPECT_FATAL_ASSERT(
        {
            const UniqueWindow own = WindowWith(L"text");
            SetWindowLongPtrW(own.Get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ClaimLength));
            g_claimed = 0x7FFFFFFF;
            ObString out;
            GetWindowTextString(own.Get(), out);
        },
        "Win32\\ObWinGUI");
}

} // namespace
