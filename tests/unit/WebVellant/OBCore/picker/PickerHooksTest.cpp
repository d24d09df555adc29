#include "OBCore/picker/PickerHooks.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/RecordedTrace.h"

namespace {

using obcore::PickerHooks;

TEST(PickerHookInstallation, IsOnlyTracedWhenItFailsTheLogoFirst) {
    obtest::ForgetTrace();
    PickerHooks hooks(nullptr);
    const auto& lines = obtest::TraceLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "SetWindowsHookEx for Logo failed 78"); // ERROR_CALL_NOT_IMPLEMENTED
    EXPECT_EQ(lines[1], "SetWindowsHookEx failed 78");
}

TEST(PickerHookInstallation, GivesNoLinkTextWhereNoneWasProduced) {
    PickerHooks hooks(nullptr);
    std::wstring text = L"before";
    hooks.MoveLinkText(text);
    EXPECT_EQ(text, L"before");
}

} // namespace
