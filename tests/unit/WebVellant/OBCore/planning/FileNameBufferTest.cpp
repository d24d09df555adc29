#include <algorithm>

#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obcore::CompressUtils::FillOpenFileNameBuffer;

constexpr std::size_t kRoom = 1000;
constexpr wchar_t kUntouched = L'\xCCCC';

class FileNameBuffer : public obtest::RunFixture {
protected:
    void SetUp() override {
        RunFixture::SetUp();
        std::fill(std::begin(memory_), std::end(memory_), kUntouched);
        request_.lpstrFile = memory_;
        request_.nMaxFile = 1000;
    }

    int Fill(std::size_t room = kRoom) {
        return FillOpenFileNameBuffer(job_, request_, memory_ + room);
    }
    // What was written, up to the first character that wasn't.
    std::wstring Written() const {
        return std::wstring(memory_, std::find(memory_, std::end(memory_), kUntouched));
    }
    static std::wstring Text(const wchar_t* text, std::size_t length) {
        return std::wstring(text, length);
    }

    wchar_t memory_[kRoom];
    OPENFILENAMEW request_ = {sizeof(request_)};
};

TEST_F(FileNameBuffer, ContainsOneFileAsItsFullPathWithTwoZeros) {
    job_.Files = {L"C:\\a\\b.txt"};
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Written(), Text(L"C:\\a\\b.txt\0\0", 12));
}

TEST_F(FileNameBuffer, TakesOneFileWithoutATestAgainstTheCallersRoom) {
    job_.Files = {L"C:\\a\\b.txt"};
    request_.nMaxFile = 1;
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Written().size(), 12u);
}

TEST_F(FileNameBuffer, NeverTakesOneFileBeyondTheMemory) {
    job_.Files = {L"C:\\a\\b.txt"};
    EXPECT_EQ(Fill(11), 0);
    EXPECT_EQ(Written(), L"");
    EXPECT_EQ(Fill(12), 1);
    EXPECT_EQ(Written().size(), 12u);
}

TEST_F(FileNameBuffer, ContainsSeveralFilesAsFolderAndNames) {
    job_.Files = {L"C:\\folder\\one.txt", L"C:\\folder\\two.txt"};
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Written(), Text(L"C:\\folder\\\0one.txt\0two.txt\0\0", 28));
}

TEST_F(FileNameBuffer, KeepsTheFolderOfTheFirstFileOnly) {
    job_.Files = {L"C:\\one.txt", L"D:\\else\\two.txt", L"\\\\server\\share\\three.txt"};
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Written(), Text(L"C:\\\0one.txt\0two.txt\0three.txt\0\0", 31));
}

TEST_F(FileNameBuffer, NeedsLessThanTheCallersRoomForSeveralFiles) {
    job_.Files = {L"C:\\folder\\one.txt", L"C:\\folder\\two.txt"};
    request_.nMaxFile = 28;
    EXPECT_EQ(Fill(), 0);
    EXPECT_EQ(Written(), L"");
    request_.nMaxFile = 29;
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Written().size(), 28u);
}

TEST_F(FileNameBuffer, NeverTakesSeveralFilesBeyondTheMemory) {
    job_.Files = {L"C:\\folder\\one.txt", L"C:\\folder\\two.txt"};
    EXPECT_EQ(Fill(27), 0);
    EXPECT_EQ(Written(), L"");
    EXPECT_EQ(Fill(28), 1);
    EXPECT_EQ(Written().size(), 28u);
}

TEST_F(FileNameBuffer, WritesNothingWithoutAPlaceForIt) {
    job_.Files = {L"C:\\a\\b.txt"};
    request_.lpstrFile = nullptr;
    EXPECT_EQ(Fill(), 0);
    request_.lpstrFile = memory_ + 10;
    EXPECT_EQ(Fill(10), 0);
    EXPECT_EQ(Fill(5), 0);
    EXPECT_EQ(Written(), L"");
}

TEST_F(FileNameBuffer, ShowsAnAssertionForAnEmptyList) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Fill(), 0);
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].caption, L"Assert Error");
    EXPECT_TRUE(seen[0].hasIcon);
    EXPECT_EQ(seen[0].text, L"Pid: " + std::to_wstring(GetCurrentProcessId()) + L" Tid: " +
                                std::to_wstring(GetCurrentThreadId()) +
                                L"\nExpr: files.size() > 0\nFile: OBCore\\CompressUtils\n"
                                L"Line: 142");
    EXPECT_EQ(Written(), L"");
}

} // namespace
