// Where windows of a real screen are placed.
#include "ObLibX/src/dialog/WindowCentring.h"

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

using ObLib::UniqueWindow;
using ObLibX::CenterWindow;
using ObLibX::PlaceNextWindowAtCursor;

constexpr int kWidth = 120;
constexpr int kHeight = 80;

UniqueWindow MakeWindow(const wchar_t* name, HWND owner, const RECT& place, DWORD style) {
    return UniqueWindow(CreateWindowExW(WS_EX_TOOLWINDOW, name, L"", style, place.left, place.top,
                                        place.right - place.left, place.bottom - place.top, owner,
                                        nullptr, nullptr, nullptr));
}

RECT WorkArea() {
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

POINT CentreOf(const RECT& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

RECT RectOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return rect;
}

void ExpectCentre(POINT expected, HWND window) {
    const POINT centre = CentreOf(RectOf(window));
    EXPECT_NEAR(expected.x, centre.x, 1);
    EXPECT_NEAR(expected.y, centre.y, 1);
}

class WindowCentring : public testing::Test {
protected:
    void SetUp() override { SetCursorPos(2, 2); }

    // An owner to the right of the middle, and a window of it.
    UniqueWindow owner_ =
        MakeWindow(L"static", nullptr, {400, 300, 800, 600}, WS_POPUP | WS_VISIBLE);
    UniqueWindow window_ =
        MakeWindow(L"static", owner_.Get(), {0, 0, kWidth, kHeight}, WS_POPUP | WS_VISIBLE);
};

TEST_F(WindowCentring, MovesAWindowToTheMiddleOfItsOwner) {
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    ExpectCentre({600, 450}, window_.Get());
    const RECT place = RectOf(window_.Get());
    EXPECT_EQ(kWidth, place.right - place.left);
    EXPECT_EQ(kHeight, place.bottom - place.top);
}

TEST_F(WindowCentring, OnlyReportsThePlaceWhereNothingIsToMove) {
    POINT position{};
    CenterWindow(window_.Get(), &position, nullptr, false);
    EXPECT_EQ(600 - kWidth / 2, position.x);
    EXPECT_EQ(450 - kHeight / 2, position.y);
    EXPECT_EQ(0, RectOf(window_.Get()).left);
}

TEST_F(WindowCentring, ReportsThePlaceOfAMovedWindowToo) {
    POINT position{};
    CenterWindow(window_.Get(), &position, nullptr, true);
    EXPECT_EQ(position.x, RectOf(window_.Get()).left);
    EXPECT_EQ(position.y, RectOf(window_.Get()).top);
}

TEST_F(WindowCentring, TakesAGivenSizeAndThenTheOwnersCentreWhereverTheCursorIs) {
    SetCursorPos(410, 310);
    const RECT size{0, 0, 200, 100};
    POINT position{};
    CenterWindow(window_.Get(), &position, &size, false);
    EXPECT_EQ(500, position.x);
    EXPECT_EQ(400, position.y);
}

TEST_F(WindowCentring, TakesTheCursorInsideTheOwner) {
    SetCursorPos(500, 400);
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    ExpectCentre({500, 400}, window_.Get());
}

TEST_F(WindowCentring, PlacesOneWindowAtTheCursorWhenThatIsWanted) {
    SetCursorPos(300, 200);
    PlaceNextWindowAtCursor();
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    EXPECT_EQ(300, RectOf(window_.Get()).left);
    EXPECT_EQ(200, RectOf(window_.Get()).top);
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    ExpectCentre({600, 450}, window_.Get());
}

TEST_F(WindowCentring, KeepsAWindowAtTheCursorInsideTheWorkArea) {
    const RECT area = WorkArea();
    SetCursorPos(area.right - 1, area.bottom - 1);
    PlaceNextWindowAtCursor();
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    EXPECT_EQ(area.right - 10, RectOf(window_.Get()).right);
    EXPECT_EQ(area.bottom - 10, RectOf(window_.Get()).bottom);
    SetCursorPos(area.left, area.top);
    PlaceNextWindowAtCursor();
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    EXPECT_EQ(area.left + 10, RectOf(window_.Get()).left);
    EXPECT_EQ(area.top + 10, RectOf(window_.Get()).top);
}

TEST_F(WindowCentring, TakesTheScreenForAnOwnerThatIsMinimized) {
    const UniqueWindow framed =
        MakeWindow(L"static", nullptr, {400, 300, 800, 600}, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const UniqueWindow window =
        MakeWindow(L"static", framed.Get(), {0, 0, kWidth, kHeight}, WS_POPUP);
    ShowWindow(framed.Get(), SW_SHOWMINNOACTIVE);
    ASSERT_TRUE(IsIconic(framed.Get()));
    SetCursorPos(100, 100);
    CenterWindow(window.Get(), nullptr, nullptr, true);
    ExpectCentre({100, 100}, window.Get());
}

// A window of the class of the product's main window.
UniqueWindow MakeMainWindow(DWORD style) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = &DefWindowProcW;
    kind.lpszClassName = L"OmbrixWClass";
    RegisterClassW(&kind);
    return MakeWindow(L"OmbrixWClass", nullptr, {400, 300, 800, 600}, style);
}

TEST_F(WindowCentring, TakesTheWorkAreaForAHiddenMainWindow) {
    const UniqueWindow main = MakeMainWindow(WS_POPUP);
    const UniqueWindow window =
        MakeWindow(L"static", main.Get(), {0, 0, kWidth, kHeight}, WS_POPUP);
    CenterWindow(window.Get(), nullptr, nullptr, true);
    ExpectCentre(CentreOf(WorkArea()), window.Get());
}

TEST_F(WindowCentring, TakesAMainWindowThatIsVisible) {
    const UniqueWindow main = MakeMainWindow(WS_POPUP | WS_VISIBLE);
    const UniqueWindow window =
        MakeWindow(L"static", main.Get(), {0, 0, kWidth, kHeight}, WS_POPUP);
    CenterWindow(window.Get(), nullptr, nullptr, true);
    ExpectCentre({600, 450}, window.Get());
}

TEST_F(WindowCentring, TakesAHiddenOwnerOfAnotherClass) {
    ShowWindow(owner_.Get(), SW_HIDE);
    CenterWindow(window_.Get(), nullptr, nullptr, true);
    ExpectCentre({600, 450}, window_.Get());
}

} // namespace
