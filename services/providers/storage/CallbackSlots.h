// The calls that a provider makes on the object of SetCallback, by slot number: its class belongs
// to the product.
#pragma once

#include <cstdint>

#include "contracts/ProviderManager.h"

namespace providers {

// The cloud has a file of that name already.
inline constexpr std::int32_t kReasonNameTaken = 1;

// On the thread that called RunUpload, before it returns. Null: nothing is called.
void ReportReason(ObPVX::ObPvxCallback* callback, std::int32_t reason);
void ReportCancelled(ObPVX::ObPvxCallback* callback);

} // namespace providers
