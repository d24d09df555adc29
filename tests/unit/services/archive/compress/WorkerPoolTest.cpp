#include "services/archive/compress/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <new>
#include <stdexcept>

namespace {

using obarchive::BlockCompressor;
using obarchive::Task;
using obarchive::TaskState;
using obarchive::WorkerPool;

class Action : public Task {
public:
    explicit Action(std::function<void()> action) : action_(std::move(action)) {}
    void Do(BlockCompressor&) override { action_(); }

private:
    std::function<void()> action_;
};

std::shared_ptr<Task> Make(std::function<void()> action) {
    return std::make_shared<Action>(std::move(action));
}

TaskState WaitToTheEnd(WorkerPool& pool, const WorkerPool::Ticket& ticket) {
    const ULONGLONG limit = GetTickCount64() + 30'000;
    TaskState state = TaskState::Waiting;
    while (state == TaskState::Waiting && GetTickCount64() < limit) state = pool.Wait(ticket, 100);
    return state;
}

TEST(WorkerPoolTest, EveryTaskIsDoneOnce) {
    WorkerPool pool;
    ASSERT_GE(pool.Size(), 1U);
    ASSERT_LE(pool.Size(), 16U);
    std::vector<std::atomic<int>> done(3000);
    std::vector<std::shared_ptr<WorkerPool::Ticket>> tickets;
    for (auto& count : done) tickets.push_back(pool.Submit(Make([&count] { ++count; })));
    for (const auto& ticket : tickets) EXPECT_EQ(WaitToTheEnd(pool, *ticket), TaskState::Done);
    for (const auto& count : done) EXPECT_EQ(count, 1);
}

TEST(WorkerPoolTest, EachFailureHasItsStateAndStopsNoOtherTask) {
    WorkerPool pool;
    const auto failed = pool.Submit(Make([] { throw std::runtime_error("x"); }));
    const auto noMemory = pool.Submit(Make([] { throw std::bad_alloc(); }));
    const auto fine = pool.Submit(Make([] {}));
    EXPECT_EQ(WaitToTheEnd(pool, *failed), TaskState::Failed);
    EXPECT_EQ(WaitToTheEnd(pool, *noMemory), TaskState::NoMemory);
    EXPECT_EQ(WaitToTheEnd(pool, *fine), TaskState::Done);
}

TEST(WorkerPoolTest, ASmallTaskIsDoneWhenSomebodyWaitsForIt) {
    WorkerPool pool;
    for (int turn = 0; turn < 200; ++turn) {
        std::atomic<int> done = 0;
        std::vector<std::shared_ptr<WorkerPool::Ticket>> tickets;
        for (int task = 0; task < turn % 20 + 1; ++task) {
            tickets.push_back(pool.Submit(Make([&done] { ++done; }), true));
        }
        EXPECT_EQ(WaitToTheEnd(pool, *tickets.back()), TaskState::Done);
        for (const auto& ticket : tickets) EXPECT_EQ(WaitToTheEnd(pool, *ticket), TaskState::Done);
        EXPECT_EQ(done, turn % 20 + 1);
    }
}

TEST(WorkerPoolTest, WaitingComesBackInTime) {
    std::atomic<bool> go = false;
    WorkerPool pool;
    const auto slow = pool.Submit(Make([&go] {
        while (!go) Sleep(1);
    }));
    const ULONGLONG before = GetTickCount64();
    EXPECT_EQ(pool.Wait(*slow, 50), TaskState::Waiting);
    EXPECT_LT(GetTickCount64() - before, 5'000U);
    go = true;
    EXPECT_EQ(WaitToTheEnd(pool, *slow), TaskState::Done);
}

TEST(WorkerPoolTest, EndingDropsWhatHasNotBegun) {
    std::atomic<bool> go = false;
    std::atomic<std::size_t> begun = 0;
    std::size_t workers = 0;
    {
        WorkerPool pool;
        workers = pool.Size();
        for (int task = 0; task < 500; ++task) {
            pool.Submit(Make([&] {
                ++begun;
                while (!go) Sleep(1);
            }));
        }
        const ULONGLONG limit = GetTickCount64() + 30'000;
        while (begun < workers && GetTickCount64() < limit) Sleep(1);
        // Lets the workers go once the end has been asked for, which drops the rest first.
        std::jthread opener([&go] {
            Sleep(200);
            go = true;
        });
        opener.detach();
    }
    EXPECT_GE(begun, workers);
    EXPECT_LT(begun, 500U);
}

} // namespace
