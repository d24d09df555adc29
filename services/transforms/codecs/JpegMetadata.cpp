// Which marker segments are kept.
#include "services/transforms/codecs/JpegMetadata.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "services/transforms/raster/ExifValues.h"

namespace transforms {
namespace {

using namespace std::string_view_literals;

bool Begins(const jpeg_saved_marker_ptr marker, int code, std::string_view with) noexcept {
    return marker->marker == code && marker->data_length >= with.size() &&
           std::memcmp(marker->data, with.data(), with.size()) == 0;
}

constexpr std::string_view Exif = "Exif\0\0"sv;

// The library writes the first two itself.
bool IsLeftOut(const jpeg_saved_marker_ptr marker) noexcept {
    return Begins(marker, JPEG_APP0, "JFIF\0"sv) || Begins(marker, JPEG_APP0 + 14, "Adobe"sv) ||
           Begins(marker, JPEG_APP0, "JFXX\0"sv) || Begins(marker, JPEG_APP0 + 2, "MPF\0"sv);
}

} // namespace

void KeepMarkers(JpegReader& reader) {
    jpeg_save_markers(&reader, JPEG_COM, 0xFFFF);
    for (int i = 0; i < 16; ++i) jpeg_save_markers(&reader, JPEG_APP0 + i, 0xFFFF);
}

void CopyMarkers(const JpegReader& reader, JpegWriter& writer, PictureSize size, bool isStamped) {
    for (auto* marker = reader.marker_list; marker; marker = marker->next) {
        if (IsLeftOut(marker)) continue;
        std::vector<std::uint8_t> data(marker->data, marker->data + marker->data_length);
        if (Begins(marker, JPEG_APP0 + 1, Exif)) {
            const auto exif = std::span(data).subspan(Exif.size());
            SetExifSize(exif, size);
            if (isStamped) DropExifThumbnail(exif);
        }
        jpeg_write_marker(&writer, marker->marker, data.data(), static_cast<unsigned>(data.size()));
    }
}

PictureBytes JpegProfile(JpegReader& reader) {
    struct Free {
        void operator()(JOCTET* bytes) const noexcept { std::free(bytes); }
    };
    JOCTET* bytes = nullptr;
    unsigned size = 0;
    if (!jpeg_read_icc_profile(&reader, &bytes, &size)) return {};
    const std::unique_ptr<JOCTET, Free> owner(bytes);
    return {bytes, bytes + size};
}

std::uint16_t JpegOrientation(const JpegReader& reader) noexcept {
    for (auto* marker = reader.marker_list; marker; marker = marker->next) {
        if (Begins(marker, JPEG_APP0 + 1, Exif))
            return ExifOrientation({marker->data + Exif.size(), marker->data_length - Exif.size()});
    }
    return kUprightOrientation;
}

} // namespace transforms
