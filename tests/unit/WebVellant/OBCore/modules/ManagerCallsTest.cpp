#include "OBCore/modules/ManagerCalls.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

namespace {

using obcontract::ProviderManagerHandle;
using obcore::AwaitManagerCalls;
using obcore::ManagerCall;

const auto kManager = reinterpret_cast<ProviderManagerHandle>(INT_PTR{16});
const auto kOther = reinterpret_cast<ProviderManagerHandle>(INT_PTR{32});

TEST(ManagerCalls, ArentWaitedForWhereThereAreNone) {
    EXPECT_TRUE(AwaitManagerCalls(kManager));
    const ManagerCall call(kOther);
    EXPECT_TRUE(AwaitManagerCalls(kManager)); // those of another manager don't count
}

TEST(ManagerCalls, AreWaitedForUntilTheLastOneHasEnded) {
    std::optional<ManagerCall> first(std::in_place, kManager);
    std::optional<ManagerCall> second(std::in_place, kManager);
    std::atomic<bool> ended = false;
    // The messages of the worker to a window of this thread are answered during the wait.
    const HWND window =
        CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    std::thread worker([&] {
        first.reset();
        SendMessageW(window, WM_NULL, 0, 0);
        SendMessageW(window, WM_NULL, 0, 0);
        ended = true;
        second.reset();
    });
    EXPECT_TRUE(AwaitManagerCalls(kManager));
    EXPECT_TRUE(ended);
    worker.join();
    DestroyWindow(window);
}

static_assert(!std::is_move_constructible_v<ManagerCall>, "a moved call would be counted twice");

TEST(ManagerCalls, ArentWaitedForAfterACallOfANullManagerHasEnded) {
    { const ManagerCall call(nullptr); }
    EXPECT_TRUE(AwaitManagerCalls(nullptr));
}

} // namespace
