// Each text of the dialogs has room in its own font: for a text two fifths longer, or, in the
// lengthened pseudo-language (OB_LENGTHENED), for itself.
#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/PictureSuite.h"

namespace obtest {
namespace {

constexpr int kDialogs[] = {OB_OPTIONS,         OB_OPTIONS_LARGE, OB_ATTACHMENT,
                            OB_ENCRYPTION,      OB_UPDATE_CHECK,  OB_ABOUT,
                            OB_CONFIGURE_CLOUD, OB_CHOOSER,       OB_TRANSFORM_PROGRESS};

// Pixels at 96 dpi that a control needs beside its text.
constexpr int kGlyph = 13 + 6; // of a check box or a radio button
constexpr int kButtonEdges = 2 * 4;
constexpr int kArrow = 24;         // of a drop-down list
constexpr int kTitleButtons = 100; // icon and close button of a window's title

// The texts that aren't in the dialog's own font.
struct FontRow {
    int dialog; // 0: both sizes of the settings window
    int control;
    int points;
    bool isBold;
};

constexpr FontRow kFonts[] = {
    {0, OB_OPTIONS_HEADLINE_1, 12, true},
    {0, OB_OPTIONS_HEADLINE_2, 12, true},
    {0, OB_OPTIONS_HEADLINE_3, 12, true},
    {0, OB_OPTIONS_BROWSERS, 12, true},
    {0, OB_OPTIONS_EXPLANATION_1, 10, false},
    {0, OB_OPTIONS_EXPLANATION_2, 10, false},
    {0, OB_OPTIONS_EXPLANATION_3, 10, false},
    {0, OB_OPTIONS_EXPLANATION_4, 10, false},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_1, 9, true},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_2, 9, true},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_3, 9, true},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_4, 9, true},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_5, 9, true},
    {OB_ATTACHMENT, OB_ATTACHMENT_HEADLINE_6, 9, true},
    {OB_ENCRYPTION, OB_ENCRYPTION_HEADLINE, 9, true},
    {OB_UPDATE_CHECK, OB_UPDATE_CHECK_HEADLINE, 9, true},
    {OB_CONFIGURE_CLOUD, OB_CLOUD_SEND_HEADLINE, 9, true},
    {OB_CONFIGURE_CLOUD, OB_CLOUD_ACCOUNTS_HEADLINE, 9, true},
    {OB_CONFIGURE_CLOUD, OB_CLOUD_EXPIRY_HEADLINE, 9, true},
    {OB_CHOOSER, OB_CHOOSER_HEADLINE, 13, true},
};

// The texts that the code puts into a control.
struct LoadedRow {
    int dialog;
    int control;
    UINT first;
    UINT last;
};

constexpr LoadedRow kLoaded[] = {
    {OB_ATTACHMENT, OB_ATTACHMENT_APPEND, 1025, 1029},
    {OB_ATTACHMENT, OB_ATTACHMENT_PREVIEW, 1030, 1030},
    {OB_ENCRYPTION, OB_ENCRYPTION_METHOD_8, 190, 190},
    {OB_UPDATE_CHECK, OB_UPDATE_CHECK_INTERVAL, 115, 116},
    {OB_CHOOSER, OB_CHOOSER_CONTINUE, 139, 139},
    {OB_CHOOSER, OB_CHOOSER_HINT, 2001, 2001},
};

// How many times its own width a text may take.
double Room() { return _wgetenv(L"OB_LENGTHENED") != nullptr ? 1.0 : 1.4; }

INT_PTR CALLBACK Ignore(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

ObLib::UniqueFont FontOf(int dialog, HWND control) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof font,
               &font);
    const bool isSettings = dialog == OB_OPTIONS || dialog == OB_OPTIONS_LARGE;
    for (const FontRow& row : kFonts) {
        if (row.control != GetDlgCtrlID(control) || row.dialog != (isSettings ? 0 : dialog))
            continue;
        font.lfHeight = MulDiv(font.lfHeight, row.points, 9);
        font.lfWeight = row.isBold ? FW_BOLD : FW_NORMAL;
    }
    return ObLib::UniqueFont(CreateFontIndirectW(&font));
}

bool IsClass(HWND control, const wchar_t* wanted) {
    wchar_t name[64] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return _wcsicmp(name, wanted) == 0;
}

LONG_PTR KindOfButton(HWND control) { return GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK; }

// Shows a picture and no text.
bool IsGear(HWND control) {
    RECT place{};
    GetClientRect(control, &place);
    return IsClass(control, L"Button") && place.right < AtScale(40);
}

SIZE RoomOf(HWND control) {
    RECT place{};
    GetClientRect(control, &place);
    int used = 0;
    if (IsClass(control, L"Button")) {
        used = KindOfButton(control) <= BS_DEFPUSHBUTTON ? kButtonEdges : kGlyph;
    } else if (IsClass(control, L"ComboBox")) {
        used = kArrow;
        place.bottom = AtScale(23);
    }
    return {place.right - AtScale(used), place.bottom};
}

SIZE Measure(HFONT font, const std::wstring& text, int width, UINT flags) {
    RECT area{0, 0, width, 0};
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, font);
    DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | flags);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return {area.right, area.bottom};
}

void ExpectRoom(int dialog, HWND control, const std::wstring& text) {
    const SIZE room = RoomOf(control);
    const auto font = FontOf(dialog, control);
    const int width = static_cast<int>(room.cx / Room());
    const bool isLabel = IsClass(control, L"Static");
    const bool hasPrefix = !isLabel || (GetWindowLongPtrW(control, GWL_STYLE) & SS_NOPREFIX) == 0;
    const UINT flags = (isLabel ? DT_WORDBREAK : 0u) | (hasPrefix ? 0u : DT_NOPREFIX);
    const SIZE used = Measure(font.Get(), text, width, flags);
    // One pixel for the rounding of dialog units.
    EXPECT_LE(used.cx, width) << text;
    EXPECT_LE(used.cy, room.cy + 1) << text;
}

std::wstring TextOf(HWND window) {
    wchar_t text[512] = {};
    GetWindowTextW(window, text, 512);
    return text;
}

class TextRoom : public testing::Test {
protected:
    static void SetUpTestSuite() { BeAwareOfTheScale(); }
    void SetUp() override {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
        InitCommonControlsEx(&classes);
    }
    HWND Open(int id) {
        const HWND window = CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id),
                                               nullptr, &Ignore, 0);
        EXPECT_NE(nullptr, window) << id;
        return window;
    }
};

TEST_F(TextRoom, IsThereForEachTextOfALayout) {
    int measured = 0;
    for (const int id : kDialogs) {
        SCOPED_TRACE(id);
        const HWND window = Open(id);
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            const std::wstring text = TextOf(child);
            if (text.empty() || IsGear(child)) continue;
            SCOPED_TRACE(GetDlgCtrlID(child));
            ExpectRoom(id, child, text);
            ++measured;
        }
        DestroyWindow(window);
    }
    EXPECT_LT(100, measured);
}

TEST_F(TextRoom, IsThereForTheTextsThatTheCodeLoads) {
    for (const LoadedRow& row : kLoaded) {
        SCOPED_TRACE(row.control);
        const HWND window = Open(row.dialog);
        for (UINT id = row.first; id <= row.last; ++id) {
            wchar_t text[512] = {};
            ASSERT_LT(0, LoadStringW(GetModuleHandleW(nullptr), id, text, 512)) << id;
            ExpectRoom(row.dialog, GetDlgItem(window, row.control), text);
        }
        DestroyWindow(window);
    }
}

TEST_F(TextRoom, IsThereForEachTitle) {
    for (const int id : kDialogs) {
        const HWND window = Open(id);
        NONCLIENTMETRICSW metrics{};
        metrics.cbSize = sizeof metrics;
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
        const ObLib::UniqueFont font(CreateFontIndirectW(&metrics.lfCaptionFont));
        RECT place{};
        GetWindowRect(window, &place);
        const std::wstring title = TextOf(window);
        EXPECT_FALSE(title.empty()) << id;
        const SIZE used = Measure(font.Get(), title, 0, DT_SINGLELINE | DT_NOPREFIX);
        EXPECT_LE(used.cx * Room(), place.right - place.left - AtScale(kTitleButtons)) << title;
        DestroyWindow(window);
    }
}

} // namespace
} // namespace obtest
