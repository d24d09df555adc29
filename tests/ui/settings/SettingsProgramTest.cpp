// The settings opened by a program of the product, with the real library, archive service and
// provider manager. With OB_PICTURES, a folder, the window's picture is stored there.
#include "tests/ui/settings/SettingsProgramFixture.h"

namespace obtest {
namespace {

using SettingsProgram = SettingsProgramFixture;

TEST_F(SettingsProgram, ShowsTheSettingsOfTheRealModules) {
    ASSERT_NO_FATAL_FAILURE(Start());
    SetCursorPos(0, 0); // where it was, a tip could be
    LookAt(window_, L"settings-options", 500, 380);
    for (const int id : {OB_OPTIONS_OK, static_cast<int>(IDCANCEL), OB_OPTIONS_ATTACHMENT,
                         OB_OPTIONS_CLOUD, OB_OPTIONS_UPDATE}) {
        ExpectWholeText(Item(id), AtScale(6));
    }
    // What this provider manager has, and what it hasn't.
    EXPECT_TRUE(IsWindowEnabled(Item(OB_OPTIONS_WATERMARK)));
    EXPECT_TRUE(IsWindowEnabled(Item(OB_OPTIONS_WATERMARK_SETTINGS)));
    EXPECT_FALSE(IsWindowEnabled(Item(OB_OPTIONS_SIGN_PDFS)));
    EXPECT_FALSE(IsWindowEnabled(Item(OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS)));
    EXPECT_EQ(0u, EndWith(IDCANCEL));
}

TEST_F(SettingsProgram, RemembersWhatWasSavedByOk) {
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_FALSE(IsChecked(OB_OPTIONS_COMBINE_PDFS));
    Click(Item(OB_OPTIONS_COMBINE_PDFS));
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(OB_OPTIONS_COMBINE_PDFS); }));
    EXPECT_EQ(0u, EndWith(OB_OPTIONS_OK));
    EXPECT_EQ(L"1", ReadUserValue(L"AutoCombinePDFs"));
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_TRUE(IsChecked(OB_OPTIONS_COMBINE_PDFS));
    Click(Item(OB_OPTIONS_COMBINE_PDFS));
    EXPECT_TRUE(WaitUntil([&] { return !IsChecked(OB_OPTIONS_COMBINE_PDFS); }));
    EXPECT_EQ(0u, EndWith(IDCANCEL));
    EXPECT_EQ(L"1", ReadUserValue(L"AutoCombinePDFs"));
}

} // namespace
} // namespace obtest
