// Which office suite is found and may be started.
#include "services/providers/suite/InstalledSuite.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "services/providers/suite/DocumentToPdf.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/suite/InstalledOffice.h"

using namespace providers;
using namespace suitetest;

namespace {

const std::wstring kProgram = std::wstring(kProgramFolder) + L"\\soffice.exe";

class InstalledSuiteTest : public testing::Test {
protected:
    void SetUp() override {
        BeginAnew();
        Install(kProgramFolder);
    }
    void TearDown() override { BeginAnew(); }
};

TEST_F(InstalledSuiteTest, IsNoneWithoutARegistration) {
    EXPECT_EQ(InstalledSuite(), L"");
    EXPECT_FALSE(IsSuiteThere());
}

TEST_F(InstalledSuiteTest, IsFoundByItsInstallPathInEitherView) {
    for (const int view : {64, 32}) {
        Unregister();
        Register(kProgramFolder, view);
        EXPECT_EQ(InstalledSuite(), kProgram) << view;
        EXPECT_TRUE(IsSuiteThere());
    }
}

TEST_F(InstalledSuiteTest, IsFoundByItsApplicationPath) {
    obtest::SetValue(HKEY_LOCAL_MACHINE, kAppPathKey, L"", kProgram);
    EXPECT_EQ(InstalledSuite(), kProgram);
}

TEST_F(InstalledSuiteTest, IsTakenFromTheSecondPlaceWhenTheFirstOneHasGone) {
    Register(L"C:\\Program Files\\Gone");
    obtest::SetValue(HKEY_LOCAL_MACHINE, kAppPathKey, L"", kProgram);
    EXPECT_EQ(InstalledSuite(), kProgram);
}

TEST_F(InstalledSuiteTest, IsRefusedInAFolderThatTheUserCanWrite) {
    const obtest::TestFolder folder;
    Install(folder.Path());
    Register(folder.Path());
    obtest::SetValue(HKEY_LOCAL_MACHINE, kAppPathKey, L"", folder / L"soffice.exe");
    EXPECT_TRUE(obtest::FileExists(folder / L"soffice.exe"));
    EXPECT_EQ(InstalledSuite(), L"");
}

// The path begins as it should; the file that it means doesn't.
TEST_F(InstalledSuiteTest, IsRefusedWhenThePathLeadsOutOfTheProgramsFolder) {
    Install(L"C:\\Planted");
    Register(L"C:\\Program Files\\..\\Planted");
    EXPECT_EQ(InstalledSuite(), L"");
    obtest::RemoveTree(L"C:\\Planted");
}

TEST_F(InstalledSuiteTest, IsRefusedInAFolderWhoseNameOnlyBeginsLikeThatOfPrograms) {
    Install(L"C:\\Program Files of mine");
    Register(L"C:\\Program Files of mine");
    EXPECT_EQ(InstalledSuite(), L"");
    obtest::RemoveTree(L"C:\\Program Files of mine");
}

TEST_F(InstalledSuiteTest, IsRefusedWithoutAFullPath) {
    for (const wchar_t* path :
         {L"", L"Program Files\\Sample suite", L"\\Program Files\\Sample suite",
          L"C:Program Files\\Sample suite", L"\\\\server\\share\\suite"}) {
        Register(path);
        EXPECT_EQ(InstalledSuite(), L"") << path;
    }
}

TEST_F(InstalledSuiteTest, IsRefusedWhenItIsAFolder) {
    ASSERT_TRUE(DeleteFileW(kProgram.c_str()));
    ASSERT_TRUE(CreateDirectoryW(kProgram.c_str(), nullptr));
    Register(kProgramFolder);
    EXPECT_EQ(InstalledSuite(), L"");
}

// Any program of the user can write there.
TEST_F(InstalledSuiteTest, IsNotLookedForInTheUsersPartOfTheRegistry) {
    obtest::SetValue(HKEY_CURRENT_USER, kSuiteKey, L"", kProgramFolder);
    obtest::SetValue(HKEY_CURRENT_USER, kAppPathKey, L"", kProgram);
    EXPECT_EQ(InstalledSuite(), L"");
    RegDeleteTreeW(HKEY_CURRENT_USER, kSuiteKey);
    RegDeleteTreeW(HKEY_CURRENT_USER, kAppPathKey);
}

} // namespace
