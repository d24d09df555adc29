#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <optional>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "obwmv/ParentWindowAdjuster.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/obwmv/TestWindow.h"

namespace {

using obtest::Icon;
using obtest::ImportPatch;
using obtest::MakeWindow;
using obwmv::ParentWindowAdjuster;
using testing::ElementsAre;

constexpr wchar_t kFakeClass[] = L"obwmv_fake_parent_class";
constexpr RECT kSecondWorkArea{1924, 30, 3204, 990}; // of a monitor to the right of the first
constexpr POINT kPointer{2000, 400};

// What the fake system calls recorded.
struct Seen {
    std::optional<POINT> monitorPoint;
    DWORD monitorFlags = 0;
    DWORD monitorSize = 0;
    std::vector<std::string> foreground;
    HWND foregroundWindow = nullptr;
    std::vector<BOOL> repaints;
    std::vector<WNDCLASSEXW> registered;
    std::vector<std::wstring> unregistered;
    HINSTANCE unregisteredModule = nullptr;
    std::vector<HWND> destroyed;
} seen;

BOOL WINAPI PointerOnSecondMonitor(POINT* point) {
    *point = kPointer;
    return TRUE;
}

HMONITOR WINAPI RecordMonitorPoint(POINT point, DWORD flags) {
    seen.monitorPoint = point;
    seen.monitorFlags = flags;
    return reinterpret_cast<HMONITOR>(2);
}

BOOL WINAPI SecondMonitor(HMONITOR monitor, MONITORINFO* info) {
    seen.monitorSize = info->cbSize;
    if (monitor == reinterpret_cast<HMONITOR>(2)) info->rcWork = kSecondWorkArea;
    return TRUE;
}

std::string Rectangle(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    char text[80];
    std::snprintf(text, sizeof(text), "%ld,%ld,%ld,%ld", place.left, place.top, place.right,
                  place.bottom);
    return text;
}

std::string MovedLine(HWND window, const RECT& place) {
    char text[160];
    std::snprintf(text, sizeof(text), "Adjust window %p to position (%ld, %ld, %ld, %ld)",
                  static_cast<void*>(window), place.left, place.top, place.right, place.bottom);
    return text;
}

std::string PointerLine(const char* format, HWND window) {
    char text[120];
    std::snprintf(text, sizeof(text), format, static_cast<void*>(window));
    return text;
}

RECT PrimaryWorkArea() {
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

std::vector<std::wstring> AssertedLines(const obtest::MessageBoxWatcher& boxes) {
    std::vector<std::wstring> lines;
    for (const auto& box : boxes.Seen()) {
        EXPECT_EQ(box.caption, L"Assert Error");
        lines.push_back(box.text.substr(box.text.find(L"Expr: ")));
    }
    return lines;
}

std::wstring Assertion(const wchar_t* expression, const wchar_t* line) {
    return std::wstring(L"Expr: ") + expression + L"\nFile: obwmv\\ParentWindowAdjuster\nLine: " +
           line;
}

class ParentWindowAdjusterTest : public testing::Test {
protected:
    void SetUp() override {
        obtest::ForgetTrace();
        seen = {};
    }
};

TEST_F(ParentWindowAdjusterTest, LeavesAVisibleOwnerWhereItIs) {
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const std::string before = Rectangle(owner.Get());
    HWND field = owner.Get();
    {
        const ParentWindowAdjuster adjuster(&field);
        EXPECT_EQ(field, owner.Get());
        EXPECT_EQ(Rectangle(owner.Get()), before);
    }
    EXPECT_EQ(field, owner.Get());
    EXPECT_EQ(Rectangle(owner.Get()), before);
    EXPECT_THAT(obtest::TraceLines(),
                ElementsAre(PointerLine("No need to adjust window %p", owner.Get())));
}

TEST_F(ParentWindowAdjusterTest, MovesAHiddenOwnerToTheWorkAreaAndBack) {
    const auto owner =
        MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW, {-3000, 70, -2600, 370});
    const std::string before = Rectangle(owner.Get());
    RECT old{};
    GetWindowRect(owner.Get(), &old);
    HWND field = owner.Get();
    {
        const ParentWindowAdjuster adjuster(&field);
        EXPECT_EQ(field, owner.Get());
        EXPECT_FALSE(IsWindowVisible(owner.Get()));
        RECT now{};
        GetWindowRect(owner.Get(), &now);
        const RECT area = PrimaryWorkArea();
        EXPECT_TRUE(EqualRect(&now, &area)) << Rectangle(owner.Get());
    }
    EXPECT_EQ(field, owner.Get());
    EXPECT_EQ(Rectangle(owner.Get()), before);
    EXPECT_FALSE(IsWindowVisible(owner.Get()));
    EXPECT_THAT(obtest::TraceLines(), ElementsAre(MovedLine(owner.Get(), PrimaryWorkArea()),
                                                  MovedLine(owner.Get(), old)));
}

TEST_F(ParentWindowAdjusterTest, TakesTheMonitorUnderThePointerAndNotThePrimaryOne) {
    const ImportPatch pointer("user32.dll", "GetCursorPos", &PointerOnSecondMonitor);
    const ImportPatch point("user32.dll", "MonitorFromPoint", &RecordMonitorPoint);
    const ImportPatch<decltype(&GetMonitorInfoW)> monitor("user32.dll", "GetMonitorInfoW",
                                                          &SecondMonitor);
    ASSERT_TRUE(pointer.Ok() && point.Ok() && monitor.Ok());
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_POPUP);
    const std::string before = Rectangle(owner.Get());
    HWND field = owner.Get();
    {
        const ParentWindowAdjuster adjuster(&field);
        EXPECT_EQ(Rectangle(owner.Get()), "1924,30,3204,990");
        ASSERT_TRUE(seen.monitorPoint);
        EXPECT_EQ(seen.monitorPoint->x, kPointer.x);
        EXPECT_EQ(seen.monitorPoint->y, kPointer.y);
        EXPECT_EQ(seen.monitorFlags, 1u);
        EXPECT_EQ(seen.monitorSize, 40u);
    }
    EXPECT_EQ(Rectangle(owner.Get()), before);
}

decltype(&MoveWindow) realMoveWindow;
BOOL WINAPI RecordMove(HWND window, int x, int y, int width, int height, BOOL repaint) {
    seen.repaints.push_back(repaint);
    return realMoveWindow(window, x, y, width, height, repaint);
}

TEST_F(ParentWindowAdjusterTest, MovesWithoutARepaint) {
    const ImportPatch<decltype(&MoveWindow)> move("user32.dll", "MoveWindow", &RecordMove);
    ASSERT_TRUE(move.Ok());
    realMoveWindow = move.Real();
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW);
    HWND field = owner.Get();
    { const ParentWindowAdjuster adjuster(&field); }
    EXPECT_THAT(seen.repaints, ElementsAre(FALSE, FALSE));
}

TEST_F(ParentWindowAdjusterTest, MovesAHiddenOwnerBackWhenAnExceptionPasses) {
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW);
    const std::string before = Rectangle(owner.Get());
    HWND field = owner.Get();
    try {
        const ParentWindowAdjuster adjuster(&field);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(Rectangle(owner.Get()), before);
}

TEST_F(ParentWindowAdjusterTest, AssertsWhenTheFieldOfAVisibleOwnerWasChanged) {
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    obtest::MessageBoxWatcher boxes;
    HWND field = owner.Get();
    {
        const ParentWindowAdjuster adjuster(&field);
        field = nullptr;
    }
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"*window_ == old_window_", L"51")));
}

TEST_F(ParentWindowAdjusterTest, AssertsWhenTheFieldOfAMovedOwnerWasChangedAndMovesItBack) {
    const auto owner = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW);
    const std::string before = Rectangle(owner.Get());
    obtest::MessageBoxWatcher boxes;
    HWND field = owner.Get();
    {
        const ParentWindowAdjuster adjuster(&field);
        field = nullptr;
    }
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"*window_ == new_window_", L"56")));
    EXPECT_EQ(Rectangle(owner.Get()), before);
}

// The fields of an adjuster in memory.
struct Fields {
    HWND* window;
    HWND oldWindow;
    HWND newWindow;
    RECT saved;
};
static_assert(sizeof(Fields) == sizeof(ParentWindowAdjuster));

TEST_F(ParentWindowAdjusterTest, AssertsWhenTheMovedWindowIsNotTheOwner) {
    const auto owner =
        MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW, {11, 22, 333, 244});
    RECT old{};
    GetWindowRect(owner.Get(), &old);
    obtest::MessageBoxWatcher boxes;
    HWND field = owner.Get();
    {
        ParentWindowAdjuster adjuster(&field);
        Fields fields;
        std::memcpy(&fields, static_cast<void*>(&adjuster), sizeof(fields));
        EXPECT_EQ(fields.window, &field);
        EXPECT_EQ(fields.oldWindow, owner.Get());
        EXPECT_EQ(fields.newWindow, owner.Get());
        EXPECT_TRUE(EqualRect(&fields.saved, &old));
        fields.oldWindow = reinterpret_cast<HWND>(0x1234);
        std::memcpy(static_cast<void*>(&adjuster), &fields, sizeof(fields));
    }
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"new_window_ == old_window_", L"55")));
    RECT after{};
    GetWindowRect(owner.Get(), &after);
    EXPECT_TRUE(EqualRect(&after, &old));
}

TEST_F(ParentWindowAdjusterTest, AssertsThatThereIsAFieldAndRunsOn) {
    obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(
        obtest::EndsInAccessViolation([] { const ParentWindowAdjuster adjuster(nullptr); }));
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"window != NULL", L"10")));
}

// A process without the fake class, and with it after the first run.
class FakeOwnerWindow : public ParentWindowAdjusterTest {};

TEST_F(FakeOwnerWindow, ReplacesANullOwnerUntilTheRunEnds) {
    HWND field = nullptr;
    HWND fake = nullptr;
    {
        const ParentWindowAdjuster adjuster(&field);
        fake = field;
        ASSERT_TRUE(IsWindow(fake));
        wchar_t name[64] = {};
        GetClassNameW(fake, name, 64);
        EXPECT_STREQ(name, kFakeClass);
        GetWindowTextW(fake, name, 64);
        EXPECT_STREQ(name, L"obwmv_fake_parent_window");
        EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(fake, GWL_STYLE)) & ~WS_CLIPSIBLINGS, WS_POPUP);
        EXPECT_EQ(GetWindowLongW(fake, GWL_EXSTYLE), 0);
        EXPECT_FALSE(IsWindowVisible(fake));
        EXPECT_EQ(GetWindow(fake, GW_OWNER), nullptr);
        EXPECT_EQ(GetMenu(fake), nullptr);
        RECT place{};
        GetWindowRect(fake, &place);
        const RECT area = PrimaryWorkArea();
        EXPECT_TRUE(EqualRect(&place, &area)) << Rectangle(fake);
        EXPECT_THAT(obtest::TraceLines(),
                    ElementsAre(PointerLine("Adjust create fake window %p", fake)));
    }
    EXPECT_EQ(field, nullptr);
    EXPECT_FALSE(IsWindow(fake));
    EXPECT_EQ(obtest::TraceLines().back(), PointerLine("Delete fake window %p", fake));
}

TEST_F(FakeOwnerWindow, CoversTheWorkAreaUnderThePointer) {
    const ImportPatch pointer("user32.dll", "GetCursorPos", &PointerOnSecondMonitor);
    const ImportPatch point("user32.dll", "MonitorFromPoint", &RecordMonitorPoint);
    const ImportPatch<decltype(&GetMonitorInfoW)> monitor("user32.dll", "GetMonitorInfoW",
                                                          &SecondMonitor);
    ASSERT_TRUE(pointer.Ok() && point.Ok() && monitor.Ok());
    HWND field = nullptr;
    const ParentWindowAdjuster adjuster(&field);
    EXPECT_EQ(Rectangle(field), "1924,30,3204,990");
}

BOOL WINAPI RecordUnregister(LPCWSTR name, HINSTANCE module) {
    seen.unregistered.emplace_back(name);
    seen.unregisteredModule = module;
    return FALSE;
}

ATOM WINAPI RecordRegister(const WNDCLASSEXW* description) {
    seen.registered.push_back(*description);
    return 0;
}

TEST_F(FakeOwnerWindow, HasAPlainClassOfTheLibrarysModule) {
    const HMODULE module = GetModuleHandleW(L"user32.dll");
    ObLib::AppGlobals().programModule = module;
    const ImportPatch announce("user32.dll", "RegisterClassExW", &RecordRegister);
    const ImportPatch unregister("user32.dll", "UnregisterClassW", &RecordUnregister);
    ASSERT_TRUE(announce.Ok() && unregister.Ok());
    obtest::MessageBoxWatcher boxes; // a class that isn't there makes no window
    HWND field = nullptr;
    { const ParentWindowAdjuster adjuster(&field); }
    ObLib::AppGlobals().programModule = nullptr;
    ASSERT_EQ(seen.registered.size(), 1u);
    EXPECT_STREQ(seen.registered[0].lpszClassName, kFakeClass);
    WNDCLASSEXW wanted{.cbSize = sizeof(WNDCLASSEXW)};
    wanted.lpfnWndProc = DefWindowProcW;
    wanted.hInstance = module;
    wanted.lpszClassName = seen.registered[0].lpszClassName;
    EXPECT_EQ(std::memcmp(&seen.registered[0], &wanted, sizeof(wanted)), 0);
    EXPECT_EQ(seen.unregisteredModule, module);
}

TEST_F(FakeOwnerWindow, LeavesItsClassRegisteredForTheNextRun) {
    const ImportPatch unregister("user32.dll", "UnregisterClassW", &RecordUnregister);
    ASSERT_TRUE(unregister.Ok());
    for (int run = 0; run < 2; ++run) {
        HWND field = nullptr;
        {
            const ParentWindowAdjuster adjuster(&field);
            EXPECT_TRUE(IsWindow(field));
        }
        EXPECT_EQ(field, nullptr);
        WNDCLASSEXW description{.cbSize = sizeof(WNDCLASSEXW)};
        EXPECT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), kFakeClass, &description));
    }
    EXPECT_THAT(seen.unregistered, ElementsAre(L"obwmv_fake_parent", L"obwmv_fake_parent"));
}

TEST_F(FakeOwnerWindow, GoesWhenAnExceptionPasses) {
    HWND field = nullptr;
    HWND fake = nullptr;
    try {
        const ParentWindowAdjuster adjuster(&field);
        fake = field;
        throw 1;
    } catch (int) {
    }
    EXPECT_FALSE(IsWindow(fake));
    EXPECT_EQ(field, nullptr);
}

TEST_F(FakeOwnerWindow, AssertsWhenTheFieldWasChangedAndGoesAllTheSame) {
    obtest::MessageBoxWatcher boxes;
    HWND field = nullptr;
    HWND fake = nullptr;
    {
        const ParentWindowAdjuster adjuster(&field);
        fake = field;
        field = reinterpret_cast<HWND>(0x1234);
    }
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"*window_ == new_window_", L"63")));
    EXPECT_FALSE(IsWindow(fake));
    EXPECT_EQ(field, nullptr);
}

HWND WINAPI GivenForeground() { return seen.foregroundWindow; }

BOOL WINAPI RecordAttach(DWORD from, DWORD to, BOOL attach) {
    char line[80];
    std::snprintf(line, sizeof(line), "attach %d %lu %d", from == GetCurrentThreadId(), to, attach);
    seen.foreground.emplace_back(line);
    return TRUE;
}

BOOL WINAPI RecordForeground(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    seen.foreground.emplace_back(std::wstring(name) == kFakeClass ? "foreground fake"
                                                                  : "foreground other");
    return TRUE;
}

// Makes a fake owner with a given foreground window and records the calls that follow.
std::vector<std::string> ForegroundSteps(HWND foreground) {
    seen.foregroundWindow = foreground;
    const ImportPatch get("user32.dll", "GetForegroundWindow", &GivenForeground);
    const ImportPatch attach("user32.dll", "AttachThreadInput", &RecordAttach);
    const ImportPatch set("user32.dll", "SetForegroundWindow", &RecordForeground);
    EXPECT_TRUE(get.Ok() && attach.Ok() && set.Ok());
    HWND field = nullptr;
    const ParentWindowAdjuster adjuster(&field);
    return seen.foreground;
}

std::string Attach(DWORD thread, int attach) {
    char line[80];
    std::snprintf(line, sizeof(line), "attach 1 %lu %d", thread, attach);
    return line;
}

TEST_F(FakeOwnerWindow, TakesTheForegroundFromAnotherThread) {
    const HWND desktop = GetDesktopWindow();
    const DWORD other = GetWindowThreadProcessId(desktop, nullptr);
    ASSERT_NE(other, GetCurrentThreadId());
    EXPECT_THAT(ForegroundSteps(desktop),
                ElementsAre(Attach(other, 1), "foreground fake", Attach(other, 0)));
}

TEST_F(FakeOwnerWindow, TakesTheForegroundWhenNobodyHasIt) {
    EXPECT_THAT(ForegroundSteps(nullptr),
                ElementsAre(Attach(0, 1), "foreground fake", Attach(0, 0)));
}

TEST_F(FakeOwnerWindow, LeavesTheForegroundOfItsOwnThread) {
    const auto window = MakeWindow(L"OwnerWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    EXPECT_TRUE(ForegroundSteps(window.Get()).empty());
}

HWND WINAPI FailCreate(DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                       LPVOID) {
    SetLastError(0x5AF);
    return nullptr;
}

BOOL WINAPI RecordDestroy(HWND window) {
    seen.destroyed.push_back(window);
    return FALSE;
}

TEST_F(FakeOwnerWindow, AssertsWhenItCouldNotBeMadeAndRunsOn) {
    obtest::MessageBoxWatcher boxes;
    const ImportPatch create("user32.dll", "CreateWindowExW", &FailCreate);
    const ImportPatch destroy("user32.dll", "DestroyWindow", &RecordDestroy);
    ASSERT_TRUE(create.Ok() && destroy.Ok());
    HWND field = nullptr;
    {
        const ParentWindowAdjuster adjuster(&field);
        EXPECT_EQ(field, nullptr);
        EXPECT_TRUE(boxes.Seen().empty());
    }
    EXPECT_EQ(field, nullptr);
    EXPECT_THAT(AssertedLines(boxes), ElementsAre(Assertion(L"new_window_ != NULL", L"64"),
                                                  Assertion(L"window != NULL", L"131")));
    EXPECT_THAT(seen.destroyed, ElementsAre(nullptr));
    EXPECT_THAT(obtest::TraceLines(), ElementsAre("Create fake parent window failed 5af",
                                                  PointerLine("Delete fake window %p", nullptr)));
}

} // namespace
