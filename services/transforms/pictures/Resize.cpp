// The aims that look at each file alone.
#include "services/transforms/pictures/Resize.h"

#include <algorithm>

#include "services/transforms/pictures/Picture.h"
#include "services/transforms/pictures/SizeSearch.h"

namespace transforms {
namespace {

int CoarsenessOf(int quality) noexcept {
    const int bounded = std::clamp(quality, 1, 100);
    return std::max(bounded < 50 ? 5000 / bounded : 200 - 2 * bounded, 1);
}

std::uint32_t EdgeFor(const ResizeRequest& request, PictureSize size) noexcept {
    const std::uint64_t longest = std::max(size.width, size.height);
    const std::uint64_t edge =
        request.aim == ResizeAim::Percent
            ? (longest * std::min<std::uint64_t>(request.value, 100) + 50) / 100
            : std::min(request.value, longest);
    return static_cast<std::uint32_t>(std::max<std::uint64_t>(edge, 1));
}

PictureOutcome ToSize(const PictureForm& form, PictureSource& source, PictureTarget& target,
                      const ResizeRequest& request, const PictureControl& control) {
    const ShrinkStep step{.longestEdge = EdgeFor(request, form.size),
                          .coarseness = CoarsenessOf(request.quality)};
    if (SizeAfter(form.size, step) == form.size) return PictureOutcome::Unchanged;
    ShrinkPicture(form.kind, source, target, step, control);
    return PictureOutcome::Written;
}

PictureOutcome ToBytes(const PictureForm& form, PictureSource& source, PictureTarget& target,
                       std::uint64_t most, const PictureControl& control) {
    if (source.Size() <= most) return PictureOutcome::Unchanged;
    const std::uint32_t longest = std::max(form.size.width, form.size.height);
    PictureBytes best;
    // The smallest that was seen to fit is not the best: the last one that fitted is the one that
    // was found.
    const auto bytesAt = [&](const ShrinkStep& step) {
        MemoryTarget coded;
        ShrinkPicture(form.kind, source, coded, step, control);
        const std::uint64_t size = coded.bytes.size();
        if (size <= most) best = std::move(coded.bytes);
        return size;
    };
    if (!FindStep(longest, source.Size(), most, bytesAt)) return PictureOutcome::CannotFit;
    WritePicture(target, 0, best);
    return PictureOutcome::Written;
}

} // namespace

PictureOutcome ResizePicture(PictureSource& source, PictureTarget& target,
                             const ResizeRequest& request, const PictureControl& control) noexcept {
    return RunPictureWork([&] {
        const PictureForm form = FormOfPicture(source, control);
        if (form.kind == PictureKind::None) return PictureOutcome::Unsupported;
        if (form.hasManyPictures) return PictureOutcome::Unchanged;
        if (request.aim == ResizeAim::Bytes)
            return ToBytes(form, source, target, request.value, control);
        return ToSize(form, source, target, request, control);
    });
}

} // namespace transforms
