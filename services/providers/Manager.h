// One manager: the object that a handle of CreateObExtensionsManager leads to.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "contracts/ProviderManager.h"
#include "services/providers/AccountStore.h"
#include "services/providers/Catalogue.h"
#include "services/providers/Selection.h"

namespace providers {

// Everything that lasts from Init to Deinit. A manager serves one run and is called by one thread
// at a time; nothing is locked.
struct Session {
    AccountStore accounts;
    Catalogue catalogue;
    Selection selection;
    std::wstring target; // path of the file that the next transform is for
};

} // namespace providers

// The opaque record of the contract. It answers nothing outside a session.
struct obcontract::ObExtensionsManager {
public:
    // Begins a session on the state below `key`; one that runs already ends. Without a predefined
    // hive or a key the manager stays without a session.
    void Begin(std::int64_t hive, const wchar_t* key);
    void End() noexcept { session_.reset(); }

    // Null outside a session.
    providers::Session* Session() noexcept { return session_ ? &*session_ : nullptr; }

private:
    std::optional<providers::Session> session_;
};
