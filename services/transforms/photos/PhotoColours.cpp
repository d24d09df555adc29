#include "services/transforms/photos/PhotoColours.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "services/transforms/photos/ColourProfile.h"

namespace transforms {
namespace {

std::size_t ColoursIn(PhotoSamples samples) noexcept {
    switch (samples) {
    case PhotoSamples::Grey:
    case PhotoSamples::WhiteIsZero:
        return 1;
    case PhotoSamples::Cmyk:
        return 4;
    default:
        return 3;
    }
}

bool IsLab(PhotoSamples samples) noexcept {
    return samples == PhotoSamples::Lab || samples == PhotoSamples::SignedLab;
}

std::uint16_t Sample(const std::uint8_t* row, std::size_t number, unsigned bits) noexcept {
    if (bits == 8) return row[number];
    std::uint16_t value;
    std::memcpy(&value, row + 2 * number, sizeof value);
    return value;
}

std::uint8_t Eight(unsigned sample, unsigned bits) noexcept {
    return static_cast<std::uint8_t>(bits == 8 ? sample : (sample + 128) / 257);
}

// A colour that was multiplied by alpha.
std::uint8_t Divided(unsigned colour, unsigned alpha) noexcept {
    return alpha == 0
               ? 0
               : static_cast<std::uint8_t>(std::min((colour * 255 + alpha / 2) / alpha, 255u));
}

// Lab as the colour library wants it: 16 bits, the middle of both colours at 128 of 255.
void LabPixel(const std::uint8_t* row, std::size_t at, unsigned bits, bool isSigned,
              std::uint16_t* to) noexcept {
    const unsigned whole = bits == 8 || isSigned ? 65535 : 65280; // lightness 100 in 16 bits
    const unsigned light = Sample(row, at, bits) * (bits == 8 ? 257u : 1u);
    to[0] = static_cast<std::uint16_t>(std::min(light * 65535ull / whole, 65535ull));
    for (std::size_t c = 1; c < 3; ++c) {
        const unsigned middle = bits == 8 ? 0x80 : 0x8000;
        const unsigned value = Sample(row, at + c, bits) ^ (isSigned ? middle : 0);
        to[c] = static_cast<std::uint16_t>(bits == 8 ? value * 257
                                                     : std::min(value * 257 / 256, 65535u));
    }
}

class PlainRows final : public RowReader {
public:
    PlainRows(DecodedPhoto& photo, std::optional<ToSrgb> toSrgb)
        : from_(std::move(photo.rows)), samples_(photo.samples), toSrgb_(std::move(toSrgb)),
          stored_(from_->Form().RowBytes()) {
        const RasterForm& old = from_->Form();
        colours_ = ColoursIn(samples_);
        if (old.channels < colours_) throw PictureFailure{PictureOutcome::Damaged};
        form_.size = old.size;
        form_.hasAlpha = old.hasAlpha && old.channels > colours_;
        form_.channels = (colours_ == 1 ? 1 : 3) + (form_.hasAlpha ? 1 : 0);
        if (colours_ == 4 || IsLab(samples_)) {
            rgb_.resize(std::size_t{3} * old.size.width);
            lab_.resize(IsLab(samples_) ? rgb_.size() : 0);
        }
    }

    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        from_->Read(stored_.data());
        if (!rgb_.empty()) Convert();
        for (std::size_t x = 0; x < form_.size.width; ++x, row += form_.channels) Pixel(x, row);
    }

private:
    void Pixel(std::size_t x, std::uint8_t* to) const noexcept {
        const RasterForm& old = from_->Form();
        const std::size_t at = x * old.channels;
        const std::size_t count = form_.channels - (form_.hasAlpha ? 1 : 0);
        for (std::size_t c = 0; c < count; ++c)
            to[c] = rgb_.empty() ? Eight(Sample(stored_.data(), at + c, old.bits), old.bits)
                                 : rgb_[3 * x + c];
        if (form_.hasAlpha) {
            to[count] = Eight(Sample(stored_.data(), at + colours_, old.bits), old.bits);
            if (old.isPremultiplied)
                for (std::size_t c = 0; c < count; ++c) to[c] = Divided(to[c], to[count]);
        }
        if (samples_ == PhotoSamples::WhiteIsZero) to[0] = static_cast<std::uint8_t>(255 - to[0]);
    }

    void Convert() {
        const RasterForm& old = from_->Form();
        if (!lab_.empty()) {
            for (std::size_t x = 0; x < old.size.width; ++x)
                LabPixel(stored_.data(), x * old.channels, old.bits,
                         samples_ == PhotoSamples::SignedLab, &lab_[3 * x]);
            toSrgb_->Convert(lab_.data(), rgb_.data(), old.size.width);
        } else if (toSrgb_) {
            toSrgb_->Convert(stored_.data(), rgb_.data(), old.size.width);
        } else {
            MixInks();
        }
    }

    // Without a profile: each ink takes its share of the light.
    void MixInks() noexcept {
        const RasterForm& old = from_->Form();
        for (std::size_t x = 0; x < old.size.width; ++x) {
            const auto ink = [&](std::size_t c) -> unsigned {
                return 255u -
                       Eight(Sample(stored_.data(), x * old.channels + c, old.bits), old.bits);
            };
            for (std::size_t c = 0; c < 3; ++c)
                rgb_[3 * x + c] = static_cast<std::uint8_t>((ink(c) * ink(3) + 127) / 255);
        }
    }

    std::unique_ptr<RowReader> from_;
    PhotoSamples samples_;
    std::optional<ToSrgb> toSrgb_;
    std::size_t colours_ = 0;
    RasterForm form_;
    PictureBytes stored_;
    PictureBytes rgb_;               // of the row, where the samples aren't RGB
    std::vector<std::uint16_t> lab_; // of the row, where they are Lab
};

std::optional<ToSrgb> ConversionOf(const DecodedPhoto& photo) {
    const RasterForm& form = photo.rows->Form();
    if (IsLab(photo.samples)) return ToSrgb::FromLab();
    if (photo.samples == PhotoSamples::Cmyk && SpaceOfProfile(photo.profile) == ProfileSpace::Cmyk)
        return ToSrgb::FromCmyk(photo.profile, form.bits, form.channels - 4);
    return {};
}

bool Fits(const PictureBytes& profile, PhotoSamples samples) noexcept {
    const ProfileSpace space = SpaceOfProfile(profile);
    const bool isGrey = samples == PhotoSamples::Grey || samples == PhotoSamples::WhiteIsZero;
    return isGrey ? space == ProfileSpace::Grey
                  : samples == PhotoSamples::Rgb && space == ProfileSpace::Rgb;
}

} // namespace

PlainPhoto PlainPhotoOf(DecodedPhoto& photo) {
    PlainPhoto plain;
    plain.rows = std::make_unique<PlainRows>(photo, ConversionOf(photo));
    if (Fits(photo.profile, photo.samples)) plain.profile = std::move(photo.profile);
    return plain;
}

} // namespace transforms
