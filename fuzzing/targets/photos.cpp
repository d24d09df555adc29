// Photos of any bytes converted, also made smaller in the same pass: a result is a whole JPEG or
// PNG of the wanted size, which is read again, and equal files give equal results.
#include <algorithm>

#include "fuzzing/support/PictureRun.h"
#include "services/transforms/photos/ConvertPhoto.h"
#include "services/transforms/pictures/Picture.h"

using namespace transforms;

namespace {

constexpr std::uint32_t kEdge = 24;

// Of a result; an empty one of none.
PictureSize Checked(const PictureRun& made) {
    if (made.outcome != PictureOutcome::Written) return {};
    MemorySource result(made.file);
    const PictureForm form = FormOfPicture(result, SmallLimits());
    Require(form.kind == PictureKind::Jpeg || form.kind == PictureKind::Png,
            "a result is a JPEG or a PNG");
    return form.size;
}

// What passes a conversion is no photo for the fit either.
PictureRun Fit(std::span<const std::uint8_t> file) {
    return RunTwiceOnPicture(file, [](auto& source, auto& target) {
        return RunPictureWork([&] {
            ShrinkPhoto(source, target, {}, {.longestEdge = kEdge}, SmallLimits());
            return PictureOutcome::Written;
        });
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const PictureRun made = RunTwiceOnPicture({bytes, size}, [](auto& source, auto& target) {
        return ConvertPhoto(source, target, {}, SmallLimits());
    });
    Checked(made);
    const PictureRun fitted = Fit({bytes, size});
    const PictureSize edges = Checked(fitted);
    Require(std::max(edges.width, edges.height) <= kEdge, "a result has the size of the step");
    const bool isPassed = made.outcome == PictureOutcome::Unchanged;
    Require(fitted.outcome == (isPassed ? PictureOutcome::Unsupported : made.outcome),
            "a fit refuses what a conversion refuses");
    return 0;
}
