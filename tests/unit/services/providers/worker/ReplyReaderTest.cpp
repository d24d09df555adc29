// What the manager accepts of the records that a work process sends, byte by byte.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "services/providers/worker/ReplyReader.h"

using namespace obcontract;
using providers::ReplyPayload;
using providers::ReplyReader;
using providers::WorkFound;
using providers::WorkResult;

namespace {

class ReplyReaderTest : public testing::Test {
protected:
    void SetUp() override { reader_.Begin(); }

    template <class Payload>
    bool Take(WorkKind kind, const Payload& payload) {
        return reader_.Take(kind, std::as_bytes(std::span(&payload, 1)));
    }
    bool TakeFinding(const std::string& key, std::uint32_t count = 1) {
        WorkFinding finding{};
        finding.count = count;
        std::memcpy(finding.key, key.data(), std::min(key.size(), sizeof finding.key));
        return Take(WorkKind::Finding, finding);
    }
    bool TakeDone(WorkOutcome outcome, std::uint64_t size = 0) {
        return Take(WorkKind::Done, WorkDone{outcome, 0, size});
    }

    ReplyReader reader_;
};

TEST(ReplyHeaders, AreAcceptedWithTheSizeOfTheirKindOnly) {
    const auto size = [](std::uint32_t kind, std::uint32_t size) {
        return ReplyPayload({kWorkMagic, static_cast<WorkKind>(kind), size, 0}).value_or(0);
    };
    EXPECT_EQ(size(0x101, 24), 24u);
    EXPECT_EQ(size(0x101, 16), 0u);
    EXPECT_EQ(size(0x102, 64), 64u);
    EXPECT_EQ(size(0x103, 16), 16u);
    EXPECT_EQ(size(0x104, 8), 8u);
    EXPECT_EQ(size(0x102, 63), 0u);
    EXPECT_EQ(size(0x102, 0xffffffff), 0u);
    EXPECT_EQ(size(1, 24), 0u); // a request
    EXPECT_EQ(size(0x105, 16), 0u);
    EXPECT_FALSE(ReplyPayload({kWorkMagic + 1, WorkKind::Done, 16, 0}));
    EXPECT_FALSE(ReplyPayload({kWorkMagic, WorkKind::Done, 16, 1}));
}

TEST_F(ReplyReaderTest, ReportsWhatOneRequestCameTo) {
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{1, 3}));
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{3, 3}));
    EXPECT_TRUE(TakeFinding("position", 2));
    EXPECT_TRUE(TakeFinding("xmp.author-1"));
    EXPECT_FALSE(reader_.IsComplete());
    EXPECT_TRUE(TakeDone(WorkOutcome::Changed, 77));
    EXPECT_TRUE(reader_.IsComplete());
    EXPECT_EQ(reader_.Report().result, WorkResult::Changed);
    EXPECT_EQ(reader_.Report().size, 77u);
    const std::vector<WorkFound> found{{"position", 2}, {"xmp.author-1", 1}};
    EXPECT_EQ(reader_.Report().found, found);
    EXPECT_EQ(reader_.Progress().done, 3u);
}

TEST_F(ReplyReaderTest, TranslatesEachOutcomeAndFailure) {
    const auto failed = [&](std::uint32_t failure) {
        reader_.Begin();
        EXPECT_TRUE(Take(WorkKind::Failed, WorkFailed{static_cast<WorkFailure>(failure), 0}));
        return reader_.Report().result;
    };
    EXPECT_TRUE(TakeDone(WorkOutcome::Unchanged));
    EXPECT_EQ(reader_.Report().result, WorkResult::Unchanged);
    reader_.Begin();
    EXPECT_TRUE(TakeDone(WorkOutcome::NotSupported));
    EXPECT_EQ(reader_.Report().result, WorkResult::NotSupported);
    EXPECT_EQ(failed(1), WorkResult::Damaged);
    EXPECT_EQ(failed(2), WorkResult::TooLarge);
    EXPECT_EQ(failed(3), WorkResult::Unreadable);
    EXPECT_EQ(failed(4), WorkResult::Unwritable);
    EXPECT_EQ(failed(5), WorkResult::ProcessFailed);
    EXPECT_EQ(failed(6), WorkResult::CannotFit);
    EXPECT_EQ(failed(7), WorkResult::Encrypted);
    EXPECT_EQ(failed(8), WorkResult::Signed);
    EXPECT_EQ(failed(9), WorkResult::Locked);
    EXPECT_EQ(failed(10), WorkResult::OtherCipher);
    EXPECT_EQ(failed(11), WorkResult::BadPicture);
}

TEST_F(ReplyReaderTest, RefusesARecordThatNoRequestWaitsFor) {
    EXPECT_TRUE(TakeDone(WorkOutcome::Unchanged));
    EXPECT_FALSE(TakeFinding("position"));
    EXPECT_FALSE(TakeDone(WorkOutcome::Unchanged));
    EXPECT_FALSE(ReplyReader().Take(WorkKind::Failed, {}));
}

TEST_F(ReplyReaderTest, RefusesProgressThatDoesNotGrowOrPassesItsEnd) {
    EXPECT_FALSE(Take(WorkKind::Progress, WorkProgress{0, 5}));
    reader_.Begin();
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{2, 5}));
    EXPECT_FALSE(Take(WorkKind::Progress, WorkProgress{2, 5}));
    reader_.Begin();
    EXPECT_FALSE(Take(WorkKind::Progress, WorkProgress{6, 5}));
    reader_.Begin();
    EXPECT_FALSE(Take(WorkKind::Progress, WorkProgress{1, 5, 0, 1}));
}

TEST_F(ReplyReaderTest, RemembersThePictureThatWasReportedLast) {
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{1, 5, 7}));
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{2, 5, 0xffffffff}));
    EXPECT_EQ(reader_.Report().number, 0xffffffffu);
    reader_.Begin();
    EXPECT_EQ(reader_.Report().number, 0u);
}

TEST_F(ReplyReaderTest, RefusesAKeyThatIsNoPlainName) {
    for (const std::string& key :
         {std::string(), std::string("Position"), std::string("a b"), std::string("a%1"),
          std::string("a\0b", 3), std::string(kWorkKeyCapacity, 'k'), std::string("\xc3\xa4")}) {
        reader_.Begin();
        EXPECT_FALSE(TakeFinding(key)) << key;
    }
    reader_.Begin();
    EXPECT_TRUE(TakeFinding(std::string(kWorkKeyCapacity - 1, 'k')));
}

TEST_F(ReplyReaderTest, RefusesAFindingTwiceOrWithoutACount) {
    EXPECT_TRUE(TakeFinding("position"));
    EXPECT_FALSE(TakeFinding("position"));
    reader_.Begin();
    EXPECT_FALSE(TakeFinding("position", 0));
}

TEST_F(ReplyReaderTest, RefusesMoreFindingsThanARequestCanHave) {
    for (std::size_t number = 0; number < kMostWorkFindings; ++number) {
        ASSERT_TRUE(TakeFinding("key" + std::to_string(number)));
    }
    EXPECT_FALSE(TakeFinding("one-more"));
}

TEST_F(ReplyReaderTest, RefusesValuesThatTheContractLacks) {
    EXPECT_FALSE(TakeDone(static_cast<WorkOutcome>(0)));
    EXPECT_FALSE(TakeDone(static_cast<WorkOutcome>(4)));
    EXPECT_FALSE(TakeDone(WorkOutcome::Unchanged, 1)); // a size without a file
    EXPECT_FALSE(Take(WorkKind::Done, WorkDone{WorkOutcome::Changed, 1, 5}));
    EXPECT_FALSE(Take(WorkKind::Failed, WorkFailed{static_cast<WorkFailure>(0), 0}));
    EXPECT_FALSE(Take(WorkKind::Failed, WorkFailed{static_cast<WorkFailure>(12), 0}));
    EXPECT_FALSE(Take(WorkKind::Failed, WorkFailed{WorkFailure::Damaged, 1}));
    EXPECT_FALSE(Take(WorkKind::Clean, WorkClean{}));
}

TEST_F(ReplyReaderTest, ForgetsTheRequestBefore) {
    EXPECT_TRUE(TakeFinding("position"));
    EXPECT_TRUE(TakeDone(WorkOutcome::Changed, 9));
    reader_.Begin();
    EXPECT_TRUE(Take(WorkKind::Progress, WorkProgress{1, 9}));
    EXPECT_TRUE(TakeDone(WorkOutcome::Unchanged));
    EXPECT_TRUE(reader_.Report().found.empty());
    EXPECT_EQ(reader_.Report().size, 0u);
}

} // namespace
