#include "OBCore/modules/ObTrace.h"

namespace obcore {

void ObTrace(const char*, ...) noexcept {}

} // namespace obcore
