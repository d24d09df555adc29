#include "services/transforms/photos/ColourProfile.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include <lcms2.h>

#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

struct CloseProfile {
    void operator()(void* profile) const noexcept { cmsCloseProfile(profile); }
};
using UniqueProfile = std::unique_ptr<void, CloseProfile>;

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const noexcept { cmsFreeToneCurve(curve); }
};
using UniqueCurve = std::unique_ptr<cmsToneCurve, FreeCurve>;

constexpr cmsCIExyY kD65{0.3127, 0.3290, 1.0};

struct PrimariesRow {
    unsigned number;
    cmsCIExyYTRIPLE primaries;
};
constexpr PrimariesRow kPrimaries[] = {
    {9, {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}}},  // BT.2020
    {12, {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}}, // Display P3
};

// Powers of light, as the colour library's curve of type 4; a straight beginning where c isn't 0.
struct CurveRow {
    unsigned number;
    double parameters[5];
};
constexpr CurveRow kCurves[] = {
    {4, {2.2, 1, 0, 0, 0}},
    {5, {2.8, 1, 0, 0, 0}},
    {8, {1.0, 1, 0, 0, 0}},
    {1, {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081}}, // BT.709 and those equal to it
    {6, {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081}},
    {14, {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081}},
    {15, {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081}},
};
// That of sRGB, and of numbers that the table lacks: curves for brighter screens aren't mapped.
constexpr double kSrgbCurve[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};

UniqueCurve CurveOf(unsigned number) {
    const auto row = std::ranges::find(kCurves, number, &CurveRow::number);
    const double* parameters = row == std::end(kCurves) ? kSrgbCurve : row->parameters;
    return UniqueCurve(cmsBuildParametricToneCurve(nullptr, 4, parameters));
}

[[noreturn]] void ThrowNoMemory() { throw PictureFailure{PictureOutcome::OutOfMemory}; }

// The library writes the time of the day into the header.
PictureBytes Saved(const UniqueProfile& profile) {
    constexpr std::size_t kDate = 24;
    constexpr std::uint8_t kFixedDate[12] = {0x07, 0xD0, 0, 1, 0, 1};
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size)) ThrowNoMemory();
    PictureBytes bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size)) ThrowNoMemory();
    std::copy(std::begin(kFixedDate), std::end(kFixedDate), bytes.begin() + kDate);
    return bytes;
}

constexpr std::size_t kHeaderSize = 128, kSpaceAt = 16, kMarkAt = 36;

} // namespace

ProfileSpace SpaceOfProfile(std::span<const std::uint8_t> profile) noexcept {
    if (profile.size() < kHeaderSize || std::memcmp(&profile[kMarkAt], "acsp", 4) != 0)
        return ProfileSpace::None;
    if (BigEndian32(profile) != profile.size()) return ProfileSpace::None;
    const auto is = [&](const char* space) {
        return std::memcmp(&profile[kSpaceAt], space, 4) == 0;
    };
    return is("GRAY")   ? ProfileSpace::Grey
           : is("RGB ") ? ProfileSpace::Rgb
           : is("CMYK") ? ProfileSpace::Cmyk
                        : ProfileSpace::None;
}

bool IsSoundProfile(std::span<const std::uint8_t> profile) noexcept {
    constexpr std::uint32_t kForms[] = {0, TYPE_GRAY_8, TYPE_RGB_8, TYPE_CMYK_8};
    const auto form = kForms[static_cast<std::size_t>(SpaceOfProfile(profile))];
    if (form == 0) return false;
    const UniqueProfile opened(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())));
    const UniqueProfile srgb(cmsCreate_sRGBProfile());
    if (!opened || !srgb) return false;
    cmsHTRANSFORM const way = cmsCreateTransform(opened.get(), form, srgb.get(), TYPE_RGB_8,
                                                 INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE);
    if (way) cmsDeleteTransform(way);
    return way != nullptr;
}

PictureBytes ProfileOfNumbers(unsigned primaries, unsigned transfer) {
    const auto row = std::ranges::find(kPrimaries, primaries, &PrimariesRow::number);
    if (row == std::end(kPrimaries)) return {};
    const UniqueCurve curve = CurveOf(transfer);
    if (!curve) ThrowNoMemory();
    cmsToneCurve* curves[] = {curve.get(), curve.get(), curve.get()};
    return Saved(UniqueProfile(cmsCreateRGBProfile(&kD65, &row->primaries, curves)));
}

void ToSrgb::Free::operator()(void* transform) const noexcept { cmsDeleteTransform(transform); }

ToSrgb::ToSrgb(void* fromProfile, std::uint32_t fromForm) {
    const UniqueProfile srgb(cmsCreate_sRGBProfile());
    if (!srgb) ThrowNoMemory();
    // Null also for a profile that has no way to other colours.
    transform_.reset(cmsCreateTransform(fromProfile, fromForm, srgb.get(), TYPE_RGB_8,
                                        INTENT_RELATIVE_COLORIMETRIC,
                                        cmsFLAGS_BLACKPOINTCOMPENSATION));
    if (!transform_) throw PictureFailure{PictureOutcome::Damaged};
}

ToSrgb ToSrgb::FromLab() {
    const UniqueProfile lab(cmsCreateLab4Profile(nullptr));
    if (!lab) ThrowNoMemory();
    return ToSrgb(lab.get(), TYPE_Lab_16);
}

ToSrgb ToSrgb::FromCmyk(std::span<const std::uint8_t> bytes, unsigned bits, unsigned extra) {
    const UniqueProfile profile(
        cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile) throw PictureFailure{PictureOutcome::Damaged};
    return ToSrgb(profile.get(),
                  COLORSPACE_SH(PT_CMYK) | CHANNELS_SH(4) | BYTES_SH(bits / 8) | EXTRA_SH(extra));
}

ToSrgb ToSrgb::FromPlain(std::span<const std::uint8_t> bytes, unsigned colours, unsigned extra) {
    const UniqueProfile profile(
        cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile) throw PictureFailure{PictureOutcome::Damaged};
    return ToSrgb(profile.get(), COLORSPACE_SH(colours == 1 ? PT_GRAY : PT_RGB) |
                                     CHANNELS_SH(colours) | BYTES_SH(1) | EXTRA_SH(extra));
}

void ToSrgb::Convert(const void* from, std::uint8_t* to, std::size_t pixels) const noexcept {
    cmsDoTransform(transform_.get(), from, to, static_cast<cmsUInt32Number>(pixels));
}

} // namespace transforms
