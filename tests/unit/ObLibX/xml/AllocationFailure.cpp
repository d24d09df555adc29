#include "tests/unit/ObLibX/xml/AllocationFailure.h"

#include <cstdlib>
#include <limits>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
std::size_t g_allocations = 0;
std::size_t g_failing = kNever;
bool g_andLater = false;
bool g_happened = false;

} // namespace

void* operator new(std::size_t size) {
    const std::size_t number = g_allocations++;
    if (number == g_failing || (g_andLater && number > g_failing)) {
        g_happened = true;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
// A sanitizer's own forms for arrays don't come by the one above.
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

AllocationFailure::AllocationFailure(std::size_t failing, bool andLater) {
    g_allocations = 0;
    g_andLater = andLater;
    g_happened = false;
    g_failing = failing;
}

AllocationFailure::~AllocationFailure() { g_failing = kNever; }

bool AllocationFailure::Happened() const { return g_happened; }

std::size_t CountAllocations(void (*work)(void*), void* context) {
    const std::size_t before = g_allocations;
    work(context);
    return g_allocations - before;
}
