// The browser ends during a request: its window closes, or its message loop gets WM_QUIT.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "obwmv/BrowserRequest.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::HostScript;
using Lines = std::vector<std::wstring>;

bool Exists(const wchar_t* name) {
    return GetFileAttributesW(obtest::BesideProgram(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void MakeSign(const wchar_t* name) {
    const ObLib::UniqueKernelHandle file(CreateFileW(
        obtest::BesideProgram(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_TRUE(file);
}

class BrowserGone : public testing::Test {
protected:
    void SetUp() override {
        DeleteFileW(obtest::BesideProgram(L"running").c_str());
        DeleteFileW(obtest::BesideProgram(L"gone").c_str());
        request_.lStructSize = sizeof(request_);
        request_.hwndOwner = browser_.Page();
        request_.lpstrFile = file_;
        request_.nMaxFile = 100;
    }

    void TearDown() override {
        EXPECT_FALSE(FindWindowW(L"WebVellantLayer", nullptr)) << "a layer is left";
        EXPECT_TRUE(context_.OnlyDelivered());
        obcore::Results().clear();
    }

    // Calls `what` once, as soon as the host runs, and then lets the host continue.
    void OnceTheHostRuns(std::function<void()> what) {
        browser_.OnTick([this, what] {
            if (done_ || !Exists(L"running")) return;
            done_ = true;
            what();
            MakeSign(L"gone");
        });
    }

    BOOL Open(const std::wstring& script) {
        HostScript::Play(L"make-file running\nwait-file gone\n" + script);
        return obwmv::RunOpenFileNameRequest(&request_, &context_);
    }

    wchar_t file_[100] = {};
    OPENFILENAMEW request_ = {};
    obtest::BrowserWindow browser_;
    obtest::FakeBrowserContext context_;
    obtest::CallersDialog dialog_;
    bool done_ = false;
};

const wchar_t kAnswer[] = L"status 3\nslot \"C:\\f\"\nresult 1";

// Destroying the browser's window destroys the page's, and the layer window with both.
TEST_F(BrowserGone, StillReadsTheAnswerWhenItsWindowWasClosed) {
    OnceTheHostRuns([this] { DestroyWindow(browser_.Root()); });
    EXPECT_EQ(Open(kAnswer), 1);
    EXPECT_FALSE(IsWindow(browser_.Root()));
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
}

TEST_F(BrowserGone, StillReadsTheAnswerWhenOnlyThePageWasClosed) {
    OnceTheHostRuns([this] { DestroyWindow(request_.hwndOwner); });
    EXPECT_EQ(Open(kAnswer), 1);
    EXPECT_TRUE(browser_.Enabled());
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
}

TEST_F(BrowserGone, ReadsACancelWhenItsWindowWasClosedAndTheHostFailed) {
    OnceTheHostRuns([this] { DestroyWindow(browser_.Root()); });
    EXPECT_EQ(Open(std::wstring(kAnswer) + L"\nexit 1"), 0);
    EXPECT_EQ(std::wstring(file_), L"");
}

// The request runs to its end first; then WM_QUIT is posted again with the same value.
TEST_F(BrowserGone, FinishesTheRequestAndPostsTheQuitAgain) {
    OnceTheHostRuns([] { PostQuitMessage(17); });
    EXPECT_EQ(Open(kAnswer), 1);
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
    EXPECT_EQ(obtest::QuitValueInQueue(), 17);
}

TEST_F(BrowserGone, ClosedAndQuitAtOnceOnTheDialogPathKeepsTheResult) {
    OnceTheHostRuns([this] {
        DestroyWindow(browser_.Root());
        PostQuitMessage(0);
    });
    HostScript::Play(L"make-file running\nwait-file gone\nstatus 4\npoke32 28 76\ntext 76 \"\"\n"
                     L"poke32 32 78\nlist 78 \"C:\\f\"\nresult 0");
    EXPECT_EQ(obwmv::RunDialogRequest(&dialog_, browser_.Page(), &context_), S_OK);
    ASSERT_EQ(obcore::Results().size(), 1u);
    EXPECT_EQ(obcore::Results().begin()->second.paths, Lines{L"C:\\f"});
    EXPECT_EQ(obtest::QuitValueInQueue(), 0);
}

} // namespace
