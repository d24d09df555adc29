// The request that removes personal data, carried out on files: what is reported while a large
// document is read and written.
#include "services/transforms/CleanWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/worker/ReplyReader.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/documents/LargeSamples.h"

using namespace obcontract;
using transforms::WorkEnd;

namespace {

// A clock that goes on by this much whenever it is asked.
ULONGLONG g_time = 0;
ULONGLONG g_step = 0;
ULONGLONG WINAPI AskedTime() { return g_time += g_step; }

class CleanWork : public obtest::FileRequestFixture {
protected:
    CleanWork() : clock_("kernel32.dll", "GetTickCount64", &AskedTime) {}
    void SetUp() override {
        FileRequestFixture::SetUp();
        ASSERT_TRUE(clock_.Ok());
        g_time = 0;
    }

    std::optional<WorkEnd> CleanIt(const std::string& file, WorkKind kind = WorkKind::Clean) {
        WriteSource(file);
        return transforms::Clean(Request(kind, std::vector<std::byte>(sizeof(WorkClean))),
                                 *channel_);
    }
    // The progress records so far; the manager's reader accepts all of them.
    int Records() {
        channel_.reset();
        providers::ReplyReader reader;
        reader.Begin();
        int records = 0;
        for (WorkHeader header; ObLib::ReadWhole(answered_.Get(), &header, sizeof header);) {
            std::byte payload[kLargestWorkPayload];
            EXPECT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, header.size));
            EXPECT_TRUE(reader.Take(header.kind, {payload, header.size}));
            records += header.kind == WorkKind::Progress;
        }
        return records;
    }

private:
    const obtest::ImportPatch<decltype(&GetTickCount64)> clock_;
};

constexpr int kReadAndWritten = 2; // the file fits into one block

TEST_F(CleanWork, ReportsNoStepsBeforeTimePasses) {
    g_step = 0;
    ExpectChanged(CleanIt(samples::ManyPages(50)));
    EXPECT_EQ(Records(), kReadAndWritten);
}

TEST_F(CleanWork, ReportsOnceASecondThatAPdfOf5000PagesIsWorkedOn) {
    g_step = 100; // so that each tenth step is a second
    ExpectChanged(CleanIt(samples::ManyPages(5000)));
    EXPECT_GT(Records(), kReadAndWritten + 3 * 5000 / 10);
}

TEST_F(CleanWork, ReportsThatAPdfIsCheckedAsWell) {
    g_step = 100;
    const auto end = CleanIt(samples::ManyPages(1000), WorkKind::CheckClean);
    ASSERT_TRUE(end);
    EXPECT_EQ(end->outcome, WorkOutcome::Changed);
    EXPECT_GT(Records(), kReadAndWritten + 3 * 1000 / 10);
}

TEST_F(CleanWork, ReportsThatALongTextIsWorkedOn) {
    g_step = 100;
    ExpectChanged(CleanIt(samples::ManyParagraphs(20000)));
    EXPECT_GT(Records(), kReadAndWritten + 20000 / 10);
}

// The zip's own encryption; the user is asked for the passwords of PDFs alone.
TEST_F(CleanWork, AsksForNoPasswordOfATextThatIsEncrypted) {
    g_step = 0;
    std::string file = samples::Docx().File();
    const auto directory = file.find("PK\x1\x2");
    ASSERT_NE(directory, std::string::npos);
    file[directory + 8] |= 1;
    EXPECT_EQ(FailureOf(CleanIt(file)), WorkFailure::OtherCipher);
}

TEST_F(CleanWork, EndsWhenNobodyReadsWhatItReports) {
    g_step = 100;
    answered_.Reset();
    EXPECT_FALSE(CleanIt(samples::ManyPages(50)));
}

} // namespace
