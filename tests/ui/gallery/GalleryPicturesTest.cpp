// Every page of the gallery at one scale, in the usual colours or in a high contrast scheme
// (OB_CONTRAST: dark or light), painted in this process. With OB_PICTURES, a folder, the pictures
// are stored there to be looked at.
#include <gtest/gtest.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "demo/gallery/Pages.h"
#include "demo/gallery/ScrolledPanel.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/PictureSuite.h"

namespace obtest {
namespace {

struct SchemeColour {
    int element;
    COLORREF dark;
    COLORREF light;
};

// The colours of two of the system's high contrast schemes.
constexpr SchemeColour kScheme[] = {
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

std::wstring Contrast() {
    const wchar_t* const chosen = _wgetenv(L"OB_CONTRAST");
    return chosen != nullptr ? chosen : L"";
}

void ChooseScheme() {
    std::vector<int> elements;
    std::vector<COLORREF> colours;
    for (const SchemeColour& row : kScheme) {
        elements.push_back(row.element);
        colours.push_back(Contrast() == L"dark" ? row.dark : row.light);
    }
    SetSysColors(static_cast<int>(elements.size()), elements.data(), colours.data());
    printf("high contrast: a fake of the question, and the colours of a %ls scheme\n",
           Contrast().c_str());
}

void Pump() {
    MSG message;
    for (int left = 500; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); --left) {
        DispatchMessageW(&message);
    }
}

Picture PictureOf(HWND window) {
    ShowWindow(window, SW_SHOW);
    Pump();
    RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    Pump();
    return TakePicture(window).value_or(Picture());
}

// Of the pixels inside the window's frame.
std::uint32_t MostFrequent(const Picture& picture) {
    std::map<std::uint32_t, std::size_t> counts;
    for (const std::uint32_t pixel : picture.pixels) ++counts[pixel];
    return std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; })
        ->first;
}

class GalleryPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { BeAwareOfTheScale(); }
    void SetUp() override {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
        InitCommonControlsEx(&classes);
        ASSERT_EQ(ExpectedDpi(), ObLibX::GetDpi());
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        gallery::RegisterScrolledPanel(GetModuleHandleW(nullptr));
        ObLibX::UseFlatControls();
        isContrastOn = !Contrast().empty();
        if (isContrastOn) ChooseScheme();
    }

private:
    ImportPatch<decltype(&SystemParametersInfoW)> patch_{"user32.dll", "SystemParametersInfoW",
                                                         &ParametersWithContrast};
};

TEST_F(GalleryPicture, OfEachPageIsPaintedOnTheSchemesGround) {
    const auto pages = gallery::PagesNamed(L"");
    ASSERT_FALSE(pages.empty());
    const std::wstring scheme = Contrast().empty() ? L"" : L"-" + Contrast();
    for (const gallery::PageRow& row : pages) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
        const auto page = row.make();
        page->Create(nullptr);
        const Picture picture = PictureOf(page->window);
        ASSERT_FALSE(picture.pixels.empty());
        EXPECT_LT(8u, picture.Colours());
        KeepPicture(picture, std::wstring(L"gallery-") + row.name + scheme, 300, 200);
        const std::uint32_t ground = Contrast() == L"dark" ? 0 : 0xFFFFFF;
        if (!Contrast().empty()) {
            EXPECT_EQ(ground, MostFrequent(picture));
        }
    }
}

} // namespace
} // namespace obtest
