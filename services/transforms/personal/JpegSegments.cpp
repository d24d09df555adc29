#include "services/transforms/personal/JpegSegments.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>

namespace transforms::personal {
namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t kMark = 0xFF; // begins a marker; before a marker it is a fill byte
constexpr std::size_t kStartSize = 2;
constexpr std::size_t kLengthSize = 2;

constexpr std::uint8_t kHuffmanTables = 0xC4;
constexpr std::uint8_t kReservedFrame = 0xC8;
constexpr std::uint8_t kArithmeticTables = 0xCC;
constexpr std::uint8_t kFirstRestart = 0xD0;
constexpr std::uint8_t kLastRestart = 0xD7;
constexpr std::uint8_t kQuantizationTables = 0xDB;
constexpr std::uint8_t kNumberOfLines = 0xDC;
constexpr std::uint8_t kRestartInterval = 0xDD;
constexpr std::uint8_t kHierarchicalProgression = 0xDE;
constexpr std::uint8_t kExpandReference = 0xDF;
constexpr std::uint8_t kAdobeApplication = 0xEE;

// The next mark from `at` on, or the file's end. Nearly all of a picture is coded data, in which
// marks are some hundred bytes apart: the runtime's memchr looks at one byte at a time and took
// longer than reading and writing the file.
std::size_t FindMark(Bytes file, std::size_t at) {
    const __m128i marks = _mm_set1_epi8(static_cast<char>(kMark));
    for (; at + sizeof(__m128i) <= file.size(); at += sizeof(__m128i)) {
        const auto* block = reinterpret_cast<const __m128i*>(file.data() + at);
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(block), marks));
        if (found != 0) return at + std::countr_zero(static_cast<unsigned>(found));
    }
    while (at < file.size() && ByteAt(file, at) != kMark) ++at;
    return std::min(at, file.size());
}

bool IsRestart(std::uint8_t code) { return code >= kFirstRestart && code <= kLastRestart; }

// Inside coded data FF is followed by 0 or is part of a restart marker; fill bytes repeat it.
std::size_t EndOfCodedData(Bytes file, std::size_t at) {
    for (at = FindMark(file, at); at + 1 < file.size(); at = FindMark(file, at)) {
        const std::uint8_t next = ByteAt(file, at + 1);
        if (next == kMark) {
            ++at;
        } else if (next == 0 || IsRestart(next)) {
            at += 2;
        } else {
            return at;
        }
    }
    return file.size();
}

// The first byte of the next marker's fill bytes or mark. FF with 0 after it is none.
std::size_t FindMarker(Bytes file, std::size_t at) {
    for (at = FindMark(file, at); at < file.size(); at = FindMark(file, at)) {
        std::size_t code = at + 1;
        while (code < file.size() && ByteAt(file, code) == kMark) ++code;
        if (code == file.size()) break;
        if (ByteAt(file, code) != 0) return at;
        at = code + 1;
    }
    return file.size();
}

bool AreQuantizationTables(Bytes payload) {
    for (std::size_t at = 0; at < payload.size();) {
        at += ByteAt(payload, at) >> 4 == 0 ? 1 + 64 : 1 + 128; // values of one or two bytes
        if (at > payload.size()) return false;
    }
    return true;
}

bool AreHuffmanTables(Bytes payload) {
    constexpr std::size_t kHeader = 1 + 16; // the table's name, and how many codes of each length
    for (std::size_t at = 0; at < payload.size();) {
        if (payload.size() - at < kHeader) return false;
        std::size_t codes = 0;
        for (std::size_t length = 1; length < kHeader; ++length)
            codes += ByteAt(payload, at + length);
        at += kHeader + codes;
        if (at > payload.size()) return false;
    }
    return true;
}

bool IsFrameHeader(Bytes payload) {
    return payload.size() >= 6 && payload.size() == 6 + 3 * std::size_t{ByteAt(payload, 5)};
}

bool IsScanHeader(Bytes payload) {
    return !payload.empty() && payload.size() == 4 + 2 * std::size_t{ByteAt(payload, 0)};
}

// A segment that stays has the length that its content needs, so that nothing else is in it.
bool IsSound(std::uint8_t marker, Bytes payload) {
    if (jpeg::IsFrame(marker) || marker == kHierarchicalProgression) return IsFrameHeader(payload);
    switch (marker) {
    case jpeg::kStartOfScan:
        return IsScanHeader(payload);
    case kQuantizationTables:
        return AreQuantizationTables(payload);
    case kHuffmanTables:
        return AreHuffmanTables(payload);
    case kArithmeticTables:
        return payload.size() % 2 == 0;
    case kNumberOfLines:
    case kRestartInterval:
        return payload.size() == 2;
    case kExpandReference:
        return payload.size() == 1;
    default:
        return jpeg::IsApplication(marker) || marker == jpeg::kComment ||
               marker == jpeg::kFrameOfJpegLs;
    }
}

} // namespace

bool jpeg::IsFrame(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables &&
           marker != kReservedFrame && marker != kArithmeticTables;
}

bool jpeg::IsJfif(const JpegSegment& segment) {
    return segment.marker == kFirstApplication && segment.payload.size() >= kJfifSize &&
           StartsWith(segment.payload, "JFIF\0"sv);
}

bool jpeg::IsAdobe(const JpegSegment& segment) {
    return segment.marker == kAdobeApplication && segment.payload.size() >= kAdobeSize &&
           StartsWith(segment.payload, "Adobe");
}

bool jpeg::CarriesData(const JpegSegment& segment) {
    if (IsJfif(segment)) {
        const Bytes dimensions = segment.payload.subspan(kJfifSize - 2, 2); // of a thumbnail
        return segment.payload.size() != kJfifSize || !AreZero(dimensions);
    }
    if (IsAdobe(segment)) return segment.payload.size() != kAdobeSize;
    return IsApplication(segment.marker) || segment.marker == kComment;
}

JpegReader::JpegReader(Bytes file) : file_(file), at_(std::min(kStartSize, file.size())) {}

std::optional<JpegSegment> JpegReader::ReadMarker() {
    const std::size_t mark = FindMarker(file_, at_);
    if (mark == file_.size()) return std::nullopt;
    JpegSegment segment;
    segment.stray = file_.subspan(at_, mark - at_);
    std::size_t code = mark + 1;
    while (ByteAt(file_, code) == kMark) ++code;
    segment.marker = ByteAt(file_, code);
    segment.whole = file_.subspan(mark, code + 1 - mark);
    at_ = code + 1;
    return segment;
}

bool JpegReader::ReadPayload(JpegSegment& segment) {
    if (file_.size() - at_ < kLengthSize) return false;
    const std::size_t length = BigEndian16(file_, at_); // counts itself
    if (length < kLengthSize || file_.size() - at_ < length) return false;
    segment.payload = file_.subspan(at_ + kLengthSize, length - kLengthSize);
    segment.whole = Bytes(segment.whole.data(), segment.whole.size() + length);
    at_ += length;
    return IsSound(segment.marker, segment.payload);
}

std::optional<JpegSegment> JpegReader::Next() {
    std::optional<JpegSegment> segment = ReadMarker();
    if (!segment || segment->marker == jpeg::kEndOfImage) return segment;
    if (!ReadPayload(*segment)) return std::nullopt;
    if (segment->marker == jpeg::kStartOfScan) {
        const std::size_t end = EndOfCodedData(file_, at_);
        segment->coded = file_.subspan(at_, end - at_);
        at_ = end;
    }
    return segment;
}

} // namespace transforms::personal
