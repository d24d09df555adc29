// Pictures of any bytes made smaller and stamped: an outcome is what the target has, a result is a
// picture of the same kind within the aim, and equal files give equal results.
#include <algorithm>
#include <memory>

#include "fuzzing/support/Require.h"
#include "services/transforms/pictures/Picture.h"
#include "services/transforms/pictures/Resize.h"
#include "services/transforms/pictures/StampPicture.h"

using namespace transforms;

namespace {

constexpr std::uint32_t kEdge = 24;

// Small enough that no input takes long.
PictureControl Limits() {
    PictureControl control;
    control.limits = {1 << 18, 16 << 20, 1 << 20, 20};
    return control;
}

class Square final : public Stamp {
public:
    PlacedStamp For(PictureSize shown) const override {
        const std::uint32_t side = std::min({5u, shown.width, shown.height});
        PictureBytes pixels(std::size_t{side} * side * 4, 0x80);
        return {shown.width - side, shown.height - side, {side, side}, std::move(pixels)};
    }
};

struct Result {
    PictureOutcome outcome;
    PictureBytes file;
    friend bool operator==(const Result&, const Result&) = default;
};

// The file is on the heap and of the exact size, so that the sanitizer sees a read past its end.
template <class Work>
Result Run(std::span<const std::uint8_t> file, Work&& work) {
    const auto copy = std::make_unique<std::uint8_t[]>(file.size());
    std::ranges::copy(file, copy.get());
    MemorySource source({copy.get(), file.size()});
    MemoryTarget target;
    const PictureOutcome outcome = work(source, target);
    return {outcome, std::move(target.bytes)};
}

Result Shrink(std::span<const std::uint8_t> file, ResizeRequest request) {
    return Run(file, [&](auto& source, auto& target) {
        return ResizePicture(source, target, request, Limits());
    });
}

PictureForm FormOf(std::span<const std::uint8_t> file) {
    MemorySource source(file);
    return FormOfPicture(source, Limits());
}

void CheckWritten(std::span<const std::uint8_t> file, const Result& result) {
    const bool isPassed = result.outcome == PictureOutcome::Unchanged ||
                          result.outcome == PictureOutcome::Unsupported;
    Require(!isPassed || result.file.empty(), "what passes isn't written");
    if (result.outcome != PictureOutcome::Shrunk) return;
    Require(FormOf(result.file).kind == FormOf(file).kind, "a result has the file's kind");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::span file(bytes, size);
    const ResizeRequest edge{ResizeAim::LongestEdge, kEdge, 80};
    const Result shrunk = Shrink(file, edge);
    CheckWritten(file, shrunk);
    Require(shrunk == Shrink(file, edge), "equal files give equal results");
    if (shrunk.outcome == PictureOutcome::Shrunk) {
        const PictureSize made = FormOf(shrunk.file).size;
        Require(std::max(made.width, made.height) <= kEdge, "a result is within the aim");
        Require(Shrink(shrunk.file, edge).outcome == PictureOutcome::Unchanged, "and stays");
    }
    const Result fitted = Shrink(file, {ResizeAim::Bytes, 200, 80});
    CheckWritten(file, fitted);
    Require(fitted.outcome != PictureOutcome::Shrunk || fitted.file.size() <= 200,
            "a result has no more bytes than asked for");
    CheckWritten(file, Run(file, [](auto& source, auto& target) {
                     return StampPicture(source, target, Square(), Limits());
                 }));
    return 0;
}
