#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "OBCore/modules/ResourceModule.h"
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
using obtest::ImportPatch;
using obtest::MakeWindow;
using testing::ElementsAre;

class OpenFileNameExport : public testing::Test {
protected:
    void SetUp() override {
        obtest::ResetFakes();
        obcore::FreeResourceModule();
        obtest::NoteCallsOf(context_);
        ASSERT_TRUE(activations_.Ok());
    }

    BOOL Ask() { return GetOpenFileNameInBrowser(&request_, &context_); }
    static const std::vector<std::string>& Steps() { return Fakes().steps; }

    obtest::ActivationRecorder activations_;
    FakeBrowserContext context_;
    OPENFILENAMEW request_{.lStructSize = sizeof(OPENFILENAMEW)};
};

TEST_F(OpenFileNameExport, RunsThePickerBetweenActivationAndDeactivation) {
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext* context) {
        EXPECT_EQ(request, &request_);
        EXPECT_EQ(context, &context_);
        return 7;
    };
    EXPECT_EQ(Ask(), 7);
    EXPECT_THAT(Steps(),
                ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog", "IsPickerWanted",
                            "GetBrowserWindowClassCount", "GetBrowserWindowClasses",
                            "RunOpenFileNameRequest", "deactivate"));
    EXPECT_EQ(Fakes().url, context_.pageUrl);
}

TEST_F(OpenFileNameExport, GivesAPageThatTheRulesRefuseToTheBrowserWithoutAskingTheHook) {
    Fakes().usesBrowserDialog = true;
    request_.hwndOwner = reinterpret_cast<HWND>(0x1234);
    EXPECT_EQ(Ask(), 5);
    EXPECT_THAT(Steps(), ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog",
                                     "CallGetOpenFileName", "deactivate"));
    EXPECT_EQ(context_.askedRequest, &request_);
    EXPECT_EQ(context_.askedOwner, reinterpret_cast<HWND>(0x1234));
}

TEST_F(OpenFileNameExport, GivesAVetoedRequestToTheBrowser) {
    context_.pickerWanted = false;
    EXPECT_EQ(Ask(), 5);
    EXPECT_THAT(Steps(), ElementsAre("activate", "GetPageUrl", "UsesBrowserDialog",
                                     "IsPickerWanted", "CallGetOpenFileName", "deactivate"));
}

std::uint32_t AnswerInHighBytes(BrowserContext*) { return 0x100; }

TEST_F(OpenFileNameExport, LooksAtTheLowByteOfTheVetoOnly) {
    // A hook of another compiler leaves anything in the other bytes of its answer.
    void* slots[10];
    void**& table = reinterpret_cast<void**&>(context_);
    std::memcpy(slots, table, sizeof(slots));
    slots[7] = reinterpret_cast<void*>(&AnswerInHighBytes);
    void** const own = std::exchange(table, slots);
    BrowserContext* volatile context = &context_;
    EXPECT_EQ(GetOpenFileNameInBrowser(&request_, context), 5);
    table = own;
    EXPECT_EQ(Steps().at(3), "CallGetOpenFileName");
}

TEST_F(OpenFileNameExport, SettlesTheOwnerForTheRunAndRestoresIt) {
    const auto asking = MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const auto main =
        MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    context_.windowClasses = {L"NoSuchClassAnywhere", L"MainWindow"};
    request_.hwndOwner = asking.Get();
    HWND during = nullptr;
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) {
        during = request->hwndOwner;
        return FALSE;
    };
    EXPECT_EQ(Ask(), FALSE);
    EXPECT_EQ(during, main.Get());
    EXPECT_EQ(request_.hwndOwner, asking.Get());
}

TEST_F(OpenFileNameExport, LooksForTheMainWindowBeforeItMovesOrFakesAnOwner) {
    const auto main =
        MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const auto hidden =
        MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW, {-900, 5, -800, 55});
    context_.windowClasses = {L"MainWindow"};
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) {
        EXPECT_EQ(request->hwndOwner, main.Get());
        EXPECT_EQ(FindWindowW(L"obwmv_fake_parent_class", nullptr), nullptr);
        RECT place{};
        GetWindowRect(hidden.Get(), &place);
        EXPECT_EQ(place.left, -900);
        return TRUE;
    };
    for (const HWND owner : {HWND(nullptr), hidden.Get()}) {
        request_.hwndOwner = owner;
        EXPECT_EQ(Ask(), TRUE);
        EXPECT_EQ(request_.hwndOwner, owner);
    }
}

TEST_F(OpenFileNameExport, MakesAFakeOwnerForANullOneAndRestoresNull) {
    HWND during = nullptr;
    bool existedAtDeactivation = true;
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) {
        during = request->hwndOwner;
        EXPECT_TRUE(IsWindow(during));
        return TRUE;
    };
    activations_.onDeactivate = [&] { existedAtDeactivation = IsWindow(during); };
    EXPECT_EQ(Ask(), TRUE);
    EXPECT_NE(during, nullptr);
    EXPECT_FALSE(existedAtDeactivation);
    EXPECT_EQ(request_.hwndOwner, nullptr);
}

TEST_F(OpenFileNameExport, MovesAHiddenOwnerForTheRun) {
    const auto owner =
        MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW, {-900, 5, -800, 55});
    request_.hwndOwner = owner.Get();
    RECT during{};
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) {
        EXPECT_EQ(request->hwndOwner, owner.Get());
        GetWindowRect(owner.Get(), &during);
        return FALSE;
    };
    Ask();
    EXPECT_GE(during.left, 0);
    RECT after{};
    GetWindowRect(owner.Get(), &after);
    EXPECT_EQ(after.left, -900);
    EXPECT_EQ(request_.hwndOwner, owner.Get());
}

DWORD moduleNameLength = 0;
DWORD WINAPI GivenModuleNameLength(HMODULE, LPWSTR path, DWORD capacity) {
    for (DWORD index = 0; index < capacity; ++index) path[index] = L'x';
    return moduleNameLength;
}

TEST_F(OpenFileNameExport, AsksTheBrowserWhenTheOwnPathIsMissingOrFillsTheBuffer) {
    const ImportPatch<decltype(&GetModuleFileNameW)> name("kernel32.dll", "GetModuleFileNameW",
                                                          &GivenModuleNameLength);
    ASSERT_TRUE(name.Ok());
    for (const DWORD length : {0u, 260u}) {
        moduleNameLength = length;
        Fakes().steps.clear();
        EXPECT_EQ(Ask(), 5);
        EXPECT_THAT(Steps(), ElementsAre("CallGetOpenFileName")) << length;
    }
}

struct {
    std::wstring path;
    DWORD flags = 0;
    bool fails = false;
    int calls = 0;
    decltype(&LoadLibraryExW) real = nullptr;
} loading;

HMODULE WINAPI RecordLoading(LPCWSTR path, HANDLE file, DWORD flags) {
    loading.path = path;
    loading.flags = flags;
    ++loading.calls;
    return loading.fails ? nullptr : loading.real(path, file, flags);
}

TEST_F(OpenFileNameExport, BindsItsOwnFileAsDataOnceAndTriesAgainAfterAFailure) {
    const ImportPatch<decltype(&LoadLibraryExW)> load("kernel32.dll", "LoadLibraryExW",
                                                      &RecordLoading);
    ASSERT_TRUE(load.Ok());
    loading = {.fails = true, .real = load.Real()};
    EXPECT_EQ(Ask(), 5);
    EXPECT_THAT(Steps(), ElementsAre("CallGetOpenFileName"));
    loading.fails = false;
    Fakes().openFileName = [](OPENFILENAMEW*, BrowserContext*) { return 1; };
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(loading.calls, 2);
    EXPECT_EQ(loading.flags, 34u);
    wchar_t own[MAX_PATH];
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    EXPECT_EQ(loading.path, own);
}

TEST_F(OpenFileNameExport, GivesAnExceptionBeforeTheRunToTheBrowser) {
    for (const BrowserCall operation : obtest::kCallsBeforeTheRun) {
        Fakes().steps.clear();
        context_.throwsIn = operation;
        EXPECT_EQ(Ask(), 5) << NameOf(operation);
        ASSERT_GE(Steps().size(), 3u);
        EXPECT_EQ(Steps().at(Steps().size() - 3), NameOf(operation));
        EXPECT_EQ(Steps().at(Steps().size() - 2), "deactivate");
        EXPECT_EQ(Steps().back(), "CallGetOpenFileName");
    }
}

TEST_F(OpenFileNameExport, ReadsAsACancelWhenTheRunThrows) {
    request_.hwndOwner = nullptr;
    HWND during = nullptr;
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) -> BOOL {
        during = request->hwndOwner;
        throw std::bad_alloc();
    };
    EXPECT_EQ(Ask(), FALSE);
    EXPECT_THAT(std::vector(Steps().end() - 2, Steps().end()),
                ElementsAre("RunOpenFileNameRequest", "deactivate"));
    EXPECT_EQ(request_.hwndOwner, nullptr);
    EXPECT_FALSE(IsWindow(during));
}

TEST_F(OpenFileNameExport, RestoresAReplacedOwnerWhenTheRunThrows) {
    const auto asking = MakeWindow(L"AskingWindow", Icon::None, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const auto main =
        MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    context_.windowClasses = {L"MainWindow"};
    request_.hwndOwner = asking.Get();
    Fakes().openFileName = [&](OPENFILENAMEW* request, BrowserContext*) -> BOOL {
        EXPECT_EQ(request->hwndOwner, main.Get());
        throw std::bad_alloc();
    };
    EXPECT_EQ(Ask(), FALSE);
    EXPECT_EQ(request_.hwndOwner, asking.Get());
}

TEST_F(OpenFileNameExport, AsksTheBrowsersDialogOnceAlsoWhenThatThrows) {
    context_.throwsIn = BrowserCall::CallGetOpenFileName;
    context_.pickerWanted = false;
    EXPECT_EQ(Ask(), FALSE);
    EXPECT_EQ(std::count(Steps().begin(), Steps().end(), "CallGetOpenFileName"), 1);
    EXPECT_EQ(Steps().back(), "deactivate");
}

TEST_F(OpenFileNameExport, AssertsThatThereIsARequestAndRunsOn) {
    obtest::MessageBoxWatcher boxes;
    Fakes().usesBrowserDialog = true;
    EXPECT_EQ(GetOpenFileNameInBrowser(nullptr, &context_), 5);
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].caption, L"Assert Error");
    EXPECT_TRUE(seen[0].hasIcon);
    EXPECT_NE(seen[0].text.find(L"\nExpr: open_file_name != NULL\nFile: obwmv\\OBHook\nLine: 326"),
              std::wstring::npos);
    EXPECT_EQ(Steps().at(1), "GetPageUrl");
}

TEST_F(OpenFileNameExport, AssertsThatThereIsAContextAndRunsOn) {
    obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(obtest::EndsInAccessViolation([] { GetOpenFileNameInBrowser(nullptr, nullptr); }));
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_NE(seen[1].text.find(L"\nExpr: browser_context != NULL\nFile: obwmv\\OBHook\nLine: 327"),
              std::wstring::npos);
}

// Without the recorder of its base's fixture.
class OpenFileNameWithoutActivation : public testing::Test {
protected:
    void SetUp() override { obtest::ResetFakes(); }
};

TEST_F(OpenFileNameWithoutActivation, AsksTheBrowserOutsideTheContext) {
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    FakeBrowserContext context;
    obtest::NoteCallsOf(context);
    OPENFILENAMEW request{};
    EXPECT_EQ(GetOpenFileNameInBrowser(&request, &context), 5);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "CallGetOpenFileName"));
}

TEST_F(OpenFileNameWithoutActivation, StopsAnExceptionOfTheBrowsersDialog) {
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    FakeBrowserContext context;
    obtest::NoteCallsOf(context);
    context.throwsIn = BrowserCall::CallGetOpenFileName;
    OPENFILENAMEW request{};
    EXPECT_EQ(GetOpenFileNameInBrowser(&request, &context), FALSE);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "CallGetOpenFileName"));
}

} // namespace
