// Photos of any bytes converted: a result is a whole JPEG or PNG, which is read again, and equal
// files give equal results.
#include "fuzzing/support/PictureRun.h"
#include "services/transforms/photos/ConvertPhoto.h"
#include "services/transforms/pictures/Picture.h"

using namespace transforms;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const PictureRun made = RunTwiceOnPicture({bytes, size}, [](auto& source, auto& target) {
        return ConvertPhoto(source, target, {}, SmallLimits());
    });
    if (made.outcome != PictureOutcome::Shrunk) return 0;
    MemorySource result(made.file);
    const PictureKind kind = FormOfPicture(result, SmallLimits()).kind;
    Require(kind == PictureKind::Jpeg || kind == PictureKind::Png, "a result is a JPEG or a PNG");
    return 0;
}
