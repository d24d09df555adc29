// Where the cores of strings come from: a free list of the process, guarded by one lock.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ObLib {

// Memory for an object of `size` bytes. That of a core comes from the list's head, or from the heap
// when the list is empty; every other size comes from the heap. Any thread. Throws std::bad_alloc,
// and boost::thread_resource_error when the lock can't be waited for.
void* PoolAllocate(std::size_t size);

// Gives memory back that PoolAllocate gave for `size`; null is nothing to do. Throws
// std::length_error("list too long") when the list would reach its limit; the memory is then still
// the caller's.
void PoolFree(void* memory, std::size_t size);

// Switches pooling off for the exit phase: the list is given back to the heap, and cores come from
// the heap and go there. Happens by itself when the library's static objects are destroyed, since
// strings of other static objects may outlive the list.
void PoolSwitchOff() noexcept;

// For tests: pooling on again; how many cores lie in the list; a limit for the list, which is the
// length that it never reaches. Gives the limit until then.
void PoolSwitchOn() noexcept;
std::uint64_t PoolLength();
std::uint64_t PoolSetLimit(std::uint64_t limit);

} // namespace ObLib
