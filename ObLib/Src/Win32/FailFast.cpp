#include "ObLib/Src/Win32/FailFast.h"

#include <windows.h>

#include <cwchar>

namespace ObLib {

void FailFast() noexcept {
    EXCEPTION_RECORD record{};
    record.ExceptionCode = 0xC0000409; // STATUS_STACK_BUFFER_OVERRUN
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    RaiseFailFastException(&record, nullptr, 0);
    // A system without that call comes back from it.
    TerminateProcess(GetCurrentProcess(), record.ExceptionCode);
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
