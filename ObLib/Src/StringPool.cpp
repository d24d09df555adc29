#include "ObLib/Src/StringPool.h"

#include <atomic>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>
#include <new>
#include <stdexcept>
#include <utility>

namespace ObLib {
namespace {

// What a core's memory contains while it is in the list.
struct FreeCore {
    FreeCore* next;
};
static_assert(sizeof(FreeCore) <= kPooledSize);

// Outlives the pool, so that a string that is released after the pool still reads this flag.
constinit std::atomic<bool> g_poolIsOff = false;

struct StringPool {
    StringPool() = default;
    StringPool(const StringPool&) = delete;
    StringPool& operator=(const StringPool&) = delete;
    ~StringPool() { PoolSwitchOff(); }

    boost::mutex lock;
    FreeCore* head = nullptr;
    std::uint64_t length = 0;
    std::uint64_t limit = SIZE_MAX / kPooledSize;
};
using Locked = boost::lock_guard<boost::mutex>;

StringPool& Pool() {
    static StringPool pool;
    return pool;
}

bool IsPooled(std::size_t size) {
    return size == kPooledSize && !g_poolIsOff.load(std::memory_order_relaxed);
}

// From the head of the list, or from the heap when the list is empty. Both happen under the lock.
void* TakeCore(StringPool& pool) {
    const Locked locked(pool.lock);
    FreeCore* const head = pool.head;
    if (head == nullptr) return ::operator new(kPooledSize);
    pool.head = head->next;
    --pool.length;
    return head;
}

} // namespace

void* PoolAllocate(std::size_t size) {
    return IsPooled(size) ? TakeCore(Pool()) : ::operator new(size);
}

void PoolFree(void* memory, std::size_t size) {
    if (memory == nullptr) return;
    if (!IsPooled(size)) {
        ::operator delete(memory);
        return;
    }
    StringPool& pool = Pool();
    const Locked locked(pool.lock);
    if (pool.length + 1 >= pool.limit) throw std::length_error("list too long");
    pool.head = new (memory) FreeCore{pool.head};
    ++pool.length;
}

void PoolSwitchOff() noexcept {
    g_poolIsOff = true;
    StringPool& pool = Pool();
    FreeCore* core = nullptr;
    {
        const Locked locked(pool.lock);
        core = std::exchange(pool.head, nullptr);
        pool.length = 0;
    }
    while (core != nullptr) ::operator delete(std::exchange(core, core->next));
}

void PoolSwitchOn() noexcept { g_poolIsOff = false; }

std::uint64_t PoolLength() {
    const Locked locked(Pool().lock);
    return Pool().length;
}

std::uint64_t PoolSetLimit(std::uint64_t limit) {
    const Locked locked(Pool().lock);
    return std::exchange(Pool().limit, limit);
}

} // namespace ObLib
