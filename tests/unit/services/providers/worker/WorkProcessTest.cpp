// The manager's side of the work process, with a process that misbehaves as the test asks.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/WorkProcess.h"
#include "tests/fakes/Recording.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

constexpr DWORD kLimit = 20000; // milliseconds, for what has to happen soon

class WorkProcessTest : public testing::Test {
protected:
    void SetUp() override {
        ended_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        source_.Reset(CreateFileW(folder_.File(L"photo.jpg", "photo").c_str(), GENERIC_READ,
                                  FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        target_.Reset(CreateFileW(Target().c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW, 0,
                                  nullptr));
        ASSERT_TRUE(ended_ && source_ && target_);
    }

    std::wstring Target() const { return folder_ / L"target"; }
    static WorkSettings Settings() {
        WorkSettings settings;
        settings.program = obtest::BesideProgram(obcontract::kTransformWorkFileName);
        return settings;
    }
    static void Script(const char* word) {
        ASSERT_TRUE(obtest::WriteFileContent(obtest::BesideProgram(L"worker.txt"), word));
    }
    WorkReport Run(WorkProcess& process, const char* word, HWND owner = nullptr) {
        Script(word);
        CallWait wait(ended_.Get(), owner);
        return process.Run(CleanOrder(), source_.Get(), target_.Get(), wait);
    }
    // The process that carried the request out, by its finding.
    static std::string ProcessOf(const WorkReport& report) {
        return report.found.size() == 2 ? report.found[1].key : "none";
    }
    // Expects that a process which does this is ended, and that the next file gets a new one.
    void ExpectEndedBy(const char* word) {
        WorkProcess process(Settings());
        EXPECT_EQ(Run(process, word).result, WorkResult::ProcessFailed) << word;
        const WorkReport next = Run(process, "good");
        EXPECT_EQ(next.result, WorkResult::Changed) << word;
        // The same file fails in a process that served another one before, and in a new one.
        EXPECT_EQ(Run(process, word).result, WorkResult::ProcessFailed) << word;
        const WorkReport last = Run(process, "good");
        EXPECT_EQ(last.result, WorkResult::Changed) << word;
        EXPECT_NE(ProcessOf(last), ProcessOf(next)) << word;
    }

    const obtest::TestFolder folder_;
    ObLib::UniqueKernelHandle ended_;
    ObLib::UniqueKernelHandle source_;
    ObLib::UniqueKernelHandle target_;
};

TEST_F(WorkProcessTest, ReportsWhatAWholeRequestCameTo) {
    WorkProcess process(Settings());
    const WorkReport report = Run(process, "good");
    EXPECT_EQ(report.result, WorkResult::Changed);
    EXPECT_EQ(report.size, 5u);
    ASSERT_EQ(report.found.size(), 2u);
    EXPECT_EQ(report.found[0], (WorkFound{"position", 2}));
    EXPECT_EQ(obtest::ReadFileContent(Target()), "clean");
}

TEST_F(WorkProcessTest, ServesOneFileAfterTheOther) {
    WorkProcess process(Settings());
    const std::string first = ProcessOf(Run(process, "good"));
    EXPECT_NE(first, "none");
    EXPECT_EQ(ProcessOf(Run(process, "good")), first);
}

TEST_F(WorkProcessTest, EndsAfterARequestWithAPassword) {
    WorkProcess process(Settings());
    Script("good");
    CallWait wait(ended_.Get(), nullptr);
    const auto run = [&](const WorkOrder& order) {
        return ProcessOf(process.Run(order, source_.Get(), target_.Get(), wait));
    };
    const std::string first = run(CleanOrder());
    EXPECT_EQ(run(CleanOrder().With(ObLib::Secret("password"))), first);
    EXPECT_NE(run(CleanOrder()), first);
}

TEST_F(WorkProcessTest, IsStartedAnewAfterACrash) { ExpectEndedBy("crash"); }
TEST_F(WorkProcessTest, IsStartedAnewAfterACrashInTheMiddleOfTheFile) {
    ExpectEndedBy("crash-after-writing");
}
TEST_F(WorkProcessTest, IsStartedAnewAfterACrashAtItsStart) {
    WorkProcess process(Settings());
    EXPECT_EQ(Run(process, "crash-at-start").result, WorkResult::ProcessFailed);
    EXPECT_EQ(Run(process, "good").result, WorkResult::Changed);
}
TEST_F(WorkProcessTest, IsStartedAnewAfterACrashAfterProgress) {
    ExpectEndedBy("crash-after-progress");
}
TEST_F(WorkProcessTest, IsStartedAnewAfterACrashAfterAFinding) {
    ExpectEndedBy("crash-after-finding");
}
TEST_F(WorkProcessTest, IsStartedAnewAfterItEndedByItself) { ExpectEndedBy("exit"); }
TEST_F(WorkProcessTest, IsStartedAnewAfterHalfARecord) { ExpectEndedBy("half"); }
TEST_F(WorkProcessTest, IsEndedForBytesThatAreNoRecord) { ExpectEndedBy("garbage"); }
TEST_F(WorkProcessTest, IsEndedForARecordOfAnySize) { ExpectEndedBy("huge"); }
TEST_F(WorkProcessTest, IsEndedForFindingsWithoutEnd) { ExpectEndedBy("flood"); }
TEST_F(WorkProcessTest, IsEndedForProgressThatDoesNotAdvance) { ExpectEndedBy("standstill"); }

TEST_F(WorkProcessTest, IsEndedWhenItIsSilentForTooLong) {
    WorkSettings settings = Settings();
    settings.silence = 200;
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "hang").result, WorkResult::ProcessFailed);
    EXPECT_EQ(Run(process, "hang-after-writing").result, WorkResult::ProcessFailed);
}

// The job's limit makes an allocation of the process fail, and the process dies of that.
TEST_F(WorkProcessTest, IsStartedAnewAfterAFileThatTakesAllMemory) {
    constexpr int kMegabytes = 64;
    WorkSettings settings = Settings();
    settings.limits.memory = std::size_t{kMegabytes} << 20;
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "eat").result, WorkResult::ProcessFailed);
    const auto eaten = obtest::ReadFileContent(obtest::BesideProgram(L"eaten.txt"));
    ASSERT_TRUE(eaten);
    if (std::stoi(*eaten) > kMegabytes) {
        std::puts("This system doesn't enforce a job's memory limit: the process ended by itself.");
        EXPECT_EQ(*eaten, "512");
    }
    const WorkReport next = Run(process, "good");
    EXPECT_EQ(next.result, WorkResult::Changed);
    EXPECT_EQ(obtest::ReadFileContent(Target()), "clean");
}

// What an earlier file did to the process isn't the next file's fault.
TEST_F(WorkProcessTest, IsReplacedWhenItDiedBetweenTwoFiles) {
    WorkProcess process(Settings());
    const WorkReport first = Run(process, "crash-after-done");
    EXPECT_EQ(first.result, WorkResult::Changed);
    ASSERT_EQ(SetFilePointer(target_.Get(), 0, nullptr, FILE_BEGIN), 0u);
    const WorkReport next = Run(process, "good");
    EXPECT_EQ(next.result, WorkResult::Changed);
    EXPECT_NE(ProcessOf(next), ProcessOf(first));
    EXPECT_EQ(obtest::ReadFileContent(Target()), "clean");
}

// A pipe that nobody reads is full after many requests.
TEST_F(WorkProcessTest, IsReplacedBeforeItsUnreadRequestsFillThePipe) {
    WorkProcess process(Settings());
    for (int request = 0; request < 200; ++request) {
        ASSERT_EQ(Run(process, "answer-unread").result, WorkResult::Unchanged) << request;
    }
}

// Requests that belong together are lost with their process: another one knows nothing of them.
TEST_F(WorkProcessTest, IsNotReplacedWithinASeries) {
    WorkProcess process(Settings());
    const std::string before = ProcessOf(Run(process, "good"));
    CallWait wait(ended_.Get(), nullptr);
    {
        WorkSeries series(process);
        const auto run = [&] {
            return series.Run(CleanOrder(), source_.Get(), target_.Get(), wait);
        };
        Script("crash-after-done");
        const WorkReport first = run();
        EXPECT_EQ(first.result, WorkResult::Changed);
        EXPECT_NE(ProcessOf(first), before); // it gets a process of its own
        Script("good");
        EXPECT_EQ(run().result, WorkResult::ProcessFailed);
        EXPECT_EQ(run().result, WorkResult::ProcessFailed);
    }
    EXPECT_EQ(Run(process, "good").result, WorkResult::Changed);
}

TEST_F(WorkProcessTest, TakesMoreRequestsInASeriesThanBesides) {
    Script("answer-unread");
    WorkProcess process(Settings());
    WorkSeries series(process);
    CallWait wait(ended_.Get(), nullptr);
    const WorkOrder order(obcontract::WorkKind::FitAdd, obcontract::WorkFitAdd{});
    for (int request = 0; request < 200; ++request) {
        ASSERT_EQ(series.Run(order, source_.Get(), nullptr, wait).result, WorkResult::Unchanged);
    }
}

TEST_F(WorkProcessTest, TakesAsManyRequestsInASeriesWhateverIsTriedBesides) {
    Script("good");
    CallWait wait(ended_.Get(), nullptr);
    const WorkOrder order(obcontract::WorkKind::CombineAdd, obcontract::WorkCombineAdd{},
                          std::wstring(obcontract::kMostCombineTitle, L't'));
    const auto taken = [&](int attempts) {
        WorkProcess process(Settings());
        WorkSeries series(process);
        int requests = 0;
        while (series.Run(order, source_.Get(), nullptr, wait).result == WorkResult::Changed) {
            if (++requests > attempts) continue;
            EXPECT_EQ(series.Try(order, source_.Get(), wait).result, WorkResult::Changed);
        }
        return requests;
    };
    const int alone = taken(0);
    EXPECT_GT(alone, 20);
    EXPECT_EQ(taken(20), alone);
}

// A write to a process that doesn't read never waits, as the system's pipe takes what this side
// counts on.
TEST_F(WorkProcessTest, HasAPipeWithTheRoomThatItCountsOn) {
    ObLib::UniqueKernelHandle reading;
    ObLib::UniqueKernelHandle writing;
    ASSERT_TRUE(CreatePipe(reading.Put(), writing.Put(), nullptr, WorkProcess::kPipeRoom));
    const std::string record(40, 'r');
    for (std::size_t sent = 0; sent + record.size() <= WorkProcess::kPipeRoom;
         sent += record.size()) {
        DWORD written = 0;
        ASSERT_TRUE(WriteFile(writing.Get(), record.data(), 40, &written, nullptr));
    }
}

TEST_F(WorkProcessTest, IsNotSearchedForWithoutAPath) {
    WorkProcess process((WorkSettings()));
    EXPECT_EQ(Run(process, "good").result, WorkResult::NotStarted);
}

TEST_F(WorkProcessTest, PassesOnThatAFileIsTooLargeOrADiskFull) {
    WorkProcess process(Settings());
    EXPECT_EQ(Run(process, "too-large").result, WorkResult::TooLarge);
    EXPECT_EQ(Run(process, "full").result, WorkResult::Unwritable);
}

TEST_F(WorkProcessTest, EndsAtOnceWhenTheSessionDoes) {
    WorkProcess process(Settings());
    std::thread ender([&] {
        for (DWORD waited = 0;
             waited < kLimit && obtest::ReadFileContent(Target()) != "half a file"; waited += 10) {
            Sleep(10);
        }
        SetEvent(ended_.Get());
    });
    EXPECT_EQ(Run(process, "hang-after-writing").result, WorkResult::Cancelled);
    ender.join();
    // The process has ended, so that nobody has the files open.
    target_.Reset();
    EXPECT_TRUE(DeleteFileW(Target().c_str()));
}

TEST_F(WorkProcessTest, EndsWhenTheOwnerWindowIsGone) {
    WorkProcess process(Settings());
    const HWND owner =
        CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(owner, nullptr);
    WorkResult result{};
    std::thread call([&] { result = Run(process, "hang", owner).result; });
    DestroyWindow(owner);
    call.join();
    EXPECT_EQ(result, WorkResult::Cancelled);
}

TEST_F(WorkProcessTest, StartsNothingOnceTheCallIsToEnd) {
    SetEvent(ended_.Get());
    WorkSettings settings = Settings();
    settings.program = L"C:\\missing.exe";
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "good").result, WorkResult::Cancelled);
}

TEST_F(WorkProcessTest, ReportsThatTheProgramIsMissing) {
    WorkSettings settings = Settings();
    settings.program = folder_ / obcontract::kTransformWorkFileName;
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "good").result, WorkResult::NotStarted);
}

TEST_F(WorkProcessTest, ReportsThatTheFileIsNoProgram) {
    WorkSettings settings = Settings();
    settings.program = folder_.File(L"PVXTransform64.exe", "no program");
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "good").result, WorkResult::NotStarted);
}

// A program of that name in the current folder or on the search path isn't taken instead.
TEST_F(WorkProcessTest, IsNeverFoundOnASearchPath) {
    wchar_t current[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, current), 0u);
    ASSERT_TRUE(
        CopyFileW(Settings().program.c_str(), (folder_ / L"PVXTransform64.exe").c_str(), FALSE));
    ASSERT_TRUE(SetCurrentDirectoryW(folder_.Path().c_str()));
    SetEnvironmentVariableW(L"PATH", folder_.Path().c_str());
    WorkSettings settings;
    settings.program = folder_.Folder(L"empty") + L"\\PVXTransform64.exe";
    WorkProcess process(std::move(settings));
    EXPECT_EQ(Run(process, "good").result, WorkResult::NotStarted);
    SetCurrentDirectoryW(current);
}

TEST_F(WorkProcessTest, InheritsTheTwoPipesAndNothingElse) {
    // A handle that any child may inherit: the process must not keep it open.
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    ObLib::UniqueKernelHandle reading;
    ObLib::UniqueKernelHandle writing;
    ASSERT_TRUE(CreatePipe(reading.Put(), writing.Put(), &inheritable, 0));
    WorkProcess process(Settings());
    ASSERT_EQ(Run(process, "good").result, WorkResult::Changed);
    writing.Reset();
    char byte;
    DWORD read = 0;
    // The pipe has ended only if no other process has its end.
    EXPECT_FALSE(ReadFile(reading.Get(), &byte, 1, &read, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BROKEN_PIPE));
}

TEST_F(WorkProcessTest, RunsInAJobThatEndsItWithTheHost) {
    ObLib::UniqueKernelHandle process;
    {
        HANDLE in = nullptr;
        HANDLE out = nullptr;
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        ASSERT_TRUE(CreatePipe(&in, &out, &inheritable, 0));
        LimitedProcess started = StartLimited(Settings().program, in, out, {});
        ASSERT_TRUE(started);
        BOOL inJob = FALSE;
        EXPECT_TRUE(IsProcessInJob(started.process.Get(), started.job.Get(), &inJob));
        EXPECT_TRUE(inJob);
        process = std::move(started.process);
        CloseHandle(in);
        CloseHandle(out);
        // Here the job is closed, as the system does when a host is killed.
    }
    EXPECT_EQ(WaitForSingleObject(process.Get(), kLimit), WAIT_OBJECT_0);
}

} // namespace
