#include "services/archive/compress/LastDeflateBlock.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace obarchive {
namespace {

constexpr unsigned kLongestCode = 15;
constexpr std::size_t kLiteralCodes = 288;
constexpr std::size_t kDistanceCodes = 32;
constexpr std::size_t kLengthCodes = 19;
constexpr std::size_t kEndOfBlock = 256;

// What a symbol costs behind its code. Symbols past the tables are never sent.
constexpr std::uint8_t kLengthExtra[] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                         2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::uint8_t kDistanceExtra[] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                           6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
constexpr std::uint8_t kLengthOrder[] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                         11, 4,  12, 3, 13, 2, 14, 1, 15};

// A step of the table: how many bits to pass over, and what comes then.
enum Kind : std::uint8_t { kLiteral = 0x00, kLength = 0x40, kEnd = 0x80, kInvalid = 0xC0 };
constexpr std::uint8_t kKindMask = 0xC0;
constexpr std::uint8_t kBitsMask = 0x3F;

class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> stream) : stream_(stream) {}

    // At least 56 bits from the current one on; zeros behind the end.
    std::uint64_t Peek() const {
        const std::size_t byte = static_cast<std::size_t>(at_ / 8);
        std::uint64_t bits = 0;
        if (byte + sizeof bits <= stream_.size()) {
            std::memcpy(&bits, stream_.data() + byte, sizeof bits);
        } else if (byte < stream_.size()) {
            std::memcpy(&bits, stream_.data() + byte, stream_.size() - byte);
        }
        return bits >> (at_ % 8);
    }
    void Pass(std::uint64_t bits) { at_ += bits; }
    unsigned Take(unsigned bits) {
        const auto value = static_cast<unsigned>(Peek() & ((1U << bits) - 1));
        Pass(bits);
        return value;
    }
    void PassToByte() { at_ = (at_ + 7) / 8 * 8; }
    std::uint64_t At() const { return at_; }
    bool IsWithin() const { return at_ <= std::uint64_t{stream_.size()} * 8; }

private:
    std::span<const std::uint8_t> stream_;
    std::uint64_t at_ = 0;
};

// Codes of one alphabet, looked up by the next bits of the stream.
class CodeTable {
public:
    // `lengths` as the stream gives them, 0 for an unused symbol. `step(symbol, length)` says what
    // the table tells. False when no set of codes has these lengths.
    template <class Step>
    bool Build(std::span<const std::uint8_t> lengths, Step step);

    std::uint8_t Look(std::uint64_t bits) const { return steps_[bits & mask_]; }

    // Makes one step of as many literals as the looked-up bits hold together.
    void JoinLiterals();

private:
    void Fill(unsigned code, unsigned length, std::uint8_t step);

    unsigned bits_ = 1;
    std::uint64_t mask_ = 1;
    std::array<std::uint8_t, 1U << kLongestCode> steps_;
};

// Codes are sent from their highest bit on, everything else from its lowest.
unsigned Reversed(unsigned code, unsigned length) {
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < length; ++bit) reversed |= (code >> bit & 1) << (length - 1 - bit);
    return reversed;
}

void CodeTable::Fill(unsigned code, unsigned length, std::uint8_t step) {
    for (std::size_t at = Reversed(code, length); at <= mask_; at += std::size_t{1} << length) {
        steps_[at] = step;
    }
}

// First code of each length. False when the codes don't fit; a set that leaves codes unused is
// allowed for a single code only.
bool FirstCodes(std::span<const std::uint8_t> lengths,
                std::array<unsigned, kLongestCode + 1>& next) {
    std::array<unsigned, kLongestCode + 1> counts{};
    for (const std::uint8_t length : lengths) ++counts[length];
    counts[0] = 0;
    unsigned code = 0;
    unsigned used = 0;
    unsigned codes = 0;
    for (unsigned length = 1; length <= kLongestCode; ++length) {
        code = (code + counts[length - 1]) << 1;
        next[length] = code;
        used += counts[length] << (kLongestCode - length);
        codes += counts[length];
    }
    return used == 1U << kLongestCode || codes <= 1;
}

template <class Step>
bool CodeTable::Build(std::span<const std::uint8_t> lengths, Step step) {
    std::array<unsigned, kLongestCode + 1> next{};
    if (!FirstCodes(lengths, next)) return false;
    bits_ = std::max<unsigned>(1, *std::max_element(lengths.begin(), lengths.end()));
    mask_ = (std::uint64_t{1} << bits_) - 1;
    std::memset(steps_.data(), kInvalid, static_cast<std::size_t>(mask_) + 1);
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
        const unsigned length = lengths[symbol];
        if (length != 0) Fill(next[length]++, length, step(symbol, length));
    }
    return true;
}

// From the highest place down: a place looks only at lower ones, which must still be single.
void CodeTable::JoinLiterals() {
    for (std::size_t at = static_cast<std::size_t>(mask_); at != 0; --at) {
        unsigned used = steps_[at] & kBitsMask;
        if ((steps_[at] & kKindMask) != kLiteral) continue;
        while (used < bits_) {
            const std::uint8_t further = steps_[at >> used];
            const unsigned length = further & kBitsMask;
            if ((further & kKindMask) != kLiteral || used + length > bits_) break;
            used += length;
        }
        steps_[at] = static_cast<std::uint8_t>(kLiteral | used);
    }
}

std::uint8_t LiteralStep(std::size_t symbol, unsigned length) {
    if (symbol < kEndOfBlock) return static_cast<std::uint8_t>(kLiteral | length);
    if (symbol == kEndOfBlock) return static_cast<std::uint8_t>(kEnd | length);
    const std::size_t row = symbol - kEndOfBlock - 1;
    if (row >= std::size(kLengthExtra)) return kInvalid;
    return static_cast<std::uint8_t>(kLength | (length + kLengthExtra[row]));
}

std::uint8_t DistanceStep(std::size_t symbol, unsigned length) {
    if (symbol >= std::size(kDistanceExtra)) return kInvalid;
    return static_cast<std::uint8_t>(length + kDistanceExtra[symbol]);
}

class Walker {
public:
    explicit Walker(std::span<const std::uint8_t> stream) : bits_(stream) {}

    std::optional<LastDeflateBlock> Walk();

private:
    bool PassBlock();
    bool PassStored();
    bool PassCodes();
    bool ReadFixed();
    bool ReadDynamic();
    bool ReadLengths(std::size_t count, std::span<std::uint8_t> lengths);

    BitReader bits_;
    CodeTable literals_;
    CodeTable distances_;
};

bool Walker::PassStored() {
    bits_.PassToByte();
    const unsigned size = bits_.Take(16);
    const unsigned check = bits_.Take(16);
    bits_.Pass(std::uint64_t{size} * 8);
    return (size ^ check) == 0xFFFF;
}

bool Walker::ReadFixed() {
    std::array<std::uint8_t, kLiteralCodes> lengths;
    std::fill(lengths.begin(), lengths.begin() + 144, std::uint8_t{8});
    std::fill(lengths.begin() + 144, lengths.begin() + 256, std::uint8_t{9});
    std::fill(lengths.begin() + 256, lengths.begin() + 280, std::uint8_t{7});
    std::fill(lengths.begin() + 280, lengths.end(), std::uint8_t{8});
    std::array<std::uint8_t, kDistanceCodes> distances;
    distances.fill(5);
    return literals_.Build(lengths, LiteralStep) && distances_.Build(distances, DistanceStep);
}

// The lengths of both alphabets stand in one run, themselves coded.
bool Walker::ReadLengths(std::size_t count, std::span<std::uint8_t> lengths) {
    std::array<std::uint8_t, kLengthCodes> own{};
    for (std::size_t row = 0; row < count; ++row) {
        own[kLengthOrder[row]] = static_cast<std::uint8_t>(bits_.Take(3));
    }
    // The step has the symbol in its lower bits; the code's length is looked up by it.
    const auto symbolOnly = [](std::size_t symbol, unsigned) {
        return static_cast<std::uint8_t>(symbol);
    };
    if (!literals_.Build(own, symbolOnly)) return false;
    for (std::size_t at = 0; at < lengths.size();) {
        const std::uint8_t symbol = literals_.Look(bits_.Peek());
        if (symbol == kInvalid || !bits_.IsWithin()) return false;
        bits_.Pass(own[symbol]);
        std::size_t repeat = 1;
        if (symbol == 16) repeat = 3 + bits_.Take(2);
        if (symbol == 17) repeat = 3 + bits_.Take(3);
        if (symbol == 18) repeat = 11 + bits_.Take(7);
        if ((symbol == 16 && at == 0) || repeat > lengths.size() - at) return false;
        const std::uint8_t value = symbol < 16 ? symbol : symbol == 16 ? lengths[at - 1] : 0;
        std::fill_n(lengths.begin() + static_cast<std::ptrdiff_t>(at), repeat, value);
        at += repeat;
    }
    return true;
}

bool Walker::ReadDynamic() {
    const std::size_t literals = 257 + bits_.Take(5);
    const std::size_t distances = 1 + bits_.Take(5);
    const std::size_t count = 4 + bits_.Take(4);
    if (literals > 286) return false;
    std::array<std::uint8_t, kLiteralCodes + kDistanceCodes> lengths{};
    const std::span all = std::span(lengths).first(literals + distances);
    if (!ReadLengths(count, all) || lengths[kEndOfBlock] == 0) return false;
    return literals_.Build(all.first(literals), LiteralStep) &&
           distances_.Build(all.subspan(literals), DistanceStep);
}

bool Walker::PassCodes() {
    literals_.JoinLiterals();
    while (bits_.IsWithin()) {
        const std::uint64_t next = bits_.Peek();
        const std::uint8_t step = literals_.Look(next);
        const unsigned used = step & kBitsMask;
        bits_.Pass(used);
        const unsigned kind = step & kKindMask;
        if (kind == kLiteral) continue;
        if (kind == kEnd) return true;
        // Length and distance together take at most 48 of the 56 bits.
        const std::uint8_t distance = distances_.Look(next >> used);
        if (kind == kInvalid || distance == kInvalid) return false;
        bits_.Pass(distance);
    }
    return false;
}

bool Walker::PassBlock() {
    switch (bits_.Take(2)) {
    case 0:
        return PassStored();
    case 1:
        return ReadFixed() && PassCodes();
    case 2:
        return ReadDynamic() && PassCodes();
    default:
        return false;
    }
}

std::optional<LastDeflateBlock> Walker::Walk() {
    while (bits_.IsWithin()) {
        const std::uint64_t header = bits_.At();
        const bool last = bits_.Take(1) != 0;
        if (!PassBlock() || !bits_.IsWithin()) return std::nullopt;
        if (last) return LastDeflateBlock{header, bits_.At()};
    }
    return std::nullopt;
}

} // namespace

std::optional<LastDeflateBlock> FindLastDeflateBlock(std::span<const std::uint8_t> stream) {
    return Walker(stream).Walk();
}

} // namespace obarchive
