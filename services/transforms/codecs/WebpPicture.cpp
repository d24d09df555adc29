// The WebP library reports by codes; here they become exceptions.
#include "services/transforms/codecs/WebpPicture.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <webp/decode.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include "services/transforms/raster/ExifValues.h"
#include "services/transforms/raster/StampedRows.h"

namespace transforms {
namespace {

const int Lossless = 2; // of WebPBitstreamFeatures::format
const char* const KeptChunks[] = {"ICCP", "EXIF", "XMP "};

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

void CheckStatus(VP8StatusCode status) {
    if (status == VP8_STATUS_OUT_OF_MEMORY) Throw(PictureOutcome::OutOfMemory);
    if (status == VP8_STATUS_UNSUPPORTED_FEATURE) Throw(PictureOutcome::Unsupported);
    if (status != VP8_STATUS_OK) Throw(PictureOutcome::Damaged);
}

struct MuxFree {
    void operator()(WebPMux* mux) const noexcept { WebPMuxDelete(mux); }
};
using UniqueMux = std::unique_ptr<WebPMux, MuxFree>;

struct DecoderFree {
    void operator()(WebPIDecoder* decoder) const noexcept { WebPIDelete(decoder); }
};

WebPData DataOf(const PictureBytes& bytes) noexcept { return {bytes.data(), bytes.size()}; }

// The picture in memory.
class WebpRows final : public RowReader {
public:
    WebpRows(const PictureBytes& file, const WebPBitstreamFeatures& features,
             const PictureControl& control) {
        form_.size = {static_cast<std::uint32_t>(features.width),
                      static_cast<std::uint32_t>(features.height)};
        form_.channels = features.has_alpha ? 4 : 3;
        form_.hasAlpha = features.has_alpha;
        // The decoder's own memory is about as much again.
        control.ThrowIfTooMuch(2 * static_cast<std::uint64_t>(form_.RowBytes()) *
                               form_.size.height);
        pixels_.resize(form_.RowBytes() * form_.size.height);
        Decode(file, control);
    }
    const RasterForm& Form() const noexcept override { return form_; }
    void Read(std::uint8_t* row) override {
        std::memcpy(row, &pixels_[next_++ * form_.RowBytes()], form_.RowBytes());
    }

private:
    // Piece by piece, so that a cancel is noticed.
    void Decode(const PictureBytes& file, const PictureControl& control) {
        const std::unique_ptr<WebPIDecoder, DecoderFree> decoder(
            WebPINewRGB(form_.hasAlpha ? MODE_RGBA : MODE_RGB, pixels_.data(), pixels_.size(),
                        static_cast<int>(form_.RowBytes())));
        if (!decoder) Throw(PictureOutcome::OutOfMemory);
        VP8StatusCode status = VP8_STATUS_SUSPENDED;
        for (std::size_t end = 0; status == VP8_STATUS_SUSPENDED && end < file.size();) {
            control.ThrowIfCancelled();
            end = std::min<std::size_t>(end + 64 * 1024, file.size());
            status = WebPIUpdate(decoder.get(), file.data(), end);
        }
        CheckStatus(status);
    }

    RasterForm form_;
    PictureBytes pixels_;
    std::size_t next_ = 0;
};

class CollectedRows final : public RowWriter {
public:
    explicit CollectedRows(std::size_t rowBytes) : rowBytes_(rowBytes) {}
    void Write(const std::uint8_t* row) override {
        pixels.insert(pixels.end(), row, row + rowBytes_);
    }
    PictureBytes pixels;

private:
    std::size_t rowBytes_;
};

int IsToGoOn(int, const WebPPicture* picture) {
    return !static_cast<const PictureControl*>(picture->user_data)->IsCancelled();
}

struct EncoderPicture : WebPPicture {
    EncoderPicture() : WebPPicture{} {
        if (!WebPPictureInit(this)) Throw(PictureOutcome::OutOfMemory);
        WebPMemoryWriterInit(&memory);
        writer = WebPMemoryWrite;
        custom_ptr = &memory;
    }
    ~EncoderPicture() {
        WebPPictureFree(this);
        WebPMemoryWriterClear(&memory);
    }
    EncoderPicture(const EncoderPicture&) = delete;
    EncoderPicture& operator=(const EncoderPicture&) = delete;
    WebPMemoryWriter memory;
};

PictureBytes Encode(const PictureBytes& pixels, PictureSize size, bool hasAlpha, bool isLossless,
                    const ShrinkStep& step, const PictureControl& control) {
    WebPConfig config;
    if (!WebPConfigInit(&config)) Throw(PictureOutcome::OutOfMemory);
    config.lossless = isLossless;
    config.quality = isLossless ? 75 : static_cast<float>(QualityOf(step));
    EncoderPicture picture;
    picture.use_argb = isLossless;
    picture.width = static_cast<int>(size.width);
    picture.height = static_cast<int>(size.height);
    picture.progress_hook = IsToGoOn;
    picture.user_data = const_cast<PictureControl*>(&control);
    const int stride = picture.width * (hasAlpha ? 4 : 3);
    const int imported = hasAlpha ? WebPPictureImportRGBA(&picture, pixels.data(), stride)
                                  : WebPPictureImportRGB(&picture, pixels.data(), stride);
    if (!imported) Throw(PictureOutcome::OutOfMemory);
    if (!WebPEncode(&config, &picture)) {
        control.ThrowIfCancelled();
        Throw(PictureOutcome::OutOfMemory);
    }
    return {picture.memory.mem, picture.memory.mem + picture.memory.size};
}

// EXIF data of WebP may or may not begin as those in JPEG do.
std::span<std::uint8_t> WithoutPrefix(PictureBytes& exif) noexcept {
    const bool hasPrefix = exif.size() > 6 && std::memcmp(exif.data(), "Exif\0\0", 6) == 0;
    return std::span(exif).subspan(hasPrefix ? 6 : 0);
}

PictureBytes WithSize(const WebPData& chunk, bool isExif, PictureSize size) {
    PictureBytes bytes(chunk.bytes, chunk.bytes + chunk.size);
    if (isExif) SetExifSize(WithoutPrefix(bytes), size);
    return bytes;
}

std::uint16_t OrientationOf(const PictureBytes& file) {
    const WebPData source = DataOf(file);
    const UniqueMux mux(WebPMuxCreate(&source, 0));
    WebPData found{};
    if (!mux || WebPMuxGetChunk(mux.get(), "EXIF", &found) != WEBP_MUX_OK)
        return kUprightOrientation;
    PictureBytes exif(found.bytes, found.bytes + found.size);
    return ExifOrientation(WithoutPrefix(exif));
}

PictureBytes WithMetadata(const PictureBytes& from, const PictureBytes& image, PictureSize size) {
    const WebPData source = DataOf(from), coded = DataOf(image);
    const UniqueMux old(WebPMuxCreate(&source, 0)), mux(WebPMuxCreate(&coded, 1));
    if (!old || !mux) Throw(PictureOutcome::Damaged);
    bool hasAny = false;
    for (const char* name : KeptChunks) {
        WebPData found{};
        if (WebPMuxGetChunk(old.get(), name, &found) != WEBP_MUX_OK) continue;
        const PictureBytes bytes = WithSize(found, name == KeptChunks[1], size);
        const WebPData chunk = DataOf(bytes);
        if (WebPMuxSetChunk(mux.get(), name, &chunk, 1) != WEBP_MUX_OK)
            Throw(PictureOutcome::OutOfMemory);
        hasAny = true;
    }
    if (!hasAny) return image;
    WebPData whole{};
    if (WebPMuxAssemble(mux.get(), &whole) != WEBP_MUX_OK) Throw(PictureOutcome::OutOfMemory);
    PictureBytes bytes(whole.bytes, whole.bytes + whole.size);
    WebPDataClear(&whole);
    return bytes;
}

WebPBitstreamFeatures FeaturesOf(const PictureBytes& bytes, const PictureControl& control) {
    WebPBitstreamFeatures features;
    const VP8StatusCode status = WebPGetFeatures(bytes.data(), bytes.size(), &features);
    CheckStatus(status == VP8_STATUS_NOT_ENOUGH_DATA ? VP8_STATUS_BITSTREAM_ERROR : status);
    control.ThrowIfTooLarge(static_cast<std::uint64_t>(features.width),
                            static_cast<std::uint64_t>(features.height));
    return features;
}

} // namespace

WebpForm WebpFormOf(PictureSource& source, const PictureControl& control) {
    // A profile may be between the container's header and the picture's: the container's is enough
    // for an animation, and the whole file is needed otherwise.
    const auto features = FeaturesOf(ReadWholePicture(source, control.limits.memory / 2), control);
    return {
        {static_cast<std::uint32_t>(features.width), static_cast<std::uint32_t>(features.height)},
        features.has_animation != 0,
        features.format == Lossless};
}

void ShrinkWebp(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control) {
    const PictureBytes file = ReadWholePicture(source, control.limits.memory / 2);
    const auto features = FeaturesOf(file, control);
    PictureBytes image;
    PictureSize to;
    {
        WebpRows rows(file, features, control);
        to = SizeAfter(rows.Form().size, step);
        CollectedRows shrunk(static_cast<std::size_t>(to.width) * rows.Form().channels);
        ShrinkAndStampRows(rows, shrunk, to, step, OrientationOf(file), control);
        image = Encode(shrunk.pixels, to, features.has_alpha, features.format == Lossless, step,
                       control);
    }
    WritePicture(target, 0, WithMetadata(file, image, to));
}

std::unique_ptr<RowReader> OpenWebpRows(const PictureBytes& file, const PictureControl& control) {
    return std::make_unique<WebpRows>(file, FeaturesOf(file, control), control);
}

PictureBytes WebpChunk(const PictureBytes& file, const char* name) {
    const WebPData data = DataOf(file);
    const UniqueMux mux(WebPMuxCreate(&data, 0));
    WebPData found{};
    if (!mux || WebPMuxGetChunk(mux.get(), name, &found) != WEBP_MUX_OK) return {};
    return {found.bytes, found.bytes + found.size};
}

} // namespace transforms
