// What the tests count of a process: a planted leak of each kind is noticed.
#include "tests/support/ProcessResources.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <utility>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

using obtest::ProcessResources;

ObLib::UniqueWindow MakeWindow(HWND parent, DWORD style) {
    return ObLib::UniqueWindow(
        CreateWindowExW(0, L"static", L"", style, 0, 0, 10, 10, parent, nullptr, nullptr, nullptr));
}

// What the system makes once for its own use is made.
void UseEachKindOnce() {
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ObLib::UniquePen pen(CreatePen(PS_SOLID, 1, RGB(1, 2, 3)));
    const ObLib::UniqueMenu menu(CreatePopupMenu());
    const ObLib::UniqueWindow window = MakeWindow(nullptr, WS_POPUP);
    static_cast<void>(ProcessResources::Now());
}

class ProcessResourcesTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        // What the test library makes for the first failure that is caught.
        EXPECT_NONFATAL_FAILURE(ADD_FAILURE() << "a first one", "a first one");
        if (GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS) != 0) return;
        printf("The system counts no handles, GDI and USER objects: its list of handles, the table "
               "of GDI handles, windows and menus are counted instead.\n");
    }
    // Whatever the system makes for its own use is made once two counts are equal.
    void SetUp() override {
        UseEachKindOnce();
        before = ProcessResources::Now();
        for (int attempt = 0; attempt < 20; ++attempt) {
            const DWORD handles = std::exchange(before, ProcessResources::Now()).handles;
            if (handles == before.handles) break;
        }
    }
    static inline ProcessResources before;

private:
    // With it is what the system makes for the first window of a thread.
    const ObLib::UniqueWindow window_ = MakeWindow(nullptr, WS_POPUP);
};

TEST_F(ProcessResourcesTest, FindNothingWhereNothingIsLeft) {
    UseEachKindOnce();
    obtest::ExpectNoMoreThan(before);
}

TEST_F(ProcessResourcesTest, FindAPen) {
    const ObLib::UniquePen leak(CreatePen(PS_SOLID, 1, RGB(1, 2, 3)));
    EXPECT_NONFATAL_FAILURE(obtest::ExpectNoMoreThan(before), "gdiObjects");
}

TEST_F(ProcessResourcesTest, FindEachKindOfGdiObject) {
    const DWORD count = obtest::CountGdiObjects();
    {
        const ObLib::UniqueBitmap bitmap(CreateBitmap(2, 2, 1, 32, nullptr));
        const ObLib::UniqueBrush brush(CreateSolidBrush(RGB(1, 2, 3)));
        const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
        const ObLib::UniqueFont font(CreateFontW(-12, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, L"A"));
        EXPECT_EQ(count + 4, obtest::CountGdiObjects());
    }
    EXPECT_EQ(count, obtest::CountGdiObjects());
}

TEST_F(ProcessResourcesTest, FindAMenu) {
    const ObLib::UniqueMenu leak(CreatePopupMenu());
    EXPECT_NONFATAL_FAILURE(obtest::ExpectNoMoreThan(before), "userObjects");
}

TEST_F(ProcessResourcesTest, FindHiddenWindowsChildrenAndMessageOnlyWindows) {
    const DWORD count = obtest::CountWindows();
    const ObLib::UniqueWindow hidden = MakeWindow(nullptr, WS_POPUP);
    EXPECT_EQ(count + 1, obtest::CountWindows());
    const ObLib::UniqueWindow child = MakeWindow(hidden.Get(), WS_CHILD);
    const ObLib::UniqueWindow grandchild = MakeWindow(child.Get(), WS_CHILD);
    EXPECT_EQ(count + 3, obtest::CountWindows());
    const ObLib::UniqueWindow message = MakeWindow(HWND_MESSAGE, 0);
    EXPECT_EQ(count + 4, obtest::CountWindows());
}

TEST_F(ProcessResourcesTest, FindHandles) {
    EXPECT_LT(0u, obtest::CountHandles());
    std::vector<ObLib::UniqueKernelHandle> leak; // more than the system may close meanwhile
    for (int at = 0; at < 8; ++at) leak.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_NONFATAL_FAILURE(obtest::ExpectNoMoreThan(before), "handles");
}

TEST(TimerWatchTest, CountsTimersUntilTheyEnd) {
    const ObLib::UniqueWindow window = MakeWindow(nullptr, WS_POPUP);
    const obtest::TimerWatch watch;
    ASSERT_TRUE(watch.Ok());
    SetTimer(window.Get(), 5, 1000, nullptr);
    SetTimer(window.Get(), 5, 2000, nullptr);
    SetTimer(window.Get(), 6, 1000, nullptr);
    const UINT_PTR free = SetTimer(nullptr, 0, 1000, nullptr);
    EXPECT_EQ(3u, watch.Running()) << "the second call changes the first timer";
    KillTimer(window.Get(), 5);
    KillTimer(nullptr, free);
    EXPECT_EQ(1u, watch.Running());
    KillTimer(window.Get(), 6);
    EXPECT_EQ(0u, watch.Running());
    EXPECT_EQ(4u, watch.Started());
}

TEST(TimerWatchTest, FindsATimerWhoseWindowIsGone) {
    const obtest::TimerWatch watch;
    {
        const ObLib::UniqueWindow window = MakeWindow(nullptr, WS_POPUP);
        SetTimer(window.Get(), 5, 1000, nullptr);
    }
    EXPECT_EQ(1u, watch.Running());
}

} // namespace
