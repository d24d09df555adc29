// Controls of a program that has none of the toolkit's pictures: they paint everything else.
#include <algorithm>
#include <iterator>

#include "ObLibX/src/controls/ObCustPassword.h"
#include "tests/faults/toolkit/ToolkitSuite.h"
#include "tests/support/WindowPicture.h"

namespace obtest {
namespace {

using ObLibX::ObCustomControl;

// Check boxes and radios, which end the process without their pictures: they stay stock.
constexpr int kBoxes[] = {1014, 1015, 1016, 1017};

// What shows a picture besides the boxes: eye, settings, browser, split, drop, bars, combos that
// drop, spin.
constexpr int kWithPictures[] = {1002, 1012, 1013, 1019, 1020, 1006, 1007, 1025, 1026, 1028};

ObLibX::ControlMaker& RealMaker() {
    static ObLibX::ControlMaker maker;
    return maker;
}

std::unique_ptr<ObCustomControl> MakeNoBox(HWND window,
                                           const ObLibX::ControlDescription* description) {
    const bool isBox = std::ranges::find(kBoxes, GetDlgCtrlID(window)) != std::end(kBoxes);
    return isBox ? nullptr : RealMaker().control(window, description);
}

class WithoutPictures : public ToolkitSuite {
protected:
    void SetUp() override {
        ToolkitSuite::SetUp();
        RealMaker() = ObLibX::TheControlMaker();
        ObLibX::ControlMaker maker = RealMaker();
        maker.control = &MakeNoBox;
        ObLibX::SetControlMaker(maker);
    }
    // The window of a control that shows its picture.
    static HWND Shown(const EveryControlDialog& dialog, int id) {
        auto* const password = dynamic_cast<ObLibX::ObFlatPassword*>(dialog.GetControl(id));
        return password != nullptr ? password->eyeButton : dialog.GetItem(id, true);
    }
    // The controls of kWithPictures as they are shown, in that order.
    static std::vector<Picture> Pictures() {
        EveryControlDialog dialog;
        dialog.Open();
        std::vector<Picture> pictures;
        for (const int id : kWithPictures) {
            pictures.push_back(TakePicture(Shown(dialog, id)).value_or(Picture()));
        }
        return pictures;
    }
};

TEST_F(WithoutPictures, ControlsPaintTheRest) {
    const std::vector<Picture> whole = Pictures();
    const HMODULE program = GetModuleHandleW(nullptr);
    ObLib::AppGlobals().SetModules(GetModuleHandleW(L"kernel32.dll"), program, L"", L"");
    const std::vector<Picture> bare = Pictures();
    ObLib::AppGlobals().SetModule(program, L"", L"");
    ASSERT_EQ(whole.size(), bare.size());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        EXPECT_LT(bare[at].Colours(), whole[at].Colours()) << kWithPictures[at];
        EXPECT_LE(1u, bare[at].Colours()) << kWithPictures[at];
    }
    EXPECT_EQ(whole.front().pixels, Pictures().front().pixels) << "the pictures are back";
}

} // namespace
} // namespace obtest
