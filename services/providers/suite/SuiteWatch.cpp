#include "services/providers/suite/SuiteWatch.h"

namespace providers {
namespace {

// Timers of a program that only waits use less than this within any sensible limit.
constexpr std::uint64_t kWork = 10'000'000; // one second of a processor

} // namespace

bool SuiteWatch::IsHung(std::uint64_t used, std::uint64_t now) noexcept {
    if (used >= used_ + kWork) {
        used_ = used;
        moved_ = now;
    }
    return now - moved_ >= limits_.silence || now - start_ >= limits_.whole;
}

} // namespace providers
