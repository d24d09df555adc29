#include "ObLib/Src/Win32/UniqueHandle.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "tests/support/ImportPatch.h"

namespace {

using ObLib::UniqueKernelHandle;

bool IsOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

UniqueKernelHandle NewEvent() {
    return UniqueKernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

// A policy that notes what it closed.
struct NotingPolicy : ObLib::NullPolicy<int*> {
    static inline std::vector<int*> closed;
    static void Close(int* handle) noexcept { closed.push_back(handle); }
};
using UniqueNoted = ObLib::UniqueResource<NotingPolicy>;

TEST(UniqueHandle, ClosesItsHandleAtTheEndOfTheScope) {
    HANDLE seen = nullptr;
    {
        const UniqueKernelHandle event = NewEvent();
        seen = event.Get();
        ASSERT_TRUE(IsOpen(seen));
    }
    EXPECT_FALSE(IsOpen(seen));
}

TEST(UniqueHandle, CanBeMovedAndNotCopied) {
    static_assert(!std::is_copy_constructible_v<UniqueKernelHandle>);
    static_assert(!std::is_copy_assignable_v<UniqueKernelHandle>);
    static_assert(std::is_nothrow_move_constructible_v<UniqueKernelHandle>);
    UniqueKernelHandle first = NewEvent();
    const HANDLE handle = first.Get();
    const UniqueKernelHandle second = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_EQ(handle, second.Get());
    EXPECT_TRUE(IsOpen(handle));
}

TEST(UniqueHandle, ClosesTheOldHandleWhenANewOneIsMovedIn) {
    NotingPolicy::closed.clear();
    int a = 0;
    int b = 0;
    {
        UniqueNoted owner(&a);
        owner = UniqueNoted(&b);
        EXPECT_EQ((std::vector<int*>{&a}), NotingPolicy::closed);
    }
    EXPECT_EQ((std::vector<int*>{&a, &b}), NotingPolicy::closed);
}

TEST(UniqueHandle, ReleaseGivesTheHandleAwayUnclosed) {
    NotingPolicy::closed.clear();
    int a = 0;
    {
        UniqueNoted owner(&a);
        EXPECT_EQ(&a, owner.Release());
    }
    EXPECT_TRUE(NotingPolicy::closed.empty());
}

TEST(UniqueHandle, PutClosesFirstAndTakesTheNewHandle) {
    NotingPolicy::closed.clear();
    int a = 0;
    int b = 0;
    UniqueNoted owner(&a);
    *owner.Put() = &b;
    EXPECT_EQ((std::vector<int*>{&a}), NotingPolicy::closed);
    EXPECT_EQ(&b, owner.Get());
}

TEST(UniqueHandle, TheFailureValueOfCreateFileCountsAsEmpty) {
    EXPECT_FALSE(UniqueKernelHandle(INVALID_HANDLE_VALUE));
    UniqueKernelHandle event = NewEvent();
    event.Reset(INVALID_HANDLE_VALUE);
    EXPECT_FALSE(event);
}

TEST(UniqueHandle, ClosingKeepsTheLastError) {
    UniqueKernelHandle event = NewEvent();
    SetLastError(ERROR_DISK_FULL);
    event.Reset();
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), GetLastError());
}

TEST(ScopeExit, RunsItsStepAlsoWhenAnExceptionPasses) {
    int runs = 0;
    try {
        const ObLib::ScopeExit count([&]() noexcept { ++runs; });
        throw 1;
    } catch (int) {
        ++runs;
    }
    EXPECT_EQ(2, runs);
}

HIMAGELIST destroyedList = nullptr;

BOOL WINAPI NoteDestroyed(HIMAGELIST list) {
    destroyedList = list;
    return TRUE;
}

TEST(UniqueHandle, EndsMenusPensAndImageLists) {
    const HMENU menu = CreatePopupMenu();
    static_cast<void>(ObLib::UniqueMenu(menu));
    EXPECT_FALSE(IsMenu(menu));
    const HPEN pen = CreatePen(PS_SOLID, 3, RGB(1, 2, 3));
    static_cast<void>(ObLib::UniquePen(pen));
    EXPECT_EQ(0u, GetObjectType(pen));
    const obtest::ImportPatch<decltype(&ImageList_Destroy)> patch(
        "comctl32.dll", "ImageList_Destroy", &NoteDestroyed);
    ASSERT_TRUE(patch.Ok());
    const HIMAGELIST list = ImageList_Create(16, 16, ILC_COLOR32, 1, 1);
    static_cast<void>(ObLib::UniqueImageList(list));
    EXPECT_EQ(list, destroyedList);
    EXPECT_NE(nullptr, list);
}

} // namespace
