#include "OBCore/modules/ServiceLibrary.h"
#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

using namespace obcontract; // the contract's tables name its types bare

namespace {

using obcore::FreeArchiveService;
using obcore::LoadArchiveService;

const std::wstring kFileName = L"obofcsvc64.dll";

class ArchiveServiceLoading : public BindingFixture {
protected:
    void TearDown() override {
        FreeArchiveService();
        DeleteFileW((ProgramFolder() + kFileName).c_str());
        BindingFixture::TearDown();
    }

    static std::wstring Beside() { return ProgramFolder() + kFileName; }
    static bool IsLoaded() { return GetModuleHandleW(kFileName.c_str()) != nullptr; }
};

std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

TEST_F(ArchiveServiceLoading, FailsWithoutTheFile) {
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_EQ(std::vector<std::wstring>({Beside()}), Loads());
    EXPECT_EQ(std::vector<std::string>({"LoadLibrary " + Narrow(Beside()) + " failed"}),
              obtest::TraceLines());
}

TEST_F(ArchiveServiceLoading, FailsWithAFileThatIsNoModule) {
    ASSERT_TRUE(obtest::WriteFileContent(Beside(), "not a module"));
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_EQ(1u, obtest::TraceLines().size());
}

TEST_F(ArchiveServiceLoading, ShowsNoBoxOfTheSystemForAFileThatIsNoModule) {
    const UINT before = SetErrorMode(0);
    ASSERT_TRUE(obtest::WriteFileContent(Beside(), "not a module"));
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_EQ(static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX),
              ErrorModeOfLastLoad());
    SetErrorMode(before);
}

TEST_F(ArchiveServiceLoading, BindsEveryEntryByItsName) {
    Put(L"complete.dll", Beside());
    ASSERT_TRUE(LoadArchiveService());
    const HMODULE library = GetModuleHandleW(kFileName.c_str());
    ASSERT_NE(nullptr, library);
#define EXPECT_BOUND(name, result, arguments)                                                      \
    EXPECT_NE(nullptr, obcore::ArchiveService().name);                                             \
    EXPECT_EQ(reinterpret_cast<void*>(GetProcAddress(library, #name)),                             \
              reinterpret_cast<void*>(obcore::ArchiveService().name))                              \
        << #name;
    OB_ARCHIVE_SERVICE_ENTRIES(EXPECT_BOUND)
#undef EXPECT_BOUND
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST_F(ArchiveServiceLoading, LoadsOnceAndAnswersFromThenOn) {
    Put(L"complete.dll", Beside());
    EXPECT_TRUE(LoadArchiveService());
    EXPECT_TRUE(LoadArchiveService());
    EXPECT_EQ(std::vector<std::wstring>({Beside()}), Loads());
}

TEST_F(ArchiveServiceLoading, FailsWhenAnEntryIsMissingAndUnloadsTheLibrary) {
    Put(L"incomplete.dll", Beside());
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(std::vector<std::string>({"GetProcAddress LogAppletFeature failed"}),
              obtest::TraceLines());
}

TEST_F(ArchiveServiceLoading, TriesAgainAfterEveryFailure) {
    EXPECT_FALSE(LoadArchiveService());
    Put(L"incomplete.dll", Beside());
    EXPECT_FALSE(LoadArchiveService());
    Put(L"complete.dll", Beside());
    EXPECT_TRUE(LoadArchiveService());
    EXPECT_EQ(3u, Loads().size());
}

TEST_F(ArchiveServiceLoading, NeverTakesTheLibraryFromASearchPath) {
    const std::wstring home = folder_.Folder(L"home");
    LiveIn(home + L"\\own.dll");
    Put(L"complete.dll", Beside()); // the program's folder is searched first
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_EQ(std::vector<std::wstring>({home + L"\\" + kFileName}), Loads());

    Put(L"complete.dll", home + L"\\" + kFileName);
    EXPECT_TRUE(LoadArchiveService());
    FreeArchiveService();
}

TEST_F(ArchiveServiceLoading, AsksForNothingWhenThePathLeavesTooLittleRoom) {
    const std::wstring deep = FolderOfLength(260 - 15);
    LiveIn(deep + L"m.dll");
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_TRUE(Loads().empty());
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST_F(ArchiveServiceLoading, BindsWhenThePathLeavesJustEnoughRoom) {
    const std::wstring deep = FolderOfLength(260 - 16);
    LiveIn(deep + L"m.dll");
    Put(L"complete.dll", deep + kFileName);
    EXPECT_TRUE(LoadArchiveService());
    EXPECT_EQ(std::vector<std::wstring>({deep + kFileName}), Loads());
    FreeArchiveService();
}

TEST_F(ArchiveServiceLoading, UnloadsWhenFreedAndBindsAgain) {
    Put(L"complete.dll", Beside());
    ASSERT_TRUE(LoadArchiveService());
    FreeArchiveService();
    EXPECT_FALSE(IsLoaded());
    FreeArchiveService();
    EXPECT_TRUE(LoadArchiveService());
}

// The names that were asked for in the library, in order, and the one that it is to lack.
std::vector<std::string> fetches;
std::string lackingEntry;
decltype(&GetProcAddress) realFetch;

FARPROC WINAPI RecordFetch(HMODULE module, LPCSTR name) {
    if (module != GetModuleHandleW(kFileName.c_str())) return realFetch(module, name);
    fetches.push_back(name);
    return name == lackingEntry ? nullptr : realFetch(module, name);
}

class ArchiveServiceFetching : public ArchiveServiceLoading {
protected:
    void SetUp() override {
        ArchiveServiceLoading::SetUp();
        ASSERT_TRUE(fetch_.Ok());
        realFetch = fetch_.Real();
        fetches.clear();
        lackingEntry.clear();
        Put(L"complete.dll", Beside());
    }

private:
    obtest::ImportPatch<decltype(GetProcAddress)> fetch_{"kernel32.dll", "GetProcAddress",
                                                         &RecordFetch};
};

// First of its suite: the table of a process is empty only once.
TEST_F(ArchiveServiceFetching, LeavesWhatItHasInTheTableWhenOneEntryIsMissing) {
    lackingEntry = "PasswordDlg_C";
    EXPECT_EQ(nullptr, obcore::ArchiveService().DestroyZipContext);
    EXPECT_FALSE(LoadArchiveService());
    EXPECT_NE(nullptr, obcore::ArchiveService().CreateZipContext);
    EXPECT_NE(nullptr, obcore::ArchiveService().DestroyZipContext);
    EXPECT_EQ(nullptr, obcore::ArchiveService().PasswordDlg_C);
    EXPECT_EQ(nullptr, obcore::ArchiveService().LogAppletFeature);
    EXPECT_FALSE(IsLoaded());
}

TEST_F(ArchiveServiceFetching, GoesThroughAllEntriesInTheirOrder) {
    ASSERT_TRUE(LoadArchiveService());
    const std::vector<std::string> expected = {
        "CreateZipContext",
        "DestroyZipContext",
        "PasswordDlg_C",
        "PasswordNewDlg_C",
        "SetZipNameW",
        "SetEncrypt",
        "SetTempFolderW",
        "SetImageResize",
        "AddFileW",
        "SetPassword",
        "SetCompression",
        "SetDuplicateReferences",
        "Zip",
        "CheckForUpdates_VB",
        "WebHelpW",
        "Encrypt_String_VB",
        "Decrypt_String_VB",
        "GetOmbrixFIPSSetting",
        "AllowedEncryptMethods",
        "DefaultEncryptionMethod",
        "TryToShowWarningOrErrorMessage",
        "GetPublicKeyResult",
        "SetPublicKeyResult",
        "SetPublicKeyW",
        "ValidateFilespecW",
        "LogLaunch",
        "LogExit",
        "LogAppletFeature",
    };
    EXPECT_EQ(expected, fetches);
}

TEST_F(ArchiveServiceFetching, StopsAtTheFirstEntryThatIsMissing) {
    for (const char* name : {"CreateZipContext", "SetImageResize", "Encrypt_String_VB"}) {
        SCOPED_TRACE(name);
        lackingEntry = name;
        fetches.clear();
        obtest::ForgetTrace();
        EXPECT_FALSE(LoadArchiveService());
        EXPECT_EQ(name, fetches.back());
        EXPECT_EQ(std::vector<std::string>({std::string("GetProcAddress ") + name + " failed"}),
                  obtest::TraceLines());
        EXPECT_FALSE(IsLoaded());
    }
}

DWORD pathResult;

DWORD WINAPI AnswerPathResult(HMODULE, LPWSTR path, DWORD capacity) {
    std::fill(path, path + capacity, L'x');
    path[0] = L'\\';
    path[capacity - 1] = L'\0';
    return pathResult;
}

TEST_F(ArchiveServiceLoading, AsksForNothingWhenTheOwnPathIsUnknownOrCut) {
    Put(L"complete.dll", Beside());
    const obtest::ImportPatch<decltype(GetModuleFileNameW)> patch(
        "kernel32.dll", "GetModuleFileNameW", &AnswerPathResult);
    ASSERT_TRUE(patch.Ok());
    for (const DWORD result : {0u, 260u}) {
        pathResult = result;
        EXPECT_FALSE(LoadArchiveService());
    }
    EXPECT_TRUE(Loads().empty());
}

} // namespace
