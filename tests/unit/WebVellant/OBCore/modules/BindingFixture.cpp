#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "tests/fakes/Recording.h"

namespace {

std::vector<std::wstring> loads;
DWORD modeOfLastLoad;
decltype(&LoadLibraryW) realLoad;

HMODULE WINAPI RecordLoad(LPCWSTR path) {
    loads.push_back(path);
    modeOfLastLoad = GetThreadErrorMode();
    return realLoad(path);
}

} // namespace

std::wstring ProgramFolder() { return obtest::BesideProgram(L""); }

BindingFixture::BindingFixture() : load_("kernel32.dll", "LoadLibraryW", &RecordLoad) {
    realLoad = load_.Real();
}

void BindingFixture::SetUp() {
    ASSERT_TRUE(load_.Ok());
    loads.clear();
    obtest::ForgetTrace();
}

void BindingFixture::TearDown() { ObLib::AppGlobals().Clear(); }

void BindingFixture::Put(const wchar_t* staged, const std::wstring& path) {
    ASSERT_TRUE(CopyFileW((ProgramFolder() + staged).c_str(), path.c_str(), FALSE));
}

void BindingFixture::LiveIn(const std::wstring& path) {
    Put(L"complete.dll", path);
    own_.Reset(realLoad(path.c_str()));
    ASSERT_TRUE(own_);
    ObLib::AppGlobals().SetModule(own_.Get(), L"", L"");
    ASSERT_EQ(path, obcore::OwnModulePath());
}

std::wstring BindingFixture::FolderOfLength(std::size_t length) const {
    std::wstring path = folder_.Path() + L"\\";
    while (path.size() < length) {
        // A name of at least one character and its separator have to remain for the last one.
        std::size_t name = std::min<std::size_t>(100, length - path.size() - 1);
        if (length - path.size() - 1 - name == 1) --name;
        path += std::wstring(name, L'f') + L"\\";
        EXPECT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
    }
    EXPECT_EQ(length, path.size());
    return path;
}

const std::vector<std::wstring>& BindingFixture::Loads() { return loads; }

DWORD BindingFixture::ErrorModeOfLastLoad() { return modeOfLastLoad; }
