#include "services/transforms/topdf/FlateRows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <zlib.h>

#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {
namespace {

constexpr int kKinds = 5; // none, left, above, average, Paeth
constexpr std::size_t kPiece = 64 * 1024;

std::uint8_t Paeth(int left, int above, int corner) noexcept {
    const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    if (toLeft <= toAbove && toLeft <= toCorner) return static_cast<std::uint8_t>(left);
    return static_cast<std::uint8_t>(toAbove <= toCorner ? above : corner);
}

} // namespace

struct FlateRows::Deflater {
    explicit Deflater(bool isPredicted) : out(kPiece) {
        constexpr int kLevel = 6, kWindow = 15, kMemory = 9;
        if (deflateInit2(&stream, kLevel, Z_DEFLATED, kWindow, kMemory,
                         isPredicted ? Z_FILTERED : Z_DEFAULT_STRATEGY) != Z_OK)
            throw PictureFailure{PictureOutcome::OutOfMemory};
    }
    ~Deflater() { deflateEnd(&stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void Put(std::span<const std::uint8_t> bytes, int flush, const Sink& sink) {
        stream.next_in = const_cast<Bytef*>(bytes.data());
        stream.avail_in = static_cast<uInt>(bytes.size());
        do {
            stream.next_out = out.data();
            stream.avail_out = static_cast<uInt>(out.size());
            deflate(&stream, flush); // there is room, so it can't fail
            sink({out.data(), out.size() - stream.avail_out});
        } while (stream.avail_out == 0);
    }

    z_stream stream{};
    PictureBytes out;
};

FlateRows::FlateRows(std::size_t rowBytes, std::size_t pixelBytes, Sink sink)
    : rowBytes_(rowBytes), pixelBytes_(pixelBytes), sink_(std::move(sink)),
      deflater_(std::make_unique<Deflater>(pixelBytes != 0)), above_(pixelBytes + rowBytes),
      current_(pixelBytes + rowBytes), candidates_((pixelBytes ? kKinds : 1) * (rowBytes + 1)) {}

FlateRows::~FlateRows() = default;

void FlateRows::Write(const std::uint8_t* row) {
    deflater_->Put({Predicted(row), rowBytes_ + 1}, Z_NO_FLUSH, sink_);
}

void FlateRows::Finish() { deflater_->Put({}, Z_FINISH, sink_); }

// Writes what a kind of prediction leaves of the row, and returns the sum of the differences: a
// small one mostly deflates well.
std::size_t FlateRows::Try(int kind, const std::uint8_t* row, std::uint8_t* to) const noexcept {
    const std::uint8_t* left = row - pixelBytes_;
    const std::uint8_t* above = above_.data() + pixelBytes_;
    const std::uint8_t* corner = above_.data();
    std::size_t sum = 0;
    const auto each = [&](auto predicted) {
        for (std::size_t i = 0; i < rowBytes_; ++i) {
            to[i] = static_cast<std::uint8_t>(row[i] - predicted(i));
            sum += static_cast<std::size_t>(std::abs(static_cast<std::int8_t>(to[i])));
        }
    };
    switch (kind) {
    case 0:
        each([](std::size_t) { return 0; });
        break;
    case 1:
        each([&](std::size_t i) { return left[i]; });
        break;
    case 2:
        each([&](std::size_t i) { return above[i]; });
        break;
    case 3:
        each([&](std::size_t i) { return (left[i] + above[i]) / 2; });
        break;
    default:
        each([&](std::size_t i) { return Paeth(left[i], above[i], corner[i]); });
    }
    return sum;
}

// The row after the number of its prediction.
const std::uint8_t* FlateRows::Predicted(const std::uint8_t* row) {
    if (!pixelBytes_) {
        std::memcpy(&candidates_[1], row, rowBytes_);
        return candidates_.data();
    }
    std::memcpy(&current_[pixelBytes_], row, rowBytes_);
    std::size_t best = 0, least = static_cast<std::size_t>(-1);
    for (int kind = 0; kind < kKinds; ++kind) {
        std::uint8_t* const to = &candidates_[static_cast<std::size_t>(kind) * (rowBytes_ + 1)];
        to[0] = static_cast<std::uint8_t>(kind);
        const std::size_t sum = Try(kind, &current_[pixelBytes_], to + 1);
        if (sum >= least) continue;
        least = sum;
        best = static_cast<std::size_t>(kind);
    }
    above_.swap(current_);
    return &candidates_[best * (rowBytes_ + 1)];
}

} // namespace transforms
