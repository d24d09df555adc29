// Fakes of what the cloud button calls: which provider serves the open picker, and the pick itself.
// A program that links this file gets them in the place of the product's.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

#include "OBCore/cloud/CloudButtonHook.h"

namespace obtest {

struct FakeCloudPick {
    struct Call {
        obcore::CloudButtonHook* record;
        HWND dialog;
    };

    // The manager's provider; a manager without one disables the button. May throw.
    static std::function<bool(obcontract::ProviderManagerHandle)> hasProvider;
    // The pick: true when it has stored a link. May throw.
    static std::function<bool(obcore::CloudButtonHook&, HWND)> pick;
    static std::vector<Call> picks;

    static void Reset();
};

} // namespace obtest
