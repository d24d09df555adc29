#include "ObLib/Src/Win32/ModulePath.h"

#include <gtest/gtest.h>

namespace {

std::wstring ProgramPath() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

TEST(ModulePath, ThisModuleIsTheProgramThatLinksIt) {
    EXPECT_EQ(GetModuleHandleW(nullptr), ObLib::ThisModule());
    EXPECT_EQ(ProgramPath(), ObLib::ModulePath(ObLib::ThisModule()));
    EXPECT_EQ(ProgramPath(), ObLib::ModulePath(nullptr));
}

TEST(ModulePath, AnotherModuleHasAPathOfItsOwn) {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    wchar_t path[MAX_PATH];
    ASSERT_NE(0U, GetModuleFileNameW(kernel, path, MAX_PATH));
    EXPECT_EQ(std::wstring(path), ObLib::ModulePath(kernel));
}

TEST(ModulePath, APathThatIsNotWholeIsNone) {
    const auto length = static_cast<DWORD>(ProgramPath().size());
    EXPECT_EQ(ProgramPath(), ObLib::ModulePath(nullptr, length + 1));
    EXPECT_EQ(std::nullopt, ObLib::ModulePath(nullptr, length));
    EXPECT_EQ(std::nullopt, ObLib::ModuleFolder(nullptr, length));
    EXPECT_EQ(std::nullopt, ObLib::PathBesideModule(nullptr, L"a", length));
}

TEST(ModulePath, NoModuleHasNoPath) {
    const auto none = reinterpret_cast<HMODULE>(static_cast<std::uintptr_t>(0x10000));
    EXPECT_EQ(std::nullopt, ObLib::ModulePath(none));
}

TEST(ModulePath, TheFolderEndsInABackslash) {
    const std::wstring program = ProgramPath();
    const std::wstring folder = program.substr(0, program.rfind(L'\\') + 1);
    EXPECT_EQ(folder, ObLib::ModuleFolder(nullptr));
    EXPECT_EQ(folder + L"a.dll", ObLib::PathBesideModule(nullptr, L"a.dll"));
}

TEST(ModulePath, APathBesideTheModuleFitsTheCapacityWithItsNul) {
    const std::wstring program = ProgramPath();
    const auto capacity = static_cast<DWORD>(program.size() + 1);
    const std::wstring longest(program.size() - program.rfind(L'\\') - 1, L'n');
    EXPECT_TRUE(ObLib::PathBesideModule(nullptr, longest.c_str(), capacity));
    EXPECT_FALSE(ObLib::PathBesideModule(nullptr, (longest + L"n").c_str(), capacity));
}

} // namespace
