#include "services/transforms/pictures/StampPicture.h"

#include "services/transforms/pictures/Picture.h"

namespace transforms {

PictureOutcome StampPicture(PictureSource& source, PictureTarget& target, const Stamp& stamp,
                            const PictureControl& control) noexcept {
    return RunPictureWork([&] {
        const PictureForm form = FormOfPicture(source, control);
        if (form.kind == PictureKind::None) return PictureOutcome::Unsupported;
        if (form.hasManyPictures || !stamp.HasRoomIn(form.size)) return PictureOutcome::Unchanged;
        const ShrinkStep step{.coarseness = kCoarsenessOfStamped, .stamp = &stamp};
        ShrinkPicture(form.kind, source, target, step, control);
        return PictureOutcome::Written;
    });
}

} // namespace transforms
