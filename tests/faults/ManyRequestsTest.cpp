// A thousand requests in one browser leave nothing in its process.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeMapping.h"
#include "OBCore/exchange/PickedFiles.h"
#include "obwmv/BrowserRequest.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::HostScript;
using obtest::ProcessResources;

// Replaces the start of a host: its request is served and its process has ended already, as
// starting a thousand programs would take longer than all else. The handles are real, so that a
// handle that isn't closed is counted.
BOOL WINAPI ServeAtOnce(LPCWSTR, LPWSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                        BOOL, DWORD, LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION info);

class ManyRequests : public testing::Test {
protected:
    void SetUp() override {
        request_.lStructSize = sizeof(request_);
        request_.hwndOwner = browser_.Page();
        request_.lpstrFile = file_;
        request_.nMaxFile = 100;
        context_.keepsCalls = false; // as the memory of this process is measured
    }

    void TearDown() override { EXPECT_TRUE(context_.OnlyDelivered()); }

    void Ask(int round) {
        const bool open = round % 2 == 0;
        if (open)
            obwmv::RunOpenFileNameRequest(&request_, &context_);
        else
            obwmv::RunDialogRequest(&dialog_, browser_.Page(), &context_);
    }

    // The section of the last request on that path.
    static bool SectionIsLeft(std::uint32_t id) {
        const ObLib::UniqueKernelHandle section(
            OpenFileMappingW(FILE_MAP_READ, FALSE, obcore::ExchangeBlockName(id).c_str()));
        return static_cast<bool>(section);
    }

    wchar_t file_[100] = {};
    OPENFILENAMEW request_ = {};
    obtest::BrowserWindow browser_;
    obtest::FakeBrowserContext context_;
    obtest::CallersDialog dialog_;
};

// A process that has ended, whose handle is duplicated for each request.
HANDLE endedProcess;

void Answer(obcontract::ExchangeBlock& block) {
    if (block.Status == obcontract::ExchangeStatus::DialogRequest) {
        obcore::WriteDialogAnswer(block, {L"C:\\f"});
        block.Result = S_OK;
        return;
    }
    block.Status = obcontract::ExchangeStatus::OpenFileNameTaken;
    block.Result = 1;
    std::wmemcpy(reinterpret_cast<wchar_t*>(block.TextArea), L"C:\\f\0", 6);
    block.Request.FileListOffset = obcontract::kTextAreaOffset;
}

BOOL WINAPI ServeAtOnce(LPCWSTR, LPWSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                        BOOL, DWORD, LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION info) {
    const wchar_t* behindPath = wcschr(commandLine + 1, L'"') + 1;
    const auto id = static_cast<std::uint32_t>(wcstol(behindPath, nullptr, 10));
    ObLib::UniqueKernelHandle mapping;
    const obcore::MappedExchangeBlock block = obcore::OpenExchangeBlock(id, mapping);
    if (!block) return FALSE;
    Answer(*block.Get());
    const HANDLE self = GetCurrentProcess();
    DuplicateHandle(self, endedProcess, self, &info->hProcess, 0, FALSE, DUPLICATE_SAME_ACCESS);
    DuplicateHandle(self, endedProcess, self, &info->hThread, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return TRUE;
}

ObLib::UniqueKernelHandle RunHostOnce() {
    HostScript::Play(L"exit 0");
    STARTUPINFOW startup = {sizeof(startup)};
    PROCESS_INFORMATION info = {};
    const std::wstring program = obtest::BesideProgram(L"obwmvapp.exe");
    EXPECT_TRUE(CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &info));
    CloseHandle(info.hThread);
    WaitForSingleObject(info.hProcess, INFINITE);
    return ObLib::UniqueKernelHandle(info.hProcess);
}

TEST_F(ManyRequests, LeaveNothingInTheBrowsersProcess) {
    const ObLib::UniqueKernelHandle ended = RunHostOnce();
    endedProcess = ended.Get();
    const obtest::ImportPatch<decltype(&CreateProcessW)> host("kernel32.dll", "CreateProcessW",
                                                              &ServeAtOnce);
    ASSERT_TRUE(host.Ok());
    for (int round = 0; round < 20; ++round) Ask(round); // allocates what is allocated once
    const ProcessResources before = ProcessResources::Now();
    for (int round = 0; round < 1000; ++round) Ask(round);
    obtest::ExpectNoMoreThan(before);
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
    EXPECT_EQ(obcore::Results().size(), 1u);
    EXPECT_FALSE(SectionIsLeft(GetCurrentThreadId()));
    for (std::uint32_t id = 1; id <= 510; ++id) EXPECT_FALSE(SectionIsLeft(id)) << id;
    EXPECT_TRUE(browser_.Enabled());
}

TEST_F(ManyRequests, LeaveNothingWhenTheHostIsAProgramOfItsOwn) {
    HostScript::Play(L"status 3\nresult 1\nslot \"C:\\f\"");
    for (int round = 0; round < 4; ++round) Ask(round);
    const ProcessResources before = ProcessResources::Now();
    for (int round = 0; round < 40; ++round) Ask(round);
    obtest::ExpectNoMoreThan(before);
    EXPECT_EQ(HostScript::RecordOf(L"start").size(), 44u);
}

TEST_F(ManyRequests, LeaveNothingWhenEveryHostIsMissing) {
    const obtest::WithoutHost away;
    for (int round = 0; round < 5; ++round) Ask(round);
    const ProcessResources before = ProcessResources::Now();
    for (int round = 0; round < 50; ++round) Ask(round);
    obtest::ExpectNoMoreThan(before);
    EXPECT_FALSE(SectionIsLeft(GetCurrentThreadId()));
}

} // namespace
