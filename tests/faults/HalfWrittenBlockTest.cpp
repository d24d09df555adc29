// The host is killed in the middle of writing its answer.
#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <thread>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "obwmv/BrowserRequest.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/faults/HostProcess.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::HostScript;

class HalfWrittenBlock : public testing::Test {
protected:
    void SetUp() override {
        DeleteFileW(Sign().c_str());
        std::wmemset(file_, L'#', kCapacity);
        request_.lStructSize = sizeof(request_);
        request_.hwndOwner = browser_.Page();
        request_.lpstrFile = file_;
        request_.nMaxFile = kCapacity;
    }

    // Runs a host that carries out `script` and waits; then kills it.
    template <class Request>
    auto RunKilled(const std::wstring& script, UINT exitCode, Request request) {
        DeleteFileW(Sign().c_str());
        HostScript::Play(script + L"\nmake-file written\nwait-file never");
        std::thread killer([exitCode] {
            while (GetFileAttributesW(Sign().c_str()) == INVALID_FILE_ATTRIBUTES) Sleep(1);
            EXPECT_TRUE(obtest::KillHost(exitCode));
        });
        const auto result = request();
        killer.join();
        return result;
    }

    BOOL Open(const std::wstring& script, UINT exitCode) {
        return RunKilled(script, exitCode,
                         [&] { return obwmv::RunOpenFileNameRequest(&request_, &context_); });
    }

    HRESULT Show(const std::wstring& script, UINT exitCode) {
        return RunKilled(script, exitCode, [&] {
            return obwmv::RunDialogRequest(&dialog_, browser_.Page(), &context_);
        });
    }

    void ExpectNothingDelivered() const {
        EXPECT_EQ(std::wstring(file_, kCapacity), std::wstring(kCapacity, L'#'));
        EXPECT_TRUE(context_.delivered.empty());
        EXPECT_TRUE(context_.OnlyDelivered());
        EXPECT_TRUE(obcore::Results().empty());
        EXPECT_TRUE(browser_.Enabled());
    }

    static std::wstring Sign() { return obtest::BesideProgram(L"written"); }

    static constexpr std::size_t kCapacity = 400;
    wchar_t file_[kCapacity];
    OPENFILENAMEW request_ = {};
    obtest::BrowserWindow browser_;
    obtest::FakeBrowserContext context_;
    obtest::CallersDialog dialog_;
};

// Each incomplete answer: only taken, a list without its result, all but the clean-up names, a list
// that isn't closed, a link without its text.
const wchar_t* const kHalves[] = {
    L"status 3",
    L"status 3\nslot \"C:\\half.txt\"",
    L"status 3\nslot \"C:\\half.txt\"\nresult 1",
    L"status 3\nunits 80 67 58 92 104\nresult 1",
    L"status 2\npoke32 24 76",
    L"status 4\npoke32 28 76\npoke32 32 78\ntext 78 \"C:\\half.txt\"",
};

TEST_F(HalfWrittenBlock, GivesThePageNothingOnTheOpenFileNamePath) {
    for (const wchar_t* half : kHalves) {
        SCOPED_TRACE(testing::PrintToString(half));
        EXPECT_EQ(Open(half, obtest::kKilled), 0);
        ExpectNothingDelivered();
    }
}

TEST_F(HalfWrittenBlock, GivesThePageNothingOnTheDialogPath) {
    for (const wchar_t* half : kHalves) {
        SCOPED_TRACE(testing::PrintToString(half));
        EXPECT_EQ(Show(half, obtest::kKilled), obwmv::kCancelled);
        ExpectNothingDelivered();
    }
}

// The killing process chooses the exit code. Exit code 0 makes the block valid, and then the result
// decides, which a host writes last.
TEST_F(HalfWrittenBlock, GivesNoFileWithoutAResultEvenWhenTheExitCodeIsZero) {
    EXPECT_EQ(Open(L"status 3\nslot \"C:\\half.txt\"", 0), 0);
    ExpectNothingDelivered();
}

} // namespace
