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
#include "services/transforms/PictureWatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace obcontract;
using ObLib::UniqueKernelHandle;
using transforms::PictureBytes;
using transforms::WorkChannel;
using transforms::WorkEnd;

namespace {

class PictureWork : public testing::Test {
protected:
    void SetUp() override {
        UniqueKernelHandle replies;
        ASSERT_TRUE(CreatePipe(answered_.Put(), replies.Put(), nullptr, 1 << 20));
        channel_.emplace(UniqueKernelHandle(), std::move(replies));
    }

    UniqueKernelHandle Open(const wchar_t* name, DWORD access, DWORD how) const {
        return UniqueKernelHandle(
            CreateFileW((folder_ / name).c_str(), access, 0, nullptr, how, 0, nullptr));
    }
    std::optional<WorkEnd> ResizeFile(const WorkResize& settings) {
        transforms::WorkRequest request;
        request.kind = WorkKind::Resize;
        const auto bytes = std::as_bytes(std::span(&settings, 1));
        request.settings.assign(bytes.begin(), bytes.end());
        request.source = Open(L"source", GENERIC_READ, OPEN_EXISTING);
        request.target = Open(L"target", GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
        return transforms::Resize(request, *channel_);
    }
    std::optional<WorkEnd> Resize(const PictureBytes& picture, const WorkResize& settings) {
        EXPECT_TRUE(obtest::WriteFileContent(folder_ / L"source", Text(picture)));
        return ResizeFile(settings);
    }
    static std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
    PictureBytes Target() const {
        const std::string content = *obtest::ReadFileContent(folder_ / L"target");
        return {content.begin(), content.end()};
    }
    // Expects the outcome and that nothing was written.
    void ExpectPassed(const std::optional<WorkEnd>& end, WorkOutcome outcome) {
        ASSERT_TRUE(end);
        EXPECT_FALSE(end->failure);
        EXPECT_EQ(end->outcome, outcome);
        EXPECT_TRUE(Target().empty());
    }
    void ExpectShrunk(const std::optional<WorkEnd>& end) {
        ASSERT_TRUE(end);
        ASSERT_FALSE(end->failure);
        EXPECT_EQ(end->outcome, WorkOutcome::Changed);
        EXPECT_EQ(end->size, Target().size());
    }
    static WorkResize ToEdge(std::uint64_t pixels) { return {WorkAim::LongestEdge, 90, pixels}; }

    const obtest::TestFolder folder_;
    UniqueKernelHandle answered_;
    std::optional<WorkChannel> channel_;
};

TEST_F(PictureWork, WritesEachFormSmaller) {
    const auto photo = obtest::Photo(400, 300, 3);
    ExpectShrunk(Resize(obtest::MakeJpeg(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseJpeg(Target()).raster.width, 200u);
    ExpectShrunk(Resize(obtest::MakePng(photo), {WorkAim::Percent, 90, 25}));
    EXPECT_EQ(obtest::ParsePng(Target()).height, 75u);
    ExpectShrunk(Resize(obtest::MakeTiff(photo), ToEdge(200))); // goes back to its header
    EXPECT_EQ(obtest::ParseTiff(Target()).raster.width, 200u);
    ExpectShrunk(Resize(obtest::MakeWebp(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseWebp(Target()).raster.width, 200u);
    ExpectShrunk(Resize(obtest::MakeBmp(photo), ToEdge(200)));
    EXPECT_EQ(obtest::ParseBmp(Target()).raster.width, 200u);
}

TEST_F(PictureWork, MeetsAnAimInBytes) {
    const auto picture = obtest::MakeJpeg(obtest::Photo(800, 600, 3), {.quality = 98});
    ASSERT_GT(picture.size(), 60'000u);
    ExpectShrunk(Resize(picture, {WorkAim::Bytes, 1, 40'000}));
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
    const auto failure = [](const std::optional<WorkEnd>& end) {
        return end && end->failure ? *end->failure : WorkFailure{};
    };
    EXPECT_EQ(failure(Resize(picture, {WorkAim::Bytes, 1, 100})), WorkFailure::CannotFit);
    picture.resize(picture.size() / 2);
    EXPECT_EQ(failure(Resize(picture, ToEdge(200))), WorkFailure::Damaged);
    // A header that promises 65,500 times 65,500 pixels.
    auto bomb = obtest::MakeJpeg(obtest::Photo(40, 30, 3));
    const std::size_t frame = Text(bomb).find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    for (const std::size_t at : {5, 7}) bomb[frame + at] = 0xff, bomb[frame + at + 1] = 0xdc;
    EXPECT_EQ(failure(Resize(bomb, ToEdge(200))), WorkFailure::TooLarge);
}

TEST_F(PictureWork, ReportsATargetThatCannotBeWritten) {
    const auto picture = obtest::MakeJpeg(obtest::Photo(400, 300, 3));
    ASSERT_TRUE(obtest::WriteFileContent(folder_ / L"source", Text(picture)));
    const WorkResize settings = ToEdge(200);
    transforms::WorkRequest request;
    const auto bytes = std::as_bytes(std::span(&settings, 1));
    request.settings.assign(bytes.begin(), bytes.end());
    request.source = Open(L"source", GENERIC_READ, OPEN_EXISTING);
    request.target = Open(L"target", GENERIC_READ, CREATE_ALWAYS); // as a full disk
    const auto end = transforms::Resize(request, *channel_);
    ASSERT_TRUE(end && end->failure);
    EXPECT_EQ(*end->failure, WorkFailure::Unwritable);
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
    ExpectShrunk(ResizeFile(ToEdge(2048)));
    EXPECT_LT(MostMemory() - before, std::size_t{64} << 20);
    EXPECT_EQ(obtest::ParseJpeg(Target()).raster.width, 2048u);
}

} // namespace
