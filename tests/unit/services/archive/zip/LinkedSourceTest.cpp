// A picked file that is a link: its target is what goes into the zip.
#include <cstdio>
#include <optional>

#include "tests/support/ImportPatch.h"
#include "tests/unit/services/archive/zip/EngineFixture.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace obtest {
namespace {

using obarchive::ZipResult;

decltype(&GetFileAttributesExW) realAttributes = nullptr;

// A fake of the system's call that shows each file as Windows shows a link: no size, and the time
// at which the link was made.
BOOL WINAPI ShowLink(const wchar_t* path, GET_FILEEX_INFO_LEVELS level, void* found) {
    if (!realAttributes(path, level, found)) return FALSE;
    auto* const data = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(found);
    data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    data->nFileSizeHigh = 0;
    data->nFileSizeLow = 0;
    data->ftLastWriteTime.dwHighDateTime -= 1000;
    return TRUE;
}

class LinkedSourceTest : public EngineFixture {
protected:
    LinkedSourceTest() {
        realAttributes = patch_->Real();
        std::puts("links are played by a fake: this system shows a link as its target");
    }

    using Patch = ImportPatch<decltype(&GetFileAttributesExW)>;
    std::optional<Patch> patch_{std::in_place, "kernel32.dll", "GetFileAttributesExW", &ShowLink};
};

TEST_F(LinkedSourceTest, TheTargetsContentIsStored) {
    ASSERT_TRUE(patch_->Ok());
    const std::string large = EngineProse(5'000'000);
    Add(L"small.txt", "linked");
    Add(L"large.txt", large);
    Add(L"empty.txt", "");
    EXPECT_EQ(Run(), ZipResult::Ok);
    patch_.reset(); // the reader asks the same call for the zip's size
    const auto entries = ReadZip(job_.target);
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 3U);
    EXPECT_EQ(entries->at(0).content, "linked");
    EXPECT_TRUE(entries->at(1).content == large);
    EXPECT_EQ(entries->at(2).content, "");
    EXPECT_GT(entries->at(0).modified, 1'600'000'000) << "the target's time";
}

TEST_F(LinkedSourceTest, ALinkWhoseTargetIsLockedFailsTheRun) {
    ASSERT_TRUE(patch_->Ok());
    const std::wstring path = Add(L"small.txt", "linked");
    const ObLib::UniqueKernelHandle lock(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(lock);
    EXPECT_EQ(Run(), ZipResult::SourceLocked);
    EXPECT_EQ(failedFile_, path);
    ExpectNothingLeft();
}

} // namespace
} // namespace obtest
