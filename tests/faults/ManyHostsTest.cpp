// Many requests in one browser, each served by the real library and a real host process. None of
// them leaves anything, neither in the browser's process nor in the system. Only the shell's dialog
// is a fake, which confirms at once.
#include <cstdio>
#include <cstdlib>

#include "tests/e2e/RealRequest.h"
#include "tests/fakes/Recording.h"
#include "tests/faults/HostProcess.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

// Registers the fake's module as the server of the shell dialog's class, for a scope.
class QuickDialogClass {
public:
    QuickDialogClass() : before_(Server()) { SetServer(BesideProgram(L"quick_dialog.dll")); }
    ~QuickDialogClass() { SetServer(before_); }
    QuickDialogClass(const QuickDialogClass&) = delete;
    QuickDialogClass& operator=(const QuickDialogClass&) = delete;

private:
    static constexpr wchar_t kKey[] =
        L"Software\\Classes\\CLSID\\{DC1C5A9C-E88A-4DDE-A5A1-60F82A20AEF7}\\InprocServer32";

    static std::wstring Server() {
        return ReadValue(HKEY_LOCAL_MACHINE, kKey, L"").value_or(std::wstring());
    }
    static void SetServer(const std::wstring& path) {
        SetValue(HKEY_LOCAL_MACHINE, kKey, L"", path);
    }

    std::wstring before_;
};

bool SectionIsLeft(int id) {
    const std::wstring name = L"WEBVELLANT_SM_" + std::to_wstring(id);
    const ObLib::UniqueKernelHandle section(OpenFileMappingW(FILE_MAP_READ, FALSE, name.c_str()));
    return static_cast<bool>(section);
}

int refusedStarts = 0;

// Wine refuses one start of a program in some thousands, whatever the program. The request is then
// a cancel, as it should be, and the test asks once more.
BOOL WINAPI StartAndCountRefusals(LPCWSTR program, LPWSTR line, LPSECURITY_ATTRIBUTES process,
                                  LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags,
                                  LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                                  LPPROCESS_INFORMATION info) {
    const BOOL started = CreateProcessW(program, line, process, thread, inherit, flags, environment,
                                        folder, startup, info);
    if (!started && GetLastError() == ERROR_INTERNAL_ERROR) ++refusedStarts;
    return started;
}

class ManyHosts : public RealRequest {
protected:
    void SetUp() override {
        FakeModules::Reset();
        RealRequest::SetUp();
        file_ = files_.File(L"picked.txt", "picked");
        SetEnvironmentVariableW(L"OB_QUICK_DIALOG_PICKS", file_.c_str());
        SetUserValue(L"AutoEncrypt", L"0");
    }

    // Both paths by turns; every tenth request is for a zip, which the page deletes.
    void Ask(int round) {
        SetUserValue(L"SendItem", round % 10 == 0 ? L"1" : L"0");
        const int refusedBefore = refusedStarts;
        Texts given = AskOnce(round);
        if (refusedStarts > refusedBefore) {
            EXPECT_EQ(given, Texts{});
            given = AskOnce(round);
        }
        ASSERT_EQ(given.size(), 1u) << "request " << round;
        if (round % 10 != 0) {
            ASSERT_EQ(given.front(), file_) << "request " << round;
            return;
        }
        ASSERT_TRUE(given.front().ends_with(L".zip")) << "request " << round;
        ASSERT_TRUE(DeleteFileW(given.front().c_str())) << "request " << round;
        ASSERT_TRUE(RemoveDirectoryW(FolderOf(given.front()).c_str())) << "request " << round;
    }

    std::wstring file_;

private:
    Texts AskOnce(int round) {
        if (round % 2 == 0) return AskOpen().given;
        Texts given;
        if (SUCCEEDED(AskShow())) GetResults(given);
        return given;
    }

    const QuickDialogClass class_;
};

using Starts = ImportPatch<decltype(&CreateProcessW)>;

// Starting a thousand host programs takes one to several minutes. Without OB_REQUESTS_IN_A_ROW the
// test makes as many requests as fit into its limit.
class Rounds {
public:
    Rounds() : asked_(_wgetenv(L"OB_REQUESTS_IN_A_ROW")) {}

    bool More() const {
        if (asked_) return played_ < _wtoi(asked_);
        return played_ < kAll && (played_ < kLeast || Elapsed() < kLimit);
    }
    int Next() { return played_++; }

    int Played() const { return played_; }
    void Print() const {
        printf("%d requests in a row, each with a host process of its own, at %.1f milliseconds; "
               "%d starts that the system refused were asked for again.\n",
               played_, static_cast<double>(Elapsed()) / played_, refusedStarts);
        if (played_ < kAll) {
            printf("No more fit into %d seconds: OB_REQUESTS_IN_A_ROW=%d plays them all.\n",
                   static_cast<int>(kLimit / 1000), kAll);
        }
    }

private:
    static constexpr int kAll = 1000;
    static constexpr int kLeast = 50;
    static constexpr ULONGLONG kLimit = 10000; // milliseconds

    ULONGLONG Elapsed() const { return GetTickCount64() - begin_; }

    const wchar_t* asked_;
    int played_ = 0;
    ULONGLONG begin_ = GetTickCount64();
};

TEST_F(ManyHosts, LeaveNothingInTheBrowserAndNothingInTheSystem) {
    const Starts starts("kernel32.dll", "CreateProcessW", &StartAndCountRefusals,
                        GetModuleHandleW(L"obwmcore64.dll"));
    ASSERT_TRUE(starts.Ok());
    browser_.keepsCalls = false; // as the memory of this process is measured
    for (int round = 0; round < 20; ++round)
        ASSERT_NO_FATAL_FAILURE(Ask(round)); // allocates what is allocated once
    const ProcessResources before = ProcessResources::Now();
    Rounds rounds;
    while (rounds.More()) ASSERT_NO_FATAL_FAILURE(Ask(rounds.Next()));
    rounds.Print();
    ASSERT_GT(rounds.Played(), 0);
    ExpectNoMoreThan(before);
    EXPECT_FALSE(HostRuns());
    EXPECT_FALSE(SectionIsLeft(static_cast<int>(GetCurrentThreadId())));
    for (int id = 1; id <= rounds.Played(); ++id) EXPECT_FALSE(SectionIsLeft(id)) << id;
    EXPECT_EQ(browser_.OwnDialogCount(), 0u);
}

} // namespace
} // namespace obtest
