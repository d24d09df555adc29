// The questions for a file's name, with the system's dialogs replaced: a real one changes the
// process's current folder on Windows and doesn't under Wine.
#include "services/providers/ui/FileQuestion.h"

#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>

#include <string>

#include "services/providers/ui/TextIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

std::wstring g_folder; // that the dialog makes the current one
std::wstring g_name;   // that it was given
DWORD g_flags = 0;

// The user goes to the folder, and chooses a file in it unless the name is "cancel".
BOOL WINAPI Show(OPENFILENAMEW* dialog) {
    SetCurrentDirectoryW(g_folder.c_str());
    g_name = dialog->lpstrFile;
    g_flags = dialog->Flags;
    const std::wstring path = g_folder + L"\\chosen.png";
    if (g_name == L"cancel" || path.size() >= dialog->nMaxFile) return FALSE;
    path.copy(dialog->lpstrFile, path.size());
    dialog->lpstrFile[path.size()] = L'\0';
    return TRUE;
}

std::wstring CurrentFolder() {
    wchar_t path[MAX_PATH + 1] = {};
    GetCurrentDirectoryW(MAX_PATH + 1, path);
    return path;
}

class FileQuestionTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(open_.Ok() && save_.Ok());
        g_folder = folder_.Path();
        ASSERT_NE(CurrentFolder(), g_folder);
    }

    const obtest::TestFolder folder_;
    const std::wstring before_ = CurrentFolder();
    const obtest::ImportPatch<decltype(&GetOpenFileNameW)> open_{"comdlg32.dll", "GetOpenFileNameW",
                                                                 &Show};
    const obtest::ImportPatch<decltype(&GetSaveFileNameW)> save_{"comdlg32.dll", "GetSaveFileNameW",
                                                                 &Show};
};

TEST_F(FileQuestionTest, GivesThePathAndKeepsTheCurrentFolder) {
    EXPECT_EQ(AskForFileToOpen({nullptr, OB_TEXT_WATERMARK_FILTER, 1000}),
              g_folder + L"\\chosen.png");
    EXPECT_EQ(CurrentFolder(), before_);
    EXPECT_EQ(g_name, L"");
    EXPECT_TRUE(g_flags & OFN_FILEMUSTEXIST);
    EXPECT_EQ(AskForFileToSave({nullptr, OB_TEXT_RECEIPT_FILTER, 1000, L"list.txt", L"txt"}),
              g_folder + L"\\chosen.png");
    EXPECT_EQ(CurrentFolder(), before_);
    EXPECT_EQ(g_name, L"list.txt");
    EXPECT_FALSE(g_flags & OFN_FILEMUSTEXIST);
}

TEST_F(FileQuestionTest, KeepsTheCurrentFolderAfterACancelToo) {
    EXPECT_EQ(AskForFileToOpen({nullptr, OB_TEXT_WATERMARK_FILTER, 1000, L"cancel"}), L"");
    EXPECT_EQ(CurrentFolder(), before_);
}

TEST_F(FileQuestionTest, HasRoomForSoManyCharacters) {
    const std::size_t length = (g_folder + L"\\chosen.png").size();
    EXPECT_NE(AskForFileToOpen({nullptr, OB_TEXT_WATERMARK_FILTER, length}), L"");
    EXPECT_EQ(AskForFileToOpen({nullptr, OB_TEXT_WATERMARK_FILTER, length - 1}), L"");
}

} // namespace
