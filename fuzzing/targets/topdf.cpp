// Pictures of any bytes as PDFs: a result is a PDF that can be a part of another one, and equal
// files give equal results.
#include "fuzzing/support/PictureRun.h"
#include "services/transforms/combine/PdfCombine.h"
#include "services/transforms/topdf/PicturePdf.h"

using namespace transforms;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const PictureRun made = RunTwiceOnPicture({bytes, size}, [](auto& source, auto& target) {
        return MakePicturePdf(source, target, {}, SmallLimits());
    });
    if (made.outcome != PictureOutcome::Written) return 0;
    combine::PdfCombiner combiner;
    Require(combiner.Add({"picture", std::as_bytes(std::span(made.file))}) == CleanOutcome::Cleaned,
            "a result is a sound PDF");
    return 0;
}
