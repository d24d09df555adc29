// Pictures of any bytes as PDFs: a result is a PDF that can be a part of another one, and equal
// files give equal results.
#include <algorithm>
#include <memory>

#include "fuzzing/support/Require.h"
#include "services/transforms/combine/PdfCombine.h"
#include "services/transforms/topdf/PicturePdf.h"

using namespace transforms;

namespace {

PictureOutcome Convert(std::span<const std::uint8_t> file, PictureBytes& result) {
    PictureControl control;
    control.limits = {1 << 18, 16 << 20, 1 << 20, 20};
    const auto copy = std::make_unique<std::uint8_t[]>(file.size());
    std::ranges::copy(file, copy.get());
    MemorySource source({copy.get(), file.size()});
    MemoryTarget target;
    const PictureOutcome outcome = MakePicturePdf(source, target, {}, control);
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
    combine::PdfCombiner combiner;
    Require(combiner.Add({"picture", std::as_bytes(std::span(first))}) == CleanOutcome::Cleaned,
            "a result is a sound PDF");
    return 0;
}
