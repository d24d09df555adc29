// Calls of the provider manager that a worker thread makes: the manager isn't deleted during one.
#pragma once

#include "contracts/ProviderManager.h"

namespace obcore {

// Covers one call, from before it begins to after it has ended. May be used on any thread. A null
// manager counts as any other: its calls are taken off the list too.
class ManagerCall {
public:
    explicit ManagerCall(obcontract::ProviderManagerHandle manager);
    ManagerCall(const ManagerCall&) = delete;
    ManagerCall& operator=(const ManagerCall&) = delete;
    ~ManagerCall();

private:
    const obcontract::ProviderManagerHandle manager_;
};

// Waits until no call of `manager` is covered, on the thread that is about to delete the manager,
// after Deinit, which ends a running call. Messages that other threads send to this thread are
// answered meanwhile. False when a call doesn't end within ten seconds: the manager must not be
// deleted then.
bool AwaitManagerCalls(obcontract::ProviderManagerHandle manager);

} // namespace obcore
