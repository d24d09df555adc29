// A call of a fake module that stays inside until the test lets it return (script: Hold=NAME), in
// this process or in a host.
#pragma once

#include <cstddef>
#include <string>

namespace obtest {

struct HeldCall {
    // Waits for one; the recorded line, empty when none came.
    static std::wstring Await();

    // The same for the call of this name with this number, from 1 on; those before it return.
    // False when it doesn't come.
    [[nodiscard]] static bool AwaitVisit(const wchar_t* call, std::size_t visit);

    // Lets the call return, or forgets the one of a process that was killed. The fake may still
    // have the file open that it has just written: waits until it is closed, and throws
    // std::runtime_error when it stays open. Does nothing when no call is held.
    static void Release();
};

} // namespace obtest
