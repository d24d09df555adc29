// Decoding by bands on one thread; shrinking and coding on the caller's.
#include "services/transforms/codecs/JpegPicture.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/codecs/JpegMetadata.h"
#include "services/transforms/codecs/JpegStamp.h"
#include "services/transforms/codecs/JpegTables.h"
#include "services/transforms/raster/BandPipe.h"
#include "services/transforms/raster/Resampler.h"

namespace transforms {
namespace {

// A part of a band: the rows of one component.
struct BandPart {
    std::size_t offset, stride, rows;
};

struct Bands {
    std::vector<BandPart> parts;
    std::size_t bytes = 0;
};

// What the decoder delivers at a time.
Bands SourceBands(const JpegReader& reader) {
    Bands bands;
    for (int c = 0; c < reader.num_components; ++c) {
        const auto& info = reader.comp_info[c];
        const std::size_t scaled = info.DCT_scaled_size;
        const BandPart part{bands.bytes, info.width_in_blocks * scaled,
                            info.v_samp_factor * scaled};
        bands.parts.push_back(part);
        bands.bytes += part.stride * part.rows;
    }
    return bands;
}

// Row pointers in the form that the library takes.
class PlanePointers {
public:
    PlanePointers(std::uint8_t* band, const Bands& bands) {
        for (const auto& part : bands.parts) {
            rows_.emplace_back();
            for (std::size_t i = 0; i < part.rows; ++i)
                rows_.back().push_back(band + part.offset + i * part.stride);
        }
        for (auto& rows : rows_) planes_.push_back(rows.data());
    }
    JSAMPIMAGE get() noexcept { return planes_.data(); }

private:
    std::vector<std::vector<JSAMPROW>> rows_;
    std::vector<JSAMPARRAY> planes_;
};

void DecodeBands(JpegReader& reader, const Bands& bands, BandPipe& pipe) {
    const auto lines =
        static_cast<JDIMENSION>(reader.max_v_samp_factor * reader.min_DCT_scaled_size);
    while (reader.output_scanline < reader.output_height) {
        std::uint8_t* band = pipe.Empty();
        if (!band) return;
        reader.control().ThrowIfCancelled();
        PlanePointers pointers(band, bands);
        jpeg_read_raw_data(&reader, pointers.get(), lines);
        pipe.Fill();
    }
}

void ReadHeader(JpegReader& reader) {
    KeepMarkers(reader);
    jpeg_read_header(&reader, TRUE);
    reader.EndHeader();
    reader.control().ThrowIfTooLarge(reader.image_width, reader.image_height);
}

// The decoder itself shrinks by 2, 4 or 8 where at least as much again is left to the filter: that
// is faster, and the filter decides on the picture's sharpness.
unsigned DecoderScale(PictureSize from, PictureSize to) noexcept {
    const double shrink = std::max(1.0 * from.width / to.width, 1.0 * from.height / to.height);
    return shrink >= 16 ? 1 : shrink >= 8 ? 2 : shrink >= 4 ? 4 : 8;
}

void StartDecoder(JpegReader& reader, PictureSize to) {
    reader.scale_num = DecoderScale({reader.image_width, reader.image_height}, to);
    reader.scale_denom = 8;
    reader.raw_data_out = TRUE;
    reader.out_color_space = reader.jpeg_color_space;
    reader.dct_method = JDCT_ISLOW;
    reader.do_block_smoothing = FALSE;
    jpeg_start_decompress(&reader);
}

// Gives a component its table: one that is there already or one more.
void UseTable(JpegWriter& writer, jpeg_component_info& info, const JQUANT_TBL& table, int& used) {
    int number = 0;
    while (number < used && std::memcmp(writer.quant_tbl_ptrs[number]->quantval, table.quantval,
                                        sizeof table.quantval) != 0)
        ++number;
    if (number == used) {
        auto& place = writer.quant_tbl_ptrs[used++];
        if (!place) place = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&writer));
        *place = table;
    }
    info.quant_tbl_no = number;
}

void SetTables(const JpegReader& reader, JpegWriter& writer, const ShrinkStep& step) {
    const auto standard = StandardTables(writer, step);
    const bool hasColourPlanes =
        writer.jpeg_color_space == JCS_YCbCr || writer.jpeg_color_space == JCS_YCCK;
    int used = 0;
    for (int c = 0; c < writer.num_components; ++c) {
        const auto& info = reader.comp_info[c];
        const JQUANT_TBL* table =
            info.quant_table ? info.quant_table : reader.quant_tbl_ptrs[info.quant_tbl_no];
        if (!table) throw PictureFailure{PictureOutcome::Damaged};
        const bool isColour = hasColourPlanes && (c == 1 || c == 2);
        UseTable(writer, writer.comp_info[c], CoarserTable(standard[isColour], *table), used);
    }
}

void SetColours(const JpegReader& reader, JpegWriter& writer) {
    jpeg_set_colorspace(&writer, reader.jpeg_color_space);
    writer.write_JFIF_header = reader.saw_JFIF_marker;
    if (reader.saw_JFIF_marker) {
        writer.density_unit = reader.density_unit;
        writer.X_density = reader.X_density;
        writer.Y_density = reader.Y_density;
    }
    // The marker also declares that CMYK is stored inverted: without it nothing declares that.
    if (reader.jpeg_color_space != JCS_RGB) writer.write_Adobe_marker = reader.saw_Adobe_marker;
    for (int c = 0; c < writer.num_components; ++c) {
        writer.comp_info[c].h_samp_factor = reader.comp_info[c].h_samp_factor;
        writer.comp_info[c].v_samp_factor = reader.comp_info[c].v_samp_factor;
    }
}

void StartEncoder(const JpegReader& reader, JpegWriter& writer, PictureSize to,
                  const ShrinkStep& step) {
    writer.image_width = to.width;
    writer.image_height = to.height;
    writer.input_components = reader.num_components;
    writer.in_color_space = reader.jpeg_color_space;
    jpeg_set_defaults(&writer);
    SetColours(reader, writer);
    SetTables(reader, writer, step);
    writer.raw_data_in = TRUE;
    writer.dct_method = JDCT_ISLOW;
    // The best Huffman tables need the whole picture in memory.
    writer.optimize_coding =
        step.compact && static_cast<std::uint64_t>(to.width) * to.height < 20'000'000;
    jpeg_start_compress(&writer, TRUE);
    CopyMarkers(reader, writer, to, step.stamp != nullptr);
}

// One component's way from decoded rows to rows that can be coded.
class ComponentShrinker {
public:
    // `stamp` may be null; otherwise it outlives the object.
    ComponentShrinker(const JpegReader& reader, const JpegWriter& writer, int number,
                      const JpegStamp* stamp)
        : number_(number), stamp_(stamp), from_(reader.comp_info[number]),
          to_(writer.comp_info[number]), across_(from_.downsampled_width, to_.downsampled_width,
                                                 Scale(reader.image_width, writer.image_width)),
          down_(from_.downsampled_height, to_.downsampled_height,
                Scale(reader.image_height, writer.image_height)),
          plane_(across_, down_), stride_(to_.width_in_blocks * DCTSIZE) {}

    void Push(const std::uint8_t* band, const BandPart& part) {
        for (std::size_t i = 0; i < part.rows && pushed_ < from_.downsampled_height;
             ++i, ++pushed_) {
            plane_.Push(band + part.offset + i * part.stride);
            while (plane_.IsReady()) Append();
        }
    }

    // A band needs so many rows; the last one is filled up with its last row.
    std::size_t BandRows() const noexcept {
        return static_cast<std::size_t>(to_.v_samp_factor) * DCTSIZE;
    }
    bool IsReady() const noexcept {
        return rows_ >= BandRows() || finished_ == to_.downsampled_height;
    }

    void Take(std::vector<JSAMPROW>& rows) {
        const std::size_t used = std::min(rows_, BandRows());
        rows.resize(BandRows());
        // With no row left, what was written last is still in the buffer.
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = &pending_[std::min(i, std::max<std::size_t>(used, 1) - 1) * stride_];
    }

    void Drop() {
        const std::size_t used = std::min(rows_, BandRows());
        if (used == rows_ && finished_ == to_.downsampled_height && used) {
            std::copy_n(&pending_[(used - 1) * stride_], stride_, pending_.begin());
        } else {
            std::copy(pending_.begin() + static_cast<std::ptrdiff_t>(used * stride_),
                      pending_.begin() + static_cast<std::ptrdiff_t>(rows_ * stride_),
                      pending_.begin());
        }
        rows_ -= used;
    }

private:
    double Scale(JDIMENSION from, JDIMENSION to) const noexcept {
        return static_cast<double>(from) * from_.DCT_scaled_size /
               (static_cast<double>(DCTSIZE) * to);
    }

    void Append() {
        if (pending_.size() < (rows_ + 1) * stride_) pending_.resize((rows_ + 1) * stride_);
        std::uint8_t* row = &pending_[rows_ * stride_];
        plane_.Pull(row);
        if (stamp_) stamp_->Blend(number_, finished_, row);
        const std::size_t width = to_.downsampled_width;
        std::memset(row + width, row[width - 1], stride_ - width);
        ++rows_;
        ++finished_;
    }

    int number_;
    const JpegStamp* stamp_;
    const jpeg_component_info& from_;
    const jpeg_component_info& to_;
    ResampleAxis across_, down_;
    PlaneResampler8 plane_;
    std::size_t stride_;
    std::vector<std::uint8_t> pending_;
    std::size_t rows_ = 0; // in pending_
    JDIMENSION pushed_ = 0, finished_ = 0;
};

using Shrinkers = std::vector<std::unique_ptr<ComponentShrinker>>;

bool IsBandReady(const Shrinkers& components) noexcept {
    return std::all_of(components.begin(), components.end(),
                       [](const auto& c) { return c->IsReady(); });
}

void EncodeBand(JpegWriter& writer, Shrinkers& components) {
    std::vector<std::vector<JSAMPROW>> rows(components.size());
    std::vector<JSAMPARRAY> planes;
    for (std::size_t c = 0; c < components.size(); ++c) {
        components[c]->Take(rows[c]);
        planes.push_back(rows[c].data());
    }
    jpeg_write_raw_data(&writer, planes.data(),
                        static_cast<JDIMENSION>(writer.max_v_samp_factor * DCTSIZE));
    for (auto& component : components) component->Drop();
}

std::optional<JpegStamp> MakeStamp(const JpegReader& reader, const JpegWriter& writer,
                                   const ShrinkStep& step) {
    if (!step.stamp) return {};
    const PictureSize size{writer.image_width, writer.image_height};
    return JpegStamp(StampAsStored(*step.stamp, size, JpegOrientation(reader)), writer);
}

void ShrinkBands(JpegReader& reader, JpegWriter& writer, const JpegStamp* stamp) {
    const Bands bands = SourceBands(reader);
    Shrinkers components;
    for (int c = 0; c < reader.num_components; ++c)
        components.push_back(std::make_unique<ComponentShrinker>(reader, writer, c, stamp));
    BandPipe pipe(bands.bytes, [&](BandPipe& full) { DecodeBands(reader, bands, full); });
    while (const std::uint8_t* band = pipe.Full()) {
        reader.control().ThrowIfCancelled();
        for (std::size_t c = 0; c < components.size(); ++c)
            components[c]->Push(band, bands.parts[c]);
        while (writer.next_scanline < writer.image_height && IsBandReady(components))
            EncodeBand(writer, components);
    }
}

} // namespace

PictureSize JpegSize(PictureSource& source, const PictureControl& control) {
    JpegReader reader(source, control);
    ReadHeader(reader);
    return {reader.image_width, reader.image_height};
}

void ShrinkJpeg(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control) {
    JpegReader reader(source, control);
    ReadHeader(reader);
    const PictureSize to = SizeAfter({reader.image_width, reader.image_height}, step);
    StartDecoder(reader, to);
    JpegWriter writer(target);
    StartEncoder(reader, writer, to, step);
    const auto stamp = MakeStamp(reader, writer, step);
    ShrinkBands(reader, writer, stamp ? &*stamp : nullptr);
    jpeg_finish_compress(&writer);
}

} // namespace transforms
