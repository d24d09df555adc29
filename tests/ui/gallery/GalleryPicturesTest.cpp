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
#include "tests/support/ContrastScheme.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/PictureSuite.h"

namespace obtest {
namespace {

std::wstring Contrast() {
    const wchar_t* const chosen = _wgetenv(L"OB_CONTRAST");
    return chosen != nullptr ? chosen : L"";
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
        if (isContrastOn) UseScheme(Contrast() == L"dark");
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
