// The user cancels while a transform works on a file, and the host clears up at once: the work
// process has the copy and half a result open then.
#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

struct Transform {
    const char* title;
    std::uint32_t id;
    const wchar_t* file;
};

const Transform kTransforms[] = {
    {"personal data", 51, L"photo.jpg"}, {"photos", 50, L"photo.heic"},
    {"watermark", 5, L"photo.jpg"},      {"pdf", 3, L"photo.jpg"},
    {"resize", 2, L"photo.jpg"},
};

class CancelledStages : public ManagerFixture {
protected:
    void Begin(std::uint32_t id) {
        SetUp();
        SelectOnly(id);
        const std::wstring key = std::wstring(kProviderManagerKey) + L"\\Transforms\\5";
        obtest::SetValue(HKEY_CURRENT_USER, key, L"Text", L"Ann Example");
        Script("hang-after-writing");
    }
};

TEST_F(CancelledStages, LeaveNothingAfterTheCleanUp) {
    for (const Transform& transform : kTransforms) {
        SCOPED_TRACE(transform.title);
        Begin(transform.id);
        const std::wstring folder = folder_.Folder(L"run");
        const std::wstring path = folder + L"\\" + transform.file;
        ASSERT_TRUE(obtest::WriteFileContent(path, "photo"));
        const obtest::MessageBoxWatcher boxes;
        std::thread worker([&] { EXPECT_FALSE(Execute(path, folder)); });
        EXPECT_TRUE(AwaitUnfinished());
        EXPECT_TRUE(DeleteFileW(path.c_str())); // as the clean-up does
        RemoveDirectoryW(folder.c_str());
        Entries().Deinit(manager_);
        worker.join();
        EXPECT_EQ(Files(), Names{});
        EXPECT_TRUE(boxes.Seen().empty());
    }
}

} // namespace
