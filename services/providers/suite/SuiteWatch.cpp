#include "services/providers/suite/SuiteWatch.h"

namespace providers {
namespace {

// Timers of a program that only waits use less than this within any sensible limit.
constexpr std::uint64_t kWork = 10'000'000; // one second of a processor

} // namespace

bool SuiteWatch::IsHung(std::uint64_t used, std::uint64_t now) noexcept {
    if (used >= cpuTimeThen_ + kWork) {
        cpuTimeThen_ = used;
        lastProgressAt_ = now;
    }
    return now - lastProgressAt_ >= limits_.silence || now - start_ >= limits_.whole;
}

} // namespace providers
