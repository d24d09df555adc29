// The request that makes a PDF of a picture, carried out on files: what is written and reported.
#include "services/transforms/PdfWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/SteppedClock.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace obcontract;
using obtest::PictureBytes;
using transforms::WorkEnd;

namespace {

class PdfWork : public obtest::FileRequestFixture {
protected:
    std::optional<WorkEnd> Make(const std::string& file, WorkPdf settings = {WorkPage::AsPicture},
                                DWORD targetAccess = GENERIC_READ | GENERIC_WRITE) {
        WriteSource(file);
        std::vector<std::byte> bytes(sizeof settings);
        std::memcpy(bytes.data(), &settings, sizeof settings);
        return transforms::MakePdf(Request(WorkKind::PictureToPdf, std::move(bytes), targetAccess),
                                   *channel_);
    }
    static std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
};

TEST_F(PdfWork, WritesAPdfWithTheJpegInIt) {
    const std::string picture = Text(obtest::MakeJpeg(obtest::Photo(400, 300, 3)));
    ExpectChanged(Make(picture));
    EXPECT_TRUE(Target().starts_with("%PDF-1.5"));
    EXPECT_NE(Target().find(picture), std::string::npos);
}

TEST_F(PdfWork, HasPagesOfTheSizeThatIsAsked) {
    const std::string picture = Text(obtest::MakePng(obtest::Photo(300, 400, 3)));
    ExpectChanged(Make(picture, {WorkPage::A4}));
    EXPECT_NE(Target().find("/MediaBox [0 0 595.276 841.89]"), std::string::npos);
    ExpectChanged(Make(picture, {WorkPage::Letter}));
    EXPECT_NE(Target().find("/MediaBox [0 0 612 792]"), std::string::npos);
}

TEST_F(PdfWork, PassesAnimationsAndOtherFiles) {
    ExpectPassed(Make(Text(obtest::MakeWebp(obtest::Photo(60, 40, 3), {.frames = 2}))),
                 WorkOutcome::Unchanged);
    for (const char* text : {"", "a text", "%PDF-1.7"})
        ExpectPassed(Make(text), WorkOutcome::NotSupported);
}

// The finding by which the manager knows that it was a photo.
TEST_F(PdfWork, ReportsThatAPhotoHasNoDecoder) {
    ExpectPassed(Make("FUJIFILMCCD-RAW 0201 what only its maker knows"), WorkOutcome::NotSupported);
    char bytes[256] = {};
    DWORD count = 0;
    ASSERT_TRUE(ReadFile(answered_.Get(), bytes, sizeof bytes, &count, nullptr));
    EXPECT_NE(std::string(bytes, count).find("no-decoder"), std::string::npos);
}

TEST_F(PdfWork, ReportsThatAPictureIsWorkedOn) {
    const obtest::SteppedClock clock(500); // so that every second step is a second
    ASSERT_TRUE(clock.Ok());
    ExpectChanged(Make(Text(obtest::MakePng(obtest::Photo(300, 400, 3)))));
    EXPECT_GT(Records(), 400 / 4);
}

TEST_F(PdfWork, ReportsWhyItCannotBeMade) {
    std::string picture = Text(obtest::MakeJpeg(obtest::Photo(400, 300, 3)));
    EXPECT_EQ(FailureOf(Make(picture, {WorkPage::A4}, GENERIC_READ)),
              WorkFailure::Unwritable); // as a full disk
    picture.resize(picture.size() / 2);
    EXPECT_EQ(FailureOf(Make(picture)), WorkFailure::Damaged);
}

TEST_F(PdfWork, TakesNoValueThatTheContractLacks) {
    const std::string picture = Text(obtest::MakePng(obtest::Photo(60, 40, 3)));
    for (const WorkPdf settings :
         {WorkPdf{WorkPage{0}}, WorkPdf{WorkPage{4}}, WorkPdf{WorkPage::A4, 1}})
        EXPECT_FALSE(Make(picture, settings));
}

} // namespace
