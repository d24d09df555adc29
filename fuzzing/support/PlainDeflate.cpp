#include "fuzzing/support/PlainDeflate.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace {

struct Malformed {};

class Bits {
public:
    explicit Bits(std::span<const std::uint8_t> stream) : stream_(stream) {}

    unsigned Next() {
        if (at_ / 8 >= stream_.size()) throw Malformed{};
        const unsigned bit = stream_[at_ / 8] >> (at_ % 8) & 1;
        ++at_;
        return bit;
    }
    unsigned Number(unsigned count) {
        unsigned number = 0;
        for (unsigned bit = 0; bit < count; ++bit) number |= Next() << bit;
        return number;
    }
    void SkipToByte() { at_ = (at_ + 7) / 8 * 8; }
    void Skip(std::uint64_t bits) {
        at_ += bits;
        if (at_ > std::uint64_t{stream_.size()} * 8) throw Malformed{};
    }
    std::uint64_t At() const { return at_; }

private:
    std::span<const std::uint8_t> stream_;
    std::uint64_t at_ = 0;
};

// Symbols by length and code.
class Codes {
public:
    explicit Codes(const std::vector<unsigned>& lengths) {
        std::size_t used = 0; // of 2^15
        std::size_t count = 0;
        unsigned code = 0;
        for (unsigned length = 1; length <= 15; ++length, code <<= 1) {
            for (unsigned symbol = 0; symbol < lengths.size(); ++symbol) {
                if (lengths[symbol] != length) continue;
                symbols_[{length, code++}] = symbol;
                used += std::size_t{1} << (15 - length);
                ++count;
            }
        }
        if (used != std::size_t{1} << 15 && count > 1) throw Malformed{};
    }

    unsigned Read(Bits& bits) const {
        unsigned code = 0;
        for (unsigned length = 1; length <= 15; ++length) {
            code = code << 1 | bits.Next();
            const auto found = symbols_.find({length, code});
            if (found != symbols_.end()) return found->second;
        }
        throw Malformed{};
    }

private:
    std::map<std::pair<unsigned, unsigned>, unsigned> symbols_;
};

unsigned LengthExtra(unsigned symbol) {
    if (symbol < 265 || symbol == 285) return 0;
    return (symbol - 261) / 4;
}

unsigned DistanceExtra(unsigned symbol) { return symbol < 4 ? 0 : (symbol - 2) / 2; }

void FollowCodes(Bits& bits, const Codes& literals, const Codes& distances) {
    for (unsigned symbol = literals.Read(bits); symbol != 256; symbol = literals.Read(bits)) {
        if (symbol < 256) continue;
        if (symbol > 285) throw Malformed{};
        bits.Number(LengthExtra(symbol));
        const unsigned distance = distances.Read(bits);
        if (distance > 29) throw Malformed{};
        bits.Number(DistanceExtra(distance));
    }
}

void FollowStored(Bits& bits) {
    bits.SkipToByte();
    const unsigned size = bits.Number(16);
    if ((size ^ bits.Number(16)) != 0xFFFF) throw Malformed{};
    bits.Skip(std::uint64_t{size} * 8);
}

void FollowFixed(Bits& bits) {
    std::vector<unsigned> lengths(288, 8);
    std::fill(lengths.begin() + 144, lengths.begin() + 256, 9U);
    std::fill(lengths.begin() + 256, lengths.begin() + 280, 7U);
    FollowCodes(bits, Codes(lengths), Codes(std::vector<unsigned>(32, 5)));
}

void AppendRun(std::vector<unsigned>& lengths, unsigned value, unsigned count, std::size_t most) {
    if (lengths.size() + count > most) throw Malformed{};
    lengths.insert(lengths.end(), count, value);
}

void FollowDynamic(Bits& bits) {
    constexpr unsigned kOrder[] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                   11, 4,  12, 3, 13, 2, 14, 1, 15};
    const std::size_t literals = 257 + bits.Number(5);
    const std::size_t distances = 1 + bits.Number(5);
    const unsigned count = 4 + bits.Number(4);
    if (literals > 286) throw Malformed{};
    std::vector<unsigned> own(19);
    for (unsigned row = 0; row < count; ++row) own[kOrder[row]] = bits.Number(3);
    const Codes lengthCodes(own);
    std::vector<unsigned> lengths;
    while (lengths.size() < literals + distances) {
        const unsigned symbol = lengthCodes.Read(bits);
        const std::size_t most = literals + distances;
        if (symbol == 16 && lengths.empty()) throw Malformed{};
        if (symbol < 16) AppendRun(lengths, symbol, 1, most);
        if (symbol == 16) AppendRun(lengths, lengths.back(), 3 + bits.Number(2), most);
        if (symbol == 17) AppendRun(lengths, 0, 3 + bits.Number(3), most);
        if (symbol == 18) AppendRun(lengths, 0, 11 + bits.Number(7), most);
    }
    if (lengths[256] == 0) throw Malformed{};
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(literals);
    FollowCodes(bits, Codes({lengths.begin(), middle}), Codes({middle, lengths.end()}));
}

} // namespace

std::optional<PlainLastBlock> FollowDeflate(std::span<const std::uint8_t> stream) try {
    Bits bits(stream);
    for (;;) {
        const std::uint64_t header = bits.At();
        const bool last = bits.Next() != 0;
        const unsigned kind = bits.Number(2);
        if (kind == 3) throw Malformed{};
        if (kind == 0) FollowStored(bits);
        if (kind == 1) FollowFixed(bits);
        if (kind == 2) FollowDynamic(bits);
        if (last) return PlainLastBlock{header, bits.At()};
    }
} catch (const Malformed&) {
    return std::nullopt;
}
