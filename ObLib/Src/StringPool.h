// Where the cores of strings come from: a free list of the process, guarded by one lock.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ObLib {

// The size of a StringCore, the only size that the pool keeps; StringCore.cpp asserts it.
inline constexpr std::size_t kPooledSize = 96;

// Memory for an object of `size` bytes. A core's memory comes from the head of the list, or from
// the heap when the list is empty; memory of other sizes comes from the heap. Any thread. Throws
// std::bad_alloc, and boost::thread_resource_error when it can't wait for the lock.
void* PoolAllocate(std::size_t size);

// Releases memory that PoolAllocate returned for `size`; does nothing for null. Throws
// std::length_error("list too long") when the list would reach its limit; the caller then still
// owns the memory.
void PoolFree(void* memory, std::size_t size);

// Switches pooling off for the exit phase: the list is released to the heap, and cores come from
// the heap and are released to it. The destructor of a static object does that too, as strings of
// other static objects may outlive the list.
void PoolSwitchOff() noexcept;

// For tests. Switch pooling on again; the number of cores in the list; set a limit, a length that
// the list never reaches, and return the limit before.
void PoolSwitchOn() noexcept;
std::uint64_t PoolLength();
std::uint64_t PoolSetLimit(std::uint64_t limit);

} // namespace ObLib
