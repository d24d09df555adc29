#include "services/transforms/photos/PhotoKind.h"

#include <algorithm>
#include <string_view>

#include "services/transforms/photos/TiffDirectories.h"
#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

using namespace std::string_view_literals;

// A dot is any byte.
struct BeginningRow {
    std::string_view beginning;
    PhotoKind kind;
};

constexpr BeginningRow kBeginnings[] = {
    {"RIFF....WEBP"sv, PhotoKind::Webp},  {"II*\0....CR"sv, PhotoKind::Raw},
    {"II*\0"sv, PhotoKind::Tiff},         {"MM\0*"sv, PhotoKind::Tiff},
    {"II+\0"sv, PhotoKind::Tiff},         {"MM\0+"sv, PhotoKind::Tiff},
    {"BM....\0\0\0\0"sv, PhotoKind::Bmp}, {"II\xBC\0"sv, PhotoKind::JpegXr},
    {"II\xBC\1"sv, PhotoKind::JpegXr},    {"IIRO"sv, PhotoKind::Raw},
    {"IIRS"sv, PhotoKind::Raw},           {"MMOR"sv, PhotoKind::Raw},
    {"IIU\0"sv, PhotoKind::Raw},          {"\0MRM"sv, PhotoKind::Raw},
    {"FOVb"sv, PhotoKind::Raw},           {"FUJIFILMCCD-RAW"sv, PhotoKind::Raw},
};

// Brands of a container in boxes; the first of the table that a file names decides.
struct BrandRow {
    std::string_view brand;
    PhotoForm form;
    bool hasToBeMajor;
};

constexpr BrandRow kBrands[] = {
    {"avis"sv, {PhotoKind::Avif, true}, true},   {"hevc"sv, {PhotoKind::Heic, true}, true},
    {"hevx"sv, {PhotoKind::Heic, true}, true},   {"msf1"sv, {PhotoKind::Heic, true}, true},
    {"crx "sv, {PhotoKind::Raw, false}, true},   {"avif"sv, {PhotoKind::Avif, false}, false},
    {"heic"sv, {PhotoKind::Heic, false}, false}, {"heix"sv, {PhotoKind::Heic, false}, false},
    {"heim"sv, {PhotoKind::Heic, false}, false}, {"heis"sv, {PhotoKind::Heic, false}, false},
};

bool Begins(std::string_view bytes, std::string_view with) noexcept {
    if (bytes.size() < with.size()) return false;
    return std::ranges::equal(bytes.substr(0, with.size()), with, [](char byte, char wanted) {
        return wanted == '.' || byte == wanted;
    });
}

bool HasBrand(std::string_view brands, std::string_view brand, bool hasToBeMajor) noexcept {
    if (brands.substr(0, 4) == brand) return true;
    // The major brand, its version, then the others.
    for (std::size_t at = 8; !hasToBeMajor && at + 4 <= brands.size(); at += 4)
        if (brands.substr(at, 4) == brand) return true;
    return false;
}

PhotoForm FormOfContainer(std::string_view bytes) noexcept {
    if (!Begins(bytes, "....ftyp")) return {};
    const std::size_t size = BigEndian32({reinterpret_cast<const std::uint8_t*>(bytes.data()), 4});
    if (size < 16) return {};
    const std::string_view brands = bytes.substr(0, size).substr(8);
    for (const BrandRow& row : kBrands)
        if (HasBrand(brands, row.brand, row.hasToBeMajor)) return row.form;
    return {};
}

bool IsRaw(PictureSource& source) {
    constexpr std::uint32_t kSubfileType = 254, kPhotometric = 262, kSubDirectories = 330,
                            kDngVersion = 50706, kColourFilter = 32803, kLinearRaw = 34892;
    const TiffDirectories file(source);
    const auto first = file.Entries(file.First());
    const auto number = [&](std::uint32_t tag) {
        const TiffEntry* entry = FindEntry(first, tag);
        return entry ? file.Number(*entry) : 0;
    };
    const bool isThumbnail = (number(kSubfileType) & 1) != 0 && FindEntry(first, kSubDirectories);
    return isThumbnail || FindEntry(first, kDngVersion) || number(kPhotometric) == kColourFilter ||
           number(kPhotometric) == kLinearRaw;
}

} // namespace

PhotoForm PhotoFormOf(PictureSource& source) {
    std::uint8_t bytes[256];
    const std::size_t count = ReadPicture(source, 0, bytes);
    const std::string_view begin(reinterpret_cast<const char*>(bytes), count);
    for (const BeginningRow& row : kBeginnings) {
        if (!Begins(begin, row.beginning)) continue;
        if (row.kind == PhotoKind::Tiff && IsRaw(source)) return {PhotoKind::Raw};
        return {row.kind};
    }
    return FormOfContainer(begin);
}

} // namespace transforms
