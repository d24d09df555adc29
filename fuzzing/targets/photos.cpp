// Photos of any bytes converted: a result is a whole JPEG or PNG, which is read again, and equal
// files give equal results.
#include <algorithm>
#include <memory>

#include "fuzzing/support/Require.h"
#include "services/transforms/photos/ConvertPhoto.h"
#include "services/transforms/pictures/Picture.h"

using namespace transforms;

namespace {

PictureControl Limits() {
    PictureControl control;
    control.limits = {1 << 18, 16 << 20, 1 << 20, 20};
    return control;
}

PictureOutcome Convert(std::span<const std::uint8_t> file, PictureBytes& result) {
    const auto copy = std::make_unique<std::uint8_t[]>(file.size());
    std::ranges::copy(file, copy.get());
    MemorySource source({copy.get(), file.size()});
    MemoryTarget target;
    const PictureOutcome outcome = ConvertPhoto(source, target, {}, Limits());
    result = std::move(target.bytes);
    return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    PictureBytes first, second;
    const PictureOutcome outcome = Convert({bytes, size}, first);
    Require(Convert({bytes, size}, second) == outcome && first == second,
            "equal files give equal results");
    const bool isPassed =
        outcome == PictureOutcome::Unchanged || outcome == PictureOutcome::Unsupported;
    Require(!isPassed || first.empty(), "what passes isn't written");
    if (outcome != PictureOutcome::Shrunk) return 0;
    MemorySource made(first);
    const PictureKind kind = FormOfPicture(made, Limits()).kind;
    Require(kind == PictureKind::Jpeg || kind == PictureKind::Png, "a result is a JPEG or a PNG");
    return 0;
}
