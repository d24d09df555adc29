// The PNG library's callbacks throw through its C code, whose frames this platform can unwind; this
// file is the one place that knows.
#include "services/transforms/codecs/PngPicture.h"

#include <algorithm>
#include <string_view>

#include <png.h>

#include "services/transforms/codecs/PngChunks.h"
#include "services/transforms/raster/ExifValues.h"
#include "services/transforms/raster/StampedRows.h"

namespace transforms {
namespace {

[[noreturn]] void Fail(png_structp, png_const_charp) {
    throw PictureFailure{PictureOutcome::Damaged};
}
void Ignore(png_structp, png_const_charp) {}

[[noreturn]] void ThrowNoMemory() { throw PictureFailure{PictureOutcome::OutOfMemory}; }

// Chunks that are copied as they are need no reading by the library, and those that it would only
// skip.
const png_byte Unread[] =
    "iCCP\0sRGB\0gAMA\0cHRM\0pHYs\0eXIf\0tEXt\0zTXt\0iTXt\0tIME\0sPLT\0hIST\0bKGD\0oFFs"
    "\0pCAL\0sCAL\0sBIT";
const int UnreadCount = static_cast<int>(sizeof Unread / 5);

class PngReader final : public RowReader {
public:
    PngReader(PictureSource& source, const PictureControl& control)
        : file_(source), control_(control) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, Fail, Ignore);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_read_struct(&png_, &info_, nullptr);
            ThrowNoMemory();
        }
        try {
            ReadHeader();
        } catch (...) {
            png_destroy_read_struct(&png_, &info_, nullptr);
            throw;
        }
    }
    ~PngReader() override { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    const RasterForm& Form() const noexcept override { return form_; }

    // Before the first row.
    void Start() {
        png_set_expand(png_);
        if (form_.bits == 16) png_set_swap(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        form_.channels = png_get_channels(png_, info_);
        form_.bits = png_get_bit_depth(png_, info_);
        form_.hasAlpha = form_.channels % 2 == 0;
    }

    // The same, for rows without any conversion where they have a palette or less than 8 bits a
    // sample; transparent colours need one. Whether the rows come so.
    bool StartPacked() {
        if ((!IsIndexed() && form_.bits >= 8) || png_get_valid(png_, info_, PNG_INFO_tRNS)) {
            Start();
            return false;
        }
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        form_.size.width = static_cast<std::uint32_t>(png_get_rowbytes(png_, info_));
        form_.channels = 1;
        form_.bits = 8;
        return true;
    }

    PictureBytes Palette() const {
        png_colorp colours = nullptr;
        int count = 0;
        PictureBytes bytes;
        if (!png_get_PLTE(png_, info_, &colours, &count)) return bytes;
        for (int i = 0; i < count; ++i)
            bytes.insert(bytes.end(), {colours[i].red, colours[i].green, colours[i].blue});
        return bytes;
    }

    bool IsIndexed() const noexcept {
        return png_get_color_type(png_, info_) == PNG_COLOR_TYPE_PALETTE;
    }

    void Read(std::uint8_t* row) override {
        if (passes_ > 1) return CopyRow(row);
        png_read_row(png_, row, nullptr);
        if (++next_ == form_.size.height) png_read_end(png_, nullptr);
    }

private:
    static void Take(png_structp png, png_bytep bytes, std::size_t count) {
        auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
        if (ReadPicture(reader.file_, reader.offset_, {bytes, count}) != count)
            throw PictureFailure{PictureOutcome::Damaged};
        reader.offset_ += count;
    }

    void ReadHeader() {
        png_set_read_fn(png_, this, Take);
        png_set_user_limits(png_, 0x7FFFFFFF, 0x7FFFFFFF); // ours is about the product
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, Unread, UnreadCount);
        png_read_info(png_, info_);
        form_.size = {png_get_image_width(png_, info_), png_get_image_height(png_, info_)};
        form_.bits = png_get_bit_depth(png_, info_);
        control_.ThrowIfTooLarge(form_.size.width, form_.size.height);
    }

    void CopyRow(std::uint8_t* row) {
        const std::size_t bytes = form_.RowBytes();
        if (whole_.empty()) ReadWhole(bytes);
        std::copy_n(whole_.begin() + static_cast<std::ptrdiff_t>(next_++ * bytes), bytes, row);
    }

    void ReadWhole(std::size_t rowBytes) {
        control_.ThrowIfTooMuch(static_cast<std::uint64_t>(rowBytes) * form_.size.height);
        whole_.resize(rowBytes * form_.size.height);
        for (int pass = 0; pass < passes_; ++pass) {
            for (std::size_t y = 0; y < form_.size.height; ++y) {
                control_.ThrowIfCancelled();
                png_read_row(png_, &whole_[y * rowBytes], nullptr);
            }
        }
        png_read_end(png_, nullptr);
    }

    PictureSource& file_;
    const PictureControl& control_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    RasterForm form_;
    std::uint64_t offset_ = 0;
    int passes_ = 1;
    std::size_t next_ = 0;
    PictureBytes whole_; // of an interlaced picture
};

int ColourOf(unsigned channels) noexcept {
    const int colours[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                           PNG_COLOR_TYPE_RGB_ALPHA};
    return colours[(channels - 1) % 4];
}

class PngWriter final : public RowWriter {
public:
    PngWriter(PictureTarget& target, PngChunks& chunks) : file_(target), chunks_(chunks) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, Fail, Ignore);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, &info_);
            ThrowNoMemory();
        }
    }
    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void Start(const RasterForm& form, PictureSize size) {
        png_set_write_fn(png_, this, Append, Nothing);
        png_set_IHDR(png_, info_, size.width, size.height, static_cast<int>(form.bits),
                     ColourOf(form.channels), PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE,
                     PNG_FILTER_TYPE_BASE);
        png_write_info(png_, info_);
        for (auto& chunk : chunks_.kept)
            if (std::string_view(reinterpret_cast<const char*>(chunk.type.data())) == "eXIf")
                SetExifSize(chunk.data, size);
        WriteChunks(false);
        if (form.bits == 16) png_set_swap(png_);
    }
    void Write(const std::uint8_t* row) override { png_write_row(png_, row); }
    void Finish() {
        WriteChunks(true);
        png_write_end(png_, nullptr);
        Flush();
    }

private:
    static void Nothing(png_structp) {}
    static void Append(png_structp png, png_bytep bytes, std::size_t count) {
        auto& writer = *static_cast<PngWriter*>(png_get_io_ptr(png));
        writer.buffer_.insert(writer.buffer_.end(), bytes, bytes + count);
        if (writer.buffer_.size() >= 64 * 1024) writer.Flush();
    }

    void Flush() {
        WritePicture(file_, offset_, buffer_);
        offset_ += buffer_.size();
        buffer_.clear();
    }

    void WriteChunks(bool after) {
        for (const auto& chunk : chunks_.kept)
            if (chunk.isAfterPixels == after)
                png_write_chunk(png_, chunk.type.data(), chunk.data.data(), chunk.data.size());
    }

    PictureTarget& file_;
    PngChunks& chunks_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::uint64_t offset_ = 0;
    PictureBytes buffer_;
};

} // namespace

PictureSize PngSize(PictureSource& source, const PictureControl& control) {
    return PngReader(source, control).Form().size;
}

std::unique_ptr<RowReader> OpenPngRows(PictureSource& source, const PictureControl& control) {
    auto reader = std::make_unique<PngReader>(source, control);
    reader->Start();
    return reader;
}

PngPixels OpenPngPixels(PictureSource& source, const PictureControl& control) {
    auto reader = std::make_unique<PngReader>(source, control);
    PngPixels pixels{nullptr, reader->Form().size, reader->Form().bits};
    pixels.isPacked = reader->StartPacked();
    if (!pixels.isPacked)
        pixels.bits = reader->Form().bits;
    else if (reader->IsIndexed())
        pixels.palette = reader->Palette();
    pixels.rows = std::move(reader);
    return pixels;
}

void ShrinkPng(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
               const PictureControl& control) {
    PngChunks chunks = ScanPng(source, control);
    PngReader reader(source, control);
    reader.Start();
    const PictureSize to = SizeAfter(reader.Form().size, step);
    PngWriter writer(target, chunks);
    writer.Start(reader.Form(), to);
    ShrinkAndStampRows(reader, writer, to, step, chunks.Orientation(), control);
    writer.Finish();
}

} // namespace transforms
