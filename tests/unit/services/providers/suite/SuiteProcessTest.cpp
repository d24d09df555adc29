// How a suite is started and ended.
#include "services/providers/suite/SuiteProcess.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/fakes/Recording.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

constexpr DWORD kLimit = 20000; // milliseconds, for what has to happen soon

class SuiteProcessTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(
            CopyFileW(obtest::BesideProgram(L"soffice.exe").c_str(), Program().c_str(), TRUE));
        job_ = MakeSuiteJob();
        ASSERT_TRUE(job_);
    }
    std::wstring Program() const { return folder_ / L"soffice.exe"; }
    std::wstring Record() const { return obtest::ReadUtf8File(folder_ / L"suite-calls.txt"); }
    ObLib::UniqueKernelHandle Start(const wchar_t* arguments) const {
        return StartSuite({Program(), arguments, folder_.Path()}, job_.Get());
    }
    bool HasEnded(const ObLib::UniqueKernelHandle& process, DWORD limit) const {
        return WaitForSingleObject(process.Get(), limit) == WAIT_OBJECT_0;
    }
    bool AwaitRecord(const std::wstring& text) const {
        for (DWORD waited = 0; waited < kLimit; waited += 10, Sleep(10)) {
            if (Record().find(text) != std::wstring::npos) return true;
        }
        return false;
    }

    const obtest::TestFolder folder_;
    ObLib::UniqueKernelHandle job_;
};

TEST_F(SuiteProcessTest, GetsThisEnvironmentWithATemporaryFolderOfItsOwn) {
    SetEnvironmentVariableW(L"OB_KEPT", L"kept = this");
    const auto process = Start(L"--show");
    ASSERT_TRUE(process && HasEnded(process, kLimit));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(process.Get(), &code));
    EXPECT_EQ(code, 42u);
    wchar_t path[4096] = {};
    GetEnvironmentVariableW(L"Path", path, 4096);
    EXPECT_EQ(Record(), L"variable TMP=" + folder_.Path() + L"\nvariable TEMP=" + folder_.Path() +
                            L"\nvariable Path=" + path + L"\nvariable OB_KEPT=kept = this" +
                            L"\nwindow 0\n");
    SetEnvironmentVariableW(L"OB_KEPT", nullptr);
}

TEST_F(SuiteProcessTest, CountsItsUseOfAProcessor) {
    const auto process = Start(L"--show");
    ASSERT_TRUE(process && HasEnded(process, kLimit));
    const std::uint64_t time = TimeOfJob(job_.Get());
    if (time == 0) GTEST_SKIP() << "this system counts no processor time of a job";
    EXPECT_GT(time, 500'000u); // 50 ms of the 200
}

TEST_F(SuiteProcessTest, EndsWithItsJob) {
    const auto process = Start(L"--child");
    ASSERT_TRUE(process && AwaitRecord(L"process "));
    EXPECT_FALSE(HasEnded(process, 0));
    job_.Reset(); // as when this process ends
    EXPECT_TRUE(HasEnded(process, kLimit));
}

TEST_F(SuiteProcessTest, TakesAProcessThatIsInAnotherJobAlready) {
    const ObLib::UniqueKernelHandle other(CreateJobObjectW(nullptr, nullptr));
    const auto process = StartSuite({Program(), L"--child", folder_.Path()}, other.Get());
    ASSERT_TRUE(process && AwaitRecord(L"process "));
    EXPECT_TRUE(AssignProcessToJobObject(job_.Get(), process.Get()));
    EndJob(job_.Get());
    EXPECT_TRUE(HasEnded(process, kLimit));
}

// The system puts no process into a job with such limits that is in another one already.
TEST_F(SuiteProcessTest, LimitsNoUseOfWindows) {
    JOBOBJECT_BASIC_UI_RESTRICTIONS windows{};
    if (!QueryInformationJobObject(job_.Get(), JobObjectBasicUIRestrictions, &windows,
                                   sizeof windows, nullptr)) {
        GTEST_SKIP() << "this system reports no limits of windows of a job";
    }
    EXPECT_EQ(windows.UIRestrictionsClass, 0u);
}

TEST_F(SuiteProcessTest, GoesOnWithoutItsJobOnceThatIsFreed) {
    const auto process = Start(L"--child");
    ASSERT_TRUE(process && AwaitRecord(L"process "));
    FreeJob(job_.Get());
    job_.Reset();
    EXPECT_FALSE(HasEnded(process, 500));
    TerminateProcess(process.Get(), 0);
    EXPECT_TRUE(HasEnded(process, kLimit));
}

TEST_F(SuiteProcessTest, IsNotStartedWithoutItsProgram) {
    EXPECT_FALSE(StartSuite({folder_ / L"missing.exe", L"", folder_.Path()}, job_.Get()));
    EXPECT_FALSE(StartSuite({Program(), L"", folder_ / L"missing"}, job_.Get()));
}

} // namespace
