// What dressed texts and edits depend on: the base font, the window's class, a font at all.
#include "ObLibX/src/controls/ObCustEdit.h"

#include <typeinfo>

#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

class DressedFields : public FieldsTest {};

TEST_F(DressedFields, HaveTheBaseFontUnlessTheyAreDescribedWithoutAFont) {
    LoadDialogDefaults();
    ProcessDialogSettings().font = {L"Arial", 12};
    Open(OB_TEST_TEXTS, false);
    const auto fontOf = [&](std::int32_t id) {
        return Object<ObFlatStaticText>(id).GetControlFont();
    };
    EXPECT_EQ(GetFont(12, L"Arial", 400, 0), fontOf(1001)) << "not described";
    EXPECT_EQ(GetFont(9, L"Segoe UI", 400, 0), fontOf(1003)) << "described without a font";
    EXPECT_EQ(GetFont(12, L"Arial", 600, 0), fontOf(1006)) << "with a weight alone";
}

// A window of a class of the test's, whose name begins as those of rich edits do.
std::wstring givenCue;
LRESULT CALLBACK RichEdit(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == EM_SETCUEBANNER) givenCue = reinterpret_cast<const wchar_t*>(lParam);
    return DefWindowProcW(window, message, wParam, lParam);
}

TEST_F(DressedFields, OfARichEditHaveACue) {
    Open(OB_TEST_TEXTS, false);
    for (const wchar_t* const name : {L"RichEdit of a test", L"MSFTEDIT of a test"}) {
        WNDCLASSW described{};
        described.lpfnWndProc = &RichEdit;
        described.lpszClassName = name;
        ASSERT_NE(0, RegisterClassW(&described));
        const HWND window = CreateWindowExW(0, name, L"", WS_CHILD | WS_VISIBLE, 10, 10, 100, 20,
                                            dialog_->window, nullptr, nullptr, nullptr);
        ControlDescription description;
        description.cue = L"A cue";
        const auto made = TheControlMaker().control(window, &description);
        ASSERT_EQ(typeid(ObFlatEdit), typeid(*made));
        givenCue.clear();
        made->Attach(window);
        EXPECT_EQ(L"A cue", givenCue);
        DestroyWindow(window);
    }
}

COLORREF WINAPI GiveBlue(HDC) { return 0x336699; }

TEST_F(DressedFields, ThatAreReadOnlyHaveTheirParentsBackgroundAroundThem) {
    Open(OB_TEST_FIELDS);
    const HWND frame = Object<ObFlatEdit>(1004).frameWindow;
    const obtest::ImportPatch<decltype(&GetBkColor)> patch("gdi32.dll", "GetBkColor", &GiveBlue);
    ASSERT_TRUE(patch.Ok());
    PaintNow(frame);
    for (int x = 0; x < 4; ++x) EXPECT_EQ(0x336699u, PixelOf(frame, x, 4)) << x;
}

HFONT WINAPI MakeNoFont(const LOGFONTW*) { return nullptr; }

TEST_F(DressedFields, EndTheProcessForAnEditWithoutAFont) {
    EXPECT_FATAL(
        {
            Open(OB_TEST_FIELDS, false);
            ObFlatEdit edit(1010, L"");
            edit.fontName = L"Another";
            const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch(
                "gdi32.dll", "CreateFontIndirectW", &MakeNoFont);
            edit.Attach(Item(1010));
        },
        "ObLibX\\src\\TextMeasure.cpp");
}

} // namespace
