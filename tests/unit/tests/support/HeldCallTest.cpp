#include "tests/support/HeldCall.h"

#include <windows.h>

#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/fakes/Recording.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

namespace {

using obtest::BesideProgram;
using obtest::HeldCall;

// The file of a held call, as the fake has it open between its write and its close.
std::optional<ObLib::UniqueKernelHandle> openFile;
int refusals = 0;
decltype(&DeleteFileW) realDelete = nullptr;

// The fake closes its file after the first attempt to delete it.
BOOL WINAPI CloseAfterTheFirstRefusal(LPCWSTR path) {
    const BOOL deleted = realDelete(path);
    const DWORD error = GetLastError();
    if (!deleted) ++refusals;
    openFile.reset();
    SetLastError(error);
    return deleted;
}

TEST(HeldCall, IsReleasedThoughTheFakeStillHasItsFileOpen) {
    const std::wstring file = BesideProgram(obtest::kHeldFileName);
    obtest::AppendUtf8File(file, L"ExecuteTransforms()");
    openFile.emplace(CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(*openFile);
    const obtest::ImportPatch<decltype(&DeleteFileW)> patch("kernel32.dll", "DeleteFileW",
                                                            &CloseAfterTheFirstRefusal);
    ASSERT_TRUE(patch.Ok());
    realDelete = patch.Real();
    EXPECT_EQ(HeldCall::Await(), L"ExecuteTransforms()");
    HeldCall::Release();
    EXPECT_EQ(refusals, 1);
    EXPECT_FALSE(obtest::FileExists(file));
}

} // namespace
