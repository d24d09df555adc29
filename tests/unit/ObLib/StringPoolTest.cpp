#include "ObLib/Src/StringPool.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "ObLib/Src/ObString.h"
#include "tests/support/Allocations.h"

namespace {

using ObLib::ObString;
using ObLib::PoolAllocate;
using ObLib::PoolFree;
using ObLib::PoolLength;
using ObLib::StringCore;
using obtest::AllocationCount;
using obtest::LiveBlocks;

constexpr std::size_t kCore = sizeof(StringCore);

class StringPool : public testing::Test {
protected:
    void SetUp() override {
        ObLib::PoolSwitchOff(); // empties the list
        ObLib::PoolSwitchOn();
    }
};

TEST_F(StringPool, AReleasedCoreIsPutOnTheListAndTakenFromItsHead) {
    void* const one = PoolAllocate(kCore);
    void* const other = PoolAllocate(kCore);
    PoolFree(one, kCore);
    PoolFree(other, kCore);
    EXPECT_EQ(2u, PoolLength());
    const std::size_t before = AllocationCount();
    EXPECT_EQ(other, PoolAllocate(kCore));
    EXPECT_EQ(one, PoolAllocate(kCore));
    EXPECT_EQ(before, AllocationCount());
    EXPECT_EQ(0u, PoolLength());
    PoolFree(one, kCore);
    PoolFree(other, kCore);
}

TEST_F(StringPool, OtherSizesComeFromTheHeapAndGoThere) {
    const std::size_t live = LiveBlocks();
    void* const memory = PoolAllocate(kCore + 1);
    EXPECT_EQ(live + 1, LiveBlocks());
    PoolFree(memory, kCore + 1);
    EXPECT_EQ(live, LiveBlocks());
    EXPECT_EQ(0u, PoolLength());
    PoolFree(nullptr, kCore);
    EXPECT_EQ(0u, PoolLength());
}

TEST_F(StringPool, StringsLiveOnCoresOfTheList) {
    { const ObString string(L"text"); }
    EXPECT_EQ(1u, PoolLength());
    const std::size_t before = AllocationCount();
    const ObString again(L"other");
    EXPECT_EQ(before, AllocationCount());
    EXPECT_EQ(0u, PoolLength());
}

TEST_F(StringPool, InTheExitPhaseCoresComeFromTheHeapAndTheListIsReleased) {
    const std::size_t live = LiveBlocks();
    auto early = std::make_unique<ObString>(L"from the list, on the heap");
    { const ObString listed(L"text"); }
    ObLib::PoolSwitchOff();
    EXPECT_EQ(0u, PoolLength());
    { const ObString late(L"text"); }
    early.reset();
    EXPECT_EQ(0u, PoolLength());
    EXPECT_EQ(live, LiveBlocks());
}

TEST_F(StringPool, AFullListIsALengthError) {
    void* const one = PoolAllocate(kCore);
    void* const other = PoolAllocate(kCore);
    const std::uint64_t limit = ObLib::PoolSetLimit(2);
    PoolFree(one, kCore);
    try {
        PoolFree(other, kCore);
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ("list too long", error.what());
    }
    EXPECT_EQ(1u, PoolLength());
    ObLib::PoolSetLimit(limit);
    PoolFree(other, kCore);
    EXPECT_EQ(2u, PoolLength());
}

TEST_F(StringPool, ACoreThatTheListRefusesIsReleasedToTheHeap) {
    const std::size_t live = LiveBlocks();
    const std::uint64_t limit = ObLib::PoolSetLimit(1);
    { const ObString string(L"a text that is on the heap"); }
    EXPECT_EQ(0u, PoolLength());
    EXPECT_EQ(live, LiveBlocks());
    ObLib::PoolSetLimit(limit);
}

TEST_F(StringPool, ServesSeveralThreadsAtATime) {
    const auto work = [] {
        for (int round = 0; round < 3000; ++round) {
            std::vector<ObString> strings(7, ObString(L"short"));
            for (const ObString& string : strings) ASSERT_STREQ(L"short", string.CStr());
        }
    };
    std::thread one(work);
    std::thread other(work);
    one.join();
    other.join();
    // No more than both had at a time, and none twice.
    EXPECT_LE(PoolLength(), 16u);
    std::vector<void*> taken;
    for (std::uint64_t left = PoolLength(); left > 0; --left) taken.push_back(PoolAllocate(kCore));
    for (std::size_t index = 0; index < taken.size(); ++index)
        for (std::size_t other = index + 1; other < taken.size(); ++other)
            EXPECT_NE(taken[index], taken[other]);
    for (void* const core : taken) PoolFree(core, kCore);
}

} // namespace
