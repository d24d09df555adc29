#include "OBCore/exchange/PickedFiles.h"

namespace obcore {
namespace {

// Built while the library loads and destroyed when it unloads.
ResultMap results;

} // namespace

ResultMap& Results() noexcept { return results; }

} // namespace obcore
