#include "OBCore/picker/Logo.h"

#include "OBCore/picker/PickerHooks.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/WebVellant/OBCore/picker/CloudButtonFixture.h"

namespace obtest {
namespace {

constexpr int kLeft = 10;

int sizesSeenByView = 0;

LRESULT CALLBACK ViewProcedure(HWND view, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE) ++sizesSeenByView;
    return DefWindowProcW(view, message, wParam, lParam);
}

void Register(const wchar_t* name) {
    const WNDCLASSEXW entry{.cbSize = sizeof(entry),
                            .lpfnWndProc = &ViewProcedure,
                            .hInstance = GetModuleHandleW(nullptr),
                            .lpszClassName = name};
    RegisterClassExW(&entry);
}

HWND Child(HWND parent) {
    return CreateWindowExW(0, L"Static", nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 400, 300, parent,
                           nullptr, nullptr, nullptr);
}

HWND LogoIn(HWND window) { return GetWindow(window, GW_CHILD); }

// The shell's view and a window in it, which is created while the hook is installed.
class Logo : public CloudButtonFixture {
protected:
    void SetUp() override {
        CloudButtonFixture::SetUp();
        Register(L"DUIViewWndClassName");
    }

    ObLib::UniqueWindow View(const wchar_t* name = L"DUIViewWndClassName") {
        return ObLib::UniqueWindow(CreateWindowExW(0, name, nullptr, WS_POPUP | WS_VISIBLE, 20, 20,
                                                   400, 300, nullptr, nullptr,
                                                   GetModuleHandleW(nullptr), nullptr));
    }

    // A window's place in the client area of its parent.
    static RECT PlaceIn(HWND parent, HWND window) {
        RECT place = PlaceOnScreen(window);
        MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

    static void Resize(HWND window, int width, int height) {
        SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
    }

    ObLib::UniqueWindowHook hook = HookThread(&obcore::LogoHookProcedure);
};

TEST_F(Logo, IsAPictureInAWindowOfTheView) {
    const ObLib::UniqueWindow view = View();
    const HWND window = Child(view.Get());
    const HWND logo = LogoIn(window);
    ASSERT_TRUE(logo);
    EXPECT_EQ(ClassOf(logo), L"Static");
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(logo, GWL_STYLE)), 0x5400000EU);
    EXPECT_EQ(GetWindowLongPtrW(logo, GWLP_HINSTANCE),
              reinterpret_cast<LONG_PTR>(GetModuleHandleW(nullptr)));
    const LRESULT bitmap = SendMessageW(logo, STM_GETIMAGE, IMAGE_BITMAP, 0);
    BITMAP shown{};
    ASSERT_TRUE(GetObjectW(reinterpret_cast<HBITMAP>(bitmap), sizeof(shown), &shown));
    const ObLib::UniqueBitmap own(LoadBitmapW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(100)));
    BITMAP expected{};
    ASSERT_TRUE(GetObjectW(own.Get(), sizeof(expected), &expected));
    EXPECT_EQ(shown.bmWidth, expected.bmWidth);
    EXPECT_EQ(shown.bmHeight, expected.bmHeight);
    EXPECT_FALSE(LogoIn(logo)) << "the picture is no window of the view";
}

TEST_F(Logo, IsInNoWindowOfAnotherClass) {
    for (const wchar_t* name :
         {L"DUIViewWndClassNam", L"DUIViewWndClassName2", L"duiviewwndclassname2"}) {
        Register(name);
        const ObLib::UniqueWindow view = View(name);
        EXPECT_TRUE(view);
        EXPECT_FALSE(LogoIn(Child(view.Get())));
    }
    const ObLib::UniqueWindow top = View();
    EXPECT_FALSE(LogoIn(top.Get())) << "the view itself isn't in a view";
}

TEST_F(Logo, StaysAtTheBottomLeftOfTheView) {
    const ObLib::UniqueWindow view = View();
    const HWND logo = LogoIn(Child(view.Get()));
    const RECT before = PlaceOnScreen(logo);
    for (const SIZE size : {SIZE{600, 500}, SIZE{200, 90}, SIZE{200, 10}}) {
        Resize(view.Get(), size.cx, size.cy);
        const RECT place = PlaceIn(view.Get(), logo);
        EXPECT_EQ(place.left, kLeft);
        EXPECT_EQ(place.bottom, size.cy);
        EXPECT_EQ(WidthOf(place), WidthOf(before));
        EXPECT_EQ(HeightOf(place), HeightOf(before));
        EXPECT_GT(HeightOf(place), 0);
    }
}

TEST_F(Logo, LeavesTheViewItsMessages) {
    const ObLib::UniqueWindow view = View();
    Child(view.Get());
    sizesSeenByView = 0;
    Resize(view.Get(), 333, 222);
    EXPECT_EQ(sizesSeenByView, 1);
}

TEST_F(Logo, IsInEachWindowOfTheViewWhichMovesTheLastOne) {
    const ObLib::UniqueWindow view = View();
    const HWND first = LogoIn(Child(view.Get()));
    const HWND second = LogoIn(Child(view.Get()));
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    Resize(view.Get(), 500, 450);
    EXPECT_EQ(PlaceIn(view.Get(), second).bottom, 450);
    EXPECT_EQ(PlaceIn(view.Get(), first).top, 0);
}

TEST_F(Logo, ComesIntoTheNextViewTooUntilTheHookIsRemoved) {
    const ObLib::UniqueWindow one = View();
    EXPECT_TRUE(LogoIn(Child(one.Get())));
    const ObLib::UniqueWindow two = View();
    EXPECT_TRUE(LogoIn(Child(two.Get())));
    hook.Reset();
    EXPECT_FALSE(LogoIn(Child(two.Get())));
}

int createdForOlderHook = 0;

LRESULT CALLBACK CountCreated(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND) ++createdForOlderHook;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(Logo, PassesEveryCallOn) {
    hook.Reset();
    const ObLib::UniqueWindowHook older = HookThread(&CountCreated);
    const auto createdInAView = [this] {
        createdForOlderHook = 0;
        const ObLib::UniqueWindow view = View();
        Child(view.Get());
        return createdForOlderHook;
    };
    createdInAView(); // the first window of a thread brings others along
    const int without = createdInAView();
    EXPECT_GE(without, 2);
    hook = HookThread(&obcore::LogoHookProcedure);
    EXPECT_EQ(createdInAView(), without + 1); // the picture
}

TEST_F(Logo, SubclassesTheViewAndReleasesItWhenItIsDestroyed) {
    const SubclassRecord record;
    ASSERT_TRUE(record.Ok());
    ObLib::UniqueWindow view = View();
    const SubclassRecord::Entries expected{{view.Get(), 0}};
    Child(view.Get());
    EXPECT_EQ(SubclassRecord::Added(), expected);
    EXPECT_TRUE(SubclassRecord::Removed().empty());
    view.Reset();
    EXPECT_EQ(SubclassRecord::Removed(), expected);
}

std::vector<std::wstring> titles;
decltype(&CreateWindowExW) realCreate = nullptr;

// Of the control that isn't the test's own.
HWND WINAPI RecordTitle(DWORD extended, LPCWSTR type, LPCWSTR title, DWORD style, int x, int y,
                        int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID data) {
    if (title) titles.push_back(title);
    return realCreate(extended, type, title, style, x, y, width, height, parent, menu, instance,
                      data);
}

TEST_F(Logo, HasTheNumberOfItsPictureAsTitle) {
    const ImportPatch<decltype(&CreateWindowExW)> patch{"user32.dll", "CreateWindowExW",
                                                        &RecordTitle};
    ASSERT_TRUE(patch.Ok());
    realCreate = patch.Real();
    titles.clear();
    const ObLib::UniqueWindow view = View();
    Child(view.Get());
    EXPECT_EQ(titles, std::vector<std::wstring>{L"#100"});
}

std::vector<BOOL> repaints;
decltype(&MoveWindow) realMove = nullptr;

BOOL WINAPI RecordMove(HWND window, int x, int y, int width, int height, BOOL repaint) {
    repaints.push_back(repaint);
    return realMove(window, x, y, width, height, repaint);
}

TEST_F(Logo, IsPaintedAnewWhenItMoves) {
    const ObLib::UniqueWindow view = View();
    Child(view.Get());
    const ImportPatch<decltype(&MoveWindow)> patch{"user32.dll", "MoveWindow", &RecordMove};
    ASSERT_TRUE(patch.Ok());
    realMove = patch.Real();
    repaints.clear();
    Resize(view.Get(), 333, 222);
    EXPECT_EQ(repaints, std::vector<BOOL>{TRUE});
}

} // namespace
} // namespace obtest
