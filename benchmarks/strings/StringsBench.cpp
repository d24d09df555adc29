// Copies of ObString beside copies of std::wstring, and the pool beside malloc, interleaved in one
// process: first with one thread, then with a second alive that sleeps. Series in nanoseconds.
#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "ObLib/Src/ObString.h"
#include "ObLib/Src/StringPool.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"

namespace {

using bench::Stopwatch;
using ObLib::ObString;

constexpr int kSamples = 301;
constexpr int kCallsPerSample = 4000;
constexpr std::size_t kUnits[] = {5, 12, 13, 64, 1024};

// Keeps the compiler from removing the write to that place.
template <class Value>
void Keep(Value* value) {
    asm volatile("" : : "g"(value) : "memory");
}

template <class Call>
double NanosecondsACall(Call call) {
    const Stopwatch watch;
    for (int count = 0; count < kCallsPerSample; ++count) call();
    return watch.Nanoseconds() / kCallsPerSample;
}

// Pairs of batches, each kind first in every other pair.
template <class Ours, class Theirs>
void Measure(const std::string& name, Ours ours, Theirs theirs) {
    std::vector<double> own;
    std::vector<double> other;
    for (int sample = 0; sample < kSamples; ++sample) {
        if (sample % 2 == 0) own.push_back(NanosecondsACall(ours));
        other.push_back(NanosecondsACall(theirs));
        if (sample % 2 != 0) own.push_back(NanosecondsACall(ours));
    }
    bench::PrintSeries((name + " ours").c_str(), own);
    bench::PrintSeries((name + " theirs").c_str(), other);
}

template <class String>
auto MakeAndRelease(const String& string) {
    return [&string] {
        String copy(string);
        Keep(&copy);
    };
}

// Two sources in turn, so that an assignment always changes something.
template <class String>
auto AssignInTurn(String& target, const String& one, const String& other) {
    return [&, turn = false]() mutable {
        target = (turn = !turn) ? one : other;
        Keep(&target);
    };
}

void MeasureCopies(const std::string& threads, std::size_t units) {
    const std::wstring theirs(units, L'u');
    const std::wstring theirsToo(units, L'v');
    const ObString ours(theirs.c_str());
    const ObString oursToo(theirsToo.c_str());
    const std::string name = threads + " " + std::to_string(units);
    Measure(name + " copy", MakeAndRelease(ours), MakeAndRelease(theirs));
    ObString target;
    std::wstring theirTarget;
    Measure(name + " assign", AssignInTurn(target, ours, oursToo),
            AssignInTurn(theirTarget, theirs, theirsToo));
}

void MeasurePool(const std::string& threads) {
    constexpr std::size_t size = sizeof(ObLib::StringCore);
    Measure(
        threads + " pool",
        [] {
            void* const core = ObLib::PoolAllocate(size);
            Keep(core);
            ObLib::PoolFree(core, size);
        },
        [] {
            void* const memory = std::malloc(size);
            Keep(memory);
            std::free(memory);
        });
}

void MeasureAll(const std::string& threads) {
    for (const std::size_t units : kUnits) MeasureCopies(threads, units);
    MeasurePool(threads);
}

DWORD WINAPI WaitForEnd(void* event) { return WaitForSingleObject(event, INFINITE); }

} // namespace

int wmain() {
    MeasureAll("one");
    const ObLib::UniqueKernelHandle end(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const ObLib::UniqueKernelHandle second(
        CreateThread(nullptr, 0, &WaitForEnd, end.Get(), 0, nullptr));
    if (!second) return bench::Fail("a second thread doesn't start");
    MeasureAll("two");
    SetEvent(end.Get());
    WaitForSingleObject(second.Get(), INFINITE);
    return 0;
}
