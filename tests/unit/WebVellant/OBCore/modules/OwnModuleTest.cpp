#include "OBCore/modules/OwnModule.h"

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "tests/fakes/Recording.h"
#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

namespace {

using obcore::OwnModulePath;
using obcore::PathBesideOwnModule;

class OwnModule : public BindingFixture {};

TEST_F(OwnModule, IsTheProgramUntilTheLibraryIsAttached) {
    EXPECT_EQ(nullptr, obcore::OwnModule());
    wchar_t program[MAX_PATH];
    ASSERT_NE(0u, GetModuleFileNameW(nullptr, program, MAX_PATH));
    EXPECT_EQ(program, OwnModulePath());
    EXPECT_EQ(ProgramFolder() + L"x.dll", PathBesideOwnModule(L"x.dll"));
}

TEST_F(OwnModule, IsTheModuleThatWasAttached) {
    const std::wstring path = folder_ / L"own.dll";
    LiveIn(path);
    EXPECT_EQ(GetModuleHandleW(path.c_str()), obcore::OwnModule());
    EXPECT_EQ(path, OwnModulePath());
    EXPECT_EQ(folder_ / L"x.dll", PathBesideOwnModule(L"x.dll"));
}

TEST_F(OwnModule, HasNoPathBesideItThatDoesntFit) {
    const std::wstring deep = FolderOfLength(240);
    LiveIn(deep + L"m.dll");
    EXPECT_EQ(deep + std::wstring(19, L'n'), PathBesideOwnModule(std::wstring(19, L'n').c_str()));
    EXPECT_FALSE(PathBesideOwnModule(std::wstring(20, L'n').c_str()));
}

DWORD pathResult;

DWORD WINAPI AnswerPathResult(HMODULE, LPWSTR path, DWORD) {
    wcscpy(path, L"C:\\x\\y.dll");
    return pathResult;
}

TEST_F(OwnModule, HasNoPathWhenTheSystemGivesNoneOrCutsIt) {
    const obtest::ImportPatch<decltype(GetModuleFileNameW)> patch(
        "kernel32.dll", "GetModuleFileNameW", &AnswerPathResult);
    ASSERT_TRUE(patch.Ok());
    for (const DWORD result : {0u, 260u}) {
        pathResult = result;
        EXPECT_FALSE(OwnModulePath());
        EXPECT_FALSE(PathBesideOwnModule(L"x.dll"));
    }
}

} // namespace
