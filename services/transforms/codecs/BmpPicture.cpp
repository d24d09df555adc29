// A reader and a writer of our own: the format is a header and rows.
#include "services/transforms/codecs/BmpPicture.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "services/transforms/raster/ExifValues.h"
#include "services/transforms/raster/Numbers.h"
#include "services/transforms/raster/StampedRows.h"

namespace transforms {
namespace {

const std::size_t FileHeaderSize = 14, BasicHeader = 40, Version5 = 124;
// Offsets in the file.
const std::size_t PixelsAt = 10, HeaderSizeAt = 14, WidthAt = 18, HeightAt = 22, BitsAt = 28,
                  CompressionAt = 30, ImageSizeAt = 34, ColoursUsedAt = 46, ColoursImportantAt = 50,
                  MasksAt = 54, ProfileKindAt = 70, ProfileAt = 126, ProfileSizeAt = 130;
const std::uint32_t Plain = 0, BitFields = 3, AlphaBitFields = 6;
const std::uint32_t EmbeddedProfile = 0x4D424544;

std::uint32_t Get(std::span<const std::uint8_t> bytes, std::size_t at,
                  std::size_t count = 4) noexcept {
    return StoredNumber(bytes.subspan(at, count), true);
}

void Set(std::span<std::uint8_t> bytes, std::size_t at, std::uint32_t value,
         int count = 4) noexcept {
    for (int i = 0; i < count; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

// The file up to its palette, checked.
struct BmpHeader {
    PictureBytes bytes; // file header, header, masks
    PictureSize size;
    unsigned bits = 0;
    bool hasAlpha = false;
    bool isRedFirst = false;
    std::uint32_t pixels = 0; // offset

    std::uint32_t HeaderSize() const noexcept { return Get(bytes, HeaderSizeAt); }
    std::uint64_t Stride() const noexcept {
        return (static_cast<std::uint64_t>(size.width) * bits + 31) / 32 * 4;
    }
    // Rows from the bottom to the top are a mirrored picture to whoever reads them in order.
    std::uint16_t Orientation() const noexcept {
        constexpr std::uint16_t kMirroredDown = 4;
        const bool isBottomUp = static_cast<std::int32_t>(Get(bytes, HeightAt)) > 0;
        return isBottomUp ? kMirroredDown : kUprightOrientation;
    }
};

// The four bytes of a pixel are its channels, whatever their order; a channel across bytes is not
// served.
void CheckMasks(BmpHeader& header) {
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t mask = Get(header.bytes, MasksAt + 4 * i);
        if (mask != 0xFF && mask != 0xFF00 && mask != 0xFF0000 && mask != 0xFF000000)
            Throw(PictureOutcome::Unsupported);
        // Alpha is the last channel only if no colour is.
        if (mask == 0xFF000000) Throw(PictureOutcome::Unsupported);
    }
    header.isRedFirst = Get(header.bytes, MasksAt) == 0xFF;
    header.hasAlpha =
        header.bytes.size() >= MasksAt + 16 && Get(header.bytes, MasksAt + 12) == 0xFF000000;
}

void CheckForm(BmpHeader& header) {
    const std::uint32_t compression = Get(header.bytes, CompressionAt);
    const bool masked = compression == BitFields || compression == AlphaBitFields;
    if (compression != Plain && !(masked && header.bits == 32)) Throw(PictureOutcome::Unsupported);
    if (masked) CheckMasks(header);
    constexpr unsigned served[] = {1, 4, 8, 24, 32};
    if (std::find(std::begin(served), std::end(served), header.bits) == std::end(served))
        Throw(PictureOutcome::Unsupported);
}

BmpHeader ReadHeader(PictureSource& source, const PictureControl& control) {
    BmpHeader header;
    header.bytes.resize(FileHeaderSize + BasicHeader);
    if (ReadPicture(source, 0, header.bytes) != header.bytes.size()) Throw(PictureOutcome::Damaged);
    if (header.HeaderSize() < BasicHeader) Throw(PictureOutcome::Unsupported);
    if (header.HeaderSize() > Version5) Throw(PictureOutcome::Damaged);
    const bool masksFollow =
        header.HeaderSize() == BasicHeader && Get(header.bytes, CompressionAt) != Plain;
    const std::size_t masks =
        masksFollow ? (Get(header.bytes, CompressionAt) == AlphaBitFields ? 16 : 12) : 0;
    header.bytes.resize(FileHeaderSize + header.HeaderSize() + masks);
    if (ReadPicture(source, 0, header.bytes) != header.bytes.size()) Throw(PictureOutcome::Damaged);
    const auto width = static_cast<std::int32_t>(Get(header.bytes, WidthAt));
    const auto height =
        static_cast<std::int64_t>(static_cast<std::int32_t>(Get(header.bytes, HeightAt)));
    if (width <= 0 || height == 0) Throw(PictureOutcome::Damaged);
    header.size = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(std::abs(height))};
    header.bits = Get(header.bytes, BitsAt, 2);
    header.pixels = Get(header.bytes, PixelsAt);
    CheckForm(header);
    control.ThrowIfTooLarge(header.size.width, header.size.height);
    if (header.pixels < header.bytes.size() ||
        header.pixels + header.Stride() * header.size.height > source.Size())
        Throw(PictureOutcome::Damaged);
    return header;
}

class BmpReader final : public RowReader {
public:
    BmpReader(PictureSource& source, const BmpHeader& header) : file_(source), header_(header) {
        form_.size = header.size;
        form_.hasAlpha = header.hasAlpha;
        form_.channels = header.bits == 32 ? 4 : 3;
        form_.hasOtherChannel = header.bits == 32 && !header.hasAlpha;
        form_.isBlueFirst = !header.isRedFirst;
        stored_.resize(static_cast<std::size_t>(header.Stride()));
        if (header.bits <= 8) ReadPalette();
    }

    const RasterForm& Form() const noexcept override { return form_; }

    // Before the first row: the last one of the file comes first.
    void ReadUpwards() noexcept { isUpwards_ = true; }

    void Read(std::uint8_t* row) override {
        const std::uint64_t number = isUpwards_ ? form_.size.height - 1 - next_ : next_;
        ++next_;
        const std::uint64_t offset = header_.pixels + header_.Stride() * number;
        if (ReadPicture(file_, offset, stored_) != stored_.size()) Throw(PictureOutcome::Damaged);
        if (header_.bits > 8) {
            std::memcpy(row, stored_.data(), form_.RowBytes());
            return;
        }
        for (std::size_t x = 0; x < form_.size.width; ++x)
            std::memcpy(row + x * form_.channels, palette_[Index(x)].data(), form_.channels);
    }

private:
    // Colours that the file has none for are black, as other readers show them.
    void ReadPalette() {
        const std::size_t room = (header_.pixels - header_.bytes.size()) / 4;
        PictureBytes bytes(std::min<std::size_t>(room, 256) * 4);
        bytes.resize(ReadPicture(file_, header_.bytes.size(), bytes) / 4 * 4);
        bool isGrey = true;
        for (std::size_t i = 0; i < bytes.size() / 4; ++i) {
            palette_[i] = {bytes[4 * i], bytes[4 * i + 1], bytes[4 * i + 2]};
            isGrey = isGrey && bytes[4 * i] == bytes[4 * i + 1] && bytes[4 * i] == bytes[4 * i + 2];
        }
        if (isGrey) form_.channels = 1;
    }

    unsigned Index(std::size_t x) const noexcept {
        const unsigned perByte = 8 / header_.bits;
        const unsigned shift = 8 - header_.bits * (x % perByte + 1);
        return stored_[x / perByte] >> shift & ((1u << header_.bits) - 1);
    }

    PictureSource& file_;
    const BmpHeader& header_;
    RasterForm form_;
    std::array<std::array<std::uint8_t, 3>, 256> palette_{};
    PictureBytes stored_;
    std::uint64_t next_ = 0;
    bool isUpwards_ = false;
};

class BmpWriter final : public RowWriter {
public:
    BmpWriter(PictureTarget& target, const RasterForm& form, PictureSize size)
        : file_(target), used_(static_cast<std::size_t>(size.width) * form.channels) {
        stored_.resize((used_ + 3) / 4 * 4);
    }

    void Begin(const PictureBytes& head) {
        WritePicture(file_, 0, head);
        offset_ = head.size();
    }
    void Write(const std::uint8_t* row) override {
        std::memcpy(stored_.data(), row, used_);
        Append(stored_);
    }
    void Append(std::span<const std::uint8_t> bytes) {
        WritePicture(file_, offset_, bytes);
        offset_ += bytes.size();
    }
    std::size_t Stride() const noexcept { return stored_.size(); }

private:
    PictureTarget& file_;
    std::size_t used_;
    PictureBytes stored_;
    std::uint64_t offset_ = 0;
};

// The profile of a header of version 5, which is somewhere in the file.
PictureBytes ReadProfile(PictureSource& source, const BmpHeader& header,
                         const PictureControl& control) {
    if (header.HeaderSize() < Version5 || Get(header.bytes, ProfileKindAt) != EmbeddedProfile)
        return {};
    const std::uint32_t size = Get(header.bytes, ProfileSizeAt);
    if (size > control.limits.metadata) Throw(PictureOutcome::TooLarge);
    PictureBytes profile(size);
    if (ReadPicture(source, FileHeaderSize + std::uint64_t{Get(header.bytes, ProfileAt)},
                    profile) != size)
        Throw(PictureOutcome::Damaged);
    return profile;
}

PictureBytes MakeHead(const BmpHeader& from, const RasterForm& form, PictureSize size,
                      std::size_t stride, std::size_t profile) {
    PictureBytes head = from.bytes;
    const bool isBottomUp = static_cast<std::int32_t>(Get(head, HeightAt)) > 0;
    const auto imageSize = static_cast<std::uint32_t>(stride * size.height);
    Set(head, WidthAt, size.width);
    Set(head, HeightAt, isBottomUp ? size.height : 0 - size.height);
    Set(head, BitsAt, form.channels * 8, 2);
    Set(head, ImageSizeAt, imageSize);
    Set(head, ColoursUsedAt, form.channels == 1 ? 256 : 0);
    Set(head, ColoursImportantAt, 0);
    for (unsigned i = 0; form.channels == 1 && i < 256; ++i)
        for (unsigned value : {i, i, i, 0u}) head.push_back(static_cast<std::uint8_t>(value));
    const auto pixels = static_cast<std::uint32_t>(head.size());
    Set(head, PixelsAt, pixels);
    if (profile) Set(head, ProfileAt, pixels + imageSize - FileHeaderSize);
    Set(head, 2, static_cast<std::uint32_t>(pixels + imageSize + profile));
    return head;
}

// The same rows for a caller that only knows their form: from the top, red first.
class BmpColours final : public RowReader {
public:
    BmpColours(PictureSource& source, BmpHeader header)
        : header_(std::move(header)), rows_(source, header_), form_(rows_.Form()),
          stored_(form_.RowBytes()) {
        if (static_cast<std::int32_t>(Get(header_.bytes, HeightAt)) > 0) rows_.ReadUpwards();
        if (form_.channels == 4 && !form_.hasAlpha) form_.channels = 3;
        const bool isMasked = Get(header_.bytes, CompressionAt) != Plain;
        for (std::size_t i = 0; isMasked && i < 3; ++i)
            places_[i] = PlaceOf(Get(header_.bytes, MasksAt + 4 * i));
    }
    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        if (form_.channels == 1) return rows_.Read(row);
        rows_.Read(stored_.data());
        const std::size_t step = rows_.Form().channels;
        for (std::size_t x = 0; x < form_.size.width; ++x)
            for (std::size_t c = 0; c < form_.channels; ++c)
                row[x * form_.channels + c] = stored_[x * step + places_[c]];
    }

private:
    static std::uint8_t PlaceOf(std::uint32_t mask) noexcept {
        return mask == 0xFF ? 0 : mask == 0xFF00 ? 1 : 2;
    }

    BmpHeader header_;
    BmpReader rows_;
    RasterForm form_;
    PictureBytes stored_;
    std::array<std::uint8_t, 4> places_{2, 1, 0, 3}; // of red, green, blue and alpha in a pixel
};

} // namespace

PictureSize BmpSize(PictureSource& source, const PictureControl& control) {
    return ReadHeader(source, control).size;
}

void ShrinkBmp(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
               const PictureControl& control) {
    const BmpHeader header = ReadHeader(source, control);
    const PictureSize to = SizeAfter(header.size, step);
    BmpReader reader(source, header);
    BmpWriter writer(target, reader.Form(), to);
    const PictureBytes profile = ReadProfile(source, header, control);
    writer.Begin(MakeHead(header, reader.Form(), to, writer.Stride(), profile.size()));
    ShrinkAndStampRows(reader, writer, to, step, header.Orientation(), control);
    if (!profile.empty()) writer.Append(profile);
}

BmpPixels OpenBmpPixels(PictureSource& source, const PictureControl& control) {
    BmpHeader header = ReadHeader(source, control);
    PictureBytes profile = ReadProfile(source, header, control);
    return {std::make_unique<BmpColours>(source, std::move(header)), std::move(profile)};
}

} // namespace transforms
