#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ArchiveService.h"
#include "tests/support/FakeModules.h"
#include "tests/support/TestFolder.h"

using namespace obcontract; // the contract's tables name its types bare

namespace {

using obtest::FakeModules;

using Calls = std::vector<std::wstring>;

// The pointers of all entries of a module; an entry that is missing is null.
obcontract::ArchiveServiceEntries EntriesOf(HMODULE module) {
    obcontract::ArchiveServiceEntries entries{};
#define FETCH_ENTRY(name, result, arguments)                                                       \
    entries.name = reinterpret_cast<result(*) arguments>(                                          \
        reinterpret_cast<void*>(GetProcAddress(module, #name)));
    OB_ARCHIVE_SERVICE_ENTRIES(FETCH_ENTRY)
#undef FETCH_ENTRY
    return entries;
}

int MissingEntries(const obcontract::ArchiveServiceEntries& entries) {
    void* pointers[28];
    std::memcpy(pointers, &entries, sizeof(pointers));
    int missing = 0;
    for (void* pointer : pointers) missing += pointer == nullptr;
    return missing;
}

class FakeArchive : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        ASSERT_TRUE(module_);
        ASSERT_EQ(0, MissingEntries(service_));
    }

    // A context whose zip has this path.
    ZipContext Named(const std::wstring& path) const {
        const ZipContext context = service_.CreateZipContext();
        service_.SetZipNameW(context, path.c_str());
        return context;
    }

    const ObLib::UniqueModule module_{LoadLibraryW(L"obofcsvc64.dll")};
    const obcontract::ArchiveServiceEntries service_ = EntriesOf(module_.Get());
    const obtest::TestFolder folder_;
};

TEST_F(FakeArchive, HasAVersionThatLacksOneEntry) {
    const ObLib::UniqueModule incomplete(LoadLibraryW(L"obofcsvc64_incomplete.dll"));
    ASSERT_TRUE(incomplete);
    const obcontract::ArchiveServiceEntries entries = EntriesOf(incomplete.Get());
    EXPECT_EQ(1, MissingEntries(entries));
    EXPECT_EQ(nullptr, entries.LogAppletFeature);
}

TEST_F(FakeArchive, LeavesAFileWhereASuccessfulZipWouldBe) {
    const std::wstring path = folder_ / L"a.zip";
    EXPECT_EQ(0u, service_.Zip(nullptr, Named(path)));
    EXPECT_EQ("zip of the fake", obtest::ReadFileContent(path));
}

TEST_F(FakeArchive, LeavesAFileOfTheScriptedLength) {
    const std::wstring path = folder_ / L"a.zip";
    FakeModules::Answer(L"ZipSize", L"5000000");
    EXPECT_EQ(0u, service_.Zip(nullptr, Named(path)));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    ASSERT_TRUE(GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ(5000000u, data.nFileSizeLow);
}

TEST_F(FakeArchive, LeavesNoFileOfAFailedZipOrWhenTheScriptForbidsIt) {
    const std::wstring path = folder_ / L"a.zip";
    FakeModules::Answer(L"Zip", L"3");
    EXPECT_EQ(3u, service_.Zip(nullptr, Named(path)));
    EXPECT_FALSE(obtest::FileExists(path));
    FakeModules::Answer(L"Zip", L"0");
    FakeModules::Answer(L"ZipWrites", L"0");
    EXPECT_EQ(0u, service_.Zip(nullptr, Named(path)));
    EXPECT_FALSE(obtest::FileExists(path));
}

TEST_F(FakeArchive, KeepsContextsApart) {
    const ZipContext one = service_.CreateZipContext();
    const ZipContext two = service_.CreateZipContext();
    EXPECT_NE(one, two);
    service_.DestroyZipContext(two);
    EXPECT_EQ(L"DestroyZipContext(context" + std::to_wstring(two) + L")",
              FakeModules::Calls().back());
}

TEST_F(FakeArchive, GivesAPasswordAndAMethod) {
    FakeModules::Answer(L"Password", L"open sesame");
    FakeModules::Answer(L"PasswordMethod", L"8");
    std::uint32_t method = 4;
    char password[260] = {};
    EXPECT_EQ(1u, service_.PasswordNewDlg_C(nullptr, &method, password, sizeof(password)));
    EXPECT_STREQ("open sesame", password);
    EXPECT_EQ(8u, method);
    EXPECT_EQ(Calls({L"PasswordNewDlg_C(0, 4, 260)"}), FakeModules::Calls());
}

TEST_F(FakeArchive, GivesNoPasswordWhenTheUserGaveNone) {
    FakeModules::Answer(L"PasswordNewDlg_C", L"2");
    std::uint32_t method = 4;
    char password[260] = {};
    EXPECT_EQ(2u, service_.PasswordNewDlg_C(nullptr, &method, password, sizeof(password)));
    EXPECT_STREQ("", password);
    EXPECT_EQ(4u, method);
}

TEST_F(FakeArchive, AnswersOneCallAmongManyByItsWholeLine) {
    FakeModules::Answer(L"ValidateFilespecW(\"bad\", 2)", L"5");
    EXPECT_EQ(5u, service_.ValidateFilespecW(L"bad", 2));
    EXPECT_EQ(0u, service_.ValidateFilespecW(L"bad", 4));
    EXPECT_EQ(0u, service_.ValidateFilespecW(L"good", 2));
}

TEST_F(FakeArchive, AnswersWithoutAScriptAsAServiceThatAllowsAll) {
    EXPECT_EQ(12, service_.AllowedEncryptMethods());
    EXPECT_EQ(4, service_.DefaultEncryptionMethod());
    EXPECT_EQ(0u, service_.TryToShowWarningOrErrorMessage(nullptr, 0, 1));
    char key[16] = "unchanged";
    EXPECT_EQ(0u, service_.GetPublicKeyResult(key, sizeof(key)));
    EXPECT_STREQ("unchanged", key);
}

TEST_F(FakeArchive, WritesDownArgumentsOfEveryKind) {
    service_.SetDuplicateReferences(7, 1);
    service_.SetPassword(7, "word");
    service_.SetPublicKeyW(7, nullptr);
    service_.WebHelpW(nullptr, L"topic", L"topic");
    service_.SetCompression(7, 0xFFFFFFFF);
    service_.LogLaunch();
    EXPECT_EQ(Calls({L"SetDuplicateReferences(context7, 1)", L"SetPassword(context7, \"word\")",
                     L"SetPublicKeyW(context7, null)", L"WebHelpW(0, \"topic\", \"topic\")",
                     L"SetCompression(context7, 4294967295)", L"LogLaunch()"}),
              FakeModules::Calls());
}

} // namespace
