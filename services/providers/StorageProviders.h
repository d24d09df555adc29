// The storage providers that this module serves.
#pragma once

#include "services/providers/storage/StorageHalf.h"

namespace providers {

// All of them, made for a session, in the order in which they are enumerated.
StorageParts MakeStorageParts(const AccountBook& book);

} // namespace providers
