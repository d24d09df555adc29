// Measures OBConfig from its call to the last paint, beside the system's own dialog from the same
// template: the first time in a process, and later ones.
//
//   settings_bench [ROUNDS]
//   settings_bench --child ours|theirs    one first opening: milliseconds and KB, to stdout
#include <windows.h>

#include <commctrl.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <optional>
#include <string>
#include <vector>

#include "OBCore/settings/OptionsDialogIds.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/settings/ModalOpening.h"
#include "benchmarks/support/Child.h"
#include "benchmarks/support/Library.h"
#include "benchmarks/support/Series.h"
#include "obwmv/Exports.h"

namespace {

constexpr int kRounds = 11;

struct Pair {
    std::vector<double> ours;
    std::vector<double> theirs;
};

INT_PTR CALLBACK StockProcedure(HWND window, UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(window, IDCANCEL);
    return TRUE;
}

std::optional<bench::Opening> OpenStock() {
    return bench::OpenOnce([](HWND owner) {
        DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(OB_OPTIONS), owner,
                        &StockProcedure, 0);
    });
}

// The library, with its export.
class Settings {
public:
    Settings()
        : library_(LoadLibraryW(bench::kLibraryPath)),
          configure_(reinterpret_cast<decltype(&OBConfig)>(
              reinterpret_cast<void*>(GetProcAddress(library_.Get(), "OBConfig")))) {}
    [[nodiscard]] std::optional<bench::Opening> Open() const {
        if (!configure_) return std::nullopt;
        return bench::OpenOnce([this](HWND owner) { configure_(owner); });
    }

private:
    ObLib::UniqueModule library_;
    decltype(&OBConfig) configure_;
};

int RunChild(bool isOurs) {
    const auto opening = isOurs ? Settings().Open() : OpenStock();
    if (!opening) return bench::Fail("no dialog came");
    std::printf("%f %f\n", opening->milliseconds, opening->privateKilobytes);
    return 0;
}

bool TakeFirst(const wchar_t* kind, std::vector<double>& times, std::vector<double>& memory) {
    double milliseconds = 0;
    double kilobytes = 0;
    const std::string text = bench::OutputOfChild(kind);
    if (std::sscanf(text.c_str(), "%lf %lf", &milliseconds, &kilobytes) != 2) return false;
    times.push_back(milliseconds);
    memory.push_back(kilobytes);
    return true;
}

void PrintPair(const std::string& name, const Pair& pair, std::size_t uncounted) {
    const auto from = static_cast<std::ptrdiff_t>(uncounted);
    bench::PrintSeries((name + " ours").c_str(), {pair.ours.begin() + from, pair.ours.end()});
    bench::PrintSeries((name + " theirs").c_str(), {pair.theirs.begin() + from, pair.theirs.end()});
}

// The first pair of children fills the file cache.
bool MeasureFirst(int rounds) {
    Pair times;
    Pair memory;
    for (int round = 0; round <= rounds; ++round) {
        if (!TakeFirst(L"ours", times.ours, memory.ours)) return false;
        if (!TakeFirst(L"theirs", times.theirs, memory.theirs)) return false;
    }
    PrintPair("first", times, 1);
    PrintPair("first memory", memory, 1);
    return true;
}

// The first pair makes what is made once.
bool MeasureLater(int rounds) {
    const Settings settings;
    Pair times;
    Pair memory;
    for (int round = 0; round <= rounds; ++round) {
        const auto ours = settings.Open();
        const auto theirs = OpenStock();
        if (!ours || !theirs) return false;
        times.ours.push_back(ours->milliseconds);
        times.theirs.push_back(theirs->milliseconds);
        memory.ours.push_back(ours->heapKilobytes);
        memory.theirs.push_back(theirs->heapKilobytes);
    }
    PrintPair("later", times, 1);
    PrintPair("later memory", memory, 1);
    return true;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&classes);
    if (count > 2 && std::wcscmp(arguments[1], L"--child") == 0) {
        return RunChild(std::wcscmp(arguments[2], L"ours") == 0);
    }
    const int rounds = count > 1 ? _wtoi(arguments[1]) : kRounds;
    if (!MeasureFirst(rounds)) return bench::Fail("a child gave no sample");
    if (!MeasureLater(rounds)) return bench::Fail("no dialog came");
    return 0;
}
