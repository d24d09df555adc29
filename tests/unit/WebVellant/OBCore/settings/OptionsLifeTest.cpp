// The settings window over many openings, and what ends it from outside.
#include <array>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/settings/ConfigurationEntry.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;
using obtest::ProcessResources;

// Ends as soon as it is open, without being shown.
struct Passing : obcore::OBOptionsDialogImp {
    using OBOptionsDialogImp::OBOptionsDialogImp;
    bool OnInitDialog() override {
        OBOptionsDialogImp::OnInitDialog();
        EndDialog(window, IDCANCEL);
        return true;
    }
};

class OptionsLife : public obtest::OptionsFixture {
protected:
    void Open(int times) {
        for (int time = 0; time < times; ++time) {
            Passing dialog(OB_OPTIONS, nullptr, options_);
            EXPECT_EQ(IDCANCEL, dialog.DoModal());
        }
    }
};

TEST_F(OptionsLife, LeavesNoObjectAfterManyOpenings) {
    options_.ProviderManager = nullptr; // no call is recorded
    options_.DisableWebVellant = true;
    Open(5); // what is kept for the process is there then
    const ProcessResources before = ProcessResources::Now();
    Open(100); // each takes a tenth of a second
    ExpectNoMoreThan(before);
}

TEST_F(OptionsLife, EndsWithItsParent) {
    ObLib::UniqueWindow parent(CreateWindowExW(0, L"Static", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                               0, 0, 200, 200, nullptr, nullptr, nullptr, nullptr));
    struct Orphan : Passing {
        using Passing::Passing;
        bool OnInitDialog() override {
            OBOptionsDialogImp::OnInitDialog();
            PostMessageW(parentWindow, WM_CLOSE, 0, 0);
            return true;
        }
    };
    Orphan dialog(OB_OPTIONS, parent.Get(), options_);
    EXPECT_NE(1, dialog.DoModal());
    EXPECT_FALSE(IsWindow(parent.Release()));
    EXPECT_EQ(nullptr, dialog.window);
}

// A thrown exception, which no module should let out, ends the manager too.
TEST_F(OptionsLife, EndsTheManagerWhenAModuleThrows) {
    auto& entries = const_cast<obcontract::ProviderManagerEntries&>(obcore::ProviderManager());
    const auto saved = entries.IsProviderSupport;
    obtest::SetUserValue(L"AutoWatermark", L"1"); // the load asks about it
    entries.IsProviderSupport = [](obcontract::ProviderManagerHandle, std::uint32_t,
                                   obcontract::ProviderKind) -> obcontract::Bool {
        throw std::bad_alloc();
    };
    EXPECT_THROW(obcore::ShowConfiguration(nullptr), std::bad_alloc);
    entries.IsProviderSupport = saved;
    EXPECT_EQ((Lines{L"Deinit(manager)", L"DeleteObExtensionsManager(manager)"}),
              FakeModules::CallsOf({L"Deinit", L"DeleteObExtensionsManager"}));
}

int paints = 0;
HWND paintedWindow = nullptr;
decltype(&BeginPaint) realPaint = nullptr;

HDC WINAPI CountPaint(HWND window, PAINTSTRUCT* paint) {
    if (window == paintedWindow) ++paints;
    return realPaint(window, paint);
}

TEST_F(OptionsLife, PaintsItsGroundOnceWhenItOpens) {
    const obtest::ImportPatch<decltype(&BeginPaint)> patch("user32.dll", "BeginPaint", &CountPaint);
    ASSERT_TRUE(patch.Ok());
    realPaint = patch.Real();
    struct Counted : obcore::OBOptionsDialogImp {
        using OBOptionsDialogImp::OBOptionsDialogImp;
        bool OnInitDialog() override {
            paintedWindow = window;
            paints = 0;
            const bool result = OBOptionsDialogImp::OnInitDialog();
            EXPECT_EQ(0, paints) << "before it is shown";
            SetTimer(window, 1, 500, nullptr);
            return result;
        }
        bool OnTimer(UINT_PTR) override {
            EndDialog(window, IDCANCEL);
            return true;
        }
    };
    Counted dialog(OB_OPTIONS, nullptr, options_);
    dialog.DoModal();
    EXPECT_EQ(1, paints);
}

TEST_F(OptionsLife, OpensTheAboutBoxByTheKeyboardOnItsLink) {
    Show([](const OpenDialog& dialog) {
        PostMessageW(dialog.Item(OB_OPTIONS_ABOUT), WM_KEYDOWN, VK_SPACE, 1);
        const HWND box = obtest::WaitForTopWindow(
            [&](HWND window) { return GetWindow(window, GW_OWNER) == dialog.window; },
            GetCurrentProcessId());
        ASSERT_NE(nullptr, box);
        PostMessageW(box, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(obtest::WaitUntilClosed(box));
    });
}

} // namespace
