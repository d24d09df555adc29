#include "ObLibX/src/controls/FittingImage.h"

#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/dialog/Images.h"

namespace ObLibX {

std::int32_t LargestFittingScale(ControlImage image, std::int32_t most) {
    for (std::int32_t scale = kImageScales - 1; scale > 0; --scale) {
        const auto bitmap = ImageOfScale(image, scale);
        const SIZE size = ImageSize(bitmap.Get());
        if (bitmap && size.cx <= most && size.cy <= most) return scale;
    }
    return 0;
}

ObLib::UniqueBitmap ImageOfScale(ControlImage image, std::int32_t scale) {
    return LoadImage(ImageList(image)[scale]);
}

} // namespace ObLibX
