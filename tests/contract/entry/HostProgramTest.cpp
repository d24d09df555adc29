// The real host program with the real library; the sister modules are fakes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ExchangeBlock.h"
#include "tests/fakes/Recording.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/FakeModules.h"
#include "tests/support/TestFolder.h"

namespace {

using obtest::AbsentModule;
using obtest::BesideProgram;
using obtest::FakeModules;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD kMinusOne = 0xFFFFFFFF;
constexpr DWORD kNotEnded = 0xDEAD;

DWORD RunHost(const std::wstring& arguments) {
    const std::wstring path = BesideProgram(L"obwmvapp.exe");
    std::wstring line = L"\"" + path + L"\"" + arguments;
    STARTUPINFOW startup{.cb = sizeof(STARTUPINFOW)};
    PROCESS_INFORMATION info{};
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &info)) {
        return kNotEnded;
    }
    const ObLib::UniqueKernelHandle process(info.hProcess);
    const ObLib::UniqueKernelHandle thread(info.hThread);
    if (WaitForSingleObject(process.Get(), 30000) != WAIT_OBJECT_0) {
        TerminateProcess(process.Get(), kNotEnded);
        return kNotEnded;
    }
    DWORD code = kNotEnded;
    GetExitCodeProcess(process.Get(), &code);
    return code;
}

class HostProgram : public testing::Test {
protected:
    void SetUp() override { FakeModules::Reset(); }

    static std::vector<std::wstring> Log() {
        return FakeModules::CallsOf({L"LogLaunch", L"LogExit"});
    }
};

TEST_F(HostProgram, EndsWithMinusOneWithoutItsTwoNumbers) {
    for (const wchar_t* arguments : {L"", L" 5", L" five 0", L" 5 zero", L" 5 0 0"}) {
        EXPECT_EQ(RunHost(arguments), kMinusOne);
    }
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostProgram, EndsWithMinusOneWithoutTheLibrary) {
    const AbsentModule library(L"obwmcore64.dll");
    ASSERT_TRUE(library.Ok());
    EXPECT_EQ(RunHost(L" 5 0"), kMinusOne);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostProgram, EndsWithMinusOneWithoutTheProviderManager) {
    const AbsentModule manager(L"PVXManager64.dll");
    ASSERT_TRUE(manager.Ok());
    EXPECT_EQ(RunHost(L" 5 0"), kMinusOne);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostProgram, EndsWithMinusOneWithoutTheArchiveService) {
    const AbsentModule service(L"obofcsvc64.dll");
    ASSERT_TRUE(service.Ok());
    EXPECT_EQ(RunHost(L" 5 0"), kMinusOne);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostProgram, EndsWithMinusOneWithoutABlockAndLogsTheRun) {
    EXPECT_EQ(RunHost(L" 5 0"), kMinusOne);
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()", L"LogExit()"));
}

TEST_F(HostProgram, FindsTheBlockOfItsNumberAndLeavesAnUnknownOneAlone) {
    const ObLib::UniqueKernelHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0,
                           obcontract::kExchangeBlockSize, L"WEBVELLANT_SM_-7"));
    ASSERT_TRUE(mapping);
    const ObLib::UniqueMappedView<BYTE> block(
        static_cast<BYTE*>(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0)));
    ASSERT_TRUE(block);
    std::memset(block.Get(), 0x5A, obcontract::kExchangeBlockSize);
    EXPECT_EQ(RunHost(L" -7 0"), kMinusOne);
    for (std::uint32_t at = 0; at < obcontract::kExchangeBlockSize; ++at) {
        ASSERT_EQ(block.Get()[at], 0x5A) << at;
    }
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()", L"LogExit()"));
}

// The dialog of an IFileDialog request is never released: COM must not end before the process.
TEST_F(HostProgram, CannotEndComBeforeTheProcessEnds) {
    const auto program = obtest::ReadFileContent(BesideProgram(L"obwmvapp.exe"));
    ASSERT_TRUE(program);
    // The import table names each call that the program can make.
    EXPECT_NE(program->find("CoInitializeEx"), std::string::npos);
    EXPECT_EQ(program->find("CoUninitialize"), std::string::npos);
}

} // namespace
