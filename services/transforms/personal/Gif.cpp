#include "services/transforms/personal/Gif.h"

#include <optional>
#include <utility>

#include "services/transforms/personal/IccProfile.h"

namespace transforms::personal {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kSignatureSize = 6;
constexpr std::size_t kScreenSize = 7;
constexpr std::size_t kScreenFlags = 4;
constexpr std::size_t kImageSize = 9; // after the byte that introduces it
constexpr std::size_t kImageFlags = 8;

constexpr std::uint8_t kExtension = 0x21;
constexpr std::uint8_t kImage = 0x2C;
constexpr std::uint8_t kEnd = 0x3B;

constexpr std::uint8_t kPlainText = 0x01;
constexpr std::uint8_t kGraphicControl = 0xF9;
constexpr std::uint8_t kComment = 0xFE;
constexpr std::uint8_t kApplication = 0xFF;
constexpr std::size_t kGraphicControlSize = 4;
constexpr std::size_t kPlainTextSize = 12;
constexpr std::size_t kApplicationSize = 11;

constexpr std::string_view kProfile = "ICCRGBG1012";
constexpr std::string_view kXmp = "XMP DataXMP";
constexpr std::string_view kCredentials = "C2PA_GIF\1\0\0"sv;

bool IsLoop(Bytes name) {
    return StartsWith(name, "NETSCAPE2.0") || StartsWith(name, "ANIMEXTS1.0");
}

// A chain of blocks, each with its size before it, up to one of size 0.
struct Chain {
    Bytes whole;      // with the sizes and the last block
    Bytes first;      // content of the first block
    Bytes afterFirst; // from the second block's size on
};

std::optional<std::size_t> SizeOfChain(Bytes bytes) {
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::size_t size = ByteAt(bytes, at);
        ++at;
        if (size == 0) return at;
        if (size > bytes.size() - at) return std::nullopt;
        at += size;
    }
    return std::nullopt;
}

std::optional<Chain> ReadChain(Bytes bytes) {
    const auto size = SizeOfChain(bytes);
    if (!size) return std::nullopt;
    const Bytes whole = bytes.first(*size);
    const std::size_t first = ByteAt(whole, 0);
    return Chain{whole, whole.subspan(1, first), whole.subspan(1 + first)};
}

// The table after a screen or an image, by the flags of either.
std::size_t SizeOfColours(std::uint8_t flags) {
    return flags & 0x80 ? std::size_t{3} << ((flags & 7) + 1) : 0;
}

// The chain's first bytes without the blocks' sizes; a profile's signature is in the first block.
bool HasProfile(const Chain& chain) {
    if (chain.afterFirst.size() < 2) return false;
    const std::size_t size = ByteAt(chain.afterFirst, 0);
    return BeginsAsProfile(chain.afterFirst.subspan(1, size));
}

class GifAnalyzer {
public:
    explicit GifAnalyzer(Bytes file) : rest_(file) {}

    Analysis Run() {
        if (!TakeScreen()) return Failed(CleanOutcome::Damaged);
        while (!rest_.empty() && ByteAt(rest_, 0) != kEnd) {
            if (!TakeBlock()) return Failed(CleanOutcome::Damaged);
        }
        if (rest_.empty() || !hasImage_) return Failed(CleanOutcome::Damaged);
        if (rest_.size() > 1) analysis_.found.Note(FindingKind::TrailingData);
        Keep(1);
        return std::move(analysis_);
    }

private:
    Bytes Take(std::size_t size) {
        const Bytes taken = rest_.first(size);
        rest_ = rest_.subspan(size);
        return taken;
    }

    void Keep(std::size_t size) { analysis_.parts.Keep(Take(size)); }

    bool TakeScreen() {
        constexpr std::size_t kSize = kSignatureSize + kScreenSize;
        if (rest_.size() < kSize) return false;
        const std::size_t size =
            kSize + SizeOfColours(ByteAt(rest_, kSignatureSize + kScreenFlags));
        if (rest_.size() < size) return false;
        Keep(size);
        return true;
    }

    bool TakeBlock() {
        switch (ByteAt(rest_, 0)) {
        case kImage:
            return TakeImage();
        case kExtension:
            return TakeExtension();
        default:
            return false;
        }
    }

    // The description, its colours, the size of the first codes, the coded pixels.
    bool TakeImage() {
        if (rest_.size() < 1 + kImageSize) return false;
        const std::size_t head = 1 + kImageSize + SizeOfColours(ByteAt(rest_, 1 + kImageFlags)) + 1;
        if (rest_.size() < head) return false;
        const auto pixels = SizeOfChain(rest_.subspan(head));
        if (!pixels) return false;
        Keep(head + *pixels);
        hasImage_ = true;
        return true;
    }

    bool TakeExtension() {
        constexpr std::size_t kHead = 2;
        if (rest_.size() < kHead) return false;
        const auto chain = ReadChain(rest_.subspan(kHead));
        if (!chain) return false;
        const std::uint8_t label = ByteAt(rest_, 1);
        TakeChain(label, *chain, Take(kHead + chain->whole.size()));
        return true;
    }

    void TakeChain(std::uint8_t label, const Chain& chain, Bytes whole) {
        if (label == kGraphicControl) return TakeGraphicControl(chain, whole);
        if (label == kPlainText && chain.first.size() == kPlainTextSize) {
            return analysis_.parts.Keep(whole);
        }
        if (label == kApplication && chain.first.size() == kApplicationSize) {
            return TakeApplication(chain, whole);
        }
        analysis_.found.Note(label == kComment ? FindingKind::Comment : FindingKind::PrivateData);
    }

    // Timing and transparency are in one block; decoders ignore others after it.
    void TakeGraphicControl(const Chain& chain, Bytes whole) {
        if (chain.first.size() != kGraphicControlSize) {
            return analysis_.found.Note(FindingKind::PrivateData);
        }
        KeepBeginning(whole, 2 + 1 + kGraphicControlSize);
    }

    void TakeApplication(const Chain& chain, Bytes whole) {
        if (IsLoop(chain.first)) return TakeLoop(chain, whole);
        if (StartsWith(chain.first, kProfile) && HasProfile(chain)) {
            return analysis_.parts.Keep(whole);
        }
        if (StartsWith(chain.first, kXmp)) return analysis_.found.Note(FindingKind::Xmp);
        const bool isStatement = StartsWith(chain.first, kCredentials);
        analysis_.found.Note(isStatement ? FindingKind::Credentials : FindingKind::ApplicationData);
    }

    // How often to repeat: one block of three bytes, the first of which is 1.
    void TakeLoop(const Chain& chain, Bytes whole) {
        constexpr std::size_t kCountSize = 3;
        const bool hasCount =
            ByteAt(chain.afterFirst, 0) == kCountSize && (ByteAt(chain.afterFirst, 1) & 7) == 1;
        if (!hasCount) return analysis_.found.Note(FindingKind::ApplicationData);
        KeepBeginning(whole, 2 + 1 + kApplicationSize + 1 + kCountSize);
    }

    // Keeps an extension up to the end of one of its blocks, and the block of size 0 that ends it.
    void KeepBeginning(Bytes whole, std::size_t size) {
        if (whole.size() == size + 1) return analysis_.parts.Keep(whole);
        analysis_.found.Note(FindingKind::PrivateData);
        analysis_.parts.Keep(whole.first(size));
        analysis_.parts.Keep(whole.last(1));
    }

    Bytes rest_;
    bool hasImage_ = false;
    Analysis analysis_;
};

} // namespace

bool IsGif(Bytes file) { return StartsWith(file, "GIF87a") || StartsWith(file, "GIF89a"); }

Analysis AnalyzeGif(Bytes file) { return GifAnalyzer(file).Run(); }

} // namespace transforms::personal
