#include "tests/support/CrashWatch.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>

namespace obtest {
namespace {

std::uintptr_t AddressOf(const void* place) { return reinterpret_cast<std::uintptr_t>(place); }

// A call through a pointer that is none ends outside of all modules.
bool IsOwnCode(const void* address) {
    HMODULE module = nullptr;
    constexpr DWORD kByAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    GetModuleHandleExW(kByAddress, static_cast<const wchar_t*>(address), &module);
    return module == nullptr || module == GetModuleHandleW(nullptr);
}

LONG CALLBACK EndProcessAt(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const bool isOwn =
        record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && IsOwnCode(record.ExceptionAddress);
    if (!isOwn) return EXCEPTION_CONTINUE_SEARCH;
    printf("access violation at %zx of the program\n",
           AddressOf(record.ExceptionAddress) - AddressOf(GetModuleHandleW(nullptr)));
    TerminateProcess(GetCurrentProcess(), record.ExceptionCode);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

CrashWatch::CrashWatch() : handler_(AddVectoredExceptionHandler(0, &EndProcessAt)) {}

CrashWatch::~CrashWatch() { RemoveVectoredExceptionHandler(handler_); }

} // namespace obtest
