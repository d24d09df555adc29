// Which template a dialog is opened from, and the font that it gets.
#include "ObLibX/src/dialog/DialogRun.h"

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/DescribedControls.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;
using ObLib::UniqueWindow;

INT_PTR CALLBACK Nothing(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// Before Windows Vista.
BOOL WINAPI OldVersion(LPOSVERSIONINFOEXW, DWORD, DWORDLONG) { return FALSE; }

HFONT WINAPI NoFont(const LOGFONTW*) { return nullptr; }

HMODULE Program() { return GetModuleHandleW(nullptr); }

UniqueWindow Opened(std::int32_t dialogTemplate, DWORD extraStyle) {
    return UniqueWindow(
        CreateModelessDialog(Program(), dialogTemplate, nullptr, &Nothing, 0, extraStyle));
}

LOGFONTW FontOf(HWND window) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

LOGFONTW MessageFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return metrics.lfMessageFont;
}

// `points` as the system has them for this font.
int PointsOf(const LOGFONTW& font) {
    const HDC screen = GetDC(nullptr);
    const int points = MulDiv(std::abs(font.lfHeight), 72, GetDeviceCaps(screen, LOGPIXELSY));
    ReleaseDC(nullptr, screen);
    return points;
}

class DialogRunTest : public DialogTest {
protected:
    static bool HasStyle(const UniqueWindow& window, DWORD style) {
        return (GetWindowLongPtrW(window.Get(), GWL_STYLE) & static_cast<LONG_PTR>(style)) != 0;
    }
};

using VersionPatch = obtest::ImportPatch<decltype(&VerifyVersionInfoW)>;

TEST_F(DialogRunTest, AddsStylesToBothKindsOfTemplates) {
    for (const std::int32_t dialogTemplate : {OB_TEST_PLAIN, OB_TEST_EXTENDED}) {
        EXPECT_FALSE(HasStyle(Opened(dialogTemplate, 0), WS_MAXIMIZEBOX)) << dialogTemplate;
        EXPECT_TRUE(HasStyle(Opened(dialogTemplate, WS_MAXIMIZEBOX), WS_MAXIMIZEBOX))
            << dialogTemplate;
    }
}

TEST_F(DialogRunTest, KeepsTheTemplatesFontBeforeVista) {
    const VersionPatch patch("kernel32.dll", "VerifyVersionInfoW", &OldVersion);
    ASSERT_TRUE(patch.Ok());
    for (const DWORD style : {DWORD{0}, DWORD{WS_MAXIMIZEBOX}}) {
        const UniqueWindow window = Opened(OB_TEST_EXTENDED, style);
        EXPECT_STREQ(L"MS Shell Dlg", FontOf(window.Get()).lfFaceName) << style;
        EXPECT_EQ(style != 0, HasStyle(window, WS_MAXIMIZEBOX));
    }
    EXPECT_FALSE(HasStyle(Opened(OB_TEST_PLAIN, WS_MAXIMIZEBOX), DS_SETFONT));
}

TEST_F(DialogRunTest, AnnouncesAFontThatItSets) {
    const UniqueWindow window = Opened(OB_TEST_PLAIN, 0);
    EXPECT_STREQ(L"Segoe UI", FontOf(window.Get()).lfFaceName);
    EXPECT_TRUE(HasStyle(window, DS_SETFONT));
}

TEST_F(DialogRunTest, FailsWithoutATemplate) {
    EXPECT_FALSE(Opened(4242, 0));
    EXPECT_FALSE(Opened(4242, WS_MAXIMIZEBOX));
    EXPECT_EQ(-1, RunDialog(Program(), 4242, nullptr, &Nothing, 0, 0));
}

TEST_F(DialogRunTest, HasTheMessageFontBeforeVistaForWhatItDrawsItself) {
    const VersionPatch patch("kernel32.dll", "VerifyVersionInfoW", &OldVersion);
    ASSERT_TRUE(patch.Ok());
    std::int32_t size = 0;
    EXPECT_STREQ(MessageFont().lfFaceName, GetBaseFont(size).CStr());
    EXPECT_EQ(PointsOf(MessageFont()), size);
    wchar_t face[32] = {};
    EXPECT_FALSE(FindDialogFont(nullptr, face, 32, size));
}

TEST_F(DialogRunTest, HasTheMessageFontWhereTheBaseFontCantBeMade) {
    ProcessDialogSettings().font = {L"Arial", 37};
    const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch("gdi32.dll",
                                                                    "CreateFontIndirectW", &NoFont);
    ASSERT_TRUE(patch.Ok());
    wchar_t face[32] = {};
    std::int32_t size = 0;
    EXPECT_TRUE(FindDialogFont(nullptr, face, 32, size));
    EXPECT_STREQ(MessageFont().lfFaceName, face);
    EXPECT_EQ(PointsOf(MessageFont()), size);
}

// A module of its own with texts, dialogs and a description that the program has as well.
class LanguageModule : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        language_.Reset(LoadLibraryW(L"dialog_language.dll"));
        ASSERT_TRUE(language_);
        ObLib::AppGlobals().SetModules(Program(), language_.Get(), L"", L"");
    }
    void TearDown() override {
        DialogTest::TearDown();
        language_.Reset();
    }

private:
    ObLib::UniqueModule language_;
};

TEST_F(LanguageModule, HasTheDescriptionThatCounts) {
    UseDescription();
    std::vector<ControlDescription> controls;
    ASSERT_TRUE(ReadDialogDescription(OB_TEST_DRESSED, controls));
    ASSERT_EQ(1u, controls.size());
    EXPECT_EQ(1004, controls[0].id);
    EXPECT_STREQ(L"Text of the language module", controls[0].tooltip.CStr());
}

TEST_F(LanguageModule, HasTheTemplatesOfDialogs) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    wchar_t title[100] = {};
    GetWindowTextW(dialog.Open().window, title, 100);
    EXPECT_STREQ(L"Of the language module", title);
}

} // namespace
