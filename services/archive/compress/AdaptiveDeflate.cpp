#include "services/archive/compress/AdaptiveDeflate.h"

#include <algorithm>

namespace obarchive {
namespace {

// The sample costs about an eighth of the piece's own compression; a smaller one shows less of the
// gain, and a smaller piece would pay more for it.
constexpr std::size_t kSample = 32 * 1024;
constexpr std::size_t kLeastPiece = 512 * 1024;

// A sample shows about one per cent less of the gain than the whole piece does. With thorough work
// at all pieces above this, and at no others, every set of real files that this was fitted to stays
// within two per cent of 7-Zip's size (docs/benchmarks.md).
constexpr double kLeastThoroughGain = 0.018;

} // namespace

bool IsWorthThoroughWork(BlockCompressor& compressor, std::span<const std::uint8_t> piece) {
    if (piece.size() < kLeastPiece) return false;
    const auto sample = piece.subspan((piece.size() - kSample) / 2, kSample);
    const std::size_t normal = compressor.Compress(sample, Effort::Normal, true).Size();
    if (normal > kSample - kSample / 8) return false; // all efforts make nearly the same of it
    const std::size_t thorough = compressor.Compress(sample, Effort::Thorough, true).Size();
    const auto saved = static_cast<double>(normal) - static_cast<double>(thorough);
    return saved > kLeastThoroughGain * static_cast<double>(normal);
}

ByteBuffer DeflatePiece(BlockCompressor& compressor, std::span<const std::uint8_t> piece, bool last,
                        ByteBuffer room) {
    const bool thorough = IsWorthThoroughWork(compressor, piece);
    const Effort effort = thorough ? Effort::Thorough : Effort::Normal;
    return compressor.Compress(piece, effort, last, std::move(room));
}

bool DoesShrink(std::span<const std::uint8_t> beginning, BlockCompressor& compressor) {
    constexpr std::size_t kGlance = 16 * 1024;
    constexpr std::size_t kGlances = 4;
    const std::size_t step = beginning.size() / kGlances;
    std::size_t looked = 0;
    std::size_t packed = 0;
    for (std::size_t glance = 0; glance < kGlances; ++glance) {
        const auto piece = beginning.subspan(glance * step, std::min(kGlance, step));
        looked += piece.size();
        packed += compressor.Compress(piece, Effort::Glance, true).Size();
    }
    return packed < looked - looked / kLeastGain;
}

} // namespace obarchive
