// Modules with the product's file names that aren't the product's: in folders of the search path,
// without an entry, or empty. Whole requests, with the real library and host.
#include "tests/e2e/RealRequest.h"
#include "tests/fakes/Recording.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr wchar_t kArchive[] = L"obofcsvc64.dll";
constexpr wchar_t kManager[] = L"PVXManager64.dll";
constexpr wchar_t kLibrary[] = L"obwmcore64.dll";

// Makes the folder of the planted modules the current folder and the first of the search path, for
// this process and for the hosts that it starts.
class PlantedFolder {
public:
    PlantedFolder() {
        GetCurrentDirectoryW(MAX_PATH, currentBefore_);
        GetEnvironmentVariableW(L"PATH", pathBefore_, kPathCapacity);
        const std::wstring folder = BesideProgram(L"planted");
        EXPECT_TRUE(SetCurrentDirectoryW(folder.c_str()));
        SetEnvironmentVariableW(L"PATH", (folder + L";" + pathBefore_).c_str());
    }
    ~PlantedFolder() {
        SetCurrentDirectoryW(currentBefore_);
        SetEnvironmentVariableW(L"PATH", pathBefore_);
    }
    PlantedFolder(const PlantedFolder&) = delete;
    PlantedFolder& operator=(const PlantedFolder&) = delete;

private:
    static constexpr DWORD kPathCapacity = 4096; // wide characters

    wchar_t currentBefore_[MAX_PATH] = {};
    wchar_t pathBefore_[kPathCapacity] = {};
};

// Replaces a module by another file, for a scope.
class InPlaceOf {
public:
    InPlaceOf(const wchar_t* module, const wchar_t* other)
        : absent_(module), path_(BesideProgram(module)) {
        EXPECT_TRUE(absent_.Ok());
        EXPECT_TRUE(CopyFileW(BesideProgram(other).c_str(), path_.c_str(), TRUE));
    }
    ~InPlaceOf() { DeleteFileW(path_.c_str()); }
    InPlaceOf(const InPlaceOf&) = delete;
    InPlaceOf& operator=(const InPlaceOf&) = delete;

private:
    const AbsentModule absent_; // puts the module back after the deletion
    std::wstring path_;
};

class OddModules : public RealRequest {
protected:
    void SetUp() override {
        FakeModules::Reset();
        RealRequest::SetUp();
        file_ = files_.File(L"file.txt", "content");
    }

    void TearDown() override {
        EXPECT_EQ(FakeModules::CallsOf({L"Planted"}), planted_);
        EXPECT_TRUE(boxes_.Seen().empty());
        EXPECT_EQ(LeftInTemp(), Texts{});
        EXPECT_EQ(ReadFileContent(file_), "content");
        RealRequest::TearDown();
    }

    void ExpectServed() {
        PickerUiDriver driver(Pick(Choice::None, {file_}));
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        EXPECT_EQ(answer.result, TRUE);
        EXPECT_EQ(answer.given, Texts{file_});
    }

    std::wstring file_;
    Texts planted_; // the loads of the planted modules that a test expects
    MessageBoxWatcher boxes_{MessageBoxWatcher::Scope::AllProcesses};
};

// Shows that the planted modules can be loaded, and that the tests below would notice it.
TEST_F(OddModules, ThatArePlantedAreNoticedWhenLoaded) {
    const std::wstring path = BesideProgram(L"planted\\") + kManager;
    const ObLib::UniqueModule module(LoadLibraryW(path.c_str()));
    ASSERT_TRUE(module);
    planted_ = {L"Planted(\"" + path + L"\")"};
}

TEST_F(OddModules, ThatArePlantedAreNotTakenBesideTheRealOnes) {
    const PlantedFolder planted;
    ExpectServed();
}

TEST_F(OddModules, ThatArePlantedAreNotTakenForAMissingProviderManager) {
    const PlantedFolder planted;
    const AbsentModule manager(kManager);
    ASSERT_TRUE(manager.Ok());
    ExpectCancels();
}

TEST_F(OddModules, ThatArePlantedAreNotTakenForAMissingHost) {
    const PlantedFolder planted;
    const AbsentModule host(L"obwmvapp.exe");
    ASSERT_TRUE(host.Ok());
    ExpectCancels();
}

TEST_F(OddModules, ThatArePlantedAreNotTakenForTheHostsMissingLibrary) {
    const PlantedFolder planted;
    const AbsentModule library(kLibrary);
    ASSERT_TRUE(library.Ok());
    ExpectCancels();
}

TEST_F(OddModules, WithoutAnEntryOfTheProviderManagerFailTheRunOnly) {
    {
        const InPlaceOf manager(kManager, L"odd\\providers_incomplete.dll");
        ExpectCancels();
    }
    ExpectServed();
}

TEST_F(OddModules, ThatAreNotModulesGiveThePageACancel) {
    ASSERT_TRUE(WriteFileContent(BesideProgram(L"odd\\text.dll"), "not a module"));
    const InPlaceOf manager(kManager, L"odd\\text.dll");
    ExpectCancels();
}

// The browser has loaded the real library already; its host finds one without the entry.
TEST_F(OddModules, WithoutTheHostsEntryGiveThePageACancel) {
    const InPlaceOf library(kLibrary, L"planted\\obwmcore64.dll");
    ExpectCancels();
    const std::wstring loaded = L"Planted(\"" + BesideProgram(kLibrary) + L"\")";
    planted_ = {loaded, loaded};
}

// A suite of its own: a service that was bound once stays bound in the browser's process.
class OddArchiveService : public OddModules {};

TEST_F(OddArchiveService, ThatIsPlantedOrLacksAnEntryLeadsToTheBrowsersOwnDialog) {
    const PlantedFolder planted;
    {
        const AbsentModule service(kArchive);
        ASSERT_TRUE(service.Ok());
        EXPECT_EQ(AskOpen().result, browser_.openFileNameAnswer);
        EXPECT_EQ(AskShow(), browser_.showAnswer);
    }
    {
        const InPlaceOf service(kArchive, L"odd\\archive_incomplete.dll");
        EXPECT_EQ(AskOpen().result, browser_.openFileNameAnswer);
        EXPECT_EQ(AskShow(), browser_.showAnswer);
    }
    EXPECT_EQ(browser_.OwnDialogs(), (std::vector<std::string>{"CallGetOpenFileName", "CallShow",
                                                               "CallGetOpenFileName", "CallShow"}));
    EXPECT_EQ(browser_.Count(BrowserCall::IsPickerWanted), 0u);
    ExpectServed();
}

} // namespace
} // namespace obtest
