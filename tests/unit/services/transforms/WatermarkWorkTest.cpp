// The request that lays a text over a file, carried out on files: what is written and reported.
#include "services/transforms/WatermarkWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "tests/support/Allocations.h"
#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/SteppedClock.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"
#include "tests/unit/services/transforms/documents/LargeSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace obcontract;
using obtest::PictureBytes;
using transforms::WorkEnd;

namespace {

class WatermarkWork : public obtest::FileRequestFixture {
protected:
    static std::vector<std::byte> Settings(WorkPlace place, std::uint32_t opacity,
                                           const std::wstring& text) {
        const WorkWatermark record{place, opacity};
        std::vector<std::byte> bytes(sizeof record + text.size() * sizeof(wchar_t));
        std::memcpy(bytes.data(), &record, sizeof record);
        std::memcpy(bytes.data() + sizeof record, text.data(), text.size() * sizeof(wchar_t));
        return bytes;
    }
    std::optional<WorkEnd> Add(const std::string& file,
                               DWORD targetAccess = GENERIC_READ | GENERIC_WRITE) {
        WriteSource(file);
        return transforms::AddWatermark(Request(WorkKind::Watermark, settings_, targetAccess),
                                        *channel_);
    }
    static std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }

    std::vector<std::byte> settings_ = Settings(WorkPlace::BottomRight, 100, L"Ann Example");
};

TEST_F(WatermarkWork, IsWrittenOnAPictureInItsPlace) {
    const obtest::Raster white{600, 400, 3, 8, PictureBytes(600 * 400 * 3, 255)};
    const auto isDarkIn = [&](unsigned left, unsigned top) {
        const std::string target = Target();
        const auto read = obtest::ParsePng({target.begin(), target.end()});
        for (unsigned y = top; y < top + 100; ++y)
            for (unsigned x = left; x < left + 200; ++x)
                if (read.At(x, y, 0) < 200) return true;
        return false;
    };
    ExpectChanged(Add(Text(obtest::MakePng(white))));
    EXPECT_TRUE(isDarkIn(400, 300)); // the dark edge of white letters
    EXPECT_FALSE(isDarkIn(0, 0));
    settings_ = Settings(WorkPlace::TopLeft, 100, L"Ann Example");
    ExpectChanged(Add(Text(obtest::MakePng(white))));
    EXPECT_TRUE(isDarkIn(0, 0));
    EXPECT_FALSE(isDarkIn(400, 300));
}

TEST_F(WatermarkWork, IsOnThePagesOfAPdf) {
    ExpectChanged(Add(samples::OnePage().File()));
    EXPECT_NE(samples::Unpacked(Target()).find("/ObStamp1 Do"), std::string::npos);
}

TEST_F(WatermarkWork, IsOnThePagesOfAnEncryptedPdfWhosePasswordIsGiven) {
    for (const samples::Cipher cipher : samples::kCiphers) {
        const std::string file = samples::Encrypted(samples::OnePage().File(), {cipher});
        EXPECT_EQ(FailureOf(Add(file)), WorkFailure::Encrypted);
        WriteSource(file);
        auto request = Request(WorkKind::Watermark, settings_);
        request.password = ObLib::Secret("secret");
        const auto end = transforms::AddWatermark(request, *channel_);
        request = {}; // closes the target
        ExpectChanged(end);
        EXPECT_NE(samples::Unpacked(Target(), "secret").find("/ObStamp1 Do"), std::string::npos);
        EXPECT_THROW(samples::Unpacked(Target()), QPDFExc);
    }
}

TEST_F(WatermarkWork, ReportsOnceASecondThatAPdfOf5000PagesIsWorkedOn) {
    const obtest::SteppedClock clock(10); // so that each hundredth step is a second
    ASSERT_TRUE(clock.Ok());
    ExpectChanged(Add(samples::ManyPages(5000, 300)));
    EXPECT_GT(Records(), 3 * 5000 / 100);
}

TEST_F(WatermarkWork, ReportsThatAPictureIsWorkedOn) {
    const obtest::SteppedClock clock(500);
    ASSERT_TRUE(clock.Ok());
    ExpectChanged(Add(Text(obtest::MakePng(obtest::Photo(400, 300, 3)))));
    EXPECT_GT(Records(), 300 / 2);
}

TEST_F(WatermarkWork, ReportsThatAPdfForbidsChanges) {
    const auto file = samples::Encrypted(samples::OnePage().File(),
                                         {samples::Cipher::Aes256, "", "owner", false});
    EXPECT_EQ(FailureOf(Add(file)), WorkFailure::Locked);
}

class PictureWatermarkWork : public WatermarkWork {
protected:
    std::optional<WorkEnd> AddPicture(const std::string& file, const PictureBytes& picture,
                                      WorkPlace place = WorkPlace::BottomRight,
                                      std::uint32_t opacity = 100) {
        WriteSource(file);
        EXPECT_TRUE(obtest::WriteFileContent(folder_ / L"logo", Text(picture)));
        const WorkPictureWatermark settings{place, opacity, 0};
        const auto bytes = std::as_bytes(std::span(&settings, 1));
        auto request = Request(WorkKind::PictureWatermark, {bytes.begin(), bytes.end()});
        request.picture = Open(L"logo", GENERIC_READ, OPEN_EXISTING);
        return transforms::AddPictureWatermark(request, *channel_);
    }
    static PictureBytes RedLogo() {
        obtest::Raster red{20, 10, 3, 8, {}};
        for (int pixel = 0; pixel < 200; ++pixel) red.bytes.insert(red.bytes.end(), {255, 0, 0});
        return obtest::MakePng(red);
    }
};

TEST_F(PictureWatermarkWork, LaysThePictureOverAPictureInItsPlace) {
    const obtest::Raster white{600, 400, 3, 8, PictureBytes(600 * 400 * 3, 255)};
    ExpectChanged(AddPicture(Text(obtest::MakePng(white)), RedLogo()));
    const std::string target = Target();
    const auto read = obtest::ParsePng({target.begin(), target.end()});
    // 100 by 50 pixels, 8 from the edge.
    EXPECT_EQ(read.At(600 - 8 - 50, 400 - 8 - 25, 1), 0u);
    EXPECT_EQ(read.At(600 - 8 - 50, 400 - 8 - 25, 0), 255u);
    EXPECT_EQ(read.At(600 - 4, 400 - 4, 1), 255u);
    EXPECT_EQ(read.At(600 - 8 - 110, 400 - 8 - 25, 1), 255u);
}

TEST_F(PictureWatermarkWork, LaysThePictureOverThePagesOfAPdf) {
    ExpectChanged(AddPicture(samples::OnePage().File(), RedLogo(), WorkPlace::Centre, 50));
    EXPECT_NE(samples::Unpacked(Target()).find("/ObStamp1 Do"), std::string::npos);
}

TEST_F(PictureWatermarkWork, ReportsAPictureThatCantBeUsed) {
    const std::string file = Text(obtest::MakePng(obtest::Photo(60, 40, 3)));
    auto cut = obtest::MakeJpeg(obtest::Photo(60, 40, 3));
    cut.resize(cut.size() / 2);
    for (const PictureBytes& picture :
         {PictureBytes{}, PictureBytes{'n', 'o'}, cut,
          obtest::MakeWebp(obtest::Photo(60, 40, 3), {.frames = 2})}) {
        EXPECT_EQ(FailureOf(AddPicture(file, picture)), WorkFailure::BadPicture);
        EXPECT_TRUE(Target().empty());
    }
    EXPECT_EQ(FailureOf(AddPicture("%PDF-1.7", RedLogo())), WorkFailure::Damaged);
    ExpectPassed(AddPicture("a text", RedLogo()), WorkOutcome::NotSupported);
}

// The attached file isn't to blame.
TEST_F(PictureWatermarkWork, ReportsAPictureThatTakesMoreMemoryThanThereIs) {
    constexpr std::size_t kPixels = std::size_t{1000} * 1000 * 4;
    const auto logo = obtest::MakePng(obtest::Photo(1000, 1000, 3));
    const std::string file = Text(obtest::MakePng(obtest::Photo(60, 40, 3)));
    ExpectChanged(AddPicture(file, logo));
    const obtest::FailingAllocations failing({.smallest = kPixels, .once = true});
    const auto end = AddPicture(file, logo);
    EXPECT_TRUE(failing.Failed());
    EXPECT_EQ(FailureOf(end), WorkFailure::BadPicture);
}

// The reports of the picture come first, then those of the file.
TEST_F(PictureWatermarkWork, ReportsMoreAndMoreFromThePictureToTheFile) {
    const obtest::SteppedClock clock(500); // so that every second step is a second
    ASSERT_TRUE(clock.Ok());
    constexpr int kRows = 3000; // more steps than a small file has bytes
    const auto logo = obtest::MakePng(obtest::Photo(20, kRows, 3));
    const std::string pdf = samples::OnePage().File();
    ASSERT_LT(pdf.size(), std::size_t{kRows});
    ExpectChanged(AddPicture(pdf, logo));
    EXPECT_GT(Records(), kRows / 2);
}

TEST_F(PictureWatermarkWork, ReportsMoreAndMoreFromThePictureToThePicture) {
    const obtest::SteppedClock clock(500);
    ASSERT_TRUE(clock.Ok());
    constexpr int kRows = 3000;
    const auto logo = obtest::MakePng(obtest::Photo(20, kRows, 3));
    ExpectChanged(AddPicture(Text(obtest::MakePng(obtest::Photo(400, 300, 3))), logo));
    EXPECT_GT(Records(), kRows / 2 + 300 / 2);
}

TEST_F(PictureWatermarkWork, TakesNoValueThatTheContractLacks) {
    const std::string file = Text(obtest::MakePng(obtest::Photo(60, 40, 3)));
    EXPECT_FALSE(AddPicture(file, RedLogo(), WorkPlace{0}));
    EXPECT_FALSE(AddPicture(file, RedLogo(), WorkPlace{6}));
    EXPECT_FALSE(AddPicture(file, RedLogo(), WorkPlace::Centre, 0));
    EXPECT_FALSE(AddPicture(file, RedLogo(), WorkPlace::Centre, 101));
}

TEST_F(WatermarkWork, PassesWhatHasNoPlaceForIt) {
    const auto photo = obtest::Photo(60, 40, 3);
    ExpectPassed(Add(Text(obtest::MakeWebp(photo, {.frames = 2}))), WorkOutcome::Unchanged);
    ExpectPassed(Add(Text(obtest::MakeTiff(photo, {.pages = 2}))), WorkOutcome::Unchanged);
    ExpectPassed(Add(Text(obtest::MakeJpeg(obtest::Photo(400, 24, 3)))), WorkOutcome::Unchanged);
    ExpectPassed(Add(samples::OnePage("/CropBox [0 0 5 5]").File()), WorkOutcome::Unchanged);
    ExpectPassed(Add("a text"), WorkOutcome::NotSupported);
    ExpectPassed(Add(""), WorkOutcome::NotSupported);
}

TEST_F(WatermarkWork, ReportsWhyItCannotBeWritten) {
    std::string picture = Text(obtest::MakeJpeg(obtest::Photo(400, 300, 3)));
    EXPECT_EQ(FailureOf(Add(picture, GENERIC_READ)), WorkFailure::Unwritable); // as a full disk
    EXPECT_EQ(FailureOf(Add(samples::OnePage().File(), GENERIC_READ)), WorkFailure::Unwritable);
    picture.resize(picture.size() / 2);
    EXPECT_EQ(FailureOf(Add(picture)), WorkFailure::Damaged);
    EXPECT_EQ(FailureOf(Add("%PDF-1.7")), WorkFailure::Damaged);
    samples::PdfBuilder pdf = samples::OnePage("", "/Perms <</DocMDP 5 0 R>>");
    pdf.Add("<</Type /Sig /ByteRange [0 1 2 3] /Contents <00>>>");
    EXPECT_EQ(FailureOf(Add(pdf.File())), WorkFailure::Signed);
}

TEST_F(WatermarkWork, TakesNoValueThatTheContractLacks) {
    const std::string picture = Text(obtest::MakePng(obtest::Photo(60, 40, 3)));
    for (const auto& settings :
         {Settings(WorkPlace{0}, 50, L"a"), Settings(WorkPlace{6}, 50, L"a"),
          Settings(WorkPlace::Centre, 0, L"a"), Settings(WorkPlace::Centre, 101, L"a")}) {
        settings_ = settings;
        EXPECT_FALSE(Add(picture));
    }
    settings_ = Settings(WorkPlace::Centre, 50, L"ab");
    settings_.pop_back(); // half a unit
    EXPECT_FALSE(Add(picture));
    settings_ = Settings(WorkPlace::Centre, 50, std::wstring(L"a\0b", 3));
    EXPECT_FALSE(Add(picture));
}

} // namespace
