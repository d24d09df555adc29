// Requests without any field, with fields that fill the block, and with too little room for an
// answer.
#include "tests/faults/HostRole.h"

namespace obtest {
namespace {

class OddRequest : public HostRole {
protected:
    void SetUp() override {
        HostRole::SetUp();
        ChooseNoZip();
        one_ = sources_.File(L"one.txt", "first");
        two_ = sources_.File(L"two.txt", "second");
    }

    void TearDown() override {
        EXPECT_EQ(boxes_.Seen().size(), expectedBoxes_);
        HostRole::TearDown();
    }

    // Wide characters of the list of both files, with every NUL.
    DWORD ListLength() const {
        return static_cast<DWORD>(sources_.Path().size() + 1 + 1 + 2 * (7 + 1) + 1);
    }

    std::size_t expectedBoxes_ = 0;
    std::wstring one_;
    std::wstring two_;
};

TEST_F(OddRequest, WithEveryFieldAbsentIsServed) {
    page_ = {};
    EXPECT_EQ(Open({one_}).files, Texts{one_});
    ExpectNothingGiven(Open({one_, two_})); // nMaxFile is 0
    EXPECT_EQ(Left(), Texts{});
}

// A dialog that confirms without a file: an error of the system, which an assertion's box reports.
TEST_F(OddRequest, WithoutAnyPickedFileIsAnsweredWithNothing) {
    expectedBoxes_ = 1;
    ExpectNothingGiven(Open({}));
    EXPECT_EQ(Show({}).files, Texts{});
    ASSERT_EQ(boxes_.Seen().size(), 1u);
    EXPECT_NE(boxes_.Seen().front().text.find(L"files.size() > 0"), std::wstring::npos);
    ChooseZip();
    ExpectNothingGiven(Open({}));
    EXPECT_EQ(Left(), Texts{});
}

TEST_F(OddRequest, WithATextThatFillsTheBlockHasNoRoomForAnAnswer) {
    const std::wstring text(40000, L'x');
    page_.lpstrInitialDir = text.c_str();
    page_.lpstrTitle = text.c_str();
    page_.lpstrFilter = L"All\0*.*\0";
    ExpectNothingGiven(Open({one_}));
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(Left(), Texts{});
}

TEST_F(OddRequest, WithAFilterThatFillsTheBlockHasNoRoomForAnAnswer) {
    std::wstring filter;
    while (filter.size() < 40000) filter += std::wstring(L"All\0*.*\0", 8);
    page_.lpstrFilter = filter.c_str();
    ExpectNothingGiven(Open({one_}));
    EXPECT_EQ(Left(), Texts{});
}

// Room for one path and not for the list of two.
TEST_F(OddRequest, WithTextsThatNearlyFillTheBlockIsAnsweredAsFarAsItFits) {
    const std::wstring text(32730 - one_.size() - 3, L'x');
    page_.lpstrInitialDir = text.c_str();
    EXPECT_EQ(Open({one_}).files, Texts{one_});
    ExpectNothingGiven(Open({one_, two_, two_, two_}));
}

TEST_F(OddRequest, WithAnOddFilterIsServedLikeAnyOther) {
    std::wstring many;
    for (int pair = 0; pair < 500; ++pair) many += std::wstring(L"Text\0*.txt\0", 11);
    const std::wstring filters[] = {
        std::wstring(L"\0", 1),
        std::wstring(L"description only\0", 17),
        std::wstring(L"a\0*.a\0b\0", 8),
        std::wstring(L"%s%n\0*.%s;..\\*.exe;\0", 20),
        many,
    };
    for (const std::wstring& filter : filters) {
        page_.lpstrFilter = filter.c_str();
        EXPECT_EQ(Open({one_}).files, Texts{one_});
        EXPECT_EQ(Open({one_, two_}).files.size(), 3u);
    }
}

TEST_F(OddRequest, WithRoomForOneCharacterTooFewIsAnsweredWithNothing) {
    page_.nMaxFile = ListLength();
    ExpectNothingGiven(Open({one_, two_}));
    page_.nMaxFile = ListLength() + 1;
    EXPECT_EQ(Open({one_, two_}).files, (Texts{sources_.Path() + L"\\", L"one.txt", L"two.txt"}));
}

// The zip exists then; the page gets its clean-up names and deletes it like any other.
TEST_F(OddRequest, WithRoomForOneCharacterTooFewGivesTheCleanupNamesOfAZip) {
    ChooseZip();
    const Answer fitting = Open({one_, two_});
    ASSERT_EQ(fitting.files.size(), 1u);
    page_.nMaxFile = static_cast<DWORD>(fitting.files.front().size()) + 2;
    RemoveTree(fitting.cleanupFolder.substr(0, fitting.cleanupFolder.size() - 1));
    const Answer answer = Open({one_, two_});
    ExpectNothingGiven(answer);
    EXPECT_EQ(answer.cleanupFile.size(), fitting.files.front().size());
    EXPECT_TRUE(FileExists(answer.cleanupFile));
    EXPECT_EQ(Left(), (Texts{L"1\\", std::wstring(L"1\\") + kZipName}));
}

// nMaxFile exceeds the block; the block's own room is the limit.
TEST_F(OddRequest, WithMoreRoomThanTheBlockIsAnsweredUpToTheBlocksEnd) {
    page_.nMaxFile = 0xFFFFFFFF;
    EXPECT_EQ(Open({one_, two_}).files.size(), 3u);
    Texts many;
    for (int number = 0; number < 5000; ++number)
        many.push_back(sources_ / (L"file " + std::to_wstring(number) + L".txt"));
    ExpectNothingGiven(Open(many));
}

} // namespace
} // namespace obtest
