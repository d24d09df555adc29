// What the pool's kind of lock does when the system refuses what it waits on.
#include <windows.h>

#include <boost/thread/exceptions.hpp>
#include <boost/thread/mutex.hpp>

#include <gtest/gtest.h>

#include "tests/support/ImportDouble.h"

namespace {

int g_refused = 0;
HANDLE WINAPI RefuseEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCSTR) {
    ++g_refused;
    SetLastError(ERROR_NO_SYSTEM_RESOURCES);
    return nullptr;
}

// A waiter asks for the event; the owner doesn't, so that the lock is free afterwards.
TEST(PoolLock, ARefusedEventSurfacesAsBoostsOwnError) {
    const obtest::ImportDouble event("kernel32.dll", "CreateEventA", &RefuseEvent);
    ASSERT_TRUE(event.Stands());
    boost::mutex lock;
    lock.lock();
    EXPECT_THROW(lock.lock(), boost::thread_resource_error);
    EXPECT_EQ(1, g_refused);
}

} // namespace
