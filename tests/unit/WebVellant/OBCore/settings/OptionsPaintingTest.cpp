// How the settings window looks: ground, lines, fonts, colours, pictures.
#include "OBCore/settings/OptionsPainting.h"

#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::OpenDialog;

using Ids = std::vector<int>;

constexpr COLORREF kGround = 0xF6F6F6;
constexpr COLORREF kLine = 0xEBECF1;
constexpr COLORREF kWhite = 0xFFFFFF;
const Ids kLineAfter{1000, 1001, 1045};
const Ids kHeadlines{1007, 1008, 1009, 1053};
const Ids kExplanations{1060, 1061, 1062, 1063};
const Ids kWhiteTexts{1000, 1001, 1012, 1013, 1014, 1040, 1041, 1042, 1043, 1044, 1045, 1046};
const Ids kBoxes{1016, 1017, 1018, 1050, 1051, 1052, 1054, 1055};

const Ids kSettings{1012, 1013, 1014, 1040, 1041, 1044, 1045};

int screenDpi = 96;
decltype(&GetDeviceCaps) realCaps = nullptr;

int WINAPI ReportDpi(HDC dc, int index) {
    return index == LOGPIXELSX || index == LOGPIXELSY ? screenDpi : realCaps(dc, index);
}

RECT PlaceIn(HWND window, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

class OptionsPainting : public obtest::OptionsFixture {
protected:
    OptionsPainting() : caps_("gdi32.dll", "GetDeviceCaps", &ReportDpi) {
        realCaps = caps_.Real();
        screenDpi = 96;
    }
    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(caps_.Ok());
    }
    // Opens the window and lets `use` look at its object.
    void Look(const std::function<void(const obcore::OBOptionsDialogImp&)>& use) {
        struct Probe : obcore::OBOptionsDialogImp {
            using OBOptionsDialogImp::OBOptionsDialogImp;
            std::function<void(const OBOptionsDialogImp&)> use;
            bool OnInitDialog() override {
                OBOptionsDialogImp::OnInitDialog();
                use(*this);
                EndDialog(window, IDCANCEL);
                return true;
            }
        };
        Probe probe(OB_OPTIONS, nullptr, options_);
        probe.use = use;
        EXPECT_EQ(IDCANCEL, probe.DoModal());
    }

    obtest::ImportPatch<decltype(&GetDeviceCaps)> caps_;
};

// The pixels of the window's own painting, without its controls.
class Painted {
public:
    explicit Painted(HWND window) : window_(window), dc_(GetDC(window)) {
        GetClientRect(window, &client);
    }
    ~Painted() { ReleaseDC(window_, dc_); }
    COLORREF At(LONG x, LONG y) const {
        return GetPixel(dc_, static_cast<int>(x), static_cast<int>(y));
    }

    RECT client{};

private:
    HWND window_;
    HDC dc_;
};

TEST_F(OptionsPainting, FillsTheGroundAndLeavesTheStripOfTheButtons) {
    for (const auto& [dpi, strip] : {std::pair(96, 56), {143, 56}, {144, 60}, {192, 60}}) {
        screenDpi = 96; // while the window opens, so that it fits the screen
        Show([&](const OpenDialog& dialog) {
            screenDpi = dpi;
            RedrawWindow(dialog.window, nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
            obtest::WaitUntil([&] {
                const Painted painted(dialog.window);
                return painted.At(2, painted.client.bottom - 59) ==
                       (strip == 60 ? kWhite : kGround);
            });
            const Painted painted(dialog.window);
            const LONG edge = painted.client.bottom - strip;
            for (const LONG x : {0L, painted.client.right - 1}) {
                EXPECT_EQ(kGround, painted.At(x, 0)) << dpi;
                EXPECT_EQ(kGround, painted.At(x, edge - 1)) << dpi;
                EXPECT_EQ(kWhite, painted.At(x, edge)) << dpi;
                EXPECT_EQ(kWhite, painted.At(x, painted.client.bottom - 1)) << dpi;
            }
        });
    }
}

TEST_F(OptionsPainting, DrawsALine20PixelsBelowThreeControls) {
    Show([&](const OpenDialog& dialog) {
        const LONG first = PlaceIn(dialog.window, dialog.Item(1000)).bottom + 20;
        obtest::WaitUntil([&] { return Painted(dialog.window).At(40, first) == kLine; });
        const Painted painted(dialog.window);
        for (const int id : kLineAfter) {
            const LONG y = PlaceIn(dialog.window, dialog.Item(id)).bottom + 20;
            EXPECT_EQ(kLine, painted.At(34, y)) << id;
            EXPECT_EQ(kLine, painted.At(painted.client.right - 35, y)) << id;
            EXPECT_EQ(kGround, painted.At(33, y)) << id;
            EXPECT_EQ(kGround, painted.At(painted.client.right - 34, y)) << id;
            EXPECT_EQ(kGround, painted.At(34, y - 1)) << id;
            EXPECT_EQ(kGround, painted.At(34, y + 1)) << id;
        }
    });
}

TEST_F(OptionsPainting, GivesHeadlinesAndExplanationsTheirFonts) {
    Look([](const obcore::OBOptionsDialogImp& dialog) {
        for (const int id : kHeadlines) {
            const auto* const control = dialog.GetControl(id);
            EXPECT_EQ(12, control->fontSize) << id;
            EXPECT_EQ(700, control->fontWeight) << id;
            EXPECT_EQ(0x1B1B1Bu, control->textColor) << id;
            LOGFONTW font{};
            GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control->window, WM_GETFONT, 0, 0)),
                       sizeof font, &font);
            EXPECT_EQ(700, font.lfWeight) << id;
            EXPECT_EQ(-16, font.lfHeight) << id;
        }
        for (const int id : kExplanations) {
            const auto* const control = dialog.GetControl(id);
            ASSERT_NE(nullptr, control) << id;
            EXPECT_EQ(10, control->fontSize) << id;
            EXPECT_EQ(400, control->fontWeight) << id;
            EXPECT_EQ(0x646464u, control->textColor) << id;
        }
    });
}

TEST_F(OptionsPainting, GivesButtonsAWhiteTextAndBoxesADarkOne) {
    Look([](const obcore::OBOptionsDialogImp& dialog) {
        for (const int id : kWhiteTexts) {
            EXPECT_EQ(kWhite, dialog.GetControl(id)->textColor) << id;
        }
        for (const int id : kBoxes) EXPECT_EQ(0x1B1B1Bu, dialog.GetControl(id)->textColor) << id;
    });
}

TEST_F(OptionsPainting, GivesTextsAndBoxesTheColourOfTheGroundTheyAreOn) {
    Look([](const obcore::OBOptionsDialogImp& dialog) {
        int onGround = 0;
        for (const auto& [id, control] : dialog.Controls()) {
            const bool isBox = std::ranges::find(kBoxes, id) != kBoxes.end();
            const bool isText = obtest::ClassOf(control->window) == L"Static";
            const bool isButton = std::ranges::find(kSettings, id) != kSettings.end();
            if (!isBox && !isText && !isButton) continue;
            const bool isOnGround = obcore::IsOnGround(dialog.window, control->window);
            EXPECT_EQ(isOnGround, control->fillColor == kGround) << id;
            onGround += isOnGround;
        }
        EXPECT_GE(onGround, 23);
        EXPECT_EQ(kGround, ObLibX::GetPaletteColor(2));
    });
}

// Images by their ids, at 96, 120, 144 and 168 dots per inch.
const std::pair<int, std::vector<int>> kPictures[] = {
    {110, {110, 13001, 13002, 13003}},
    {101, {101, 13004, 13005, 13006}},
    {104, {104, 13007, 13008, 13009}},
    {113, {113, 12098, 12099, 13000}},
};
const std::vector<std::pair<int, std::size_t>> kScales = {{96, 0},  {119, 0}, {120, 1}, {143, 1},
                                                          {144, 2}, {167, 2}, {168, 3}, {240, 3}};

constexpr LONG kPictureSizes[] = {48, 60, 72, 96}; // pixels

std::vector<int> images; // ids that were looked for
decltype(&FindResourceW) realFind = nullptr;

HRSRC WINAPI RecordImage(HMODULE module, const wchar_t* name, const wchar_t* type) {
    if (IS_INTRESOURCE(name) && type == RT_RCDATA) {
        images.push_back(static_cast<int>(reinterpret_cast<INT_PTR>(name)));
    }
    return realFind(module, name, type);
}

TEST_F(OptionsPainting, LooksForThePicturesOfTheScreensScale) {
    const obtest::ImportPatch<decltype(&FindResourceW)> find("kernel32.dll", "FindResourceW",
                                                             &RecordImage);
    ASSERT_TRUE(find.Ok());
    realFind = find.Real();
    for (const auto& [dpi, index] : kScales) {
        images.clear();
        screenDpi = dpi;
        obcore::OptionsPictures().Show(nullptr);
        Ids wanted;
        for (const auto& row : kPictures) wanted.push_back(row.second[index]);
        EXPECT_EQ(wanted, images) << dpi;
    }
}

TEST_F(OptionsPainting, GivesEachLabelAPictureOfTheScreensScaleWithoutAlpha) {
    for (const auto& [dpi, index] : kScales) {
        screenDpi = 96; // while the window opens, so that it fits the screen
        Look([&](const obcore::OBOptionsDialogImp& dialog) {
            screenDpi = dpi;
            obcore::OptionsPictures pictures;
            pictures.Show(dialog.window);
            for (const auto& row : kPictures) {
                const HWND label = dialog.GetItem(row.first, true);
                const LRESULT shown = SendMessageW(label, STM_GETIMAGE, IMAGE_BITMAP, 0);
                BITMAP described{};
                ASSERT_NE(
                    0, GetObjectW(reinterpret_cast<HBITMAP>(shown), sizeof described, &described))
                    << row.first << ", " << dpi;
                EXPECT_EQ(24, described.bmBitsPixel) << row.first;
                EXPECT_EQ(kPictureSizes[index], described.bmWidth) << row.first << ", " << dpi;
                EXPECT_EQ(kPictureSizes[index], described.bmHeight) << row.first << ", " << dpi;
            }
        });
    }
}

} // namespace
