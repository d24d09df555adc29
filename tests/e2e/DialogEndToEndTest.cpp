// Whole requests of a page that calls IFileDialog.
#include <gmock/gmock.h>

#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/MessageBoxWatcher.h"

namespace obtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::wstring>;

class DialogEndToEnd : public RealRequest {};

TEST_F(DialogEndToEnd, GivesOneFileAsItIs) {
    const std::wstring file = files_.File(L"letter.txt", "Dear all");
    PickerUiDriver driver(Pick(Choice::None, {file}));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    std::wstring path;
    EXPECT_EQ(GetResult(path), S_OK);
    EXPECT_EQ(path, file);
    Texts paths;
    EXPECT_EQ(GetResults(paths), S_OK);
    EXPECT_EQ(paths, Texts{file});
    EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
    EXPECT_EQ(browser_.cleanupFolder, std::nullopt);
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(DialogEndToEnd, GivesThreeFilesAsAListAndNotAsASingleResult) {
    const Texts files = {files_.File(L"one.txt"), files_.File(L"two two.txt"),
                         files_.File(L"dr\u00e4i.txt")};
    PickerUiDriver driver(Pick(Choice::None, files));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    std::wstring path = L"untouched";
    EXPECT_EQ(GetResult(path), S_FALSE);
    EXPECT_EQ(path, L"untouched");
    Texts paths;
    EXPECT_EQ(GetResults(paths), S_OK);
    EXPECT_EQ(paths, files);
    EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
}

TEST_F(DialogEndToEnd, GivesOneZipOfTwoFiles) {
    const std::wstring one = files_.File(L"one.txt", "first");
    const std::wstring two = files_.File(L"two.txt", "second");
    PickerUiDriver driver(Pick(Choice::Zip, {one, two}));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    std::wstring zip;
    ASSERT_EQ(GetResult(zip), S_OK);
    const auto entries = ReadZip(zip);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("one.txt").content, "first");
    EXPECT_EQ(entries.at("two.txt").content, "second");
    EXPECT_EQ(browser_.cleanupFile, zip);
    EXPECT_EQ(browser_.cleanupFolder, FolderOf(zip));
    const std::wstring folder = FolderOf(zip).substr(TempFolder().size() + 1);
    EXPECT_EQ(LeftInTemp(), (Texts{folder, folder + NameOf(zip)}));
    EXPECT_EQ(ReadFileContent(one), "first");
    EXPECT_EQ(ReadFileContent(two), "second");
}

TEST_F(DialogEndToEnd, EncryptsWithThePasswordThatIsTyped) {
    const std::wstring file = files_.File(L"one.txt", "secret");
    PickerUiDriver driver(PickAndEncrypt({file}, L"Abc123!xQ7p"));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    std::wstring zip;
    ASSERT_EQ(GetResult(zip), S_OK);
    const auto entries = ReadZip(zip, "Abc123!xQ7p");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries.at("one.txt").content, "secret");
    EXPECT_NE(entries.at("one.txt").encryption, 0);
    EXPECT_TRUE(RefusesPassword(zip, "another"));
}

TEST_F(DialogEndToEnd, GivesNothingAfterCancelAndPassesResultQueriesToTheBrowser) {
    PickerUiDriver driver([](OpenPicker& picker) { picker.PressCancel(); });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    std::wstring path;
    Texts paths;
    EXPECT_EQ(GetResult(path), browser_.getResultAnswer);
    EXPECT_EQ(GetResults(paths), browser_.getResultsAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallGetResult", "CallGetResults"));
}

TEST_F(DialogEndToEnd, KeepsThePickerOpenWhenThePageTakesOneFile) {
    const std::wstring one = files_.File(L"one.txt");
    const std::wstring two = files_.File(L"two.txt");
    MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(PickTooMany({one, two}, boxes));
    EXPECT_EQ(AskShow(FOS_FORCEFILESYSTEM), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen().front().text, Text(104));
}

TEST_F(DialogEndToEnd, ShowsTheBrowsersOwnDialogOnAPageThatIsNoMail) {
    browser_.pageUrl = L"https://example.org/upload";
    EXPECT_EQ(AskShow(), browser_.showAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallShow"));
    EXPECT_EQ(browser_.Count(BrowserCall::IsPickerWanted), 0u);
}

TEST_F(DialogEndToEnd, ShowsTheBrowsersOwnDialogWhenTheHookVetoes) {
    browser_.pickerWanted = false;
    EXPECT_EQ(AskShow(), browser_.showAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallShow"));
}

TEST_F(DialogEndToEnd, RemovesAResultWhenTheNextDialogStarts) {
    const std::wstring file = files_.File(L"first.txt");
    {
        PickerUiDriver driver(Pick(Choice::None, {file}));
        ASSERT_EQ(AskShow(), S_OK);
        EXPECT_TRUE(driver.Done());
    }
    PickerUiDriver driver([](OpenPicker& picker) { picker.PressCancel(); });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    std::wstring path;
    EXPECT_EQ(GetResult(path), browser_.getResultAnswer);
    EXPECT_EQ(path, L"");
}

} // namespace
} // namespace obtest
