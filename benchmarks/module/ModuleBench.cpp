// Measures what loading the library costs a browser, time and private memory, compared with an
// empty DLL.
//
// A module is loaded for the first time only once in a process, so each sample is a child process
// of its own; the kinds take turns. A child first loads what every browser has loaded.
//
//   module_bench                        all samples, as series
//   module_bench --child PATH [ask]     one sample: nanoseconds and bytes, to stdout
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "benchmarks/support/Child.h"
#include "benchmarks/support/Library.h"
#include "benchmarks/support/Memory.h"
#include "benchmarks/support/QuickPage.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"

namespace {

constexpr int kSamples = 31;
constexpr wchar_t kEmpty[] = L"C:\\app\\empty.dll";
constexpr const wchar_t* kBrowsersOwn[] = {
    L"advapi32.dll", L"bcrypt.dll", L"comctl32.dll", L"comdlg32.dll", L"gdi32.dll",  L"ole32.dll",
    L"oleaut32.dll", L"psapi.dll",  L"shell32.dll",  L"shlwapi.dll",  L"user32.dll",
};

struct Sample {
    double nanoseconds = 0;
    double privateBytes = 0;
};

void AskOnce() {
    const bench::Library library(bench::kLibraryPath);
    if (!library) return;
    obtest::FakeBrowserContext page = bench::QuickPage(L"https://www.example.com/upload");
    OPENFILENAMEW request{};
    request.lStructSize = sizeof(request);
    library.getOpenFileName(&request, &page);
}

int RunChild(const wchar_t* path, bool ask) {
    for (const wchar_t* name : kBrowsersOwn) {
        if (!LoadLibraryW(name)) return bench::Fail("a system library doesn't load");
    }
    const double before = bench::PrivateBytes();
    const bench::Stopwatch watch;
    const HMODULE module = LoadLibraryW(path);
    const double nanoseconds = watch.Nanoseconds();
    if (!module) return bench::Fail("the module doesn't load");
    if (ask) AskOnce();
    std::printf("%.0f %.0f\n", nanoseconds, bench::PrivateBytes() - before);
    return 0;
}

bool Take(const std::wstring& arguments, Sample& sample) {
    const std::string text = bench::OutputOfChild(arguments);
    return std::sscanf(text.c_str(), "%lf %lf", &sample.nanoseconds, &sample.privateBytes) == 2;
}

struct Kind {
    const char* name;
    std::wstring arguments;
    std::vector<double> milliseconds;
    std::vector<double> kilobytes;
};

bool TakeTurns(std::vector<Kind>& kinds) {
    for (int round = -1; round < kSamples; ++round) { // the first fills the file cache
        for (Kind& kind : kinds) {
            Sample sample;
            if (!Take(kind.arguments, sample)) return false;
            if (round < 0) continue;
            kind.milliseconds.push_back(sample.nanoseconds / 1e6);
            kind.kilobytes.push_back(sample.privateBytes / 1024);
        }
    }
    return true;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc >= 3 && std::wcscmp(argv[1], L"--child") == 0) return RunChild(argv[2], argc > 3);
    std::vector<Kind> kinds = {{"empty", kEmpty, {}, {}},
                               {"library", bench::kLibraryPath, {}, {}},
                               {"asked", std::wstring(bench::kLibraryPath) + L" ask", {}, {}}};
    if (!TakeTurns(kinds)) return bench::Fail("a child gave no sample");
    for (const Kind& kind : kinds) {
        bench::PrintSeries((std::string(kind.name) + " ms").c_str(), kind.milliseconds);
        bench::PrintSeries((std::string(kind.name) + " kB").c_str(), kind.kilobytes);
    }
    return 0;
}
