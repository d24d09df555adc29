#include "tests/unit/services/transforms/photos/PhotoSamples.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace obtest {

using namespace transforms;

namespace {

constexpr int kColours[4][3] = {{200, 20, 20}, {20, 200, 20}, {20, 20, 200}, {230, 230, 230}};

const int* ColourAt(unsigned x, unsigned y, unsigned width, unsigned height) {
    return kColours[(x >= width / 2) + 2 * (y >= height / 2)];
}

// Where a stored pixel is in the upright picture.
std::pair<unsigned, unsigned> Upright(unsigned orientation, unsigned x, unsigned y, unsigned width,
                                      unsigned height) {
    const unsigned right = width - 1 - x, below = height - 1 - y;
    switch (orientation) {
    case 2:
        return {right, y};
    case 3:
        return {right, below};
    case 4:
        return {x, below};
    case 5:
        return {y, x};
    case 6:
        return {below, x};
    case 7:
        return {below, right};
    case 8:
        return {y, right};
    default:
        return {x, y};
    }
}

std::string Number(unsigned value, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

unsigned CountOf(const TiffTag& tag) {
    const unsigned sizes[] = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return static_cast<unsigned>(tag.value.size()) / sizes[tag.type];
}

} // namespace

Raster Quarters(unsigned orientation, unsigned channels, unsigned bits) {
    Raster raster{kPhotoWidth, kPhotoHeight, channels, bits, {}};
    if (orientation >= 5) std::swap(raster.width, raster.height);
    for (unsigned y = 0; y < raster.height; ++y)
        for (unsigned x = 0; x < raster.width; ++x) {
            const auto [at, down] = Upright(orientation, x, y, raster.width, raster.height);
            const int* colour = ColourAt(at, down, kPhotoWidth, kPhotoHeight);
            for (unsigned c = 0; c < channels; ++c)
                for (unsigned byte = 0; byte < bits / 8; ++byte)
                    raster.bytes.push_back(static_cast<std::uint8_t>(c < 3 ? colour[c] : 255));
        }
    return raster;
}

Raster ConvertedPhoto::Pixels() const { return IsPng() ? ParsePng(file) : ParseJpeg(file).raster; }

std::string ConvertedPhoto::Exif() const {
    if (IsPng()) {
        for (const auto& [type, data] : PngChunksOf(file))
            if (type == "eXIf") return data;
        return {};
    }
    for (const auto& [code, data] : ParseJpeg(file).markers)
        if (code == 0xE1) return data.substr(6);
    return {};
}

std::string ConvertedPhoto::Profile() const {
    for (const auto& [code, data] : ParseJpeg(file).markers)
        if (code == 0xE2) return data.substr(14);
    return {};
}

ConvertedPhoto Convert(const PictureBytes& file, const PhotoRequest& request,
                       const PictureControl& control) {
    MemorySource source(file);
    MemoryTarget target;
    ConvertedPhoto converted;
    converted.outcome = ConvertPhoto(source, target, request, control);
    converted.file = target.bytes;
    return converted;
}

void ExpectQuarters(const Raster& raster, int most) {
    ASSERT_EQ(raster.width, kPhotoWidth);
    ASSERT_EQ(raster.height, kPhotoHeight);
    ASSERT_GE(raster.channels, 3u);
    for (unsigned y = 16; y < kPhotoHeight; y += 32)
        for (unsigned x = 24; x < kPhotoWidth; x += 48)
            for (unsigned c = 0; c < 3; ++c)
                EXPECT_NEAR(static_cast<int>(raster.At(x, y, c)),
                            ColourAt(x, y, kPhotoWidth, kPhotoHeight)[c], most)
                    << x << " " << y << " " << c;
}

TiffTag ShortTag(unsigned tag, std::vector<unsigned> values) {
    std::string bytes;
    for (unsigned value : values) bytes += Number(value, 2);
    return {tag, 3, bytes};
}

TiffTag LongTag(unsigned tag, unsigned value) { return {tag, 4, Number(value, 4)}; }
TiffTag TextTag(unsigned tag, const std::string& text) { return {tag, 2, text + '\0'}; }

std::string TiffDirectory(std::vector<TiffTag> tags, std::size_t offset) {
    std::ranges::sort(tags, {}, &TiffTag::tag);
    std::string entries = Number(static_cast<unsigned>(tags.size()), 2), values;
    const std::size_t valuesAt = offset + 2 + 12 * tags.size() + 4;
    for (TiffTag& tag : tags) {
        entries += Number(tag.tag, 2) + Number(tag.type, 2) + Number(CountOf(tag), 4);
        if (tag.value.size() <= 4) {
            tag.value.resize(4);
            entries += tag.value;
            continue;
        }
        entries += Number(static_cast<unsigned>(valuesAt + values.size()), 4);
        values += tag.value;
        if (values.size() % 2) values += '\0';
    }
    return entries + Number(0, 4) + values;
}

PictureBytes PlainTiff(unsigned width, unsigned height, unsigned bits, unsigned channels,
                       const std::string& pixels, std::vector<TiffTag> tags) {
    const std::string head = "II*" + std::string(1, '\0');
    std::string padded = pixels + std::string(pixels.size() % 2, '\0');
    tags.push_back(LongTag(256, width));
    tags.push_back(LongTag(257, height));
    tags.push_back(ShortTag(258, std::vector<unsigned>(channels, bits)));
    tags.push_back(LongTag(273, 8));
    tags.push_back(ShortTag(277, {channels}));
    tags.push_back(LongTag(278, height));
    tags.push_back(LongTag(279, static_cast<unsigned>(pixels.size())));
    const std::string file = head + Number(static_cast<unsigned>(8 + padded.size()), 4) + padded +
                             TiffDirectory(tags, 8 + padded.size());
    return {file.begin(), file.end()};
}

PictureBytes ExifData(std::vector<TiffTag> first, std::vector<TiffTag> exif,
                      std::vector<TiffTag> place) {
    first.push_back(LongTag(0x8769, 0));
    if (!place.empty()) first.push_back(LongTag(0x8825, 0));
    const std::size_t exifAt = 8 + TiffDirectory(first, 8).size();
    const std::string exifBytes = TiffDirectory(exif, exifAt);
    const std::size_t placeAt = exifAt + exifBytes.size();
    for (TiffTag& tag : first) {
        if (tag.tag == 0x8769) tag = LongTag(0x8769, static_cast<unsigned>(exifAt));
        if (tag.tag == 0x8825) tag = LongTag(0x8825, static_cast<unsigned>(placeAt));
    }
    std::string data =
        "II*" + std::string(1, '\0') + Number(8, 4) + TiffDirectory(first, 8) + exifBytes;
    if (!place.empty()) data += TiffDirectory(place, placeAt);
    return {data.begin(), data.end()};
}

} // namespace obtest
