// Whole requests of a page that calls GetOpenFileNameW.
#include <gmock/gmock.h>

#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::wstring>;

constexpr std::uint16_t kDeflate = 8;
constexpr std::uint16_t kAes128 = 0x0101;
constexpr std::uint16_t kAes256 = 0x0103;

class OpenFileNameEndToEnd : public RealRequest {
protected:
    // A run leaves exactly one thing: the zip in a folder of its own.
    void ExpectOnlyTheZipIsLeft(const std::wstring& zip) {
        ASSERT_TRUE(FolderOf(zip).starts_with(TempFolder() + L"\\"));
        const std::wstring folder = FolderOf(zip).substr(TempFolder().size() + 1);
        EXPECT_EQ(LeftInTemp(), (Texts{folder, folder + NameOf(zip)}));
    }
};

// Deletes what a run leaves, as the next test counts what is in the folder.
void RemoveOutput(const FakeBrowserContext& browser) {
    if (browser.cleanupFolder)
        RemoveTree(
            browser.cleanupFolder->substr(0, browser.cleanupFolder->find_last_not_of(L'\\') + 1));
}

TEST_F(OpenFileNameEndToEnd, GivesOneFileAsItIs) {
    const std::wstring file = files_.File(L"letter.txt", "Dear all");
    PickerUiDriver driver(Pick(Choice::None, {file}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    EXPECT_EQ(answer.given, Texts{file});
    EXPECT_EQ(ReadFileContent(file), "Dear all");
    EXPECT_EQ(browser_.cleanupFolder, std::nullopt);
    EXPECT_EQ(browser_.delivered, Texts{});
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(OpenFileNameEndToEnd, GivesSeveralFilesAsTheirFolderAndTheirNames) {
    const std::wstring one = files_.File(L"one.txt");
    const std::wstring two = files_.File(L"two two.txt");
    const std::wstring three = files_.File(L"dr\u00e4i.txt");
    PickerUiDriver driver(Pick(Choice::None, {one, two, three}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    EXPECT_EQ(answer.given,
              (Texts{files_.Path() + L"\\", L"one.txt", L"two two.txt", L"dr\u00e4i.txt"}));
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(OpenFileNameEndToEnd, GivesOneZipOfTwoFiles) {
    const std::string long_text(200000, 'a');
    const std::wstring one = files_.File(L"one.txt", long_text);
    const std::wstring two = files_.File(L"two.bin", std::string("\0\1\2\xff", 4));
    PickerUiDriver driver(Pick(Choice::Zip, {one, two}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.result, TRUE);
    ASSERT_EQ(answer.given.size(), 1u);
    const std::wstring zip = answer.given.front();
    EXPECT_EQ(NameOf(zip), L"Ombrix Compressed Attachments.zip");

    const auto entries = ReadZip(zip);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("one.txt").content, long_text);
    EXPECT_EQ(entries.at("one.txt").method, kDeflate);
    EXPECT_EQ(entries.at("one.txt").encryption, 0);
    EXPECT_EQ(entries.at("two.bin").content, std::string("\0\1\2\xff", 4));

    EXPECT_EQ(browser_.cleanupFile, zip);
    EXPECT_EQ(browser_.cleanupFolder, FolderOf(zip));
    ExpectOnlyTheZipIsLeft(zip);
    EXPECT_EQ(ReadFileContent(one), long_text);
    EXPECT_EQ(ReadFileContent(two), std::string("\0\1\2\xff", 4));
    EXPECT_EQ(ListTree(files_.Path()), (Texts{L"one.txt", L"two.bin"}));
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, NamesTheZipOfOneFileAfterIt) {
    const std::wstring file = files_.File(L"report.final.txt", "report");
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(NameOf(answer.given.front()), L"report.final.zip");
    EXPECT_EQ(ReadZip(answer.given.front()).at("report.final.txt").content, "report");
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, ZipsAFileWithAnEmojiInItsName) {
    const std::wstring name = L"party \U0001F389 \u00fc\u6f22.txt";
    const std::wstring file = files_.File(name, "cake");
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(NameOf(answer.given.front()), L"party \U0001F389 \u00fc\u6f22.zip");
    const auto entries = ReadZip(answer.given.front());
    ASSERT_EQ(entries.count(Utf8(name)), 1u);
    EXPECT_EQ(entries.at(Utf8(name)).content, "cake");
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, EncryptsWithThePasswordThatIsTyped) {
    const std::wstring one = files_.File(L"one.txt", "secret one");
    const std::wstring two = files_.File(L"two.txt", "secret two");
    PickerUiDriver driver(PickAndEncrypt({one, two}, L"Gr\u00fcn 5!"));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given.front(), Utf8(L"Gr\u00fcn 5!"));
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("one.txt").content, "secret one");
    EXPECT_EQ(entries.at("two.txt").content, "secret two");
    for (const auto& [name, entry] : entries) {
        EXPECT_TRUE(entry.encryption == kAes128 || entry.encryption == kAes256) << name;
    }
    EXPECT_TRUE(RefusesPassword(answer.given.front(), "another"));
    ExpectOnlyTheZipIsLeft(answer.given.front());
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, GivesNothingWhenThePasswordPromptIsCancelled) {
    const std::wstring file = files_.File(L"one.txt", "secret");
    PickerUiDriver driver([this, file](OpenPicker& picker) {
        Pick(Choice::Encrypt, {file})(picker);
        const OpenPasswordPrompt prompt = OpenPasswordPrompt::Await();
        ASSERT_TRUE(prompt.Window());
        prompt.PressCancel();
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    EXPECT_EQ(ReadFileContent(file), "secret");
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(OpenFileNameEndToEnd, GivesNothingAfterCancel) {
    PickerUiDriver driver([](OpenPicker& picker) { picker.PressCancel(); });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(OpenFileNameEndToEnd, PutsTheRequestsOwnerBack) {
    PickerUiDriver driver([this](OpenPicker& picker) {
        EXPECT_FALSE(IsWindowEnabled(Owner()))
            << "the browser takes input while the picker is open";
        picker.PressCancel();
    });
    EXPECT_EQ(AskOpen().ownerAfterwards, Owner());
    EXPECT_TRUE(driver.Done());
    EXPECT_TRUE(IsWindowEnabled(Owner()));
}

TEST_F(OpenFileNameEndToEnd, KeepsThePickerOpenWhenThePageTakesOneFile) {
    const std::wstring one = files_.File(L"one.txt");
    const std::wstring two = files_.File(L"two.txt");
    MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(PickTooMany({one, two}, boxes));
    const OpenAnswer answer = AskOpen(OFN_EXPLORER);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen().front().text, Text(104));
    EXPECT_EQ(boxes.Seen().front().caption, L"Ombrix Vellant");
}

TEST_F(OpenFileNameEndToEnd, TakesTwoFilesAsOneZipWhenThePageTakesOneFile) {
    const std::wstring one = files_.File(L"one.txt", "1");
    const std::wstring two = files_.File(L"two.txt", "2");
    PickerUiDriver driver(Pick(Choice::Zip, {one, two}));
    const OpenAnswer answer = AskOpen(OFN_EXPLORER);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(ReadZip(answer.given.front()).size(), 2u);
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, OffersOnlyEncryptionWhereTheAdministratorWantsIt) {
    SetMachinePolicy(L"AlwaysEncrypt", L"1");
    const std::wstring file = files_.File(L"one.txt", "secret");
    PickerUiDriver driver([&](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsEnabled(Text(101)));
        EXPECT_TRUE(picker.IsEnabled(Text(102)));
        EXPECT_TRUE(picker.IsChecked(Text(102)));
        EXPECT_FALSE(picker.IsEnabled(Text(103)));
        PickAndEncrypt({file}, L"Abc123!xQ7p")(picker);
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(ReadZip(answer.given.front(), "Abc123!xQ7p").at("one.txt").content, "secret");
    RemoveOutput(browser_);
}

TEST_F(OpenFileNameEndToEnd, ShowsTheBrowsersOwnDialogOnAPageThatIsNoMail) {
    browser_.pageUrl = L"https://example.org/upload";
    const OpenAnswer answer = AskOpen();
    EXPECT_EQ(answer.result, browser_.openFileNameAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallGetOpenFileName"));
    EXPECT_EQ(browser_.Count(BrowserCall::IsPickerWanted), 0u);
}

TEST_F(OpenFileNameEndToEnd, ShowsTheBrowsersOwnDialogWhenTheHookVetoes) {
    browser_.pickerWanted = false;
    EXPECT_EQ(AskOpen().result, browser_.openFileNameAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallGetOpenFileName"));
    EXPECT_EQ(browser_.Count(BrowserCall::IsPickerWanted), 1u);
}

TEST_F(OpenFileNameEndToEnd, ServesOneRequestAfterAnother) {
    const std::wstring file = files_.File(L"again.txt");
    for (int round = 0; round < 2; ++round) {
        PickerUiDriver driver(Pick(Choice::None, {file}));
        EXPECT_EQ(AskOpen().given, Texts{file});
        EXPECT_TRUE(driver.Done());
    }
}

} // namespace
} // namespace obtest
