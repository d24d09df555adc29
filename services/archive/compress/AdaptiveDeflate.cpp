#include "services/archive/compress/AdaptiveDeflate.h"

#include <algorithm>
#include <cmath>

#include "services/archive/compress/EffortPlan.h"

namespace obarchive {
namespace {

// Smaller samples show less of the gain. What this one misses on average is added to its result.
constexpr std::size_t kGainSample = 48 * 1024;
constexpr double kMissedGain = 0.007;

// On a sample from the middle of the piece; costs about a fifth of the piece's own compression.
double MeasuredGain(BlockCompressor& compressor, std::span<const std::uint8_t> piece) {
    const auto sample = piece.subspan((piece.size() - kGainSample) / 2, kGainSample);
    const ByteBuffer quick = compressor.Compress(sample, Effort::Quick, true);
    const ByteBuffer thorough = compressor.Compress(sample, Effort::Thorough, true);
    if (quick.Size() == 0 || thorough.Size() == 0) return 0;
    return std::log(static_cast<double>(quick.Size()) / static_cast<double>(thorough.Size())) +
           kMissedGain;
}

bool IsThoroughNeeded(BlockCompressor& compressor, std::span<const std::uint8_t> piece,
                      const QuickResult& quick, std::size_t number) {
    const double gain =
        IsGainMeasured(quick) ? MeasuredGain(compressor, piece) : AssumedGain(piece.size());
    return IsPicked(number, ThoroughShare(quick, gain));
}

} // namespace

ByteBuffer DeflatePiece(BlockCompressor& compressor, std::span<const std::uint8_t> piece,
                        std::size_t number, bool last) {
    ByteBuffer quick = compressor.Compress(piece, FirstEffort(piece.size()), last);
    const QuickResult result{piece.size(), quick.Size(), compressor.Blocks()};
    if (quick.Size() == 0 || !IsThoroughNeeded(compressor, piece, result, number)) return quick;
    quick = {}; // before the other one takes its room
    return compressor.Compress(piece, Effort::Thorough, last);
}

bool DoesShrink(std::span<const std::uint8_t> beginning, BlockCompressor& compressor) {
    constexpr std::size_t kSample = 16 * 1024;
    constexpr std::size_t kSamples = 4;
    const std::size_t step = beginning.size() / kSamples;
    std::size_t looked = 0;
    std::size_t packed = 0;
    for (std::size_t sample = 0; sample < kSamples; ++sample) {
        const auto piece = beginning.subspan(sample * step, std::min(kSample, step));
        looked += piece.size();
        packed += compressor.Compress(piece, Effort::Glance, true).Size();
    }
    return packed < looked - looked / kLeastGain;
}

} // namespace obarchive
