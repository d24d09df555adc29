// The table of kinds.
#include "services/transforms/pictures/Picture.h"

#include <cstring>
#include <string_view>

#include "services/transforms/codecs/BmpPicture.h"
#include "services/transforms/codecs/JpegPicture.h"
#include "services/transforms/codecs/PngChunks.h"
#include "services/transforms/codecs/PngPicture.h"
#include "services/transforms/codecs/TiffPicture.h"
#include "services/transforms/codecs/WebpPicture.h"

namespace transforms {
namespace {

using namespace std::string_view_literals;

using FormFunction = PictureForm (*)(PictureSource&, const PictureControl&);
using ShrinkFunction = void (*)(PictureSource&, PictureTarget&, const ShrinkStep&,
                                const PictureControl&);

PictureForm JpegForm(PictureSource& source, const PictureControl& control) {
    return {PictureKind::Jpeg, JpegSize(source, control)};
}

PictureForm PngForm(PictureSource& source, const PictureControl& control) {
    return {PictureKind::Png, PngSize(source, control), ScanPng(source, control).isAnimated};
}

PictureForm WebpForms(PictureSource& source, const PictureControl& control) {
    const auto form = WebpFormOf(source, control);
    return {PictureKind::Webp, form.size, form.isAnimated};
}

PictureForm TiffForms(PictureSource& source, const PictureControl& control) {
    const auto form = TiffFormOf(source, control);
    return {PictureKind::Tiff, form.size, form.hasManyPages};
}

PictureForm BmpForm(PictureSource& source, const PictureControl& control) {
    return {PictureKind::Bmp, BmpSize(source, control)};
}

// Mostly animations, and of 256 colours otherwise, which gain nothing.
PictureForm GifForm(PictureSource&, const PictureControl&) { return {PictureKind::Gif, {}, true}; }

// A kind may have several beginnings; a dot is any byte.
struct KindRow {
    std::string_view beginning;
    PictureKind kind;
    FormFunction form;
    ShrinkFunction shrink;
};

constexpr KindRow Kinds[] = {
    {"\xFF\xD8\xFF"sv, PictureKind::Jpeg, JpegForm, ShrinkJpeg},
    {"\x89PNG\r\n\x1A\n"sv, PictureKind::Png, PngForm, ShrinkPng},
    {"RIFF....WEBP"sv, PictureKind::Webp, WebpForms, ShrinkWebp},
    {"II*\0"sv, PictureKind::Tiff, TiffForms, ShrinkTiff},
    {"MM\0*"sv, PictureKind::Tiff, TiffForms, ShrinkTiff},
    {"II+\0"sv, PictureKind::Tiff, TiffForms, ShrinkTiff},
    {"MM\0+"sv, PictureKind::Tiff, TiffForms, ShrinkTiff},
    {"BM....\0\0\0\0"sv, PictureKind::Bmp, BmpForm, ShrinkBmp},
    {"GIF8"sv, PictureKind::Gif, GifForm, nullptr},
};

bool Begins(std::span<const std::uint8_t> bytes, std::string_view with) noexcept {
    if (bytes.size() < with.size()) return false;
    for (std::size_t i = 0; i < with.size(); ++i)
        if (with[i] != '.' && bytes[i] != static_cast<std::uint8_t>(with[i])) return false;
    return true;
}

} // namespace

PictureForm FormOfPicture(PictureSource& source, const PictureControl& control) {
    std::uint8_t bytes[16];
    const std::span<const std::uint8_t> begin(bytes, ReadPicture(source, 0, bytes));
    for (const auto& row : Kinds)
        if (Begins(begin, row.beginning)) return row.form(source, control);
    return {};
}

void ShrinkPicture(PictureKind kind, PictureSource& source, PictureTarget& target,
                   const ShrinkStep& step, const PictureControl& control) {
    for (const auto& row : Kinds)
        if (row.kind == kind && row.shrink) return row.shrink(source, target, step, control);
    throw PictureFailure{PictureOutcome::Unsupported};
}

PictureOutcome OutcomeOfFailure() noexcept {
    try {
        throw;
    } catch (const PictureFailure& failure) {
        return failure.outcome;
    } catch (...) {
        // Memory, or a thread that couldn't be made.
        return PictureOutcome::OutOfMemory;
    }
}

} // namespace transforms
