// Whole requests whose zip is too large for a mail: the page gets the text with the link. Only the
// provider manager is a fake, whose cloud account takes every file.
#include <gmock/gmock.h>

#include "tests/e2e/RealRequest.h"
#include "tests/support/FakeModules.h"

namespace obtest {
namespace {

using testing::IsEmpty;
using Texts = std::vector<std::wstring>;

// Above the five megabytes that the default options allow, and nothing that a zip makes smaller.
std::string LargeContent() {
    std::string content(6 << 20, '\0');
    std::uint32_t state = 2463534242;
    for (char& byte : content) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<char>(state);
    }
    return content;
}

class LinkEndToEnd : public RealRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        FakeModules::Reset();
        FakeModules::Answer(L"Providers", L"7");
        FakeModules::Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
        FakeModules::Answer(L"provider7.IsAccountLoggedIn", L"1");
        FakeModules::Answer(L"provider7.GetDisplayName", L"Sample Cloud");
    }

    // What the page was handed: the link, then the names for clean-up.
    void ExpectLink() {
        ASSERT_EQ(browser_.delivered.size(), 2u);
        EXPECT_TRUE(
            browser_.delivered[0].starts_with(L"link 0| |large.zip|https://7.example/large.zip|"));
        EXPECT_NE(browser_.delivered[0].find(L"Sample Cloud"), std::wstring::npos);
        EXPECT_TRUE(browser_.delivered[0].ends_with(L"#POPUP_MESSAGE_END#"));
        ASSERT_TRUE(browser_.cleanupFile);
        EXPECT_EQ(Uploaded(), Texts{*browser_.cleanupFile});
        EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
    }
    // The paths of the files that were given to the account.
    static Texts Uploaded() {
        Texts paths;
        for (const std::wstring& call : FakeModules::CallsOf({L"AddFile"})) {
            const std::size_t begin = call.find(L'"') + 1;
            paths.push_back(call.substr(begin, call.find(L'"', begin) - begin));
        }
        return paths;
    }
    std::wstring LargeFile() const { return files_.File(L"large.bin", LargeContent()); }
};

TEST_F(LinkEndToEnd, OnTheOpenFileNamePathPutsTheLinkIntoThePage) {
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    ExpectLink();
}

TEST_F(LinkEndToEnd, OnTheDialogPathPutsTheLinkIntoThePage) {
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectLink();
}

TEST_F(LinkEndToEnd, LinksAPickedArchiveWhereItIs) {
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Uploaded(), Texts{archive});
    ASSERT_FALSE(browser_.delivered.empty());
    EXPECT_TRUE(browser_.delivered[0].starts_with(L"link 0| |large.zip|"));
    EXPECT_EQ(ReadFileContent(archive), LargeContent());
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(LinkEndToEnd, KeepsAPickedArchiveWhenItsUploadFails) {
    FakeModules::Answer(L"provider7.RunUpload", L"0");
    FakeModules::Answer(L"GetLastErrorOfProvider", L"No connection.");
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    const std::wstring canary = files_.File(L"canary.txt", "canary");
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text, L"No connection.");
    EXPECT_EQ(ReadFileContent(archive), LargeContent());
    EXPECT_EQ(ReadFileContent(canary), "canary");
    EXPECT_THAT(browser_.delivered, testing::Each(testing::Not(testing::StartsWith(L"link"))));
}

TEST_F(LinkEndToEnd, LeavesNothingOfAZipWhoseUploadFails) {
    FakeModules::Answer(L"provider7.RunUpload", L"0");
    const std::wstring file = LargeFile();
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(LeftInTemp(), Texts{});
    EXPECT_EQ(ReadFileContent(file), LargeContent());
}

TEST_F(LinkEndToEnd, AttachesAZipThatFitsTheMail) {
    PickerUiDriver driver(Pick(Choice::Zip, {files_.File(L"small.txt")}));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    EXPECT_THAT(Uploaded(), IsEmpty());
}

} // namespace
} // namespace obtest
