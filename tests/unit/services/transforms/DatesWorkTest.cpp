// The request that takes the dates out of a PDF, carried out on files.
#include "services/transforms/DatesWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

using namespace obcontract;
using transforms::WorkEnd;

namespace {

class DatesWork : public obtest::FileRequestFixture {
protected:
    std::optional<WorkEnd> Make(const std::string& file,
                                DWORD targetAccess = GENERIC_READ | GENERIC_WRITE,
                                std::byte settings = std::byte{0}) {
        WriteSource(file);
        const std::vector<std::byte> bytes(sizeof(WorkPlain), settings);
        return transforms::RemoveDates(Request(WorkKind::RemoveDates, bytes, targetAccess),
                                       *channel_);
    }
    static std::string Dated(const std::string& date) {
        auto pdf = samples::OnePage();
        pdf.Add("<</CreationDate (D:" + date + ")>>");
        return pdf.File("/Info 5 0 R");
    }
};

TEST_F(DatesWork, WritesOnePdfForEachDate) {
    ExpectChanged(Make(Dated("20261122120000Z")));
    const std::string first = Target();
    ExpectChanged(Make(Dated("20261122120001Z")));
    EXPECT_EQ(Target(), first);
    EXPECT_TRUE(first.starts_with("%PDF-"));
}

TEST_F(DatesWork, ReportsWhyItCannotBeMade) {
    EXPECT_EQ(FailureOf(Make(Dated("2026"), GENERIC_READ)), WorkFailure::Unwritable);
    EXPECT_EQ(FailureOf(Make("%PDF-1.7\nno more")), WorkFailure::Damaged);
    EXPECT_TRUE(Target().empty());
}

TEST_F(DatesWork, TakesNoValueThatTheContractLacks) {
    EXPECT_FALSE(Make(Dated("2026"), GENERIC_READ | GENERIC_WRITE, std::byte{1}));
}

} // namespace
