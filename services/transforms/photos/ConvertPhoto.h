// Turns a photo that not every recipient can open into a JPEG, or into a PNG where it has
// transparent pixels.
#pragma once

#include <string>

#include "services/transforms/photos/PhotoKind.h"
#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

struct PhotoRequest {
    int quality = 92;                // of a JPEG, 1 to 100
    unsigned kinds = kAllPhotoKinds; // of PhotoKind; others pass
    std::wstring heifLibrary;        // full path of the DLL, which may be missing
};

// Outcome Written: the target is a whole JPEG or PNG, of 8 bits, upright, with the photo's colour
// profile and what CarriedExif carries. Unchanged: an animation or a file of many pages.
// Unsupported: another kind of file, or one that nothing here decodes. The target may have been
// begun for Cancelled and the failures. Throws nothing. Uses a second thread for its time. Equal
// files give equal results.
PictureOutcome ConvertPhoto(PictureSource& source, PictureTarget& target,
                            const PhotoRequest& request, const PictureControl& control) noexcept;

// Whether the file is a photo that ConvertPhoto converts, by its headers: Written, Unchanged or
// Unsupported as above, and whether anything here decodes it isn't looked at. Throws
// PictureFailure.
PictureOutcome CanConvertPhoto(PictureSource& source, unsigned kinds,
                               const PictureControl& control);

// The size of such a photo as it is stored. Throws PictureFailure, Unsupported also for one that
// isn't converted.
PictureSize SizeOfPhoto(PictureSource& source, const PhotoRequest& request,
                        const PictureControl& control);

// ConvertPhoto at a step: the photo is decoded once, turned upright, made smaller, stamped and
// coded once, a JPEG at most as finely as the request asks. Throws PictureFailure, Unsupported also
// for what ConvertPhoto passes.
void ShrinkPhoto(PictureSource& source, PictureTarget& target, const PhotoRequest& request,
                 const ShrinkStep& step, const PictureControl& control);

} // namespace transforms
