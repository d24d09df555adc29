#include "services/archive/compress/EffortPlan.h"

#include <algorithm>
#include <cmath>

namespace obarchive {
namespace {

constexpr std::size_t kSmall = 64 * 1024;
constexpr std::size_t kMiddle = 256 * 1024;
constexpr std::size_t kLarge = 1024 * 1024;

// The rest of the two per cent is left for what the estimates miss and, with small files, for the
// entries' headers, which are a little larger than the usual program's.
constexpr double kAllowed = 0.012;
constexpr double kAllowedSmall = 0.009;

// Less than this doesn't pay for ten times the work. Large pieces only.
constexpr double kLeastGain = 0.034;

// Fitted to programs, headers, web pages, manuals and generated texts: each halving of the blocks
// below this size costs the usual program 1.4 per cent. In a small piece the blocks are short
// anyway, and what it loses goes with how well the piece shrinks.
constexpr double kLossByBlock = 0.020;
constexpr double kLosslessBlock = 40'000;
constexpr double kLossByRatio = 0.0364;
constexpr double kLosslessRatio = 0.44;
constexpr double kMostPeerLoss = 0.040;

// Tables gain this much by thorough compression, and the usual program gets most of that too.
constexpr double kGainOfTables = 0.080;
constexpr double kMostLossOfTables = 0.005;

// What thorough compression gains over a careful one in small pieces.
constexpr double kGainSmall = 0.0145;

// The most that thorough compression gained on any kind of file, by size.
constexpr double kMostGainMiddle = 0.030;
constexpr double kMostGainLarge = 0.13;

// Otherwise every effort makes nearly the same of it.
bool Shrinks(const QuickResult& quick) {
    return quick.packedSize < quick.rawSize - quick.rawSize / 8;
}

} // namespace

// A slower matcher finds little more in a large piece, and costs half as much again.
Effort FirstEffort(std::size_t size) noexcept {
    return size < kLarge ? Effort::Careful : Effort::Quick;
}

double PeerLoss(const QuickResult& quick) noexcept {
    const auto packed = static_cast<double>(std::max<std::size_t>(quick.packedSize, 1));
    const auto blocks = static_cast<double>(std::max<std::size_t>(quick.blocks, 1));
    const auto raw = static_cast<double>(std::max<std::size_t>(quick.rawSize, 1));
    const double loss = quick.rawSize <= kSmall
                            ? kLossByRatio * std::log(kLosslessRatio * raw / packed)
                            : kLossByBlock * std::log(kLosslessBlock * blocks / packed);
    return std::clamp(loss, 0.0, kMostPeerLoss);
}

double AssumedGain(std::size_t size) noexcept { return size <= kSmall ? kGainSmall : 0; }

bool IsGainMeasured(const QuickResult& quick) noexcept {
    if (quick.rawSize < kMiddle || !Shrinks(quick)) return false;
    const double most = quick.rawSize < kLarge ? kMostGainMiddle : kMostGainLarge;
    return PeerLoss(quick) + kAllowed < most;
}

double ThoroughShare(const QuickResult& quick, double gain) noexcept {
    const bool small = quick.rawSize <= kSmall;
    const double allowed = small ? kAllowedSmall : kAllowed;
    if (!Shrinks(quick) || gain <= (small ? kAllowedSmall : kLeastGain)) return 0;
    const double most = gain < kGainOfTables ? kMostPeerLoss : kMostLossOfTables;
    const double loss = std::min(PeerLoss(quick), most);
    return std::clamp((gain - loss - allowed) / gain, 0.0, 1.0);
}

// Multiples of the golden ratio fill the interval from 0 to 1 evenly, however many there are.
bool IsPicked(std::size_t number, double share) noexcept {
    constexpr double kGoldenRatio = 0.6180339887498949;
    const double place = static_cast<double>(number % 1'000'000) * kGoldenRatio;
    return place - std::floor(place) < share;
}

} // namespace obarchive
