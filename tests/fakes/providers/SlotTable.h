// Makes the table of an object that is reached by slot number: every slot of it records that it was
// called unexpectedly, until the rows of the contract are put in.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "tests/fakes/providers/Script.h"

namespace fakes {

// A slot's function takes its object first and then its arguments.
template <class Object, class Signature>
struct SlotFunctionOf;
template <class Object, class Result, class... Arguments>
struct SlotFunctionOf<Object, Result(Arguments...)> {
    using Type = Result (*)(Object*, Arguments...);
};
template <class Object, class Signature>
using SlotFunction = typename SlotFunctionOf<Object, Signature>::Type;

template <std::size_t Number>
std::uint64_t UnexpectedSlot(void*) {
    Record(L"UnexpectedSlot", Number);
    return 0;
}

template <std::size_t... Numbers>
std::array<void*, sizeof...(Numbers)> UnexpectedSlots(std::index_sequence<Numbers...>) {
    return {reinterpret_cast<void*>(&UnexpectedSlot<Numbers>)...};
}

template <std::size_t Count>
std::array<void*, Count> UnexpectedSlots() {
    return UnexpectedSlots(std::make_index_sequence<Count>());
}

// A row of a contract's table: `table` and the functions, named as the slots, are in scope. A
// function whose signature isn't the contract's doesn't compile.
#define FAKE_FILL_SLOT(object, number, name, result, arguments)                                    \
    {                                                                                              \
        const ::fakes::SlotFunction<obcontract::object, result arguments> function = &name;        \
        table[number] = reinterpret_cast<void*>(function);                                         \
    }

} // namespace fakes
