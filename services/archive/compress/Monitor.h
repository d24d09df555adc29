// A lock and what threads wait for under it. The system's own primitives: the runtime's condition
// variables cost several system calls a turn.
#pragma once

#include <windows.h>

namespace obarchive {

class Condition;

class Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    friend class Locked;
    friend class Condition;
    SRWLOCK lock_ = SRWLOCK_INIT;
};

// Owns a lock for a scope.
class Locked {
public:
    explicit Locked(Lock& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_.lock_); }
    ~Locked() { ReleaseSRWLockExclusive(&lock_.lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    Lock& lock_;
};

class Condition {
public:
    Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    // The caller owns the lock. May return early, so callers test their condition again.
    void Wait(Lock& lock, DWORD milliseconds = INFINITE) {
        SleepConditionVariableSRW(&condition_, &lock.lock_, milliseconds, 0);
    }
    void WakeOne() { WakeConditionVariable(&condition_); }
    void WakeAll() { WakeAllConditionVariable(&condition_); }

private:
    CONDITION_VARIABLE condition_ = CONDITION_VARIABLE_INIT;
};

} // namespace obarchive
