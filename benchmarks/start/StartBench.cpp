// Measures the time from the export's call to the visible dialog: the real library, host and sister
// modules, compared with a bare program that is started the same way and shows the same shell
// dialog. Series in milliseconds.
//
//   start_bench [ROUNDS]
#include <windows.h>

#include <shobjidl.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/start/DialogWatch.h"
#include "benchmarks/support/Library.h"
#include "benchmarks/support/QuickPage.h"
#include "benchmarks/support/Series.h"

namespace {

constexpr int kRounds = 31;
constexpr wchar_t kMailPage[] = L"https://mail.google.com/mail/u/0/#inbox?compose=new";
constexpr int kWarmUps = 2; // the first dialogs of a system start its services
constexpr DWORD kFileCapacity = 4096;

ObLib::UniqueWindow CreateBrowserWindow() {
    return ObLib::UniqueWindow(CreateWindowExW(0, L"Static", L"browser",
                                               WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 640, 480,
                                               nullptr, nullptr, nullptr, nullptr));
}

// Dispatches the browser window's messages until the process has ended.
void Pump(HANDLE process) {
    while (MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
}

double TimeOpenFileName(const bench::Library& library, HWND owner) {
    obtest::FakeBrowserContext page = bench::QuickPage(kMailPage);
    std::vector<wchar_t> files(kFileCapacity, L'\0');
    OPENFILENAMEW request{};
    request.lStructSize = sizeof(request);
    request.hwndOwner = owner;
    request.lpstrFile = files.data();
    request.nMaxFile = kFileCapacity;
    request.Flags = OFN_ALLOWMULTISELECT | OFN_EXPLORER;
    bench::DialogWatch watch;
    library.getOpenFileName(&request, &page);
    return page.OwnDialogCount() == 0 ? watch.Milliseconds() : -1;
}

double TimeShow(const bench::Library& library, HWND owner) {
    obtest::FakeBrowserContext page = bench::QuickPage(kMailPage);
    ObLib::ComPtr<IFileOpenDialog> dialog;
    if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IFileOpenDialog, reinterpret_cast<void**>(dialog.Put())))) {
        return -1;
    }
    bench::DialogWatch watch;
    library.show(dialog.Get(), owner, &page);
    return page.OwnDialogCount() == 0 ? watch.Milliseconds() : -1;
}

double TimeBare(HWND owner, const wchar_t* extra) {
    std::wstring line = L"C:\\app\\bare_dialog.exe ";
    line += std::to_wstring(reinterpret_cast<INT_PTR>(owner)) + extra;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    bench::DialogWatch watch;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return -1;
    }
    const ObLib::UniqueKernelHandle thread(process.hThread);
    const ObLib::UniqueKernelHandle bare(process.hProcess);
    Pump(bare.Get());
    return watch.Milliseconds();
}

// One kind of dialog: its name, a run from start to end, and its samples. The kinds take turns.
struct Runner {
    const char* name;
    std::function<double()> play;
    std::vector<double> milliseconds;
};

// Wine refuses one start of a program in some thousands: a dialog that isn't shown is tried once
// more before the measurement ends.
double PlayTwiceAtMost(const Runner& runner) {
    const double milliseconds = runner.play();
    return milliseconds < 0 ? runner.play() : milliseconds;
}

// Forwards and backwards in turn, so that no kind always runs after the same other one.
bool PlayRound(std::vector<Runner>& runners, int round) {
    for (std::size_t place = 0; place < runners.size(); ++place) {
        Runner& runner = runners[round % 2 == 0 ? place : runners.size() - 1 - place];
        const double milliseconds = PlayTwiceAtMost(runner);
        if (milliseconds < 0) return false;
        if (round >= 0) runner.milliseconds.push_back(milliseconds);
    }
    return true;
}

int Measure(const bench::Library& library, HWND browser, int rounds) {
    std::vector<Runner> runners = {
        {"open", [&] { return TimeOpenFileName(library, browser); }, {}},
        {"bare", [&] { return TimeBare(browser, L""); }, {}},
        {"show", [&] { return TimeShow(library, browser); }, {}},
        {"controls", [&] { return TimeBare(browser, L" controls"); }, {}},
    };
    for (int round = -kWarmUps; round < rounds; ++round) {
        if (!PlayRound(runners, round)) return bench::Fail("a dialog didn't come up");
    }
    for (const Runner& runner : runners) bench::PrintSeries(runner.name, runner.milliseconds);
    return 0;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    const int rounds = argc > 1 ? _wtoi(argv[1]) : kRounds;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return bench::Fail("no COM");
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    const bench::Library library(bench::kLibraryPath);
    if (!library) return bench::Fail("the library doesn't load");
    const ObLib::UniqueWindow browser = CreateBrowserWindow();
    if (!browser) return bench::Fail("there is no browser window");
    return Measure(library, browser.Get(), rounds);
}
