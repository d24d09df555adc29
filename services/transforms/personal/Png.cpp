#include "services/transforms/personal/Png.h"

#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "ObLib/Src/AsciiLetters.h"
#include "services/transforms/personal/Crc32.h"
#include "services/transforms/personal/ExifBlock.h"

namespace transforms::personal {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n"sv;
constexpr std::size_t kLengthSize = 4;
constexpr std::size_t kTypeSize = 4;
constexpr std::size_t kChecksumSize = 4;
constexpr std::uint32_t kLongest = 0x7FFFFFFF;
constexpr std::string_view kExif = "eXIf";
constexpr std::string_view kProfile = "iCCP";

// A chunk that stays when its data has the length that the format gives it: a multiple of `step`.
// Others of its type are removed, or are damage when the picture can't be drawn without them.
struct KeptChunk {
    std::string_view type;
    std::uint32_t least;
    std::uint32_t most;
    std::uint32_t step;
    bool isOnce;
    bool isNeeded;
};

constexpr KeptChunk kKept[] = {
    {"IHDR", 13, 13, 1, true, true},         {"PLTE", 3, 768, 3, true, true},
    {"IDAT", 0, kLongest, 1, false, true},   {"IEND", 0, 0, 1, true, true},
    {"acTL", 8, 8, 1, true, true},           {"fcTL", 26, 26, 1, false, true},
    {"fdAT", 4, kLongest, 1, false, true},   {"tRNS", 1, 256, 1, true, false},
    {kProfile, 3, kLongest, 1, true, false}, {"sRGB", 1, 1, 1, true, false},
    {"gAMA", 4, 4, 1, true, false},          {"cHRM", 32, 32, 1, true, false},
    {"cICP", 4, 4, 1, true, false},          {"mDCV", 24, 24, 1, true, false},
    {"cLLI", 8, 8, 1, true, false},          {"sBIT", 1, 4, 1, true, false},
    {"bKGD", 1, 6, 1, true, false},          {"hIST", 2, 512, 2, true, false},
    {"pHYs", 9, 9, 1, true, false},          {"oFFs", 9, 9, 1, true, false},
    {"sTER", 1, 1, 1, true, false},
};

// A chunk that is removed, by its type and the text at its start. The first row that fits counts.
struct NamedChunk {
    std::string_view type;
    std::string_view start;
    FindingKind kind;
};

constexpr NamedChunk kNamed[] = {
    {"iTXt", "XML:com.adobe.xmp\0"sv, FindingKind::Xmp},
    {"iTXt", "", FindingKind::Text},
    {"tEXt", "", FindingKind::Text},
    {"zTXt", "", FindingKind::Text},
    {"tIME", "", FindingKind::Time},
    {"caBX", "", FindingKind::Credentials},
};

struct Chunk {
    std::string_view type;
    Bytes data;
    Bytes whole;
    bool hasRightChecksum = false;
};

bool IsFrame(std::string_view type) { return type == "fcTL" || type == "fdAT"; }

// Upper case marks a chunk without which a picture can't be drawn.
bool IsCritical(std::string_view type) { return type[0] <= 'Z'; }

std::optional<Chunk> ReadChunk(Bytes rest) {
    constexpr std::size_t kAround = kLengthSize + kTypeSize + kChecksumSize;
    if (rest.size() < kAround) return std::nullopt;
    const std::size_t length = BigEndian32(rest, 0);
    if (length > kLongest || length > rest.size() - kAround) return std::nullopt;
    Chunk chunk;
    chunk.type = TextOf(rest.subspan(kLengthSize, kTypeSize));
    if (!std::ranges::all_of(chunk.type, ObLib::IsAsciiLetter<char>)) return std::nullopt;
    chunk.data = rest.subspan(kLengthSize + kTypeSize, length);
    chunk.whole = rest.first(kAround + length);
    chunk.hasRightChecksum = Crc32(rest.subspan(kLengthSize, kTypeSize + length)) ==
                             BigEndian32(rest, kLengthSize + kTypeSize + length);
    return chunk;
}

// A name of 1 to 79 bytes, 0, and the one compression that there is.
bool IsProfile(Bytes data) {
    constexpr std::size_t kLongestName = 79;
    const auto name = data.first(std::min(data.size(), kLongestName + 1));
    const auto end = std::ranges::find(name, std::byte{0});
    const auto size = static_cast<std::size_t>(end - name.begin());
    return end != name.end() && size != 0 && size + 1 < data.size() && ByteAt(data, size + 1) == 0;
}

bool IsSound(const KeptChunk& row, const Chunk& chunk) {
    const std::size_t size = chunk.data.size();
    return chunk.hasRightChecksum && size >= row.least && size <= row.most &&
           size % row.step == 0 && (row.type != kProfile || IsProfile(chunk.data));
}

FindingKind KindOf(const Chunk& chunk) {
    for (const NamedChunk& row : kNamed) {
        if (row.type == chunk.type && StartsWith(chunk.data, row.start)) return row.kind;
    }
    return FindingKind::PrivateData;
}

OwnedBytes MakeChunk(std::string_view type, Bytes data) {
    OwnedBytes made;
    AppendBigEndian32(made, static_cast<std::uint32_t>(data.size()));
    Append(made, type);
    Append(made, data);
    AppendBigEndian32(made, Crc32(Bytes(made).subspan(kLengthSize)));
    return made;
}

class PngAnalyzer {
public:
    explicit PngAnalyzer(Bytes file) : rest_(file.subspan(kSignature.size())) {
        analysis_.parts.Keep(file.first(kSignature.size()));
    }

    Analysis Run() {
        for (bool isFirst = true; !hasEnd_; isFirst = false) {
            const auto chunk = ReadChunk(rest_);
            if (!chunk || isFirst != (chunk->type == "IHDR")) return Failed(CleanOutcome::Damaged);
            rest_ = rest_.subspan(chunk->whole.size());
            Take(*chunk);
            if (analysis_.outcome != CleanOutcome::NothingFound) return Failed(analysis_.outcome);
        }
        if (!hasPixels_) return Failed(CleanOutcome::Damaged);
        if (!rest_.empty()) analysis_.found.Note(FindingKind::TrailingData);
        return std::move(analysis_);
    }

private:
    void Take(const Chunk& chunk) {
        if (chunk.type == kExif) return TakeExif(chunk);
        for (std::size_t row = 0; row < std::size(kKept); ++row) {
            if (kKept[row].type == chunk.type) return TakeKept(row, chunk);
        }
        if (IsCritical(chunk.type)) {
            analysis_.outcome = CleanOutcome::NotSupported;
        } else {
            analysis_.found.Note(KindOf(chunk));
        }
    }

    void TakeKept(std::size_t row, const Chunk& chunk) {
        if (IsFrame(chunk.type) && !hasAnimation_) {
            return analysis_.found.Note(FindingKind::PrivateData); // nobody draws it
        }
        const bool isWanted = IsSound(kKept[row], chunk) && !(kKept[row].isOnce && seen_[row]);
        if (!isWanted && kKept[row].isNeeded) {
            analysis_.outcome = CleanOutcome::Damaged;
            return;
        }
        if (!isWanted) return analysis_.found.Note(FindingKind::PrivateData);
        seen_[row] = true;
        hasPixels_ |= chunk.type == "IDAT";
        hasEnd_ |= chunk.type == "IEND";
        hasAnimation_ |= chunk.type == "acTL";
        analysis_.parts.Keep(chunk.whole);
    }

    void TakeExif(const Chunk& chunk) {
        const bool isUsed = !hasExif_ && chunk.hasRightChecksum;
        hasExif_ |= isUsed;
        if (isUsed && IsMinimalExif(chunk.data)) return analysis_.parts.Keep(chunk.whole);
        const ExifContent content = ReadExif(chunk.data);
        analysis_.found.Note(content.found);
        if (isUsed && content.orientation != kUpright) {
            analysis_.parts.Add(MakeChunk(kExif, MinimalExif(content.orientation)));
        }
    }

    Bytes rest_;
    std::array<bool, std::size(kKept)> seen_ = {};
    bool hasExif_ = false;
    bool hasPixels_ = false;
    bool hasEnd_ = false;
    bool hasAnimation_ = false;
    Analysis analysis_;
};

} // namespace

bool IsPng(Bytes file) { return StartsWith(file, kSignature); }

Analysis AnalyzePng(Bytes file) { return PngAnalyzer(file).Run(); }

} // namespace transforms::personal
