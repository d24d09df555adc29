// A run with the fake sister modules, in a temporary folder of its own at a stopped clock, so
// that every path that the run makes is known beforehand.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/modules/TextIds.h"
#include "OBCore/options/OBAttachJob.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/TestFolder.h"

namespace obtest {

using Lines = std::vector<std::wstring>;

inline DWORD WINAPI StoppedClock() { return 0x1000; }

class RunFixture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(obcore::LoadArchiveService());
        ASSERT_TRUE(obcore::LoadProviderManager());
        ASSERT_TRUE(obcore::BindResourceModule());
    }

    RunFixture()
        : owner_(CreateWindowExW(0, L"Static", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                 nullptr, nullptr, nullptr, nullptr)),
          job_(obcore::OBOptions{}, owner_.Get()) {}

    void SetUp() override {
        ASSERT_TRUE(clock_.Ok());
        UseTemporaryFolder(temp_.Path());
        FakeModules::Reset();
        FakeModules::Answer(L"CreateZipContext", L"5");
        job_.BrowserImagePath.clear();
    }
    void TearDown() override { SetEnvironmentVariableW(L"TMP", nullptr); }

    // From now on GetTempPathW returns this folder.
    static void UseTemporaryFolder(const std::wstring& folder) {
        SetEnvironmentVariableW(L"TMP", folder.c_str());
    }

    std::wstring Owner() const { return WindowText(owner_.Get()); }
    static std::wstring Quote(const std::wstring& text) { return L"\"" + text + L"\""; }

    // The n-th folder that a run makes, with its trailing backslash.
    std::wstring RunFolder(int number = 0) const {
        return temp_ / (L"100" + std::to_wstring(number) + L"\\");
    }
    Lines Left() const { return ListTree(temp_.Path()); }

    // Exactly one message box was shown, with the product's caption, that text and the run's owner.
    void ExpectOneBox(const MessageBoxWatcher& boxes, obcore::TextId text, bool hasIcon) const {
        const auto seen = boxes.Seen();
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
        EXPECT_EQ(seen[0].text, obcore::LoadText(text));
        EXPECT_FALSE(seen[0].text.empty());
        EXPECT_EQ(seen[0].hasIcon, hasIcon);
        EXPECT_EQ(seen[0].owner, owner_.Get());
    }

    ObLib::UniqueWindow owner_;
    TestFolder sources_;
    TestFolder temp_;
    obcore::OBAttachJob job_;

private:
    ImportPatch<decltype(&GetTickCount)> clock_{"kernel32.dll", "GetTickCount", &StoppedClock};
};

} // namespace obtest
