// Pictures that are damaged, too large, or made to harm.
#include <gtest/gtest.h>

#include <atomic>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

PictureBytes SmallGif() {
    const std::string file(
        "GIF89a\2\0\2\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\2\0\2\0\0\2\3\x44\2\5\0;", 35);
    return {file.begin(), file.end()};
}

using Maker = PictureBytes (*)();
const Maker kEveryKind[] = {
    [] { return MakeJpeg(Photo(48, 32, 3)); },
    [] { return MakeJpeg(Photo(48, 32, 3), {.progressive = true}); },
    [] { return MakeJpeg(Photo(48, 32, 4), {.adobe = true}); },
    [] { return MakePng(Photo(48, 32, 3)); },
    [] { return MakePng(Photo(48, 32, 4, 16), {.interlaced = true}); },
    [] { return MakeWebp(Photo(48, 32, 4)); },
    [] { return MakeTiff(Photo(48, 32, 3), {.compression = 5, .tiled = true}); },
    [] { return MakeTiff(Photo(48, 32, 3), {.pages = 2}); },
    [] { return MakeBmp(Photo(48, 32, 3)); },
    [] { return PhotoSample(L"plain.heic"); },
};

TEST(HostilePicturePdf, IsNotMadeOfAPictureThatIsCut) {
    for (const auto& make : kEveryKind) {
        const auto file = make();
        for (std::size_t tenths = 1; tenths < 10; tenths += 2) {
            const auto end = file.begin() + static_cast<std::ptrdiff_t>(file.size() * tenths / 10);
            const auto outcome = MakePdf(PictureBytes(file.begin(), end)).outcome;
            EXPECT_EQ(outcome, PictureOutcome::Damaged) << &make - kEveryKind << " " << tenths;
        }
    }
}

TEST(HostilePicturePdf, IsWholeOrNotMadeWhateverByteIsChanged) {
    PictureControl control;
    control.limits.pixels = 100'000;
    control.limits.memory = 4'000'000;
    std::vector<PictureBytes> files{SmallGif()};
    for (const auto& make : kEveryKind) files.push_back(make());
    int made = 0, refused = 0;
    for (const auto& file : files) {
        for (std::size_t at = 0; at < file.size(); at += 1 + file.size() / 40) {
            auto changed = file;
            changed[at] ^= 0xFF;
            const auto pdf = MakePdf(changed, control);
            const bool isMade = pdf.outcome == PictureOutcome::Written;
            ++(isMade ? made : refused);
            if (!isMade) continue;
            EXPECT_NO_THROW(pdf.Pages()) << &file - files.data() << " " << at;
        }
    }
    EXPECT_GT(made, 0);
    EXPECT_GT(refused, 0);
}

TEST(HostilePicturePdf, IsRefusedWhenItIsABomb) {
    PictureControl control;
    control.limits.pixels = 48 * 32 - 1;
    for (const auto& make : kEveryKind)
        EXPECT_EQ(MakePdf(make(), control).outcome, PictureOutcome::TooLarge) << &make - kEveryKind;
    control = {};
    control.limits.memory = 10'000;
    EXPECT_EQ(MakePdf(MakeJpeg(Photo(960, 640, 3), {.progressive = true}), control).outcome,
              PictureOutcome::TooLarge);
    EXPECT_EQ(MakePdf(MakeWebp(Photo(960, 640, 3)), control).outcome, PictureOutcome::TooLarge);
    // A few bytes that say they are a picture of 4,000 megapixels.
    auto gif = SmallGif();
    for (const std::size_t at : {24u, 25u, 26u, 27u}) gif[at] = 0xFF;
    EXPECT_EQ(MakePdf(gif).outcome, PictureOutcome::TooLarge);
}

TEST(HostilePicturePdf, IsLeftWhenTheWorkIsCancelled) {
    const std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    for (const auto& make : kEveryKind)
        EXPECT_EQ(MakePdf(make(), control).outcome, PictureOutcome::Cancelled)
            << &make - kEveryKind;
    EXPECT_EQ(MakePdf(SmallGif(), control).outcome, PictureOutcome::Cancelled);
}

class FullDisk final : public PictureTarget {
public:
    explicit FullDisk(std::uint64_t room) noexcept : room_(room) {}
    bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) override {
        return offset + from.size() <= room_;
    }
    bool ReadBack(std::uint64_t, std::span<std::uint8_t>, std::size_t&) override { return false; }

private:
    std::uint64_t room_;
};

TEST(HostilePicturePdf, ReportsAFullDiskAtEachPlace) {
    for (const auto& file : {MakeJpeg(Photo(48, 32, 3)), MakePng(Photo(48, 32, 4))}) {
        const std::size_t size = MakePdf(file).file.size();
        for (const std::size_t room : {std::size_t{0}, size / 10, size / 2, size - 1}) {
            MemorySource source(file);
            FullDisk target(room);
            EXPECT_EQ(MakePicturePdf(source, target, {}, {}), PictureOutcome::WriteFailed) << room;
        }
    }
}

} // namespace
