// Where a block of bytes may end without a character being cut in two.
#include "ObLibX/src/xml/encoding/TextConverter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "ObLibX/src/xml/names/NameTables.h"

namespace ObLibX {
namespace {

// Pages with characters of more than one byte. Every other page has none.
struct MultiBytePage {
    std::uint32_t first;
    std::uint32_t last;
    std::int32_t longest; // bytes of its longest character
};
constexpr MultiBytePage kMultiBytePages[] = {
    {874, 874, 2},     {932, 932, 2},     {936, 936, 2},     {949, 949, 2},     {950, 950, 2},
    {1361, 1361, 2},   {10001, 10001, 2}, {10002, 10002, 2}, {10003, 10003, 2}, {10008, 10008, 2},
    {10021, 10021, 2}, {20000, 20005, 2}, {20833, 20833, 2}, {20932, 20932, 2}, {20936, 20936, 2},
    {20949, 20949, 2}, {50220, 50220, 2}, {50221, 50221, 2}, {50222, 50222, 2}, {50225, 50225, 2},
    {50227, 50227, 2}, {50930, 50930, 2}, {50931, 50931, 2}, {50933, 50933, 2}, {50935, 50935, 2},
    {50937, 50937, 2}, {50939, 50939, 2}, {51932, 51932, 2}, {51936, 51936, 2}, {51949, 51949, 2},
    {52936, 52936, 2}, {54936, 54936, 4}};

constexpr std::int32_t kMostTrialBytes = 40;
constexpr std::int32_t kTrialUnits = 80;
constexpr int kAgreeingTrials = 3;

std::int32_t LongestCharacter(std::uint32_t page) {
    const auto found = std::find_if(
        std::begin(kMultiBytePages), std::end(kMultiBytePages),
        [page](const MultiBytePage& row) { return page >= row.first && page <= row.last; });
    return found == std::end(kMultiBytePages) ? 1 : found->longest;
}

// A surrogate at the end is given back, as the block's end may cut its pair. The second half of a
// whole pair is given back too; the next block then begins with it, after the first half.
std::int32_t Utf16BytesBack(const TextConverter& converter) {
    const std::uint8_t* const end = static_cast<const std::uint8_t*>(converter.source) +
                                    static_cast<std::size_t>(converter.sourceLength) * 2;
    char16_t last;
    std::memcpy(&last, end - 2, sizeof last);
    return last >= 0xD800 && last <= 0xDFFF ? 2 : 0;
}

// Reads the sequence of the last byte that is no continuation byte. True when that sequence reaches
// the end; `outCut` is then its length when the end cuts it, and 0 when it is whole. The forgiving
// decoder alone would find characters inside a sequence of four bytes.
bool EndOfRealSequence(const std::uint8_t* bytes, std::int32_t length, std::int32_t& outCut) {
    for (std::int32_t back = 1; back <= std::min(length, std::int32_t{4}); ++back) {
        if ((bytes[length - back] & 0xC0) != 0x80) {
            const Utf8Sequence sequence = ReadUtf8(bytes + length - back, back);
            outCut = sequence.kind == Utf8Sequence::Kind::Cut ? back : 0;
            return sequence.kind != Utf8Sequence::Kind::Bad && sequence.length == back;
        }
    }
    return false;
}

// Finds the last offset from which a whole character can be read; false when there is none.
bool Utf8BytesBack(const TextConverter& converter, std::int32_t& outBytes) {
    const auto* bytes = static_cast<const std::uint8_t*>(converter.source);
    const std::int32_t length = converter.sourceLength;
    if (EndOfRealSequence(bytes, length, outBytes)) {
        return outBytes < length;
    }
    for (std::int32_t at = length - 1; at >= 0; --at) {
        const Utf8Sequence sequence = ReadUtf8(bytes + at, length - at);
        if (sequence.kind == Utf8Sequence::Kind::Whole) {
            outBytes = length - at - sequence.length;
            return true;
        }
    }
    return false;
}

// Finds by trial where a character starts, for a page that only the system can read.
class BoundaryTrial {
public:
    // `bytes` must outlive the trial.
    BoundaryTrial(std::uint32_t page, const char* bytes, std::int32_t length)
        : page_(page), longest_(LongestCharacter(page)), end_(bytes + length),
          most_(std::min(length, kMostTrialBytes)),
          whole_(std::make_unique_for_overwrite<wchar_t[]>(static_cast<std::size_t>(length))),
          wholeLength_(SystemToWide(page, bytes, length, whole_.get(), length)) {}

    bool Run(std::int32_t& outBytes) {
        int agreeing = 0;
        for (std::int32_t k = 1; wholeLength_ > 0 && k <= most_; ++k) {
            if (!TailAgrees(k) || ++agreeing < kAgreeingTrials) {
                continue;
            }
            const std::int32_t split = FindSplit(k);
            if (split > 0) {
                outBytes = k - split;
                return true;
            }
        }
        return false;
    }

private:
    // Whether the last k bytes, converted alone, are the end of the whole conversion.
    bool TailAgrees(std::int32_t k) {
        tailLength_ = SystemToWide(page_, end_ - k, k, tail_, kTrialUnits);
        return tailLength_ <= wholeLength_ &&
               std::equal(tail_, tail_ + tailLength_, whole_.get() + wholeLength_ - tailLength_);
    }

    // The first i for which i bytes and the rest, converted apart, give the conversion of the k
    // bytes; 0 when there is none. At least as many bytes are given back as the last character may
    // lack, so that no split inside that character is taken.
    std::int32_t FindSplit(std::int32_t k) const {
        for (std::int32_t i = 1; k - i >= longest_ - 1; ++i) {
            wchar_t pieces[kTrialUnits];
            const std::int32_t first = SystemToWide(page_, end_ - k, i, pieces, kTrialUnits);
            const std::int32_t room = kTrialUnits - first;
            const std::int32_t rest =
                room > 0 ? SystemToWide(page_, end_ - k + i, k - i, pieces + first, room) : 0;
            if (first + rest == tailLength_ && std::equal(tail_, tail_ + tailLength_, pieces)) {
                return i;
            }
        }
        return 0;
    }

    std::uint32_t page_;
    std::int32_t longest_;
    const char* end_;
    std::int32_t most_;
    std::unique_ptr<wchar_t[]> whole_;
    std::int32_t wholeLength_;
    wchar_t tail_[kTrialUnits] = {};
    std::int32_t tailLength_ = 0;
};

bool PageBytesBack(const TextConverter& converter, std::int32_t page, std::int32_t& outBytes) {
    const std::uint32_t real = page == 0 ? SystemCodePage() : static_cast<std::uint32_t>(page);
    if (real == static_cast<std::uint32_t>(kCodePageUtf8)) {
        return Utf8BytesBack(converter, outBytes);
    }
    if (LongestCharacter(real) == 1) {
        return true;
    }
    return BoundaryTrial(real, static_cast<const char*>(converter.source), converter.sourceLength)
        .Run(outBytes);
}

} // namespace

bool FindCharBoundary(const TextConverter& converter, std::int32_t& outBytesToGiveBack) {
    outBytesToGiveBack = 0;
    if (converter.source == nullptr || converter.sourceLength <= 0) {
        return true;
    }
    const std::int32_t page = ConversionPage(converter.fromEncoding);
    if (page == kCodePageUtf16) {
        outBytesToGiveBack = Utf16BytesBack(converter);
        return true;
    }
    std::int32_t bytes = 0;
    const bool found = PageBytesBack(converter, page, bytes);
    outBytesToGiveBack = found ? bytes : 0;
    return found;
}

} // namespace ObLibX
