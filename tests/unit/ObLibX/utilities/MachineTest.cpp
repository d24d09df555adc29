#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/ImportPatch.h"

namespace {

using ObLib::UniqueWindow;
using obtest::ImportPatch;

// The system's answers, as a test wants them.
BOOL g_answers = TRUE;
DWORD g_contrastFlags = 0;
UINT g_asked = 0;
BOOL WINAPI AnswerParameters(UINT action, UINT size, PVOID parameter, UINT) {
    g_asked = action;
    auto* const contrast = static_cast<HIGHCONTRASTW*>(parameter);
    if (size != sizeof *contrast || contrast->cbSize != sizeof *contrast) return FALSE;
    contrast->dwFlags = g_contrastFlags;
    return g_answers;
}

TEST(HighContrast, IsTheSystemsFlagOfThatName) {
    const ImportPatch parameters("user32.dll", "SystemParametersInfoW", &AnswerParameters);
    ASSERT_TRUE(parameters.Ok());
    g_contrastFlags = HCF_HIGHCONTRASTON;
    EXPECT_TRUE(ObLibX::IsHighContrast());
    EXPECT_EQ(static_cast<UINT>(SPI_GETHIGHCONTRAST), g_asked);
    g_contrastFlags = ~static_cast<DWORD>(HCF_HIGHCONTRASTON);
    EXPECT_FALSE(ObLibX::IsHighContrast());
    g_contrastFlags = HCF_HIGHCONTRASTON;
    g_answers = FALSE;
    EXPECT_FALSE(ObLibX::IsHighContrast()) << "a call that fails gives no answer";
    g_answers = TRUE;
}

TEST(HighContrast, IsOffOnThisMachine) { EXPECT_FALSE(ObLibX::IsHighContrast()); }

int g_bits = 32;
int WINAPI AnswerCapability(HDC, int index) { return index == BITSPIXEL ? g_bits : 0; }

TEST(ScreenColors, AreLowBelow32Bits) {
    EXPECT_FALSE(ObLibX::IsLowColor());
    const ImportPatch capability("gdi32.dll", "GetDeviceCaps", &AnswerCapability);
    ASSERT_TRUE(capability.Ok());
    for (const int bits : {1, 8, 16, 24, 31}) {
        g_bits = bits;
        EXPECT_TRUE(ObLibX::IsLowColor()) << bits;
    }
    for (const int bits : {32, 64}) {
        g_bits = bits;
        EXPECT_FALSE(ObLibX::IsLowColor()) << bits;
    }
}

HDC WINAPI NoContext(HWND) { return nullptr; }

TEST(Resolution, Is96HereAndScalesNothing) {
    EXPECT_EQ(96, ObLibX::GetDpi());
    EXPECT_EQ(17, ObLibX::Scale(17));
    EXPECT_EQ(-17, ObLibX::Scale(-17));
}

TEST(Resolution, IsNoughtWithoutADeviceContext) {
    const ImportPatch context("user32.dll", "GetWindowDC", &NoContext);
    ASSERT_TRUE(context.Ok());
    EXPECT_EQ(0, ObLibX::GetDpi());
    EXPECT_EQ(0, ObLibX::Scale(17));
}

TEST(SystemVersion, IsComparedInAllThreeNumbers) {
    OSVERSIONINFOEXW now{};
    now.dwOSVersionInfoSize = sizeof now;
    ASSERT_TRUE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&now)));
    const DWORD major = now.dwMajorVersion;
    const DWORD minor = now.dwMinorVersion;
    const WORD pack = now.wServicePackMajor;
    EXPECT_TRUE(ObLibX::IsWindowsVersionAtLeast(major, minor, pack));
    EXPECT_FALSE(ObLibX::IsWindowsVersionAtLeast(major, minor, pack + 1));
    EXPECT_FALSE(ObLibX::IsWindowsVersionAtLeast(major, minor + 1, 0));
    EXPECT_FALSE(ObLibX::IsWindowsVersionAtLeast(major + 1, 0, 0));
    EXPECT_TRUE(ObLibX::IsWindowsVersionAtLeast(5, 0, 0));
}

UniqueWindow Window(HWND parent, int id) {
    const DWORD style = parent != nullptr ? WS_CHILD : WS_POPUP;
    return UniqueWindow(CreateWindowExW(0, L"STATIC", L"", style, 0, 0, 10, 10, parent,
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr,
                                        nullptr));
}

TEST(FreeControlId, IsTheFirstFrom1000UpThatNoChildHas) {
    const UniqueWindow dialog = Window(nullptr, 0);
    EXPECT_EQ(1000, ObLibX::FirstFreeControlId(dialog.Get()));
    const UniqueWindow second = Window(dialog.Get(), 1001);
    const UniqueWindow below = Window(dialog.Get(), 999);
    EXPECT_EQ(1000, ObLibX::FirstFreeControlId(dialog.Get()));
    UniqueWindow first = Window(dialog.Get(), 1000);
    EXPECT_EQ(1002, ObLibX::FirstFreeControlId(dialog.Get()));
    first.Reset();
    EXPECT_EQ(1000, ObLibX::FirstFreeControlId(dialog.Get()));
}

TEST(ParentBackground, IsThatOfTheParentsDeviceContext) {
    // A class with a context of its own keeps the colour.
    WNDCLASSW own{};
    own.style = CS_OWNDC;
    own.lpfnWndProc = DefWindowProcW;
    own.lpszClassName = L"ParentWithItsOwnContext";
    ASSERT_NE(0, RegisterClassW(&own));
    const UniqueWindow parent(CreateWindowExW(0, own.lpszClassName, L"", WS_POPUP, 0, 0, 10, 10,
                                              nullptr, nullptr, nullptr, nullptr));
    const UniqueWindow child = Window(parent.Get(), 1);
    const HDC context = GetDC(parent.Get());
    SetBkColor(context, RGB(12, 34, 56));
    ReleaseDC(parent.Get(), context);
    EXPECT_EQ(RGB(12, 34, 56), ObLibX::GetParentBackground(child.Get()));
    EXPECT_EQ(CLR_INVALID, ObLibX::GetParentBackground(parent.Get())) << "it has no parent";
}

} // namespace
