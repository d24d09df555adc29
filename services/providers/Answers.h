// What the exports share: exceptions end here, and a manager without a session has one answer.
#pragma once

#include <cstdint>
#include <type_traits>

#include "ObLib/Src/Win32/Guarded.h"
#include "contracts/ProviderManager.h"
#include "services/providers/Manager.h"

// A row of the contract's table against the function of that name: the compiler refuses an export
// whose signature isn't the contract's.
#define PROVIDERS_CHECK_ENTRY(name, result, arguments)                                             \
    static_assert(                                                                                 \
        std::is_same_v<decltype(&name), decltype(obcontract::ProviderManagerEntries::name)>);

namespace providers {

// Runs an export's quick work on the session of a manager, under the manager's lock. The caller
// gets `otherwise` when the work throws, for a null manager, and outside Init and Deinit.
template <class Result, class Work>
Result InSession(obcontract::ProviderManagerHandle manager, Result otherwise, Work work) noexcept {
    if (!manager) return otherwise;
    return ObLib::Guarded(otherwise, [&] { return manager->Quickly(otherwise, work); });
}

// Runs work that may wait for the user on the session of a manager, which stays alive meanwhile.
template <class Work>
obcontract::Bool WithSession(obcontract::ProviderManagerHandle manager, Work work) noexcept {
    if (!manager) return false;
    return ObLib::Guarded<obcontract::Bool>(false, [&]() -> obcontract::Bool {
        const auto session = manager->KeptSession();
        return session && work(*session);
    });
}

// Makes the caller's place for a text an empty text.
template <class Capacity>
void ClearText(wchar_t* buffer, const Capacity* capacity) noexcept {
    if (buffer && capacity && *capacity > 0) buffer[0] = L'\0';
}

} // namespace providers
