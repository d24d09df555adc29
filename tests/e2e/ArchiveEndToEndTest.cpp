// Whole requests in which the zip's format, a picked archive or the user's cancel decides what the
// page gets.
#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/ProgressUiDriver.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr std::uint16_t kXz = 95;
constexpr UINT kZipFailedText = 129;

class ArchiveEndToEnd : public RealRequest {
protected:
    void TearDown() override {
        ClearProductRegistry();
        RealRequest::TearDown();
    }

    // A request in which the UI driver picks `paths` with `choice`.
    OpenAnswer AskAndPick(Choice choice, const Texts& paths) {
        PickerUiDriver driver(Pick(choice, paths));
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        return answer;
    }

    // The page got `file` itself, and no copy of it was made.
    void ExpectGivenAsItIs(const OpenAnswer& answer, const std::wstring& file,
                           const std::string& content) {
        EXPECT_EQ(answer.result, TRUE);
        EXPECT_EQ(answer.given, Texts{file});
        EXPECT_EQ(ReadFileContent(file), content);
        EXPECT_EQ(LeftInTemp(), Texts{});
    }
};

// Words in an order that repeats late, so that packing takes long in every format.
std::string LongText(std::size_t size) {
    std::string text;
    text.reserve(size + 16);
    std::uint32_t number = 1;
    while (text.size() < size) {
        number = number * 1664525U + 1013904223U;
        text += std::to_string(number >> 12);
        text += ' ';
    }
    return text;
}

TEST_F(ArchiveEndToEnd, MakesAZipxWithXzWhenTheUserChoseThatFormat) {
    SetUserValue(L"CompressionMethod", L"-1");
    const std::string text(100000, 'x');
    const std::wstring file = files_.File(L"letter.txt", text);
    const OpenAnswer answer = AskAndPick(Choice::Zip, {file});
    ASSERT_EQ(answer.given.size(), 1u);
    const std::wstring zip = answer.given.front();
    EXPECT_EQ(NameOf(zip), L"letter.zipx");
    const auto entries = ReadZip(zip);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries.at("letter.txt").content, text);
    EXPECT_EQ(entries.at("letter.txt").method, kXz);
    EXPECT_EQ(browser_.cleanupFile, zip);
    EXPECT_EQ(ReadFileContent(file), text);
}

TEST_F(ArchiveEndToEnd, GivesAPickedArchiveAsItIsWhenZippingIsChosen) {
    for (const wchar_t* name : {L"a.zip", L"b.zipx", L"c.rar", L"d.7z"}) {
        const std::wstring file = files_.File(name, "an archive of the user");
        ExpectGivenAsItIs(AskAndPick(Choice::Zip, {file}), file, "an archive of the user");
    }
}

TEST_F(ArchiveEndToEnd, GivesAPickedArchiveAsItIsWhenEncryptionIsChosen) {
    const std::wstring file = files_.File(L"a.zip", "an archive of the user");
    ExpectGivenAsItIs(AskAndPick(Choice::Encrypt, {file}), file, "an archive of the user");
}

TEST_F(ArchiveEndToEnd, ZipsAnArchiveWhoseExtensionIsWrittenInCapitals) {
    const std::wstring file = files_.File(L"a.ZIP", "an archive of the user");
    const OpenAnswer answer = AskAndPick(Choice::Zip, {file});
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_NE(answer.given.front(), file);
    EXPECT_EQ(ReadZip(answer.given.front()).at("a.ZIP").content, "an archive of the user");
}

TEST_F(ArchiveEndToEnd, ZipsAPickedArchiveTogetherWithAnotherFile) {
    const std::wstring archive = files_.File(L"a.zip", "an archive of the user");
    const std::wstring letter = files_.File(L"letter.txt", "Dear all");
    const OpenAnswer answer = AskAndPick(Choice::Zip, {archive, letter});
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given.front());
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("a.zip").content, "an archive of the user");
    EXPECT_EQ(entries.at("letter.txt").content, "Dear all");
}

// The slow format makes the run last far longer than the half second after which the window comes.
TEST_F(ArchiveEndToEnd, GivesNothingWhenTheProgressWindowIsCancelled) {
    SetUserValue(L"CompressionMethod", L"-1");
    const std::string text = LongText(32 << 20);
    const std::wstring file = files_.File(L"large.txt", text);
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {file})(picker);
        EXPECT_TRUE(CancelProgressWindow()) << "no progress window, or it stayed";
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    EXPECT_TRUE(IsWindowEnabled(Owner()));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen().front().text, Text(kZipFailedText));
    EXPECT_TRUE(ReadFileContent(file) == text);
    const Texts left = LeftInTemp();
    ASSERT_EQ(left.size(), 1u) << "the empty folder of the zip, and neither zip nor copies";
    EXPECT_TRUE(left.front().ends_with(L'\\'));
}

} // namespace
} // namespace obtest
