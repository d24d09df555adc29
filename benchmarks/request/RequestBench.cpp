// Measures what a request costs on a page that is not mail: a call through the library compared
// with a call of the hook's context itself, in one process, interleaved. Series in nanoseconds a
// call.
#include <algorithm>
#include <string>
#include <vector>

#include "benchmarks/support/Library.h"
#include "benchmarks/support/QuickPage.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"

using obcontract::BrowserContext;

namespace {

using bench::Library;
using bench::Stopwatch;

constexpr int kSamples = 401;
constexpr int kCallsPerSample = 500;

// The call that the library's is compared with goes through the interface's table too.
BrowserContext* Opaque(BrowserContext* context) {
    BrowserContext* volatile kept = context;
    return kept;
}

template <class Call>
double NanosecondsACall(Call call) {
    const Stopwatch watch;
    for (int count = 0; count < kCallsPerSample; ++count) call();
    return watch.Nanoseconds() / kCallsPerSample;
}

// Pairs of batches, each kind first in every other pair, so that a change of the machine's speed
// affects both.
template <class Direct, class Through>
void Measure(const std::string& name, Direct direct, Through through) {
    std::vector<double> directly;
    std::vector<double> throughLibrary;
    for (int sample = 0; sample < kSamples; ++sample) {
        if (sample % 2 == 0) directly.push_back(NanosecondsACall(direct));
        throughLibrary.push_back(NanosecondsACall(through));
        if (sample % 2 != 0) directly.push_back(NanosecondsACall(direct));
    }
    bench::PrintSeries((name + " direct").c_str(), directly);
    bench::PrintSeries((name + " through").c_str(), throughLibrary);
}

void MeasureOpen(const char* name, const Library& library, const std::wstring& url) {
    obtest::FakeBrowserContext context = bench::QuickPage(url);
    BrowserContext* const page = Opaque(&context);
    OPENFILENAMEW request{};
    request.lStructSize = sizeof(request);
    Measure(
        name, [&] { page->CallGetOpenFileName(&request); },
        [&] { library.getOpenFileName(&request, page); });
}

// The dialog is only a key for the library, and this context doesn't look at it either.
void MeasureDialog(const Library& library, const std::wstring& url) {
    obtest::FakeBrowserContext context = bench::QuickPage(url);
    BrowserContext* const page = Opaque(&context);
    auto* const dialog = reinterpret_cast<IFileDialog*>(&context);
    Measure(
        "show", [&] { page->CallShow(dialog, nullptr); },
        [&] { library.show(dialog, nullptr, page); });
    IShellItem* item = nullptr;
    Measure(
        "result", [&] { page->CallGetResult(dialog, &item); },
        [&] { library.getResult(dialog, &item, page); });
}

bool MeasureFirst(const Library& library, const std::wstring& url) {
    obtest::FakeBrowserContext context = bench::QuickPage(url);
    OPENFILENAMEW request{};
    request.lStructSize = sizeof(request);
    const Stopwatch watch;
    library.getOpenFileName(&request, &context);
    bench::PrintSeries("first", {watch.Nanoseconds()});
    return context.OwnDialogCount() == 1;
}

} // namespace

int wmain() {
    const Library library(bench::kLibraryPath);
    if (!library) return bench::Fail("the library doesn't load");
    const std::wstring url = L"https://www.example.com/documents/upload?folder=42";
    if (!MeasureFirst(library, url)) return bench::Fail("the browser's dialog wasn't asked for");
    MeasureOpen("open", library, url);
    MeasureOpen("open-long", library, url + L"&token=" + std::wstring(2000, L'm'));
    MeasureDialog(library, url);
    return 0;
}
