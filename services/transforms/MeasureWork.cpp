#include "services/transforms/MeasureWork.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"

namespace transforms {
namespace {

using namespace obcontract;
using Bytes = std::span<const std::uint8_t>;

// The zip is made of blocks of this size, each compressed alone, and stores a file as it is when
// samples of its first block hardly become smaller.
constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr std::size_t kWorthALook = 64 * 1024;
constexpr std::size_t kBlockEnd = 16; // bytes at most that join a block to the next one
// The zip compresses a file whose samples become one part in 64 smaller; this asks for a little
// more.
constexpr std::size_t kLeastGain = 48;
constexpr int kGlance = 1; // levels of the library
constexpr int kTrial = 6;  // the zip's own search finds a little more

class Trial {
public:
    explicit Trial(int level) : compressor_(libdeflate_alloc_compressor(level)) {
        if (!compressor_) throw std::bad_alloc();
    }
    std::size_t SizeOf(Bytes bytes) {
        packed_.resize(libdeflate_deflate_compress_bound(compressor_.get(), bytes.size()));
        return libdeflate_deflate_compress(compressor_.get(), bytes.data(), bytes.size(),
                                           packed_.data(), packed_.size());
    }

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const {
            libdeflate_free_compressor(compressor);
        }
    };
    std::unique_ptr<libdeflate_compressor, Free> compressor_;
    std::vector<std::uint8_t> packed_;
};

// Whether samples from all quarters of the first block become smaller.
bool DoesShrink(Bytes block) {
    constexpr std::size_t kSamples = 4;
    constexpr std::size_t kSample = 16 * 1024;
    if (block.size() <= kWorthALook) return true;
    Trial glance(kGlance);
    std::size_t packed = 0;
    for (std::size_t sample = 0; sample < kSamples; ++sample) {
        packed += glance.SizeOf(block.subspan(sample * (block.size() / kSamples), kSample));
    }
    constexpr std::size_t kLooked = kSamples * kSample;
    return packed < kLooked - kLooked / kLeastGain;
}

// The whole file, a block at a time. A file of one block is stored when that is smaller.
std::optional<WorkEnd> MeasureFile(FileSource& source, PictureWatch& watch) {
    Trial trial(kTrial);
    std::vector<std::uint8_t> block(kBlock);
    std::uint64_t packed = 0;
    for (std::uint64_t at = 0; at < source.Size();) {
        std::size_t read = 0;
        if (!source.ReadAt(at, block, read) || read == 0) return WorkEnd(WorkFailure::Unreadable);
        const Bytes bytes(block.data(), read);
        if (at == 0 && !DoesShrink(bytes)) return WorkEnd(WorkOutcome::Changed, source.Size());
        packed += trial.SizeOf(bytes) + kBlockEnd;
        at += read;
        watch.Step();
        if (watch.IsUnread()) return {};
    }
    if (source.Size() <= kBlock) packed = std::min(packed, source.Size());
    return WorkEnd(WorkOutcome::Changed, packed);
}

} // namespace

std::optional<WorkEnd> Measure(const WorkRequest& request, WorkChannel& channel) {
    if (request.SettingsAs<WorkPlain>().reserved != 0) return {};
    FileSource source(request.source.Get());
    if (!source.IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    PictureWatch watch(channel);
    return MeasureFile(source, watch);
}

} // namespace transforms
