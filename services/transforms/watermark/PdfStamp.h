// A stamp laid over each page of a PDF, as a picture: so every script looks as it does on pictures,
// and no font has to be in the file.
#pragma once

#include <string_view>

#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"
#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

struct StampedPdf {
    // Cleaned means written. Otherwise there are no bytes: NothingFound where no page has room for
    // the stamp, Damaged, Encrypted, Locked, OtherCipher, Signed or TooLarge.
    CleanOutcome outcome = CleanOutcome::Damaged;
    personal::OwnedBytes bytes;
};

// Pages keep their contents, form fields and links; the stamp is above the contents, upright as the
// page is shown, and marked as decoration for screen readers. Equal input gives equal bytes. Throws
// PictureFailure of the stamp and of the control, and std::bad_alloc.
StampedPdf StampPdf(personal::Bytes file, const Stamp& stamp, const PictureControl& control,
                    std::string_view password = {});

} // namespace transforms
