// Ends the process where it must not continue, and checks for that.
#pragma once

#include <cstdint>

namespace ObLib {

// If a failed check throws one, it is caught at that check and execution continues after the check.
// Nothing throws one, as a failed check ends the process.
struct ObFaultRequest {};

// Write a line to the standard output and end the process by exit(999), so that static objects are
// destroyed. A process without a console shows nothing. `module` is a source path. Any thread.
[[noreturn]] void FatalAssert(const wchar_t* module, std::uint32_t line);
// For a call of the system that must not fail.
[[noreturn]] void FatalApiFailure(const wchar_t* module, std::uint32_t line);

inline constexpr int kFatalExitCode = 999;

// Runs `call` and catches an ObFaultRequest.
template <class Call>
void CatchFaultRequest(Call call) {
    try {
        call();
    } catch (const ObFaultRequest&) {
    }
}

// What ObAssert does on failure.
void AssertFailed(const wchar_t* module, std::uint32_t line);

} // namespace ObLib

// Ends the process when the condition is false, in every kind of build. The file that uses it has a
// wide text kModule in scope.
#define ObAssert(condition)                                                                        \
    ((condition) ? static_cast<void>(0) : ::ObLib::AssertFailed(kModule, __LINE__))
