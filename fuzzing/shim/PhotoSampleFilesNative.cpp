// No library for HEIC is there natively, and no photo that a tool of the machine made.
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace obtest {

transforms::PhotoRequest PhotoRequestOfTest() { return {}; }

} // namespace obtest
