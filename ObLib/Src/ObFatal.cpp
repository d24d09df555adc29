#include "ObLib/Src/ObFatal.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace ObLib {
namespace {

// The line is written piece by piece, so that nothing is allocated here and no text is too long.
void WriteNumber(std::uint32_t number) {
    wchar_t digits[11] = {};
    wchar_t* first = digits + 10;
    do {
        *--first = static_cast<wchar_t>(L'0' + number % 10);
        number /= 10;
    } while (number != 0);
    std::fputws(first, stdout);
}

[[noreturn]] void End(const wchar_t* message, const wchar_t* module, std::uint32_t line) {
    std::fputws(message, stdout);
    std::fputws(module, stdout);
    std::fputws(L" Line number: ", stdout);
    WriteNumber(line);
    std::fputws(L"\n", stdout);
    std::fflush(stdout);
    std::exit(kFatalExitCode);
}

} // namespace

void FatalAssert(const wchar_t* module, std::uint32_t line) {
    End(L"\nFATAL ERROR: assert failure in Module: ", module, line);
}

void FatalApiFailure(const wchar_t* module, std::uint32_t line) {
    End(L"\nFATAL ERROR: unexpected API Failure in Module: ", module, line);
}

void AssertFailed(const wchar_t* module, std::uint32_t line) {
    CatchFaultRequest([&] { FatalAssert(module, line); });
}

} // namespace ObLib
