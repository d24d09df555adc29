// Pictures of any bytes made smaller and stamped: an outcome is what the target has, a result is a
// picture of the same kind within the aim, and equal files give equal results.
#include <algorithm>

#include "fuzzing/support/PictureRun.h"
#include "services/transforms/pictures/Picture.h"
#include "services/transforms/pictures/Resize.h"
#include "services/transforms/pictures/StampPicture.h"

using namespace transforms;

namespace {

constexpr std::uint32_t kEdge = 24;

class Square final : public Stamp {
public:
    PlacedStamp For(PictureSize shown) const override {
        const std::uint32_t side = std::min({5u, shown.width, shown.height});
        PictureBytes pixels(std::size_t{side} * side * 4, 0x80);
        return {shown.width - side, shown.height - side, {side, side}, std::move(pixels)};
    }
};

PictureForm FormOf(std::span<const std::uint8_t> file) {
    MemorySource source(file);
    return FormOfPicture(source, SmallLimits());
}

// A result has the file's kind.
PictureRun Checked(std::span<const std::uint8_t> file, PictureRun made) {
    const bool isMade = made.outcome == PictureOutcome::Written;
    Require(!isMade || FormOf(made.file).kind == FormOf(file).kind, "a result has the file's kind");
    return made;
}

PictureRun Shrink(std::span<const std::uint8_t> file, const ResizeRequest& request) {
    return Checked(file, RunTwiceOnPicture(file, [&](auto& source, auto& target) {
                       return ResizePicture(source, target, request, SmallLimits());
                   }));
}

PictureRun Mark(std::span<const std::uint8_t> file) {
    return Checked(file, RunOnPicture(file, [](auto& source, auto& target) {
                       return StampPicture(source, target, Square(), SmallLimits());
                   }));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::span file(bytes, size);
    const ResizeRequest edge{ResizeAim::LongestEdge, kEdge, 80};
    const PictureRun shrunk = Shrink(file, edge);
    if (shrunk.outcome == PictureOutcome::Written) {
        const PictureSize made = FormOf(shrunk.file).size;
        Require(std::max(made.width, made.height) <= kEdge, "a result is within the aim");
        Require(Shrink(shrunk.file, edge).outcome == PictureOutcome::Unchanged, "and stays");
    }
    const PictureRun fitted = Shrink(file, {ResizeAim::Bytes, 200, 80});
    Require(fitted.outcome != PictureOutcome::Written || fitted.file.size() <= 200,
            "a result has no more bytes than asked for");
    Mark(file);
    return 0;
}
