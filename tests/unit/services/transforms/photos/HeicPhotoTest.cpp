// HEIC photos by the library in its DLL: turned once, whole, and refused when they are not whole.
#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/transforms/photos/CarriedExif.h"
#include "services/transforms/photos/HeifLibrary.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

ConvertedPhoto Sample(const std::wstring& name) { return Convert(PhotoSample(name)); }

TEST(HeicPhoto, BecomesAJpeg) {
    const auto photo = Sample(L"plain.heic");
    ASSERT_EQ(photo.outcome, PictureOutcome::Written);
    EXPECT_FALSE(photo.IsPng());
    ExpectQuarters(photo.Pixels());
    EXPECT_EQ(ParseJpeg(photo.file).across, 2); // as in the source
}

TEST(HeicPhoto, IsTurnedOnceAsItsContainerAsks) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto photo = Sample(L"turn" + std::to_wstring(orientation) + L".heic");
        ASSERT_EQ(photo.outcome, PictureOutcome::Written) << orientation;
        ExpectQuarters(photo.Pixels());
    }
}

// The container of the first sample turns nothing; the EXIF data of both name orientation 6.
TEST(HeicPhoto, IsNotTurnedByTheOrientationInItsExifData) {
    ExpectQuarters(Sample(L"remark.heic").Pixels());
    ExpectQuarters(Sample(L"turn6.heic").Pixels());
}

TEST(HeicPhoto, KeepsMakerAndDateWithOrientationOne) {
    const std::string exif = Sample(L"turn6.heic").Exif();
    EXPECT_NE(exif.find("MakerCo"), std::string::npos);
    EXPECT_NE(exif.find("2024:05:06 07:08:09"), std::string::npos);
    const PictureBytes bytes(exif.begin(), exif.end());
    MemorySource source(bytes);
    EXPECT_EQ(ExifOrientation(TiffDirectories(source)), 1u);
}

TEST(HeicPhoto, IsPutTogetherFromItsTiles) { ExpectQuarters(Sample(L"grid.heic").Pixels()); }

TEST(HeicPhoto, BecomesAPngOnlyWithTransparentPixels) {
    const auto alpha = Sample(L"alpha.heic");
    ASSERT_TRUE(alpha.IsPng());
    const Raster pixels = alpha.Pixels();
    ASSERT_EQ(pixels.channels, 4u);
    EXPECT_EQ(pixels.At(10, 10, 3), 255u);
    EXPECT_NEAR(static_cast<int>(pixels.At(80, 50, 3)), 64, 4);
    const auto opaque = Sample(L"opaque.heic");
    EXPECT_FALSE(opaque.IsPng());
    ExpectQuarters(opaque.Pixels());
}

TEST(HeicPhoto, OfTenBitsBecomesOneOfEight) { ExpectQuarters(Sample(L"deep.heic").Pixels()); }

TEST(HeicPhoto, KeepsItsColourProfile) {
    EXPECT_EQ(Sample(L"profile.heic").Profile().substr(12, 8), "mntrRGB ");
    EXPECT_EQ(Sample(L"plain.heic").Profile(), "");
}

TEST(HeicPhoto, GetsAProfileForColoursThatItNamesByNumbers) {
    const auto photo = Sample(L"p3.heic");
    EXPECT_EQ(photo.Profile().substr(12, 8), "mntrRGB ");
    EXPECT_EQ(photo.file, Sample(L"p3.heic").file);
}

TEST(HeicPhoto, GivesEqualBytesForEqualFiles) {
    EXPECT_EQ(Sample(L"grid.heic").file, Sample(L"grid.heic").file);
}

TEST(HeicPhoto, PassesWhenItMoves) {
    const auto photo = Sample(L"moving.heic");
    EXPECT_EQ(photo.outcome, PictureOutcome::Unchanged);
    EXPECT_TRUE(photo.file.empty());
}

TEST(HeicPhoto, IsDamagedWhenItIsCut) {
    for (const wchar_t* name : {L"plain.heic", L"grid.heic", L"turn6.heic"}) {
        const auto file = PhotoSample(name);
        for (std::size_t tenths = 1; tenths < 10; ++tenths) {
            const auto end = file.begin() + static_cast<std::ptrdiff_t>(file.size() * tenths / 10);
            const auto photo = Convert(PictureBytes(file.begin(), end));
            EXPECT_NE(photo.outcome, PictureOutcome::Written) << tenths;
            EXPECT_TRUE(photo.file.empty()) << tenths;
        }
    }
}

TEST(HeicPhoto, IsRefusedWhenItsSizeIsNotThatOfItsPixels) {
    EXPECT_EQ(Sample(L"other.heic").outcome, PictureOutcome::Damaged);
}

TEST(HeicPhoto, OfTwoHundredMegapixelsIsRefusedBeforeItIsDecoded) {
    EXPECT_EQ(Sample(L"huge.heic").outcome, PictureOutcome::TooLarge);
    PictureControl control;
    control.limits.pixels = kPhotoWidth * kPhotoHeight - 1;
    EXPECT_EQ(Convert(PhotoSample(L"grid.heic"), PhotoRequestOfTest(), control).outcome,
              PictureOutcome::TooLarge);
}

// The sample with another size in its container than its pixels have.
PictureBytes Claiming(const std::wstring& name, std::uint32_t width, std::uint32_t height) {
    PictureBytes file = PhotoSample(name);
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    std::size_t at = text.find("ispe");
    if (at == text.npos) throw std::runtime_error("the sample names no size");
    at += 8; // after the name, its version and flags
    for (const std::uint32_t number : {width, height}) {
        for (int shift = 24; shift >= 0; shift -= 8)
            file[at++] = static_cast<std::uint8_t>(number >> shift);
    }
    return file;
}

// Within the limit the file is read, and turns out not to have the pixels that it claims.
TEST(HeicPhoto, MayHaveAHundredMegapixels) {
    EXPECT_EQ(Convert(Claiming(L"plain.heic", 8192, 12'288)).outcome, PictureOutcome::Damaged);
    EXPECT_EQ(Convert(Claiming(L"plain.heic", 8192, 12'289)).outcome, PictureOutcome::TooLarge);
}

TEST(HeicPhoto, OfTenBitsMayHaveSixtySevenMegapixels) {
    EXPECT_EQ(Convert(Claiming(L"deep.heic", 8192, 8192)).outcome, PictureOutcome::Damaged);
    EXPECT_EQ(Convert(Claiming(L"deep.heic", 8192, 8193)).outcome, PictureOutcome::TooLarge);
}

TEST(HeicPhoto, DoesNotEndTheProcessWhateverByteIsChanged) {
    for (const wchar_t* name : {L"plain.heic", L"grid.heic"}) {
        const auto file = PhotoSample(name);
        PictureControl control;
        control.limits.pixels = 1'000'000;
        for (std::size_t at = 0; at < file.size(); at += 1 + file.size() / 40) {
            auto changed = file;
            changed[at] ^= 0xFF;
            EXPECT_TRUE(Convert(changed, PhotoRequestOfTest(), control).IsAsReported()) << at;
        }
    }
}

TEST(HeicPhoto, IsLeftWhenTheWorkIsCancelled) {
    const std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    EXPECT_EQ(Convert(PhotoSample(L"plain.heic"), PhotoRequestOfTest(), control).outcome,
              PictureOutcome::Cancelled);
}

PictureOutcome OutcomeWith(const std::wstring& library) {
    PhotoRequest request;
    request.heifLibrary = library;
    const auto photo = Convert(PhotoSample(L"plain.heic"), request);
    EXPECT_TRUE(photo.file.empty());
    return photo.outcome;
}

// The system of the tests has no codec for HEIC either.
TEST(HeicPhotoLibrary, MayBeMissing) {
    const TestFolder folder;
    EXPECT_EQ(OutcomeWith(folder / L"libheif.dll"), PictureOutcome::Unsupported);
    EXPECT_EQ(OutcomeWith(L""), PictureOutcome::Unsupported);
}

TEST(HeicPhotoLibrary, IsNotUsedWhenItIsNoSuchLibrary) {
    const TestFolder folder;
    EXPECT_EQ(OutcomeWith(folder.File(L"libheif.dll", "no library")), PictureOutcome::Unsupported);
    EXPECT_EQ(OutcomeWith(L"C:\\windows\\system32\\version.dll"), PictureOutcome::Unsupported);
}

TEST(HeicPhotoLibrary, IsNotTakenFromTheCurrentFolder) {
    const TestFolder folder;
    const auto whole = *ObLib::PathBesideModule(nullptr, kHeifLibraryFileName);
    ASSERT_TRUE(CopyFileW(whole.c_str(), (folder / L"libheif.dll").c_str(), TRUE));
    ASSERT_TRUE(SetCurrentDirectoryW(folder.Path().c_str()));
    EXPECT_EQ(OutcomeWith(L"libheif.dll"), PictureOutcome::Unsupported);
    EXPECT_EQ(OutcomeWith(L".\\libheif.dll"), PictureOutcome::Unsupported);
    SetCurrentDirectoryW(L"C:\\");
}

// By the container, without a pixel decoded.
TEST(HeicPhoto, IsMadeSmallerInOnePass) {
    const PictureBytes file = PhotoSample(L"turn6.heic");
    MemorySource source(file);
    EXPECT_EQ(SizeOfPhoto(source, PhotoRequestOfTest(), {}),
              (PictureSize{kPhotoWidth, kPhotoHeight}));
    MemoryTarget target;
    ShrinkPhoto(source, target, PhotoRequestOfTest(), {.longestEdge = 48}, {});
    const Raster pixels = ParseJpeg(target.bytes).raster;
    EXPECT_EQ(pixels.width, 48u);
    EXPECT_EQ(pixels.height, 32u);
    EXPECT_GT(pixels.At(5, 5, 0), 190u); // red at the top left
}

} // namespace
