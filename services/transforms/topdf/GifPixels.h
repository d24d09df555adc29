// GIF pictures: indices into a palette. Animations are recognised and not decoded.
#pragma once

#include <optional>

#include "services/transforms/topdf/PagePicture.h"

namespace transforms {

// Nothing for a file of more than one picture. The picture is in memory as a whole. Throws
// PictureFailure.
std::optional<PagePicture> ReadGif(PictureSource& source, const PictureControl& control);

} // namespace transforms
