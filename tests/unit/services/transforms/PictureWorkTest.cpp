// The request that makes a picture smaller, carried out on files: what is written, what is
// reported.
#include "services/transforms/PictureWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <psapi.h>

#include <optional>
#include <string>

#include <jpeglib.h>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/worker/ReplyReader.h"
#include "services/transforms/MeasureWork.h"
#include "services/transforms/PhotoWork.h"
#include "services/transforms/PictureWatch.h"
#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/SteppedClock.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace obcontract;
using transforms::PictureBytes;
using transforms::WorkEnd;

namespace {

class PictureWork : public obtest::FileRequestFixture {
protected:
    template <class Settings>
    static std::vector<std::byte> BytesOf(const Settings& settings) {
        const auto bytes = std::as_bytes(std::span(&settings, 1));
        return {bytes.begin(), bytes.end()};
    }
    std::optional<WorkEnd> ResizeFile(const WorkResize& settings) {
        return transforms::Resize(Request(WorkKind::Resize, BytesOf(settings)), *channel_);
    }
    std::optional<WorkEnd> Resize(const PictureBytes& picture, const WorkResize& settings) {
        WriteSource(Text(picture));
        return ResizeFile(settings);
    }
    static std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
    PictureBytes TargetBytes() const {
        const std::string content = Target();
        return {content.begin(), content.end()};
    }
    static WorkResize ToEdge(std::uint64_t pixels) { return {WorkAim::LongestEdge, 90, pixels}; }
};

TEST_F(PictureWork, WritesEachFormSmaller) {
    const auto photo = obtest::Photo(400, 300, 3);
    ExpectChanged(Resize(obtest::MakeJpeg(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseJpeg(TargetBytes()).raster.width, 200u);
    ExpectChanged(Resize(obtest::MakePng(photo), {WorkAim::Percent, 90, 25}));
    EXPECT_EQ(obtest::ParsePng(TargetBytes()).height, 75u);
    ExpectChanged(Resize(obtest::MakeTiff(photo), ToEdge(200))); // goes back to its header
    EXPECT_EQ(obtest::ParseTiff(TargetBytes()).raster.width, 200u);
    ExpectChanged(Resize(obtest::MakeWebp(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseWebp(TargetBytes()).raster.width, 200u);
    ExpectChanged(Resize(obtest::MakeBmp(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseBmp(TargetBytes()).raster.width, 200u);
}

TEST_F(PictureWork, MeetsAnAimInBytes) {
    const auto picture = obtest::MakeJpeg(obtest::Photo(800, 600, 3), {.quality = 98});
    ASSERT_GT(picture.size(), 60'000u);
    ExpectChanged(Resize(picture, {WorkAim::Bytes, 1, 40'000}));
    EXPECT_LE(Target().size(), 40'000u);
    EXPECT_GT(Target().size(), 34'000u);
}

TEST_F(PictureWork, PassesWhatIsSmallEnoughAnimatedOrNoPicture) {
    const auto photo = obtest::Photo(400, 300, 3);
    ExpectPassed(Resize(obtest::MakeJpeg(photo), ToEdge(400)), WorkOutcome::Unchanged);
    ExpectPassed(Resize(obtest::MakeWebp(photo, {.frames = 3}), ToEdge(20)),
                 WorkOutcome::Unchanged);
    ExpectPassed(Resize(obtest::MakeTiff(photo, {.pages = 2}), ToEdge(20)), WorkOutcome::Unchanged);
    ExpectPassed(Resize({'t', 'e', 'x', 't'}, ToEdge(20)), WorkOutcome::NotSupported);
    ExpectPassed(Resize({}, ToEdge(20)), WorkOutcome::NotSupported);
}

TEST_F(PictureWork, ReportsWhyAPictureCannotBeMadeSmaller) {
    auto picture = obtest::MakeJpeg(obtest::Photo(400, 300, 3));
    EXPECT_EQ(FailureOf(Resize(picture, {WorkAim::Bytes, 1, 100})), WorkFailure::CannotFit);
    picture.resize(picture.size() / 2);
    EXPECT_EQ(FailureOf(Resize(picture, ToEdge(200))), WorkFailure::Damaged);
    // A header that promises 65,500 times 65,500 pixels.
    auto bomb = obtest::MakeJpeg(obtest::Photo(40, 30, 3));
    const std::size_t frame = Text(bomb).find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    for (const std::size_t at : {5, 7}) bomb[frame + at] = 0xff, bomb[frame + at + 1] = 0xdc;
    EXPECT_EQ(FailureOf(Resize(bomb, ToEdge(200))), WorkFailure::TooLarge);
}

TEST_F(PictureWork, ReportsATargetThatCannotBeWritten) {
    WriteSource(Text(obtest::MakeJpeg(obtest::Photo(400, 300, 3))));
    // As on a full disk.
    const auto request = Request(WorkKind::Resize, BytesOf(ToEdge(200)), GENERIC_READ);
    EXPECT_EQ(FailureOf(transforms::Resize(request, *channel_)), WorkFailure::Unwritable);
}

// Work that goes on for seconds is seen to go on; the manager's reader accepts the records.
TEST_F(PictureWork, ReportsItsStepsWhileTimePasses) {
    transforms::PictureWatch watch(*channel_);
    const ULONGLONG start = GetTickCount64();
    int steps = 0;
    DWORD there = 0;
    constexpr DWORD kTwoRecords = 2 * (sizeof(WorkHeader) + sizeof(WorkProgress));
    while (there < kTwoRecords && GetTickCount64() - start < 20000) {
        watch.Step();
        ++steps;
        ASSERT_TRUE(PeekNamedPipe(answered_.Get(), nullptr, 0, nullptr, &there, nullptr));
    }
    EXPECT_FALSE(watch.IsUnread());
    channel_.reset();
    providers::ReplyReader reader;
    reader.Begin();
    for (WorkHeader header; ObLib::ReadWhole(answered_.Get(), &header, sizeof header);) {
        std::byte payload[kLargestWorkPayload];
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, header.size));
        EXPECT_TRUE(reader.Take(header.kind, {payload, header.size}));
    }
    EXPECT_GT(reader.Progress().done, 0u);
    EXPECT_LE(reader.Progress().done, static_cast<std::uint64_t>(steps));
}

TEST_F(PictureWork, ReportsThatAPictureIsWorkedOn) {
    const obtest::SteppedClock clock(500); // so that every second step is a second
    ASSERT_TRUE(clock.Ok());
    ExpectChanged(Resize(obtest::MakePng(obtest::Photo(300, 400, 3)), ToEdge(200)));
    EXPECT_GT(Records(), 200 / 2);
}

// A search codes the picture several times.
TEST_F(PictureWork, ReportsThatASizeIsSearchedFor) {
    const obtest::SteppedClock clock(500);
    ASSERT_TRUE(clock.Ok());
    const auto picture = obtest::MakeJpeg(obtest::Photo(800, 600, 3), {.quality = 98});
    ExpectChanged(Resize(picture, {WorkAim::Bytes, 1, 40'000}));
    EXPECT_GT(Records(), 600 / 2);
}

TEST_F(PictureWork, ReportsThatAPhotoIsConverted) {
    const obtest::SteppedClock clock(500);
    ASSERT_TRUE(clock.Ok());
    WriteSource(Text(obtest::MakeBmp(obtest::Photo(300, 400, 3))));
    const WorkPhoto settings{90, WorkPhotoKinds::All};
    // The request's files are closed before the target is read.
    const auto end =
        transforms::ConvertPhotoFile(Request(WorkKind::ConvertPhoto, BytesOf(settings)), *channel_);
    ExpectChanged(end);
    EXPECT_GT(Records(), 400 / 2);
}

TEST_F(PictureWork, ReportsThatAFileIsMeasured) {
    constexpr int kBlocks = 5;
    const obtest::SteppedClock clock(1000); // so that each step is a second
    ASSERT_TRUE(clock.Ok());
    WriteSource(std::string(std::size_t{kBlocks} << 20, 'x'));
    const auto end =
        transforms::Measure(Request(WorkKind::Measure, BytesOf(WorkPlain{})), *channel_);
    ASSERT_TRUE(end);
    EXPECT_EQ(end->outcome, WorkOutcome::Changed);
    EXPECT_EQ(Records(), kBlocks);
}

TEST_F(PictureWork, EndsWhenTheManagerNoLongerReads) {
    transforms::PictureWatch watch(*channel_);
    answered_.Reset();
    const ULONGLONG start = GetTickCount64();
    while (!watch.IsUnread() && GetTickCount64() - start < 20000) watch.Step();
    EXPECT_TRUE(watch.Control().IsCancelled());
    EXPECT_FALSE(transforms::EndOfPicture(transforms::PictureOutcome::Cancelled, 0));
}

// Writes a baseline JPEG of 200 megapixels row by row.
void WriteHugeJpeg(const std::wstring& path) {
    FILE* const file = _wfopen(path.c_str(), L"wb");
    ASSERT_NE(file, nullptr);
    jpeg_error_mgr errors{};
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = 20000;
    jpeg.image_height = 10000;
    jpeg.input_components = 1;
    jpeg.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    PictureBytes row(jpeg.image_width, 0x80);
    JSAMPROW rows = row.data();
    while (jpeg.next_scanline < jpeg.image_height) jpeg_write_scanlines(&jpeg, &rows, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    fclose(file);
}

std::size_t MostMemory() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory.PeakWorkingSetSize;
}

TEST_F(PictureWork, TakesAPictureOf200MegapixelsThroughLittleMemory) {
    WriteHugeJpeg(folder_ / L"source");
    const std::size_t before = MostMemory();
    ExpectChanged(ResizeFile(ToEdge(2048)));
    EXPECT_LT(MostMemory() - before, std::size_t{64} << 20);
    EXPECT_EQ(obtest::ParseJpeg(TargetBytes()).raster.width, 2048u);
}

} // namespace
