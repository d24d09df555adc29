// The browser's window closes, or its message loop gets WM_QUIT, while the real host shows its real
// dialog. The UI driver goes on picking; the page, whose call hasn't returned yet, still gets an
// answer.
#include "tests/e2e/RealRequest.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr int kQuitValue = 23;

class BrowserClosed : public RealRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        AskFrom(window_.Page());
        one_ = files_.File(L"one.txt", "first");
        two_ = files_.File(L"two.txt", "second");
    }

    void TearDown() override {
        EXPECT_TRUE(boxes_.Seen().empty()) << "a box: " << Utf8(boxes_.Seen().front().text);
        EXPECT_FALSE(FindWindowW(L"WebVellantLayer", nullptr)) << "a layer is left";
        EXPECT_EQ(browser_.OwnDialogCount(), 0u);
        EXPECT_EQ(ReadFileContent(one_), "first");
        EXPECT_EQ(ReadFileContent(two_), "second");
        RealRequest::TearDown();
    }

    // The browser's window is destroyed first; the dialog stays and can be used.
    Use CloseBrowserAnd(Use use) const {
        return [root = window_.Root(), use](OpenPicker& picker) {
            PostMessageW(root, WM_CLOSE, 0, 0);
            EXPECT_TRUE(WaitUntil([root] { return !IsWindow(root); }));
            EXPECT_TRUE(picker.IsOpen());
            use(picker);
        };
    }

    static Use QuitBrowserAnd(Use use) {
        return [browser = GetCurrentThreadId(), use](OpenPicker& picker) {
            EXPECT_TRUE(PostThreadMessageW(browser, WM_QUIT, kQuitValue, 0));
            EXPECT_TRUE(picker.IsOpen());
            use(picker);
        };
    }

    static Use Cancel() {
        return [](OpenPicker& picker) { picker.PressCancel(); };
    }

    void ExpectOnlyTheZipIsLeft(const Texts& given) {
        ASSERT_EQ(given.size(), 1u);
        const std::wstring folder = FolderOf(given.front());
        EXPECT_EQ(browser_.cleanupFolder, folder);
        EXPECT_EQ(browser_.cleanupFile, given.front());
        EXPECT_EQ(LeftInTemp().size(), 2u) << "more than the zip and its folder";
        EXPECT_TRUE(DeleteFileW(given.front().c_str()));
        EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
    }

    BrowserWindow window_;
    std::wstring one_;
    std::wstring two_;
    MessageBoxWatcher boxes_{MessageBoxWatcher::Scope::AllProcesses};
};

TEST_F(BrowserClosed, WhileTheDialogIsShownThePageStillGetsThePickedFile) {
    PickerUiDriver driver(CloseBrowserAnd(Pick(Choice::None, {one_})));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    EXPECT_EQ(answer.given, Texts{one_});
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(BrowserClosed, WhileTheDialogIsShownThePageStillGetsTheZipAndItsCleanupNames) {
    PickerUiDriver driver(CloseBrowserAnd(Pick(Choice::Zip, {one_, two_})));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    ExpectOnlyTheZipIsLeft(answer.given);
}

TEST_F(BrowserClosed, WhileTheDialogIsShownACancelLeavesNothing) {
    PickerUiDriver driver(CloseBrowserAnd(Cancel()));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(BrowserClosed, WhileTheDialogIsShownTheDialogPathKeepsItsResults) {
    PickerUiDriver driver(CloseBrowserAnd(Pick(Choice::None, {one_, two_})));
    EXPECT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    Texts given;
    EXPECT_EQ(GetResults(given), S_OK);
    EXPECT_EQ(given, (Texts{one_, two_}));
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(BrowserClosed, AfterAQuitMessageThePageIsAnsweredFirstAndTheQuitIsPostedAgain) {
    PickerUiDriver driver(QuitBrowserAnd(Pick(Choice::None, {one_})));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, TRUE);
    EXPECT_EQ(answer.given, Texts{one_});
    EXPECT_EQ(QuitValueInQueue(), kQuitValue);
    EXPECT_TRUE(window_.Enabled());
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(BrowserClosed, AfterAQuitMessageOnTheDialogPathTheZipIsDeliveredAndTheQuitIsPostedAgain) {
    PickerUiDriver driver(QuitBrowserAnd(CloseBrowserAnd(Pick(Choice::Zip, {one_, two_}))));
    EXPECT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(QuitValueInQueue(), kQuitValue);
    Texts given;
    EXPECT_EQ(GetResults(given), S_OK);
    ExpectOnlyTheZipIsLeft(given);
}

TEST_F(BrowserClosed, AfterAQuitMessageACancelIsACancelAndTheQuitIsPostedAgain) {
    PickerUiDriver driver(QuitBrowserAnd(Cancel()));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(QuitValueInQueue(), kQuitValue);
    EXPECT_TRUE(window_.Enabled());
    EXPECT_EQ(LeftInTemp(), Texts{});
}

} // namespace
} // namespace obtest
