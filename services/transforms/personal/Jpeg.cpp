#include "services/transforms/personal/Jpeg.h"

#include "services/transforms/personal/ExifBlock.h"
#include "services/transforms/personal/IccProfile.h"
#include "services/transforms/personal/JpegSegments.h"

namespace transforms::personal {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kStart = "\xFF\xD8\xFF"sv;
constexpr std::uint8_t kApp0 = 0xE0;
constexpr std::uint8_t kApp1 = 0xE1;
constexpr std::uint8_t kApp2 = 0xE2;
constexpr std::uint8_t kApp11 = 0xEB;
constexpr std::uint8_t kApp13 = 0xED;

constexpr std::string_view kExif = "Exif\0"sv; // one more byte follows, usually 0
constexpr std::size_t kExifHeader = kExif.size() + 1;
constexpr std::string_view kProfile = "ICC_PROFILE\0"sv;

// A segment that is removed whole, by its marker and the text at its start. The first row that fits
// counts.
struct NamedSegment {
    std::uint8_t marker;
    std::string_view start;
    FindingKind kind;
};

constexpr NamedSegment kNamed[] = {
    {kApp0, "JFXX\0"sv, FindingKind::Thumbnail},
    {kApp1, "http://ns.adobe.com/"sv, FindingKind::Xmp}, // the packet, and what didn't fit into it
    {kApp2, "MPF\0"sv, FindingKind::OtherPictures},
    {kApp11, "JP"sv, FindingKind::Credentials},
    {kApp13, "Photoshop 3.0\0"sv, FindingKind::Iptc},
    {kApp13, "Adobe_Photoshop2.5:"sv, FindingKind::Iptc},
    {jpeg::kComment, ""sv, FindingKind::Comment},
};

FindingKind KindOf(const JpegSegment& segment) {
    for (const NamedSegment& row : kNamed) {
        if (row.marker == segment.marker && StartsWith(segment.payload, row.start)) return row.kind;
    }
    return FindingKind::ApplicationData;
}

// A profile comes in numbered pieces, each of which counts all of them. Decoders use it when each
// number is there once; otherwise its bytes are no profile.
class ProfilePieces {
public:
    void Note(Bytes payload) {
        constexpr std::size_t kHeader = kProfile.size() + 2;
        if (payload.size() < kHeader) return Refuse();
        const std::uint8_t number = ByteAt(payload, kHeader - 2);
        const std::uint8_t count = ByteAt(payload, kHeader - 1);
        if (number == 0 || number > count || (count_ != 0 && count != count_)) return Refuse();
        if (seen_[number]) return Refuse();
        seen_[number] = true;
        count_ = count;
        ++found_;
        if (number == 1) beginsAsProfile_ = BeginsAsProfile(payload.subspan(kHeader));
    }
    bool AreWhole() const { return isSound_ && beginsAsProfile_ && found_ == count_; }

private:
    void Refuse() { isSound_ = false; }

    std::array<bool, 256> seen_ = {};
    std::size_t found_ = 0;
    std::size_t count_ = 0;
    bool isSound_ = true;
    bool beginsAsProfile_ = false;
};

bool IsProfilePiece(const JpegSegment& segment) {
    return segment.marker == kApp2 && StartsWith(segment.payload, kProfile);
}

bool IsExif(const JpegSegment& segment) {
    return segment.marker == kApp1 && StartsWith(segment.payload, kExif) &&
           segment.payload.size() >= kExifHeader;
}

// Whether the profile that decoders see, before the first scan, is whole.
bool HasWholeProfile(Bytes file) {
    ProfilePieces pieces;
    JpegReader reader(file);
    while (const auto segment = reader.Next()) {
        if (segment->marker == jpeg::kStartOfScan || segment->marker == jpeg::kEndOfImage) break;
        if (IsProfilePiece(*segment)) pieces.Note(segment->payload);
    }
    return pieces.AreWhole();
}

OwnedBytes MakeSegment(std::uint8_t marker, Bytes payload) {
    OwnedBytes made;
    AppendByte(made, 0xFF);
    AppendByte(made, marker);
    AppendBigEndian16(made, static_cast<std::uint32_t>(payload.size() + 2));
    Append(made, payload);
    return made;
}

class JpegAnalyzer {
public:
    explicit JpegAnalyzer(Bytes file) : file_(file), hasWholeProfile_(HasWholeProfile(file)) {}

    Analysis Run() {
        JpegReader reader(file_);
        analysis_.parts.Keep(file_.first(2));
        while (const auto segment = reader.Next()) {
            if (segment->marker == jpeg::kFrameOfJpegLs) return Failed(CleanOutcome::NotSupported);
            if (!segment->stray.empty()) analysis_.found.Note(FindingKind::StrayBytes);
            Take(*segment);
            if (segment->marker == jpeg::kEndOfImage) return AtEnd(reader.Rest());
        }
        return Failed(CleanOutcome::Damaged);
    }

private:
    Analysis AtEnd(Bytes rest) {
        if (!hasFrame_ || !hasScan_) return Failed(CleanOutcome::Damaged);
        if (!rest.empty()) analysis_.found.Note(FindingKind::TrailingData);
        return std::move(analysis_);
    }

    void Take(const JpegSegment& segment) {
        if (!jpeg::CarriesData(segment)) return Keep(segment);
        if (jpeg::IsJfif(segment)) return TakeJfif(segment);
        if (jpeg::IsAdobe(segment)) return TakeAdobe(segment);
        if (IsExif(segment) && !hasScan_) return TakeExif(segment);
        if (IsProfilePiece(segment) && hasWholeProfile_ && !hasScan_) return Keep(segment);
        analysis_.found.Note(KindOf(segment));
    }

    void Keep(const JpegSegment& segment) {
        hasFrame_ |= jpeg::IsFrame(segment.marker);
        hasScan_ |= segment.marker == jpeg::kStartOfScan;
        analysis_.parts.Keep(segment.whole);
        analysis_.parts.Keep(segment.coded);
    }

    void TakeJfif(const JpegSegment& segment) {
        OwnedBytes payload(segment.payload.begin(), segment.payload.begin() + jpeg::kJfifSize);
        payload[jpeg::kJfifSize - 2] = payload[jpeg::kJfifSize - 1] = std::byte{0};
        analysis_.parts.Add(MakeSegment(segment.marker, payload));
        analysis_.found.Note(FindingKind::Thumbnail);
    }

    void TakeAdobe(const JpegSegment& segment) {
        analysis_.parts.Add(MakeSegment(segment.marker, segment.payload.first(jpeg::kAdobeSize)));
        analysis_.found.Note(FindingKind::ApplicationData);
    }

    // The first block is the one that viewers turn the picture by; a minimal one stays in its
    // place.
    void TakeExif(const JpegSegment& segment) {
        const bool isFirst = !hasExif_;
        hasExif_ = true;
        const Bytes block = segment.payload.subspan(kExifHeader);
        const bool hasUsualHeader = ByteAt(segment.payload, kExif.size()) == 0;
        if (isFirst && hasUsualHeader && IsMinimalExif(block)) return Keep(segment);
        const ExifContent content = ReadExif(block);
        analysis_.found.Note(content.found);
        if (isFirst && content.orientation != kUpright) KeepOrientation(content.orientation);
    }

    void KeepOrientation(Orientation orientation) {
        OwnedBytes payload;
        Append(payload, kExif);
        AppendByte(payload, 0);
        Append(payload, MinimalExif(orientation));
        analysis_.parts.Add(MakeSegment(kApp1, payload));
    }

    Bytes file_;
    bool hasWholeProfile_;
    bool hasExif_ = false;
    bool hasFrame_ = false;
    bool hasScan_ = false;
    Analysis analysis_;
};

} // namespace

bool IsJpeg(Bytes file) { return StartsWith(file, kStart); }

Analysis AnalyzeJpeg(Bytes file) { return JpegAnalyzer(file).Run(); }

} // namespace transforms::personal
