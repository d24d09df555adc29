// What the pool does when the system refuses what its lock waits on.
#include <windows.h>

#include <boost/thread/exceptions.hpp>

#include <gtest/gtest.h>

#include "ObLib/Src/StringCore.h"
#include "ObLib/Src/StringPool.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/Allocations.h"
#include "tests/support/ImportPatch.h"

namespace {

using ObLib::StringCore;

int g_refused = 0;
HANDLE WINAPI RefuseEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCSTR) {
    ++g_refused;
    SetLastError(ERROR_NO_SYSTEM_RESOURCES);
    return nullptr;
}

enum class Outcome { kNothing, kGiven, kResourceError };
Outcome g_outcome = Outcome::kNothing;

// A waiter asks for the event; the owner doesn't, so that the lock is free afterwards.
DWORD WINAPI AskForACore(void*) {
    try {
        throw 1; // what a first exception of a thread needs of the system isn't refused
    } catch (int) {
    }
    const obtest::ImportPatch event("kernel32.dll", "CreateEventA", &RefuseEvent);
    try {
        ObLib::PoolFree(ObLib::PoolAllocate(sizeof(StringCore)), sizeof(StringCore));
        g_outcome = Outcome::kGiven;
    } catch (const boost::thread_resource_error&) {
        g_outcome = Outcome::kResourceError;
    }
    return 0;
}

void AskOnAnotherThread() {
    const ObLib::UniqueKernelHandle other(
        CreateThread(nullptr, 0, &AskForACore, nullptr, 0, nullptr));
    if (other) WaitForSingleObject(other.Get(), INFINITE);
}

// The list is empty, so that the core comes from the heap, under the lock.
TEST(PoolLock, SurfacesARefusedEventWhenAnotherThreadHasIt) {
    ObLib::PoolSwitchOff();
    ObLib::PoolSwitchOn();
    obtest::AtNextAllocation(&AskOnAnotherThread);
    void* const core = ObLib::PoolAllocate(sizeof(StringCore));
    EXPECT_EQ(Outcome::kResourceError, g_outcome);
    EXPECT_EQ(1, g_refused);
    ObLib::PoolFree(core, sizeof(StringCore));
    EXPECT_EQ(1u, ObLib::PoolLength()) << "the lock serves again";
}

} // namespace
