// Finding and binding the manager's file, with the files that a test puts beside the program.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "OBCore/modules/OwnModule.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "tests/support/TestFolder.h"

namespace {

using obcontract::kProviderManagerFileName;
using namespace obcore;

class ProviderBinding : public testing::Test {
protected:
    void SetUp() override { DeleteFileW(Expected().c_str()); }
    void TearDown() override {
        FreeProviderManager();
        DeleteFileW(Expected().c_str());
    }

    // Where the manager has to be.
    static std::wstring Expected() { return *PathBesideOwnModule(kProviderManagerFileName); }

    // Puts a staged file there.
    static void Place(const wchar_t* staged) {
        ASSERT_TRUE(CopyFileW(PathBesideOwnModule(staged)->c_str(), Expected().c_str(), FALSE));
    }

    static bool IsLoaded() { return GetModuleHandleW(kProviderManagerFileName) != nullptr; }
};

TEST_F(ProviderBinding, FailsCleanlyWhenTheFileIsMissing) {
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_FALSE(IsLoaded());
}

TEST_F(ProviderBinding, SucceedsOnceTheFileIsThere) {
    ASSERT_FALSE(LoadProviderManager());
    Place(L"parts\\complete.dll");
    EXPECT_TRUE(LoadProviderManager());
    EXPECT_TRUE(IsLoaded());
}

TEST_F(ProviderBinding, FailsOnAFileThatIsNoModule) {
    ASSERT_TRUE(obtest::WriteFileContent(Expected(), "not a module"));
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_FALSE(IsLoaded());
}

TEST_F(ProviderBinding, UnloadsAManagerThatLacksAnEntry) {
    Place(L"parts\\incomplete.dll");
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_FALSE(IsLoaded());
}

TEST_F(ProviderBinding, LoadsOnlyOnceAndUnloadsAtTheEnd) {
    Place(L"parts\\complete.dll");
    ASSERT_TRUE(LoadProviderManager());
    ASSERT_TRUE(LoadProviderManager());
    FreeProviderManager();
    EXPECT_FALSE(IsLoaded());
    FreeProviderManager();
}

TEST_F(ProviderBinding, NeverUsesASearchPath) {
    const obtest::TestFolder elsewhere;
    ASSERT_TRUE(CopyFileW(PathBesideOwnModule(L"parts\\complete.dll")->c_str(),
                          (elsewhere / kProviderManagerFileName).c_str(), FALSE));
    wchar_t current[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, current), 0u);
    ASSERT_TRUE(SetCurrentDirectoryW(elsewhere.Path().c_str()));
    ASSERT_TRUE(SetDllDirectoryW(elsewhere.Path().c_str()));
    SetEnvironmentVariableW(L"PATH", elsewhere.Path().c_str());

    EXPECT_FALSE(LoadProviderManager());

    SetDllDirectoryW(nullptr);
    SetCurrentDirectoryW(current);
}

} // namespace
