// The host is killed at each step of a request. In each case the page gets a cancel, no message is
// shown, the browser takes input again, and the user's files are unchanged.
#include <gmock/gmock.h>

#include <algorithm>
#include <thread>

#include "contracts/ExchangeBlock.h"
#include "tests/e2e/RealRequest.h"
#include "tests/faults/HostProcess.h"
#include "tests/support/FakeModules.h"
#include "tests/support/HeldCall.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

class HostKilled : public RealRequest {
protected:
    void SetUp() override {
        HeldCall::Release();
        FakeModules::Reset();
        RealRequest::SetUp();
        SetUserValue(L"DefaultZipName", L"two files");
        one_ = files_.File(L"one.txt", "first");
        two_ = files_.File(L"two.txt", "second");
    }

    void TearDown() override {
        EXPECT_EQ(ReadFileContent(one_), "first");
        EXPECT_EQ(ReadFileContent(two_), "second");
        EXPECT_TRUE(boxes_.Seen().empty()) << "a box: " << Utf8(boxes_.Seen().front().text);
        EXPECT_EQ(browser_.OwnDialogCount(), 0u);
        EXPECT_EQ(browser_.delivered, Texts{});
        for (const std::wstring& item : LeftInTemp())
            if (item.find(L'\\') == item.size() - 1)
                RemoveTree(TempFolder() + L"\\" + item.substr(0, item.size() - 1));
        RealRequest::TearDown();
    }

    static void KillAtHeldCall() {
        EXPECT_FALSE(HeldCall::Await().empty()) << "the call never came";
        EXPECT_TRUE(KillHost());
        HeldCall::Release();
    }

    // The UI driver picks two files for a zip; the host is killed at the call that the script
    // blocks.
    Use PickAndKill() const {
        return [pick = Pick(Choice::Zip, {one_, two_})](OpenPicker& picker) {
            pick(picker);
            KillAtHeldCall();
        };
    }

    static void ExpectCancel(const OpenAnswer& answer) {
        EXPECT_EQ(answer.result, FALSE);
        EXPECT_EQ(answer.given, Texts{});
    }

    // What is left in the temporary folder; each folder that was made is shown as its number.
    Texts Left() const {
        Texts left = LeftInTemp();
        Texts folders;
        for (std::wstring& item : left) {
            const std::wstring folder = item.substr(0, item.find(L'\\'));
            if (std::ranges::find(folders, folder) == folders.end()) folders.push_back(folder);
            const auto number = std::ranges::find(folders, folder) - folders.begin() + 1;
            item.replace(0, folder.size(), std::to_wstring(number));
        }
        return left;
    }

    static constexpr wchar_t kZipName[] = L"two files.zip";

    // Expects that the page's next request is served.
    void ExpectTheNextRequestIsServed() {
        FakeModules::Reset();
        PickerUiDriver driver(Pick(Choice::None, {one_}));
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        EXPECT_EQ(answer.result, TRUE);
        EXPECT_EQ(answer.given, Texts{one_});
    }

    std::wstring one_;
    std::wstring two_;
    MessageBoxWatcher boxes_{MessageBoxWatcher::Scope::AllProcesses};
};

TEST_F(HostKilled, BeforeItMapsTheBlock) {
    FakeModules::Answer(L"Hold", L"LogLaunch");
    std::thread driver(&KillAtHeldCall);
    ExpectCancel(AskOpen());
    driver.join();
    EXPECT_EQ(Left(), Texts{});
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilled, AfterItMapsTheBlockAndBeforeItsDialog) {
    for (const bool open : {true, false}) {
        FakeModules::Reset();
        FakeModules::Answer(L"Hold", L"AllowedEncryptMethods");
        std::thread driver(&KillAtHeldCall);
        if (open)
            ExpectCancel(AskOpen());
        else
            EXPECT_EQ(AskShow(), kCancelled);
        driver.join();
    }
    EXPECT_EQ(Left(), Texts{});
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilled, WhileItsDialogIsShown) {
    PickerUiDriver driver([](OpenPicker&) { EXPECT_TRUE(KillHost()); });
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), Texts{});
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilled, WhileItsDialogIsShownOnTheDialogPath) {
    PickerUiDriver driver([](OpenPicker&) { EXPECT_TRUE(KillHost()); });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), Texts{});
}

// No debugger's question is shown, and nothing waits for an answer.
TEST_F(HostKilled, ByACrashOfItsOwn) {
    for (const bool open : {true, false}) {
        PickerUiDriver driver([](OpenPicker&) { EXPECT_TRUE(CrashHost()); });
        if (open)
            ExpectCancel(AskOpen());
        else
            EXPECT_EQ(AskShow(), kCancelled);
        EXPECT_TRUE(driver.Done());
    }
    EXPECT_EQ(Left(), Texts{});
    ExpectTheNextRequestIsServed();
}

// The copies that the zip was made from stay: no process that knows of them is left.
TEST_F(HostKilled, DuringTheZip) {
    FakeModules::Answer(L"Hold", L"Zip");
    PickerUiDriver driver(PickAndKill());
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), (Texts{L"1\\", L"1\\one.txt", L"1\\two.txt", L"2\\"}));
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilled, DuringTheZipOnTheDialogPath) {
    FakeModules::Answer(L"Hold", L"Zip");
    PickerUiDriver driver(PickAndKill());
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    // The dialog gave no result, so the page's query is passed to the browser.
    std::wstring path;
    EXPECT_EQ(GetResult(path), browser_.getResultAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), testing::ElementsAre("CallGetResult"));
    browser_.Clear();
    EXPECT_EQ(Left(), (Texts{L"1\\", L"1\\one.txt", L"1\\two.txt", L"2\\"}));
}

// The block of a running request, as another process sees it.
class BlockOf {
public:
    explicit BlockOf(int id)
        : section_(OpenFileMappingW(FILE_MAP_READ, FALSE,
                                    (L"WEBVELLANT_SM_" + std::to_wstring(id)).c_str())),
          bytes_(section_
                     ? static_cast<const std::uint8_t*>(MapViewOfFile(
                           section_.Get(), FILE_MAP_READ, 0, 0, obcontract::kExchangeBlockSize))
                     : nullptr) {}
    bool Ok() const { return static_cast<bool>(bytes_); }

    // Whether everything in one of its pages of 4,096 bytes is 0.
    bool IsEmpty(int page) const {
        const auto* const begin = bytes_.Get() + page * 4096;
        return std::all_of(begin, begin + 4096, [](std::uint8_t byte) { return byte == 0; });
    }

    // The last character of the first page.
    wchar_t BeforeSecondPage() const {
        return *reinterpret_cast<const wchar_t*>(bytes_.Get() + 4094);
    }

private:
    ObLib::UniqueKernelHandle section_;
    ObLib::UniqueMappedView<const std::uint8_t> bytes_;
};

class HostKilledAsItWrites : public HostKilled {
protected:
    void SetUp() override {
        HostKilled::SetUp();
        FakeModules::Answer(L"Hold", L"WriteSecondPage");
        // An answer of more than a page on either path; no zip, so that there is no other write.
        for (int number = 100; number < 180; ++number)
            many_.push_back(
                files_.File(std::to_wstring(number) + std::wstring(30, L'n') + L".txt", "many"));
    }

    // Kills the host when its writing reaches the block's second page.
    Use PickAndKillAsItWrites(std::function<int()> blockId) const {
        return [pick = Pick(Choice::None, many_), blockId](OpenPicker& picker) {
            pick(picker);
            EXPECT_FALSE(HeldCall::Await().empty()) << "the write never came";
            const BlockOf block(blockId());
            EXPECT_TRUE(block.Ok());
            if (block.Ok()) {
                EXPECT_NE(block.BeforeSecondPage(), L'\0') << "the first page isn't full";
                EXPECT_TRUE(block.IsEmpty(1)) << "the answer is further already";
            }
            EXPECT_TRUE(KillHost());
            HeldCall::Release();
        };
    }

    Texts many_;
};

TEST_F(HostKilledAsItWrites, TheFileListGivesThePageNoFile) {
    const int id = static_cast<int>(GetCurrentThreadId());
    PickerUiDriver driver(PickAndKillAsItWrites([id] { return id; }));
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), Texts{});
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilledAsItWrites, ThePathsOfTheDialogPathGiveThePageNoFile) {
    // Blocks of this path are numbered; the one that exists is that of the running request.
    const auto running = [] {
        int id = 1;
        while (id < 100 && !BlockOf(id).Ok()) ++id;
        return id;
    };
    PickerUiDriver driver(PickAndKillAsItWrites(running));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    Texts paths;
    EXPECT_EQ(GetResults(paths), browser_.getResultsAnswer);
    EXPECT_EQ(paths, Texts{});
    EXPECT_THAT(browser_.OwnDialogs(), testing::ElementsAre("CallGetResults"));
    browser_.Clear();
    EXPECT_EQ(Left(), Texts{});
}

TEST_F(HostKilled, WhileItDeletesItsCopies) {
    FakeModules::Answer(L"Hold", L"DeleteFileW");
    PickerUiDriver driver(PickAndKill());
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    const std::wstring zip = std::wstring(L"2\\") + kZipName;
    EXPECT_EQ(Left(), (Texts{L"1\\", L"1\\one.txt", L"1\\two.txt", L"2\\", zip}));
}

// The block contains a complete answer, but only exit code 0 makes an answer valid.
TEST_F(HostKilled, AfterItsResult) {
    FakeModules::Answer(L"Hold", L"LogExit");
    PickerUiDriver driver(PickAndKill());
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), (Texts{L"1\\", std::wstring(L"1\\") + kZipName}));
    ExpectTheNextRequestIsServed();
}

TEST_F(HostKilled, AfterItsResultOnTheDialogPath) {
    FakeModules::Answer(L"Hold", L"LogExit");
    PickerUiDriver driver(PickAndKill());
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    std::vector<std::wstring> paths;
    EXPECT_EQ(GetResults(paths), browser_.getResultsAnswer);
    EXPECT_EQ(paths, Texts{});
    EXPECT_THAT(browser_.OwnDialogs(), testing::ElementsAre("CallGetResults"));
    browser_.Clear();
}

TEST_F(HostKilled, WhileItsProcessEnds) {
    FakeModules::Answer(L"Hold", L"ProcessEnds");
    PickerUiDriver driver(PickAndKill());
    ExpectCancel(AskOpen());
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(Left(), (Texts{L"1\\", std::wstring(L"1\\") + kZipName}));
    ExpectTheNextRequestIsServed();
}

} // namespace
} // namespace obtest
