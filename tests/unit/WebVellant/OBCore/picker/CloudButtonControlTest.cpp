#include "OBCore/picker/CloudButtonControl.h"

#include <cstdio>
#include <memory>

#include "tests/support/WindowKit.h"
#include "tests/unit/WebVellant/OBCore/picker/CloudButtonFixture.h"

namespace obtest {
namespace {

constexpr int kAdded = 10; // pixels beyond the button's ideal width

// A dialog with the button, in real rectangles.
class CloudButtonPlace : public CloudButtonFixture {
protected:
    // Creates the dialog, which has then the button and is 600 pixels wide.
    void Open() {
        form.Create();
        button = ButtonOf(form.dialog);
        ASSERT_TRUE(button);
    }

    void ExpectInPlace() const {
        const RECT ok = PlaceOnScreen(form.ok);
        const RECT place = PlaceOnScreen(button);
        EXPECT_EQ(place.left, PlaceOnScreen(form.nameBox).left);
        EXPECT_EQ(place.top, ok.top);
        EXPECT_EQ(place.bottom, ok.bottom);
        EXPECT_EQ(WidthOf(place), idealSize.cx + kAdded);
    }

    // How far the button ends to the right of the file name box; negative when it ends before it.
    int PastTheBox() const {
        return PlaceOnScreen(button).right - PlaceOnScreen(form.nameBox).right;
    }

    int DialogWidth() const { return WidthOf(PlaceOnScreen(form.dialog)); }

    CloudButtonScope scope;
    SyntheticDialog form;
    HWND button = nullptr;
};

TEST_F(CloudButtonPlace, IsBelowTheFileNameBoxOnTheLineOfOk) {
    Open();
    ExpectInPlace();
}

TEST_F(CloudButtonPlace, FollowsTheDialogsSize) {
    for (const auto box : {SyntheticDialog::Box::Grows, SyntheticDialog::Box::Moves}) {
        CloudButtonScope own;
        SyntheticDialog other;
        other.box = box;
        other.Create();
        const HWND added = ButtonOf(other.dialog);
        for (const int width : {900, 650, 601}) {
            SetWidth(other.dialog, width);
            EXPECT_EQ(PlaceOnScreen(added).left, PlaceOnScreen(other.nameBox).left) << width;
            EXPECT_EQ(PlaceOnScreen(added).top, PlaceOnScreen(other.ok).top) << width;
        }
    }
}

TEST_F(CloudButtonPlace, HasTheHeightOfOkInAnyLayout) {
    Open();
    for (const int height : {14, 23, 46}) {
        SetWindowPos(form.ok, nullptr, 0, 0, 80, height, SWP_NOMOVE | SWP_NOZORDER);
        obcore::LayOutCloudButton(scope.record);
        EXPECT_EQ(HeightOf(PlaceOnScreen(button)), height);
        ExpectInPlace();
    }
}

TEST_F(CloudButtonPlace, IsTenPixelsWiderThanItsTextNeeds) {
    Open();
    for (const int width : {0, 40, 211}) {
        idealSize.cx = width;
        obcore::LayOutCloudButton(scope.record);
        ExpectInPlace();
    }
}

// The system's rule: the next sibling of the class, whatever the class of the one before.
HWND WINAPI FindSiblingAfter(HWND parent, HWND after, const wchar_t* type, const wchar_t*) {
    HWND child = after ? GetWindow(after, GW_HWNDNEXT) : GetWindow(parent, GW_CHILD);
    while (child && ClassOf(child) != type) child = GetWindow(child, GW_HWNDNEXT);
    return child;
}

using FindPatch = ImportPatch<decltype(&FindWindowExW)>;

// Puts the fake in the call's place where the system's own doesn't keep to the rule.
std::unique_ptr<FindPatch> FakeFindWhereItIsNeeded() {
    SyntheticDialog form;
    form.Create();
    if (FindWindowExW(form.dialog, form.nameBox, L"ComboBox", nullptr) == form.fileTypes) return {};
    std::puts("[   NOTE   ] FindWindowExW of Wine finds no sibling of another class: a fake call "
              "takes its place here");
    return std::make_unique<FindPatch>("user32.dll", "FindWindowExW", &FindSiblingAfter);
}

TEST_F(CloudButtonPlace, IsRightAfterTheFileTypesInTheOrderOfWindows) {
    obcore::SetCloudButtonRecord(nullptr);
    const auto patch = FakeFindWhereItIsNeeded();
    ASSERT_TRUE(!patch || patch->Ok());
    obcore::SetCloudButtonRecord(&scope.record);
    Open();
    EXPECT_EQ(GetWindow(form.fileTypes, GW_HWNDNEXT), button);
    // A further list, before the box, isn't taken for the file types.
    const HWND other = CreateWindowExW(0, L"ComboBox", nullptr, WS_CHILD, 0, 0, 9, 9, form.dialog,
                                       nullptr, nullptr, nullptr);
    for (const HWND window : {other, button}) {
        SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    SetWidth(form.dialog, 640);
    EXPECT_EQ(GetWindow(form.fileTypes, GW_HWNDNEXT), button);
    ExpectInPlace();
}

class CloudButtonWidth : public CloudButtonPlace {};

TEST_F(CloudButtonWidth, OfTheDialogIsAtLeastItsOwnLessWhatTheBoxHasBeyondTheButton) {
    int before = 0;
    form.onMessage = [&](HWND dialog, UINT message, WPARAM) {
        if (message == WM_INITDIALOG) before = WidthOf(PlaceOnScreen(dialog));
    };
    Open();
    const RECT box = PlaceOnScreen(form.nameBox);
    EXPECT_EQ(scope.record.minimumWidth, box.left + idealSize.cx + kAdded - box.right + before);
    EXPECT_LT(scope.record.minimumWidth, before);
}

TEST_F(CloudButtonWidth, OfTheDialogGrowsAtOnceWhereTheButtonNeedsMore) {
    idealSize.cx = 700;
    int before = 0;
    form.onMessage = [&](HWND dialog, UINT message, WPARAM) {
        if (message == WM_INITDIALOG) before = WidthOf(PlaceOnScreen(dialog));
    };
    form.Create();
    EXPECT_GT(scope.record.minimumWidth, before);
    EXPECT_EQ(DialogWidth(), scope.record.minimumWidth);
    button = ButtonOf(form.dialog);
    EXPECT_EQ(PastTheBox(), 0);
}

// The box ends where the button ends once a box that grows has given up its spare width.
TEST_F(CloudButtonWidth, OfTheDialogStopsWhereTheBoxEndsWithTheButton) {
    Open();
    SetWidth(form.dialog, 10);
    EXPECT_EQ(DialogWidth(), scope.record.minimumWidth);
    EXPECT_EQ(PastTheBox(), 0);
    SetWidth(form.dialog, scope.record.minimumWidth - 1);
    EXPECT_EQ(DialogWidth(), scope.record.minimumWidth);
}

TEST_F(CloudButtonWidth, KeepsTheDistanceOfButtonAndBoxThatTheyOpenedWith) {
    struct {
        SyntheticDialog::Box box;
        int ideal;
    } const rows[] = {
        {SyntheticDialog::Box::Moves, 83},  // a box of a fixed width takes the button along
        {SyntheticDialog::Box::Moves, 300}, // the button is wider than the box
        {SyntheticDialog::Box::Grows, 700}, // the dialog opens at its minimum
    };
    for (const auto& row : rows) {
        idealSize.cx = row.ideal;
        CloudButtonScope own;
        SyntheticDialog other;
        other.box = row.box;
        other.Create(10);
        const HWND added = ButtonOf(other.dialog);
        const auto distance = [&] {
            return PlaceOnScreen(added).right - PlaceOnScreen(other.nameBox).right;
        };
        const int opened = distance();
        SetWidth(other.dialog, 10);
        EXPECT_EQ(WidthOf(PlaceOnScreen(other.dialog)), own.record.minimumWidth) << row.ideal;
        EXPECT_EQ(distance(), opened) << row.ideal;
    }
}

MINMAXINFO LimitsOf(HWND dialog, LONG largest) {
    MINMAXINFO limits{};
    limits.ptMaxTrackSize.x = largest;
    SendMessageW(dialog, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    return limits;
}

TEST_F(CloudButtonWidth, IsRaisedAfterTheDialogHasSetItsOwnMinimum) {
    form.ownMinimum = 20;
    Open();
    const int minimum = scope.record.minimumWidth;
    EXPECT_EQ(LimitsOf(form.dialog, 5000).ptMinTrackSize.x, minimum);
    form.ownMinimum = minimum - 1;
    EXPECT_EQ(LimitsOf(form.dialog, 5000).ptMinTrackSize.x, minimum);
    form.ownMinimum = minimum + 1;
    EXPECT_EQ(LimitsOf(form.dialog, 5000).ptMinTrackSize.x, minimum + 1);
}

TEST_F(CloudButtonWidth, NeverExceedsTheLargestWidth) {
    Open();
    const int minimum = scope.record.minimumWidth;
    EXPECT_EQ(LimitsOf(form.dialog, minimum).ptMinTrackSize.x, minimum);
    EXPECT_EQ(LimitsOf(form.dialog, minimum - 1).ptMinTrackSize.x, minimum - 1);
    form.ownMinimum = minimum + 500; // also one that the dialog has set
    EXPECT_EQ(LimitsOf(form.dialog, minimum + 7).ptMinTrackSize.x, minimum + 7);
}

struct Placing {
    HWND window, after;
    RECT place; // left, top, width and height as they were given
    UINT flags;
};
std::vector<Placing> placings;
decltype(&SetWindowPos) realSetWindowPos = nullptr;

BOOL WINAPI RecordPlacing(HWND window, HWND after, int x, int y, int cx, int cy, UINT flags) {
    placings.push_back({window, after, {x, y, cx, cy}, flags});
    return realSetWindowPos(window, after, x, y, cx, cy, flags);
}

TEST_F(CloudButtonWidth, IsTakenByGivingTheDialogItsOwnPlaceOnceTheButtonIsThere) {
    const ImportPatch<decltype(&SetWindowPos)> patch{"user32.dll", "SetWindowPos", &RecordPlacing};
    ASSERT_TRUE(patch.Ok());
    realSetWindowPos = patch.Real();
    placings.clear();
    std::size_t afterOwnWork = 0;
    form.onMessage = [&](HWND, UINT message, WPARAM) {
        if (message == WM_INITDIALOG) afterOwnWork = placings.size();
    };
    form.Create();
    ASSERT_GE(placings.size(), afterOwnWork + 2);
    const Placing& ofButton = placings[afterOwnWork];
    EXPECT_EQ(ofButton.window, ButtonOf(form.dialog));
    EXPECT_EQ(ofButton.flags, static_cast<UINT>(SWP_NOOWNERZORDER));
    const Placing& ofDialog = placings[afterOwnWork + 1];
    EXPECT_EQ(ofDialog.window, form.dialog);
    EXPECT_EQ(ofDialog.flags, 0U);
    const RECT own{40, 30, 600, 300};
    EXPECT_TRUE(EqualRect(&ofDialog.place, &own));
}

} // namespace
} // namespace obtest
