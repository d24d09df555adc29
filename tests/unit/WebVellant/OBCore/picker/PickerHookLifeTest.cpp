// When the window hooks of a request are installed and removed, on both paths.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/picker/Drivers.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using namespace obtest;

std::vector<HHOOK> installed;
decltype(&SetWindowsHookExW) realInstall = nullptr;
decltype(&UnhookWindowsHookEx) realRemove = nullptr;

// A hook's name in the calls: the number of its installation.
std::wstring NameOf(HHOOK hook) {
    const auto found = std::find(installed.begin(), installed.end(), hook);
    return std::to_wstring(found - installed.begin());
}

HHOOK WINAPI RecordInstall(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
    installed.push_back(realInstall(kind, procedure, module, thread));
    RecordCall(L"hook.installed(" + NameOf(installed.back()) + L")");
    return installed.back();
}

BOOL WINAPI RecordRemove(HHOOK hook) {
    RecordCall(L"hook.removed(" + NameOf(hook) + L")");
    return realRemove(hook);
}

// What concerns the hooks among the calls of one request. The fake dialog creates the window of a
// standard dialog after it has recorded Show, as the shell does.
class PickerHookLife : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        ASSERT_TRUE(install_.Ok() && remove_.Ok());
        realInstall = install_.Real();
        realRemove = remove_.Real();
        installed.clear();
        shell.script.results = {L"C:\\in\\one.txt"};
        shell.script.onShow = [this](RecordingFileDialog& dialog) {
            shown_ = &dialog;
            RecordCall(L"dialog.isOpen()");
            if (throws_) throw std::runtime_error("shell");
        };
        FakeModules::ForgetCalls();
    }

    // The driver keeps its dialog for good.
    void RunDialog() {
        block_->Status = ExchangeStatus::DialogRequest;
        Run([this] { obcore::DialogDriver(GetDesktopWindow(), *block_); });
        ASSERT_TRUE(shown_);
        shown_->Release();
    }
    void RunOpenFileName() {
        OPENFILENAMEW page{};
        page.lStructSize = sizeof(page);
        page.nMaxFile = 1000;
        obcore::WriteOpenFileNameRequest(*block_, page);
        block_->Status = ExchangeStatus::OpenFileNameTaken;
        OPENFILENAMEW request = obcore::ReadOpenFileNameRequest(*block_, GetDesktopWindow());
        Run([&] { obcore::OpenFileNameDriver(&request, *block_); });
    }

    static Calls HookCalls() {
        Calls calls =
            FakeModules::CallsOf({L"hook.installed", L"hook.removed", L"dialog.Show",
                                  L"dialog.isOpen", L"dialog.GetResults", L"ProcessPickedFiles"});
        for (std::wstring& call : calls) {
            if (!call.starts_with(L"hook.")) call.erase(call.find(L'('));
        }
        return calls;
    }

    bool throws_ = false;

private:
    template <class Driver>
    void Run(const Driver& driver) {
        if (throws_) {
            EXPECT_THROW(driver(), std::runtime_error);
        } else {
            driver();
        }
    }

    std::unique_ptr<ExchangeBlock> block_ = std::make_unique<ExchangeBlock>();
    RecordingFileDialog* shown_ = nullptr;
    ImportPatch<decltype(&SetWindowsHookExW)> install_{"user32.dll", "SetWindowsHookExW",
                                                       &RecordInstall};
    ImportPatch<decltype(&UnhookWindowsHookEx)> remove_{"user32.dll", "UnhookWindowsHookEx",
                                                        &RecordRemove};
};

// The button's hook is gone as soon as the dialog is created; the logo's lasts until Show returns.
const Calls kAroundShow{L"hook.installed(0)", L"hook.installed(1)", L"dialog.Show",
                        L"hook.removed(1)",   L"dialog.isOpen",     L"hook.removed(0)"};

Calls AroundShowAnd(const Calls& more) {
    Calls calls = kAroundShow;
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

TEST_F(PickerHookLife, IsThatOfShowOnTheDialogPath) {
    RunDialog();
    EXPECT_EQ(HookCalls(), AroundShowAnd({L"dialog.GetResults", L"ProcessPickedFiles"}));
}

TEST_F(PickerHookLife, IsThatOfShowOnTheOpenFileNamePath) {
    RunOpenFileName();
    EXPECT_EQ(HookCalls(), AroundShowAnd({L"dialog.GetResults", L"ProcessPickedFiles"}));
}

TEST_F(PickerHookLife, EndsWithAnExceptionOfShowOnTheDialogPath) {
    throws_ = true;
    RunDialog();
    EXPECT_EQ(HookCalls(), kAroundShow);
}

TEST_F(PickerHookLife, EndsWithAnExceptionOfShowOnTheOpenFileNamePath) {
    throws_ = true;
    RunOpenFileName();
    EXPECT_EQ(HookCalls(), kAroundShow);
}

} // namespace
