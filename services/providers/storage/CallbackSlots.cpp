#include "services/providers/storage/CallbackSlots.h"

#include <cstddef>

namespace providers {
namespace {

// The slots that are called: number, name, result, arguments after the object. The value of the
// first one is never used.
#define PROVIDERS_CALLBACK_SLOTS(SLOT)                                                             \
    SLOT(10, TellReason, void, (std::uint64_t value, std::int32_t reason))                         \
    SLOT(11, Cancel, void, (void))

template <std::size_t Number, class Signature>
struct CallbackSlot;
template <std::size_t Number, class Result, class... Arguments>
struct CallbackSlot<Number, Result(Arguments...)> {
    static Result Call(ObPVX::ObPvxCallback* callback, Arguments... arguments) {
        using Function = Result (*)(void*, Arguments...);
        void* const* const table = *reinterpret_cast<void* const* const*>(callback);
        return reinterpret_cast<Function>(table[Number])(callback, arguments...);
    }
};

namespace slots {
#define PROVIDERS_NAME_SLOT(number, name, result, arguments)                                       \
    using name = CallbackSlot<number, result arguments>;
PROVIDERS_CALLBACK_SLOTS(PROVIDERS_NAME_SLOT)
} // namespace slots

} // namespace

void ReportReason(ObPVX::ObPvxCallback* callback, std::int32_t reason) {
    if (callback) slots::TellReason::Call(callback, 0, reason);
}

void ReportCancelled(ObPVX::ObPvxCallback* callback) {
    if (callback) slots::Cancel::Call(callback);
}

} // namespace providers
