#include "services/transforms/topdf/ImageObjects.h"

#include <cstring>

#include "services/transforms/photos/ColourProfile.h"
#include "services/transforms/topdf/FlateRows.h"

namespace transforms {
namespace {

std::size_t ColoursOf(PhotoSamples samples) noexcept {
    if (samples == PhotoSamples::Grey || samples == PhotoSamples::WhiteIsZero) return 1;
    return samples == PhotoSamples::Cmyk ? 4 : 3;
}

bool IsLab(PhotoSamples samples) noexcept {
    return samples == PhotoSamples::Lab || samples == PhotoSamples::SignedLab;
}

ProfileSpace SpaceOf(PhotoSamples samples) noexcept {
    if (IsLab(samples)) return ProfileSpace::None;
    constexpr ProfileSpace kSpaces[] = {ProfileSpace::Grey, ProfileSpace::Rgb, ProfileSpace::Cmyk};
    return kSpaces[ColoursOf(samples) / 2]; // of 1, 3 and 4 colours
}

std::string Hex(std::span<const std::uint8_t> bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The samples of a row as they are coded: colours and what is opaque apart, the higher byte first.
class SplitRows final : public RowWriter {
public:
    SplitRows(const PagePicture& picture, FlateRows::Sink colours, FlateRows::Sink alpha)
        : form_(picture.rows->Form()), isSigned_(picture.samples == PhotoSamples::SignedLab) {
        const bool isPlain = !picture.palette.empty() || picture.bits < 8;
        colours_ = isPlain ? 1 : ColoursOf(picture.samples);
        if (form_.channels < colours_) throw PictureFailure{PictureOutcome::Damaged};
        sampleBytes_ = form_.bits / 8;
        const std::size_t width = form_.size.width, pixel = colours_ * sampleBytes_;
        row_.resize(width * pixel);
        rows_.emplace(row_.size(), isPlain ? 0 : pixel, std::move(colours));
        if (!form_.hasAlpha || form_.channels == colours_) return;
        alphaRow_.resize(width * sampleBytes_);
        alphas_.emplace(alphaRow_.size(), sampleBytes_, std::move(alpha));
    }

    void Write(const std::uint8_t* row) override {
        const std::size_t stored = form_.channels * sampleBytes_, pixel = colours_ * sampleBytes_;
        for (std::size_t x = 0; x < form_.size.width; ++x)
            Copy(row + x * stored, &row_[x * pixel], colours_);
        if (isSigned_) FlipSigns();
        rows_->Write(row_.data());
        if (alphas_) WriteAlpha(row);
    }

    void Finish() {
        rows_->Finish();
        if (alphas_) alphas_->Finish();
    }

    // Whether the picture needs what was written of its alpha.
    bool IsTransparent(bool zeroAlphaIsUnset) const noexcept {
        return alphas_ && !isOpaque_ && !(isAllClear_ && zeroAlphaIsUnset);
    }

private:
    void Copy(const std::uint8_t* from, std::uint8_t* to, std::size_t count) const noexcept {
        if (sampleBytes_ == 1) {
            std::memcpy(to, from, count);
            return;
        }
        for (std::size_t i = 0; i < count; ++i) {
            std::uint16_t sample;
            std::memcpy(&sample, from + 2 * i, sizeof sample);
            to[2 * i] = static_cast<std::uint8_t>(sample >> 8);
            to[2 * i + 1] = static_cast<std::uint8_t>(sample);
        }
    }

    // Of the two colours of Lab, whose middle is stored as 0.
    void FlipSigns() noexcept {
        for (std::size_t at = 0; at < row_.size(); at += 3 * sampleBytes_)
            for (std::size_t c = 1; c < 3; ++c) row_[at + c * sampleBytes_] ^= 0x80;
    }

    void WriteAlpha(const std::uint8_t* row) {
        for (std::size_t x = 0; x < form_.size.width; ++x)
            Copy(row + (x * form_.channels + colours_) * sampleBytes_, &alphaRow_[x * sampleBytes_],
                 1);
        for (const std::uint8_t byte : alphaRow_) {
            isOpaque_ = isOpaque_ && byte == 255;
            isAllClear_ = isAllClear_ && byte == 0;
        }
        alphas_->Write(alphaRow_.data());
    }

    RasterForm form_;
    bool isSigned_;
    std::size_t colours_ = 0, sampleBytes_ = 1;
    PictureBytes row_, alphaRow_;
    std::optional<FlateRows> rows_, alphas_;
    bool isOpaque_ = true, isAllClear_ = true;
};

std::string FlateEntries(std::uint32_t width, std::size_t colours, unsigned bits) {
    return " /Filter /FlateDecode /DecodeParms <</Predictor 15 /Colors " + std::to_string(colours) +
           " /BitsPerComponent " + std::to_string(bits) + " /Columns " + std::to_string(width) +
           ">>";
}

std::string DecodeOf(const PagePicture& picture) {
    // Of 16 bits the middle of the two colours is at 128 of 256, and not of 255; lightness 100 of
    // the unsigned form is at 255 of 256.
    if (IsLab(picture.samples) && picture.bits == 16) {
        const char* const light = picture.samples == PhotoSamples::Lab ? "100.3906" : "100";
        return std::string(" /Decode [0 ") + light + " -128 127.9961 -128 127.9961]";
    }
    const bool isInverted = picture.isInverted || picture.samples == PhotoSamples::WhiteIsZero;
    return isInverted ? InvertedDecode(picture.samples) : std::string();
}

std::string SpaceOfImage(PdfOutput& pdf, const PagePicture& picture) {
    std::string space = ColourSpace(pdf, picture.samples, picture.profile);
    if (picture.palette.empty()) return space;
    return "[/Indexed " + space + " " + std::to_string(picture.palette.size() / 3 - 1) + " <" +
           Hex(picture.palette) + ">]";
}

struct Transparency {
    unsigned number = 0; // of its object; 0 for a picture that has none
    PictureBytes coded;
};

void WriteTransparency(PdfOutput& pdf, const PagePicture& picture, const Transparency& kept,
                       bool isNeeded) {
    if (!isNeeded) return pdf.Object(kept.number, "null");
    std::string entries = ImageEntries(picture.size, picture.bits, "/DeviceGray");
    if (picture.rows->Form().isPremultiplied) {
        entries += picture.samples == PhotoSamples::Rgb    ? " /Matte [0 0 0]"
                   : picture.samples == PhotoSamples::Cmyk ? " /Matte [0 0 0 0]"
                                                           : " /Matte [0]";
    }
    pdf.BeginStream(kept.number, entries + FlateEntries(picture.size.width, 1, picture.bits));
    pdf.Append(kept.coded);
    pdf.EndStream();
}

} // namespace

std::string ColourSpace(PdfOutput& pdf, PhotoSamples samples,
                        std::span<const std::uint8_t> profile) {
    if (IsLab(samples))
        return "[/Lab <</WhitePoint [0.9642 1 0.8249] /Range [-128 127 -128 127]>>]";
    const std::size_t colours = ColoursOf(samples);
    if (SpaceOfProfile(profile) != SpaceOf(samples) || !IsSoundProfile(profile)) {
        constexpr const char* kPlain[] = {"/DeviceGray", "/DeviceRGB", "/DeviceCMYK"};
        return kPlain[colours / 2];
    }
    const unsigned number = pdf.Reserve();
    FlateRows rows(profile.size(), 0,
                   [&](std::span<const std::uint8_t> bytes) { pdf.Append(bytes); });
    pdf.BeginStream(number, "/N " + std::to_string(colours) +
                                FlateEntries(static_cast<std::uint32_t>(profile.size()), 1, 8));
    rows.Write(profile.data());
    rows.Finish();
    pdf.EndStream();
    return "[/ICCBased " + ReferenceTo(number) + "]";
}

std::string ImageEntries(PictureSize size, unsigned bits, const std::string& space) {
    return "/Type /XObject /Subtype /Image /Width " + std::to_string(size.width) + " /Height " +
           std::to_string(size.height) + " /BitsPerComponent " + std::to_string(bits) +
           " /ColorSpace " + space;
}

std::string InvertedDecode(PhotoSamples samples) {
    std::string ends;
    for (std::size_t c = 0; c < ColoursOf(samples); ++c) ends += c ? " 1 0" : "1 0";
    return " /Decode [" + ends + "]";
}

unsigned WriteImage(PdfOutput& pdf, PagePicture& picture, const PictureControl& control) {
    const RasterForm form = picture.rows->Form();
    Transparency kept;
    SplitRows rows(
        picture, [&](std::span<const std::uint8_t> bytes) { pdf.Append(bytes); },
        [&](std::span<const std::uint8_t> bytes) {
            control.ThrowIfTooMuch(4 * static_cast<std::uint64_t>(kept.coded.size()));
            kept.coded.insert(kept.coded.end(), bytes.begin(), bytes.end());
        });
    std::string entries = ImageEntries(picture.size, picture.bits, SpaceOfImage(pdf, picture));
    entries += DecodeOf(picture);
    if (picture.clearIndex)
        entries += " /Mask [" + std::to_string(*picture.clearIndex) + " " +
                   std::to_string(*picture.clearIndex) + "]";
    const std::size_t colours =
        picture.palette.empty() && picture.bits >= 8 ? ColoursOf(picture.samples) : 1;
    if (form.hasAlpha && form.channels > colours) {
        kept.number = pdf.Reserve();
        entries += " /SMask " + ReferenceTo(kept.number);
    }
    const unsigned number = pdf.Reserve();
    pdf.BeginStream(number, entries + FlateEntries(picture.size.width, colours, picture.bits));
    ShrinkRows(*picture.rows, rows, form.size, control);
    rows.Finish();
    pdf.EndStream();
    if (kept.number)
        WriteTransparency(pdf, picture, kept, rows.IsTransparent(picture.zeroAlphaIsUnset));
    return number;
}

} // namespace transforms
