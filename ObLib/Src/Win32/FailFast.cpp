#include "ObLib/Src/Win32/FailFast.h"

#include <windows.h>

#include <cwchar>

namespace ObLib {
namespace {

constexpr unsigned kStackCookieCheckFailure = 2;

} // namespace

void FailFast() noexcept {
    // The fail-fast interrupt of the platform, with its reason code for a stack buffer overrun: no
    // handler of the process is run.
    asm volatile("int $0x29" : : "c"(kStackCookieCheckFailure));
    // A system that doesn't know the interrupt comes back from it.
    TerminateProcess(GetCurrentProcess(), 0xC0000409);
    for (;;) Sleep(INFINITE);
}

void CopyOrFailFast(wchar_t* buffer, std::size_t capacity, const wchar_t* text) noexcept {
    const std::size_t units = std::wcslen(text) + 1;
    if (units > capacity) FailFast();
    std::wmemcpy(buffer, text, units);
}

void AppendOrFailFast(wchar_t* buffer, std::size_t capacity, const wchar_t* text) noexcept {
    const std::size_t used = std::wcslen(buffer);
    CopyOrFailFast(buffer + used, capacity - used, text);
}

} // namespace ObLib
