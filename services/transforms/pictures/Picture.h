// A picture of any kind that is worked on, recognised by its first bytes and never by its name.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

enum class PictureKind { None, Jpeg, Png, Webp, Tiff, Bmp, Gif };

struct PictureForm {
    PictureKind kind = PictureKind::None;
    PictureSize size;
    // An animation, which every GIF counts as, or a file of many pages: it passes unchanged.
    bool hasManyPictures = false;
};

// Reads the headers only. Kind None is a file that isn't worked on. Throws PictureFailure.
PictureForm FormOfPicture(PictureSource& source, const PictureControl& control);

// Writes the picture that the step makes, whatever its size. Throws PictureFailure.
void ShrinkPicture(PictureKind kind, PictureSource& source, PictureTarget& target,
                   const ShrinkStep& step, const PictureControl& control);

// Runs `work` and turns what it throws into its outcome: for public functions, which throw nothing.
PictureOutcome OutcomeOfFailure() noexcept; // inside a catch block
template <class Work>
PictureOutcome RunPictureWork(Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return OutcomeOfFailure();
    }
}

} // namespace transforms
