// The dialogs, their description and their pictures as they are compiled into a module.
#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <vector>

// The headers of GDI+ use these two without their namespace.
using std::max;
using std::min;
#include <gdiplus.h>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/GraphicsToken.h"
#include "ObLibX/src/dialog/Images.h"

namespace {

INT_PTR CALLBACK Ignore(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// A dialog of the module, with stock controls, never shown.
class StockDialog {
public:
    explicit StockDialog(int id) {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
        InitCommonControlsEx(&classes);
        window_ = CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr,
                                     &Ignore, 0);
    }
    ~StockDialog() { DestroyWindow(window_); }
    StockDialog(const StockDialog&) = delete;
    StockDialog& operator=(const StockDialog&) = delete;
    HWND Window() const { return window_; }

    // Id, class, style and text of each control, in order.
    using Control = std::tuple<int, std::wstring, LONG_PTR, std::wstring>;
    std::vector<Control> Controls() const {
        std::vector<Control> found;
        for (HWND child = GetWindow(window_, GW_CHILD); child;
             child = GetWindow(child, GW_HWNDNEXT)) {
            wchar_t name[64] = {};
            wchar_t text[256] = {};
            GetClassNameW(child, name, 64);
            GetWindowTextW(child, text, 256);
            found.emplace_back(GetDlgCtrlID(child), name, GetWindowLongPtrW(child, GWL_STYLE),
                               text);
        }
        return found;
    }

private:
    HWND window_ = nullptr;
};

std::vector<ObLibX::ControlDescription> DescriptionOf(int dialog) {
    ObLibX::LoadDialogDefaults();
    std::vector<ObLibX::ControlDescription> controls;
    ObLibX::ReadDialogControls(ObLibX::ProcessDialogSettings().description, dialog, {}, controls);
    return controls;
}

std::set<int> DressedAs(int dialog, const wchar_t* word) {
    std::set<int> found;
    for (const auto& control : DescriptionOf(dialog)) {
        if (control.subclass.Equals(word)) found.insert(control.id);
    }
    return found;
}

class Dialogs : public testing::Test {
protected:
    void SetUp() override { ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L""); }
};

const std::vector<std::pair<int, std::vector<int>>> kControls = {
    {OB_OPTIONS, {1000, 1001, 1003, 1006, 1007, 1008, 1009, 1012, 1013, 1014, 1016, 1017,
                  1018, 1040, 1041, 1042, 1043, 1044, 1045, 1046, 1050, 1051, 1052, 1053,
                  1054, 1055, 1060, 1061, 1062, 1063, 110,  101,  104,  113,  8,    2}},
    {OB_ATTACHMENT, {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011,
                     1012, 1013, 1014, 1015, 1016, 1020, 1021, 1022, 1023, 1,    2}},
    {OB_ENCRYPTION, {1002, 1003, 1005, 1, 2}},
    {OB_UPDATE_CHECK, {1000, 1001, 1002, 1003, 1004, 1, 2}},
    {OB_ABOUT, {1000, 1001, 1}},
    {OB_CHOOSER, {1208, 1211, 1212, 1214, 2}},
    {OB_CONFIGURE_CLOUD,
     {1200, 1201, 1202, 1203, 1204, 1205, 1206, 1207, 1208, 1209, 1210, 1215, 1216, 1217, 1218,
      1219, 1220, 1, 2}},
    {OB_TRANSFORM_PROGRESS, {1000, 1001, 2}},
};

TEST_F(Dialogs, HaveEveryControlThatTheCodeUses) {
    for (const auto& [id, controls] : kControls) {
        const StockDialog dialog(id);
        ASSERT_NE(nullptr, dialog.Window()) << id;
        for (const int control : controls) {
            EXPECT_NE(nullptr, GetDlgItem(dialog.Window(), control)) << id << " " << control;
        }
    }
}

TEST_F(Dialogs, OfTheSettingsHaveTheSameControlsAtBothSizes) {
    const StockDialog small(OB_OPTIONS);
    const StockDialog large(OB_OPTIONS_LARGE);
    ASSERT_LT(30u, small.Controls().size());
    EXPECT_EQ(small.Controls(), large.Controls());
}

TEST_F(Dialogs, DressAsBlueOnlyWhatWhiteTextIsReadOn) {
    const std::set<int> blue{OB_OPTIONS_CLOUD, OB_OPTIONS_ATTACHMENT, OB_OPTIONS_EDGE,
                             OB_OPTIONS_FIREFOX, OB_OPTIONS_CHROME};
    const std::set<int> gears{1012, 1013, 1014, 1040, 1041, 1044, 1045};
    for (const int id : {OB_OPTIONS, OB_OPTIONS_LARGE}) {
        EXPECT_EQ(blue, DressedAs(id, L"blue")) << id;
        EXPECT_EQ(gears, DressedAs(id, L"settings")) << id;
    }
}

TEST_F(Dialogs, GiveEachSettingsButtonItsNameAsTooltipToo) {
    for (const int id : {OB_OPTIONS, OB_OPTIONS_LARGE}) {
        const StockDialog dialog(id);
        for (const auto& control : DescriptionOf(id)) {
            if (!control.subclass.Equals(L"settings")) continue;
            wchar_t caption[256] = {};
            GetDlgItemTextW(dialog.Window(), control.id, caption, 256);
            EXPECT_STRNE(L"", caption) << control.id;
            EXPECT_TRUE(control.tooltip.Equals(caption)) << control.id;
        }
    }
}

TEST_F(Dialogs, AreDescribedWithControlsThatTheyHave) {
    for (const int id : {OB_OPTIONS, OB_OPTIONS_LARGE}) {
        const StockDialog dialog(id);
        const auto controls = DescriptionOf(id);
        EXPECT_FALSE(controls.empty()) << id;
        for (const auto& control : controls) {
            EXPECT_NE(nullptr, GetDlgItem(dialog.Window(), control.id)) << id << " " << control.id;
        }
    }
}

TEST_F(Dialogs, OfTheAboutBoxTakesItsThreeArguments) {
    const StockDialog dialog(OB_ABOUT);
    wchar_t text[256] = {};
    GetDlgItemTextW(dialog.Window(), OB_ABOUT_VERSION, text, 256);
    for (const wchar_t* const argument : {L"%1", L"%2", L"%3"}) {
        EXPECT_NE(nullptr, wcsstr(text, argument)) << text;
    }
    EXPECT_EQ(3, std::count(text, text + wcslen(text), L'%')) << text;
}

DWORD ColourAt(Gdiplus::Bitmap& image, UINT x, UINT y) {
    Gdiplus::Color colour;
    image.GetPixel(static_cast<INT>(x), static_cast<INT>(y), &colour);
    return colour.GetValue();
}

std::set<DWORD> ColoursOf(Gdiplus::Bitmap& image) {
    std::set<DWORD> found;
    for (UINT y = 0; y < image.GetHeight(); ++y) {
        for (UINT x = 0; x < image.GetWidth(); ++x) found.insert(ColourAt(image, x, y));
    }
    return found;
}

struct PictureRow {
    int ids[4];
};

constexpr PictureRow kPictures[] = {{{110, 13001, 13002, 13003}},
                                    {{101, 13004, 13005, 13006}},
                                    {{104, 13007, 13008, 13009}},
                                    {{113, 12098, 12099, 13000}}};
constexpr UINT kWidths[] = {48, 60, 72, 96};

TEST_F(Dialogs, HavePicturesOfEachScaleThatCoverTheirGround) {
    for (const PictureRow& row : kPictures) {
        for (std::size_t scale = 0; scale < 4; ++scale) {
            SCOPED_TRACE(row.ids[scale]);
            const auto image = ObLibX::LoadGraphicsImage(row.ids[scale], GetModuleHandleW(nullptr));
            ASSERT_NE(nullptr, image);
            EXPECT_EQ(kWidths[scale], image->Object()->GetWidth());
            EXPECT_EQ(kWidths[scale], image->Object()->GetHeight());
            const std::set<DWORD> colours = ColoursOf(*image->Object());
            EXPECT_TRUE(std::ranges::all_of(colours, [](DWORD c) { return c >> 24 == 0xFF; }));
            EXPECT_EQ(0xFFF6F6F6u, ColourAt(*image->Object(), 0, 0));
            EXPECT_LT(8u, colours.size());
        }
    }
}

TEST_F(Dialogs, HaveBothIconsInTheSizesOfAWindow) {
    for (const int id : {OB_PRODUCT_ICON, OB_RECOVERY_ICON}) {
        for (const int size : {16, 20, 24, 32, 48, 64}) {
            const HANDLE icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id),
                                           IMAGE_ICON, size, size, 0);
            EXPECT_NE(nullptr, icon) << id << " " << size;
            DestroyIcon(static_cast<HICON>(icon));
        }
    }
}

} // namespace
