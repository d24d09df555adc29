// Makes the table of an object that is reached by slot number from another module, out of the rows
// of the contract. No row is written by hand, and a function whose signature isn't the row's
// doesn't compile.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ObLib/Src/Win32/Guarded.h"
#include "contracts/ProviderManager.h"

namespace providers {

// What a caller of a slot reaches: a plain function that takes the object and then the arguments,
// and calls the operation of the object's own class. Exceptions end here, with a result of zero.
template <class Object, class Signature>
struct SlotEntry;
template <class Object, class Result, class... Arguments>
struct SlotEntry<Object, Result(Arguments...)> {
    template <class Own, Result (Own::*Operation)(Arguments...)>
    static Result Call(Object* object, Arguments... arguments) noexcept {
        Own& own = *static_cast<Own*>(object);
        if constexpr (std::is_void_v<Result>) {
            ObLib::RanGuarded([&] { (own.*Operation)(arguments...); });
        } else {
            return ObLib::Guarded<Result>(Result{}, [&] { return (own.*Operation)(arguments...); });
        }
    }
};

// A slot that the contract doesn't list. Whatever arguments it gets, the caller clears them.
inline std::uint64_t UnlistedSlot(void*) noexcept { return 0; }

template <std::size_t Count>
std::array<void*, Count> UnlistedSlots() {
    std::array<void*, Count> table;
    table.fill(reinterpret_cast<void*>(&UnlistedSlot));
    return table;
}

// A row of a contract's table. In scope are `table`, `Own`, which is the class of the object and
// has an operation of each row's name, and the names of the contract.
#define PROVIDERS_FILL_SLOT(object, number, name, result, arguments)                               \
    std::get<number>(table) = reinterpret_cast<void*>(                                             \
        &::providers::SlotEntry<obcontract::object, result arguments>::Call<Own, &Own::name>);

} // namespace providers
