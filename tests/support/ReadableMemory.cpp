#include "tests/support/ReadableMemory.h"

#include <cstdlib>

namespace obtest {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kLeast = 64u << 20; // bytes: regions are rarely larger

thread_local bool isCopying = false;

// `rep movsb`, whose registers show where it is; its two bytes are what the handler looks for.
// Returns how many bytes are left when a page can't be read.
std::size_t CopyOrStop(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    isCopying = true;
    asm volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(size) : : "memory");
    isCopying = false;
    return size;
}

// Goes on after the instruction.
LONG CALLBACK LeaveTheCopy(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const auto* const code = static_cast<const std::uint8_t*>(record.ExceptionAddress);
    const bool isOfTheCopy = isCopying && record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION &&
                             code[0] == 0xF3 && code[1] == 0xA4;
    if (!isOfTheCopy) return EXCEPTION_CONTINUE_SEARCH;
    exception->ContextRecord->Rip += 2;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

MemoryCopy::MemoryCopy() : handler_(AddVectoredExceptionHandler(1, &LeaveTheCopy)) {
    if (!handler_) std::abort();
}

MemoryCopy::~MemoryCopy() {
    Free();
    RemoveVectoredExceptionHandler(handler_);
}

void MemoryCopy::Free() {
    if (!copy_) return;
    SecureZeroMemory(copy_, size_);
    VirtualFree(copy_, 0, MEM_RELEASE);
    copy_ = nullptr;
}

const std::uint8_t* MemoryCopy::Of(const MEMORY_BASIC_INFORMATION& region) {
    if (region.RegionSize > size_ || !copy_) {
        Free();
        size_ = std::max<std::size_t>(region.RegionSize, kLeast);
        copy_ = static_cast<std::uint8_t*>(
            VirtualAlloc(nullptr, size_, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        if (!copy_) std::abort(); // a search that leaves something out proves nothing
    }
    const auto* const from = static_cast<const std::uint8_t*>(region.BaseAddress);
    for (std::size_t done = 0; done < region.RegionSize;) {
        const std::size_t left = CopyOrStop(copy_ + done, from + done, region.RegionSize - done);
        done = region.RegionSize - left;
        if (left == 0) break;
        const std::size_t unread = std::min(left, kPage - done % kPage);
        std::fill_n(copy_ + done, unread, std::uint8_t{0});
        done += unread;
    }
    return copy_;
}

} // namespace obtest
