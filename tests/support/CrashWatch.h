// Use of memory that is gone, in a window procedure: the system calls some of them in a way in
// which it ignores their access violations, and the test would pass.
#pragma once

namespace obtest {

// For a scope: an access violation in the test program's own code prints a line and ends the
// process with its code, whoever would have ignored it. Any thread. A handler that was added in
// front, as MemoryCopy's, comes first.
class CrashWatch {
public:
    CrashWatch();
    ~CrashWatch();
    CrashWatch(const CrashWatch&) = delete;
    CrashWatch& operator=(const CrashWatch&) = delete;

private:
    void* handler_;
};

} // namespace obtest
