#include "services/transforms/pictures/StampPicture.h"

#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

// Finer than pictures are coded: JPEG keeps the coarser of its own tables and these.
constexpr int kCoarsenessOfQuality96 = 8;

} // namespace

PictureOutcome StampPicture(PictureSource& source, PictureTarget& target, const Stamp& stamp,
                            const PictureControl& control) noexcept {
    return RunPictureWork([&] {
        const PictureForm form = FormOfPicture(source, control);
        if (form.kind == PictureKind::None) return PictureOutcome::Unsupported;
        if (form.hasManyPictures || !stamp.HasRoomIn(form.size)) return PictureOutcome::Unchanged;
        const ShrinkStep step{.coarseness = kCoarsenessOfQuality96, .stamp = &stamp};
        ShrinkPicture(form.kind, source, target, step, control);
        return PictureOutcome::Shrunk;
    });
}

} // namespace transforms
