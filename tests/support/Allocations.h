// The heap of a test program: allocations are counted, fail as a test has planned, and released
// blocks are looked at. A program that links this has its operators new and delete in place of the
// library's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace obtest {

// Of the whole process so far: calls of operator new, and blocks that are not released yet.
std::size_t AllocationCount();
std::size_t LiveBlocks();

// Calls of operator new during `work`, which must not fail.
template <class Work>
std::size_t CountAllocations(Work work) {
    const std::size_t before = AllocationCount();
    work();
    return AllocationCount() - before;
}

// Runs `call` within the next call of operator new; null takes the order back. What `call`
// allocates itself is as usual.
void AtNextAllocation(void (*call)());

// The block that was released last; null if none was since ForgetReleased. Shows whether an object
// freed itself.
void* LastReleased();
void ForgetReleased();

// Which allocations throw std::bad_alloc: those after the first `succeeding` ones.
struct AllocationPlan {
    std::size_t succeeding = 0;
    std::size_t smallest = 0; // smaller ones neither fail nor count
    bool othersOnly = false;  // only on other threads than the one that made the plan
    bool once = false;        // only the one after `succeeding`; otherwise all that follow too
};

// Makes allocations of the whole process fail for a scope. One at a time.
class FailingAllocations {
public:
    explicit FailingAllocations(const AllocationPlan& plan);
    ~FailingAllocations() { End(); }
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // From here on none fails.
    void End();

    // Whether an allocation has failed.
    bool Failed() const;
};

// Bytes allocated beyond those allocated when it was made, at most. One at a time.
class HeapPeak {
public:
    HeapPeak();
    ~HeapPeak();
    HeapPeak(const HeapPeak&) = delete;
    HeapPeak& operator=(const HeapPeak&) = delete;
    std::size_t Bytes() const;
};

// Looks at released blocks for a scope. One at a time, and no other thread may run.
class WatchReleased {
public:
    // A block contains a text when it has four units `unit` in a row.
    explicit WatchReleased(wchar_t unit);
    ~WatchReleased();
    WatchReleased(const WatchReleased&) = delete;
    WatchReleased& operator=(const WatchReleased&) = delete;

    // The number of blocks released since, and the number of those that contained the units.
    std::size_t Released() const;
    std::size_t Holding() const;
};

// Runs `work` with its first allocation failing, then only its second, and so on until it ends
// without std::bad_alloc; calls `check` on what each failure left. Returns the number of failures.
template <class Work, class Check>
std::size_t FailEachAllocation(Work work, Check check) {
    for (std::size_t which = 0;; ++which) {
        try {
            const FailingAllocations failing({.succeeding = which, .once = true});
            work();
            return which;
        } catch (const std::bad_alloc&) {
        }
        check();
    }
}

// Runs `work` on what `prepare` returns, with the first and all later allocations failing, then
// with all from the second on, and so on until none fails. Calls `check` with the subject and
// whether `work` threw std::bad_alloc. Returns the number of failures.
template <class Prepare, class Work, class Check>
std::size_t FailEachAllocation(Prepare prepare, Work work, Check check) {
    for (std::size_t which = 0;; ++which) {
        auto subject = prepare();
        bool threw = false;
        {
            const FailingAllocations failing({.succeeding = which});
            try {
                work(*subject);
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            if (!threw && !failing.Failed()) return which;
        }
        check(*subject, threw);
    }
}

} // namespace obtest
