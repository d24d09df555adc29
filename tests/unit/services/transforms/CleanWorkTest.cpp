// The request that removes personal data, carried out on files: what is reported while a large
// document is read and written.
#include "services/transforms/CleanWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/SteppedClock.h"
#include "tests/unit/services/transforms/documents/LargeSamples.h"

using namespace obcontract;
using transforms::WorkEnd;

namespace {

class CleanWork : public obtest::FileRequestFixture {
protected:
    void SetUp() override {
        FileRequestFixture::SetUp();
        ASSERT_TRUE(clock_.Ok());
    }

    std::optional<WorkEnd> CleanIt(const std::string& file, WorkKind kind = WorkKind::Clean) {
        WriteSource(file);
        return transforms::Clean(Request(kind, std::vector<std::byte>(sizeof(WorkClean))),
                                 *channel_);
    }

    obtest::SteppedClock clock_{0};
};

constexpr int kReadAndWritten = 2; // the file fits into one block

TEST_F(CleanWork, ReportsNoStepsBeforeTimePasses) {
    ExpectChanged(CleanIt(samples::ManyPages(50)));
    EXPECT_EQ(Records(), kReadAndWritten);
}

TEST_F(CleanWork, ReportsOnceASecondThatAPdfOf5000PagesIsWorkedOn) {
    clock_.StepBy(100); // so that each tenth step is a second
    ExpectChanged(CleanIt(samples::ManyPages(5000)));
    EXPECT_GT(Records(), kReadAndWritten + 3 * 5000 / 10);
}

TEST_F(CleanWork, ReportsThatAPdfIsCheckedAsWell) {
    clock_.StepBy(100);
    const auto end = CleanIt(samples::ManyPages(1000), WorkKind::CheckClean);
    ASSERT_TRUE(end);
    EXPECT_EQ(end->outcome, WorkOutcome::Changed);
    EXPECT_GT(Records(), kReadAndWritten + 3 * 1000 / 10);
}

TEST_F(CleanWork, ReportsThatALongTextIsWorkedOn) {
    clock_.StepBy(100);
    ExpectChanged(CleanIt(samples::ManyParagraphs(20000)));
    EXPECT_GT(Records(), kReadAndWritten + 20000 / 10);
}

// The zip's own encryption; the user is asked for the passwords of PDFs alone.
TEST_F(CleanWork, AsksForNoPasswordOfATextThatIsEncrypted) {
    std::string file = samples::Docx().File();
    const auto directory = file.find("PK\x1\x2");
    ASSERT_NE(directory, std::string::npos);
    file[directory + 8] |= 1;
    EXPECT_EQ(FailureOf(CleanIt(file)), WorkFailure::OtherCipher);
}

TEST_F(CleanWork, EndsWhenNobodyReadsWhatItReports) {
    clock_.StepBy(100);
    answered_.Reset();
    EXPECT_FALSE(CleanIt(samples::ManyPages(50)));
}

} // namespace
