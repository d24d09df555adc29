// A reader of our own: the format is a header, blocks and one kind of code.
#include "services/transforms/topdf/GifPixels.h"

#include <algorithm>
#include <array>
#include <utility>

#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

constexpr std::uint8_t kExtension = 0x21, kImage = 0x2C, kControl = 0xF9;
constexpr std::uint8_t kHasColours = 0x80, kInterlaced = 0x40, kHasClear = 1;

// The file from its beginning on; past its end it is damaged.
class GifBytes {
public:
    explicit GifBytes(PictureSource& source) noexcept : source_(source) {}

    template <std::size_t Count>
    std::array<std::uint8_t, Count> Take() {
        std::array<std::uint8_t, Count> bytes;
        Fill(bytes);
        return bytes;
    }
    std::uint8_t Byte() { return Take<1>()[0]; }
    void Fill(std::span<std::uint8_t> bytes) {
        if (ReadPicture(source_, offset_, bytes) != bytes.size()) Throw(PictureOutcome::Damaged);
        offset_ += bytes.size();
    }
    bool IsAtEnd() const noexcept { return offset_ >= source_.Size(); }
    // Past the pieces of a block.
    void SkipPieces(const PictureControl& control) {
        for (std::uint8_t size = Byte(); size != 0; size = Byte()) {
            control.ThrowIfCancelled();
            offset_ += size;
        }
    }

private:
    PictureSource& source_;
    std::uint64_t offset_ = 0;
};

std::uint32_t Number(const std::uint8_t* bytes) noexcept { return StoredNumber({bytes, 2}, true); }

PictureBytes TakeColours(GifBytes& file, std::uint8_t flags) {
    if (!(flags & kHasColours)) return {};
    PictureBytes colours(std::size_t{3} << ((flags & 7) + 1));
    file.Fill(colours);
    return colours;
}

// The codes of a picture, of changing width, out of pieces of at most 255 bytes.
class GifCodes {
public:
    explicit GifCodes(GifBytes& file) noexcept : file_(file) {}

    // Negative after the last piece.
    int Next(unsigned width) {
        while (count_ < width) {
            if (at_ == size_ && !Refill()) return -1;
            bits_ |= static_cast<std::uint32_t>(piece_[at_++]) << count_;
            count_ += 8;
        }
        const int code = static_cast<int>(bits_ & ((1u << width) - 1));
        bits_ >>= width;
        count_ -= width;
        return code;
    }

private:
    bool Refill() {
        if (isEnded_) return false;
        size_ = file_.Byte();
        at_ = 0;
        isEnded_ = size_ == 0;
        file_.Fill({piece_.data(), size_});
        return !isEnded_;
    }

    GifBytes& file_;
    std::array<std::uint8_t, 255> piece_{};
    std::size_t at_ = 0, size_ = 0;
    std::uint32_t bits_ = 0;
    unsigned count_ = 0;
    bool isEnded_ = false;
};

// The LZW dictionary: each string is an earlier one and one more index.
class GifStrings {
public:
    static constexpr int kMost = 4096;

    explicit GifStrings(unsigned width) noexcept : clear_(1 << width) { Clear(); }

    int ClearCode() const noexcept { return clear_; }
    int EndCode() const noexcept { return clear_ + 1; }
    void Clear() noexcept {
        next_ = clear_ + 2;
        last_ = -1;
    }
    unsigned Width() const noexcept {
        unsigned width = 1;
        while ((1 << width) <= std::min(next_, kMost - 1)) ++width;
        return width;
    }

    // Appends the string of a code. False for a code that there isn't yet.
    bool Append(int code, PictureBytes& to, std::size_t most) {
        const bool isNew = code == next_ && last_ >= 0;
        if (code >= next_ && !isNew) return false;
        std::size_t count = 0;
        int at = isNew ? last_ : code;
        for (; at >= clear_; at = before_[static_cast<std::size_t>(at)])
            stack_[count++] = index_[static_cast<std::size_t>(at)];
        const auto first = static_cast<std::uint8_t>(at);
        const auto put = [&](std::uint8_t index) {
            if (to.size() < most) to.push_back(index);
        };
        put(first);
        while (count > 0) put(stack_[--count]);
        if (isNew) put(first);
        if (last_ >= 0 && next_ < kMost) {
            before_[static_cast<std::size_t>(next_)] = last_;
            index_[static_cast<std::size_t>(next_++)] = first;
        }
        last_ = code;
        return true;
    }

private:
    int clear_, next_ = 0, last_ = -1;
    std::array<int, kMost> before_{};
    std::array<std::uint8_t, kMost> index_{};
    std::array<std::uint8_t, kMost> stack_{};
};

PictureBytes DecodePixels(GifBytes& file, std::size_t most, const PictureControl& control) {
    const unsigned first = file.Byte();
    if (first < 2 || first > 8) Throw(PictureOutcome::Damaged);
    GifCodes codes(file);
    GifStrings strings(first);
    PictureBytes pixels;
    pixels.reserve(most);
    while (pixels.size() < most) {
        control.ThrowIfCancelled();
        const int code = codes.Next(strings.Width());
        if (code == strings.ClearCode()) {
            strings.Clear();
        } else if (code < 0 || code == strings.EndCode() || !strings.Append(code, pixels, most)) {
            Throw(PictureOutcome::Damaged);
        }
    }
    return pixels;
}

// Rows out of memory; interlaced ones are stored in four runs.
class GifRows final : public RowReader {
public:
    GifRows(PictureSize size, PictureBytes pixels, bool isInterlaced)
        : pixels_(std::move(pixels)), places_(size.height) {
        form_.size = size;
        form_.channels = 1;
        constexpr std::uint32_t kStarts[] = {0, 4, 2, 1}, kSteps[] = {8, 8, 4, 2};
        std::size_t stored = 0;
        for (std::size_t run = 0; isInterlaced && run < 4; ++run)
            for (std::uint32_t y = kStarts[run]; y < size.height; y += kSteps[run])
                places_[y] = stored++;
        for (; !isInterlaced && stored < size.height; ++stored) places_[stored] = stored;
    }
    const RasterForm& Form() const noexcept override { return form_; }
    void Read(std::uint8_t* row) override {
        const auto from = places_[next_++] * form_.size.width;
        std::copy_n(pixels_.begin() + static_cast<std::ptrdiff_t>(from), form_.size.width, row);
    }

private:
    RasterForm form_;
    PictureBytes pixels_;
    std::vector<std::size_t> places_; // of each row among the stored ones
    std::size_t next_ = 0;
};

PagePicture TakePicture(GifBytes& file, PictureBytes colours, const PictureControl& control) {
    const auto head = file.Take<9>();
    PagePicture picture;
    picture.size = {Number(&head[4]), Number(&head[6])};
    if (!picture.size.width || !picture.size.height) Throw(PictureOutcome::Damaged);
    control.ThrowIfTooLarge(picture.size.width, picture.size.height);
    const std::uint64_t count = std::uint64_t{picture.size.width} * picture.size.height;
    control.ThrowIfTooMuch(2 * count);
    PictureBytes own = TakeColours(file, head[8]);
    picture.palette = own.empty() ? std::move(colours) : std::move(own);
    if (picture.palette.empty()) Throw(PictureOutcome::Damaged);
    picture.rows = std::make_unique<GifRows>(
        picture.size, DecodePixels(file, static_cast<std::size_t>(count), control),
        (head[8] & kInterlaced) != 0);
    return picture;
}

std::optional<unsigned> TakeClearIndex(GifBytes& file) {
    const auto block = file.Take<5>(); // its size, flags, a time of two bytes, the index
    return block[0] == 4 && (block[1] & kHasClear) ? std::optional<unsigned>(block[4])
                                                   : std::nullopt;
}

// Whether a second picture begins after the first one.
bool HasManyPictures(GifBytes file, const PictureControl& control) {
    std::size_t count = 0;
    while (!file.IsAtEnd()) {
        const std::uint8_t kind = file.Byte();
        if (kind == kExtension) {
            file.Byte();
        } else if (kind == kImage) {
            if (++count > 1) return true;
            TakeColours(file, file.Take<9>()[8]);
            file.Byte();
        } else {
            break;
        }
        file.SkipPieces(control);
    }
    return false;
}

} // namespace

std::optional<PagePicture> ReadGif(PictureSource& source, const PictureControl& control) {
    GifBytes file(source);
    const auto head = file.Take<13>();
    PictureBytes colours = TakeColours(file, head[10]);
    if (HasManyPictures(file, control)) return {};
    std::optional<unsigned> clear;
    for (std::uint8_t kind = file.Byte(); kind != kImage; kind = file.Byte()) {
        if (kind != kExtension) Throw(PictureOutcome::Damaged);
        if (file.Byte() == kControl) clear = TakeClearIndex(file);
        file.SkipPieces(control);
    }
    PagePicture picture = TakePicture(file, std::move(colours), control);
    picture.clearIndex = clear;
    return picture;
}

} // namespace transforms
