#include "services/transforms/personal/WebP.h"

#include <utility>

#include "services/transforms/personal/ExifBlock.h"
#include "services/transforms/personal/IccProfile.h"
#include "services/transforms/personal/RiffChunks.h"

namespace transforms::personal {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kFileHeader = 12; // RIFF, its size, WEBP
constexpr std::size_t kFormSize = 4;    // WEBP counts for the size
constexpr std::size_t kFeaturesSize = 10;
constexpr std::size_t kAnimationSize = 6;
constexpr std::size_t kFrameSize = 16; // before a frame's chunks

// The features that a file announces at its start.
constexpr std::uint8_t kHasProfile = 0x20;
constexpr std::uint8_t kHasAlpha = 0x10;
constexpr std::uint8_t kHasExif = 0x08;
constexpr std::uint8_t kHasXmp = 0x04;
constexpr std::uint8_t kIsAnimated = 0x02;
constexpr std::uint8_t kKnown = kHasProfile | kHasAlpha | kHasExif | kHasXmp | kIsAnimated;
constexpr std::size_t kReserved = 1; // three bytes after the flags
constexpr std::size_t kReservedSize = 3;

struct NamedChunk {
    std::string_view name;
    FindingKind kind;
};

constexpr NamedChunk kNamed[] = {
    {"EXIF", FindingKind::CameraSettings}, // one that viewers don't read
    {"XMP ", FindingKind::Xmp},
    {"C2PA", FindingKind::Credentials},
};

FindingKind KindOf(const RiffChunk& chunk) {
    const auto row = std::ranges::find(kNamed, chunk.name, &NamedChunk::name);
    return row == std::end(kNamed) ? FindingKind::PrivateData : row->kind;
}

bool IsImage(std::string_view name) { return name == "VP8 " || name == "VP8L"; }

// Some writers put the header of another format's segment before the block.
Bytes ExifBlockOf(const RiffChunk& chunk) {
    constexpr std::string_view kSegment = "Exif\0\0"sv;
    return StartsWith(chunk.data, kSegment) ? chunk.data.subspan(kSegment.size()) : chunk.data;
}

// One image with its alpha: the chunks of a frame, or of a file without frames.
class ImageChunks {
public:
    bool IsWanted(std::string_view name) const {
        return IsImage(name) ? !hasImage_ : name == "ALPH" && !hasAlpha_ && !hasImage_;
    }
    void Note(std::string_view name) { (IsImage(name) ? hasImage_ : hasAlpha_) = true; }
    bool HasImage() const { return hasImage_; }

private:
    bool hasImage_ = false;
    bool hasAlpha_ = false;
};

class WebPAnalyzer {
public:
    explicit WebPAnalyzer(Bytes file) : file_(file) {}

    Analysis Run() {
        if (!FindEnd() || !TakeFeatures() || !TakeChunks()) return Failed(CleanOutcome::Damaged);
        if (!image_.HasImage() && !hasFrame_) return Failed(CleanOutcome::Damaged);
        PutHeaderFirst();
        return std::move(analysis_);
    }

private:
    bool IsExtended() const { return features_.has_value(); }
    bool Announces(std::uint8_t feature) const {
        return IsExtended() && (ByteAt(features_->data, 0) & feature) != 0;
    }

    // The size in the header counts what follows it; a byte that pads may be there or not.
    bool FindEnd() {
        constexpr std::size_t kUncounted = kFileHeader - kFormSize;
        if (file_.size() < kFileHeader) return false;
        const std::size_t size = LittleEndian32(file_, 4);
        if (size < kFormSize || size > file_.size() - kUncounted) return false;
        std::size_t end = kUncounted + size;
        if (size % 2 != 0 && end < file_.size() && ByteAt(file_, end) == 0) ++end;
        if (end < file_.size()) analysis_.found.Note(FindingKind::TrailingData);
        rest_ = file_.subspan(kFileHeader, end - kFileHeader);
        return true;
    }

    bool TakeFeatures() {
        if (!StartsWith(rest_, "VP8X")) return true;
        const auto chunk = ReadRiffChunk(rest_);
        if (!chunk || chunk->data.size() != kFeaturesSize) return false;
        rest_ = rest_.subspan(chunk->whole.size());
        features_ = chunk;
        const bool isReservedUsed = (ByteAt(chunk->data, 0) & ~kKnown) != 0;
        if (isReservedUsed || !AreZero(chunk->data.subspan(kReserved, kReservedSize))) {
            analysis_.found.Note(FindingKind::PrivateData);
        }
        return true;
    }

    bool TakeChunks() {
        while (!rest_.empty()) {
            const auto chunk = ReadRiffChunk(rest_);
            if (!chunk) return false;
            rest_ = rest_.subspan(chunk->whole.size());
            if (!Take(*chunk)) return false;
        }
        return true;
    }

    bool Take(const RiffChunk& chunk) {
        if (IsWantedImage(chunk.name)) {
            image_.Note(chunk.name);
            Keep(body_, chunk);
            return true;
        }
        if (chunk.name == "ANIM") return TakeAnimation(chunk);
        if (chunk.name == "ANMF" && Announces(kIsAnimated)) return TakeFrame(chunk);
        if (chunk.name == "ICCP" && IsWantedProfile(chunk)) {
            hasProfile_ = true;
            Keep(body_, chunk);
        } else if (chunk.name == "EXIF" && Announces(kHasExif)) {
            TakeExif(chunk);
        } else {
            analysis_.found.Note(KindOf(chunk));
        }
        return true;
    }

    // Decoders look for alpha after the features alone, and for images of animations in frames.
    bool IsWantedImage(std::string_view name) const {
        if (name == "ALPH" && !IsExtended()) return false;
        return image_.IsWanted(name) && !Announces(kIsAnimated);
    }

    // To the clean file, or to a frame of it.
    void Keep(PartList& parts, const RiffChunk& chunk) {
        if (!chunk.IsPaddedByZero()) analysis_.found.Note(FindingKind::StrayBytes);
        KeepRiffChunk(parts, chunk);
    }

    bool IsWantedProfile(const RiffChunk& chunk) const {
        return Announces(kHasProfile) && !hasProfile_ && BeginsAsProfile(chunk.data);
    }

    bool TakeAnimation(const RiffChunk& chunk) {
        if (!Announces(kIsAnimated) || hasAnimation_) {
            analysis_.found.Note(FindingKind::PrivateData);
            return true;
        }
        if (chunk.data.size() != kAnimationSize) return false;
        hasAnimation_ = true;
        Keep(body_, chunk);
        return true;
    }

    // A frame is a header and chunks; what isn't part of its image is removed.
    bool TakeFrame(const RiffChunk& chunk) {
        if (chunk.data.size() < kFrameSize) return false;
        PartList parts;
        ImageChunks image;
        Bytes rest = chunk.data.subspan(kFrameSize);
        while (!rest.empty()) {
            const auto part = ReadRiffChunk(rest);
            if (!part) return false;
            rest = rest.subspan(part->whole.size());
            TakePartOfFrame(*part, image, parts);
        }
        if (!image.HasImage()) return false;
        hasFrame_ = true;
        PutFrame(chunk, std::move(parts));
        return true;
    }

    void TakePartOfFrame(const RiffChunk& part, ImageChunks& image, PartList& parts) {
        if (!image.IsWanted(part.name)) return analysis_.found.Note(KindOf(part));
        image.Note(part.name);
        Keep(parts, part);
    }

    void PutFrame(const RiffChunk& chunk, PartList parts) {
        OwnedBytes header;
        Append(header, chunk.name);
        AppendLittleEndian32(header, static_cast<std::uint32_t>(kFrameSize + parts.Size()));
        Append(header, chunk.data.first(kFrameSize));
        body_.Add(std::move(header));
        body_.Append(std::move(parts));
        if (!chunk.IsPaddedByZero()) analysis_.found.Note(FindingKind::StrayBytes);
    }

    void TakeExif(const RiffChunk& chunk) {
        const bool isFirst = !hasExif_;
        hasExif_ = true;
        if (isFirst && IsMinimalExif(chunk.data)) {
            keepsExif_ = true;
            return Keep(body_, chunk);
        }
        const ExifContent content = ReadExif(ExifBlockOf(chunk));
        analysis_.found.Note(content.found);
        if (!isFirst || content.orientation == kUpright) return;
        keepsExif_ = true;
        body_.Add(MakeRiffChunk("EXIF", MinimalExif(content.orientation)));
    }

    // The features as they are in the clean file.
    OwnedBytes Features() const {
        OwnedBytes data(features_->data.begin(), features_->data.end());
        unsigned flags = ByteAt(data, 0) & (kHasAlpha | kIsAnimated);
        if (hasProfile_) flags |= kHasProfile;
        if (keepsExif_) flags |= kHasExif;
        data[0] = static_cast<std::byte>(flags);
        std::fill_n(data.begin() + kReserved, kReservedSize, std::byte{0});
        return MakeRiffChunk("VP8X", data);
    }

    void PutHeaderFirst() {
        const OwnedBytes features = IsExtended() ? Features() : OwnedBytes();
        OwnedBytes header;
        Append(header, "RIFF");
        AppendLittleEndian32(
            header, static_cast<std::uint32_t>(kFormSize + features.size() + body_.Size()));
        Append(header, "WEBP");
        Append(header, features);
        analysis_.parts.Add(std::move(header));
        analysis_.parts.Append(std::move(body_));
    }

    Bytes file_;
    Bytes rest_;
    std::optional<RiffChunk> features_;
    PartList body_; // of the clean file, from after the features on
    ImageChunks image_;
    bool hasAnimation_ = false;
    bool hasFrame_ = false;
    bool hasProfile_ = false;
    bool hasExif_ = false;
    bool keepsExif_ = false;
    Analysis analysis_;
};

} // namespace

bool IsWebP(Bytes file) { return StartsWith(file, "RIFF") && HasTextAt(file, 8, "WEBP"); }

Analysis AnalyzeWebP(Bytes file) { return WebPAnalyzer(file).Run(); }

} // namespace transforms::personal
