// What the work on one document is given besides its bytes.
#pragma once

#include <string_view>

#include "services/transforms/raster/PictureControl.h"

namespace transforms {

struct DocumentControl {
    PictureSteps* steps = nullptr; // learns that the work goes on; null when nobody wants to know
    // Of an encrypted PDF, UTF-8; empty when there is none. The PDF library makes copies that
    // nobody can wipe: whoever gives a password ends the process after the work.
    std::string_view password;
};

} // namespace transforms
