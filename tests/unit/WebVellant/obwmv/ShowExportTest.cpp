#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OBCore/modules/ResourceModule.h"
#include "contracts/ExchangeBlock.h"
#include "obwmv/Exports.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/WebVellant/obwmv/RequestFakes.h"
#include "tests/unit/WebVellant/obwmv/TestWindow.h"

using obcontract::BrowserContext;

namespace {

using obtest::BrowserCall;
using obtest::FakeBrowserContext;
using obtest::Fakes;
using obtest::Icon;
using obtest::MakeWindow;
using testing::ElementsAre;

using obcontract::kCancelled;

// The library never follows the pointer here: any number will do.
IFileDialog* const kDialog = reinterpret_cast<IFileDialog*>(0x5550);

class ShowExport : public testing::Test {
protected:
    void SetUp() override {
        obtest::ResetFakes();
        obtest::NoteCallsOf(context_);
        ASSERT_TRUE(activations_.Ok());
    }

    HRESULT Ask(HWND owner = nullptr) {
        return FileOpenDialog_ShowInBrowser(kDialog, owner, &context_);
    }
    static const std::vector<std::string>& Steps() { return Fakes().steps; }

    obtest::ActivationRecorder activations_;
    FakeBrowserContext context_;
};

TEST_F(ShowExport, RunsThePickerBetweenActivationAndDeactivation) {
    Fakes().dialog = [&](IFileDialog* dialog, HWND, BrowserContext* context) -> HRESULT {
        EXPECT_EQ(dialog, kDialog);
        EXPECT_EQ(context, &context_);
        return 0x00040007;
    };
    EXPECT_EQ(Ask(), 0x00040007);
    EXPECT_THAT(Steps(), ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog",
                                     "IsPickerWanted", "GetBrowserWindowClassCount",
                                     "GetBrowserWindowClasses", "RunDialogRequest", "deactivate"));
}

TEST_F(ShowExport, GivesAPageThatTheRulesRefuseToTheBrowserWithoutAskingTheHook) {
    Fakes().usesBrowserDialog = true;
    EXPECT_EQ(Ask(reinterpret_cast<HWND>(0x1234)), context_.showAnswer);
    EXPECT_THAT(Steps(), ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog", "CallShow",
                                     "deactivate"));
    EXPECT_EQ(context_.askedDialog, kDialog);
    EXPECT_EQ(context_.askedOwner, reinterpret_cast<HWND>(0x1234));
}

TEST_F(ShowExport, GivesAVetoedRequestToTheBrowser) {
    context_.pickerWanted = false;
    EXPECT_EQ(Ask(), context_.showAnswer);
    EXPECT_THAT(Steps(), ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog",
                                     "IsPickerWanted", "CallShow", "deactivate"));
}

TEST_F(ShowExport, RunsWithTheBrowsersMainWindowAsOwner) {
    const auto main =
        MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const auto asking = MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    context_.windowClasses = {L"MainWindow"};
    Fakes().dialog = [&](IFileDialog*, HWND owner, BrowserContext*) {
        EXPECT_EQ(owner, main.Get());
        EXPECT_EQ(FindWindowW(L"obwmv_fake_parent_class", nullptr), nullptr);
        return S_OK;
    };
    EXPECT_EQ(Ask(nullptr), S_OK);
    EXPECT_EQ(Ask(asking.Get()), S_OK);
    EXPECT_EQ(Steps().at(6), "RunDialogRequest");
}

TEST_F(ShowExport, RunsWithAFakeOwnerWhenThereIsNone) {
    HWND during = nullptr;
    Fakes().dialog = [&](IFileDialog*, HWND owner, BrowserContext*) {
        during = owner;
        EXPECT_TRUE(IsWindow(owner));
        return S_OK;
    };
    EXPECT_EQ(Ask(), S_OK);
    EXPECT_NE(during, nullptr);
    EXPECT_FALSE(IsWindow(during));
}

TEST_F(ShowExport, HasNoAssertionForANullDialog) {
    obtest::MessageBoxWatcher boxes;
    Fakes().usesBrowserDialog = true;
    EXPECT_EQ(FileOpenDialog_ShowInBrowser(nullptr, nullptr, &context_), context_.showAnswer);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(ShowExport, GivesAnExceptionBeforeTheRunToTheBrowserWithTheOwnerOfTheCall) {
    const auto main =
        MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const auto asking = MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    context_.windowClasses = {L"MainWindow"};
    for (const BrowserCall operation : obtest::kCallsBeforeTheRun) {
        Fakes().steps.clear();
        context_.throwsIn = operation;
        EXPECT_EQ(Ask(asking.Get()), context_.showAnswer) << NameOf(operation);
        EXPECT_EQ(Steps().back(), "CallShow");
        EXPECT_EQ(Steps().at(Steps().size() - 2), "deactivate");
        EXPECT_EQ(context_.askedOwner, asking.Get());
    }
}

TEST_F(ShowExport, ReadsAsACancelWhenTheRunThrows) {
    Fakes().dialog = [](IFileDialog*, HWND, BrowserContext*) -> HRESULT { throw std::bad_alloc(); };
    EXPECT_EQ(Ask(), kCancelled);
    EXPECT_THAT(std::vector(Steps().end() - 2, Steps().end()),
                ElementsAre("RunDialogRequest", "deactivate"));
}

TEST_F(ShowExport, AsksTheBrowsersDialogOnceAlsoWhenThatThrows) {
    context_.throwsIn = BrowserCall::CallShow;
    context_.pickerWanted = false;
    EXPECT_EQ(Ask(), kCancelled);
    EXPECT_EQ(std::count(Steps().begin(), Steps().end(), "CallShow"), 1);
}

HMODULE WINAPI LoadNothing(LPCWSTR, HANDLE, DWORD) { return nullptr; }

TEST_F(ShowExport, AsksTheBrowserWhenTheTextsCantBeBound) {
    obcore::FreeResourceModule();
    const obtest::ImportPatch<decltype(&LoadLibraryExW)> load("kernel32.dll", "LoadLibraryExW",
                                                              &LoadNothing);
    ASSERT_TRUE(load.Ok());
    EXPECT_EQ(Ask(reinterpret_cast<HWND>(0x1234)), context_.showAnswer);
    EXPECT_THAT(Steps(), ElementsAre("CallShow"));
    EXPECT_EQ(context_.askedOwner, reinterpret_cast<HWND>(0x1234));
}

class ShowWithoutActivation : public testing::Test {};

TEST_F(ShowWithoutActivation, AsksTheBrowserOutsideTheContext) {
    obtest::ResetFakes();
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    FakeBrowserContext context;
    obtest::NoteCallsOf(context);
    EXPECT_EQ(FileOpenDialog_ShowInBrowser(kDialog, nullptr, &context), context.showAnswer);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "CallShow"));
}

} // namespace
