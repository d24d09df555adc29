#include "services/transforms/topdf/PicturePages.h"

#include <string_view>

#include "services/transforms/codecs/PngPicture.h"
#include "services/transforms/codecs/PngProfile.h"
#include "services/transforms/photos/PhotoDecoders.h"
#include "services/transforms/raster/Numbers.h"
#include "services/transforms/topdf/GifPixels.h"
#include "services/transforms/topdf/JpegImage.h"
#include "services/transforms/topdf/PngResolution.h"
#include "services/transforms/topdf/TiffPages.h"

namespace transforms {
namespace {

using namespace std::string_view_literals;

// What each kind's function works with.
struct Work {
    PdfOutput& pdf;
    PictureSource& source;
    const std::wstring& heifLibrary;
    PageSink& pages;
    const PictureControl& control;

    void Add(PagePicture& picture) const {
        const unsigned number = WriteImage(pdf, picture, control);
        pages.AddPage({number, picture.size, picture.orientation, picture.resolution});
    }
};

bool AddJpeg(const Work& work) {
    auto read = ReadJpegImage(work.source, work.control);
    if (auto* const picture = std::get_if<PagePicture>(&read)) {
        work.Add(*picture);
        return true;
    }
    const auto& image = std::get<JpegImage>(read);
    const unsigned number = WriteImage(work.pdf, image, work.source, work.control);
    work.pages.AddPage({number, image.size, image.orientation, image.resolution});
    return true;
}

bool AddPng(const Work& work) {
    const PngChunks chunks = ScanPng(work.source, work.control);
    if (chunks.isAnimated) return false;
    PngPixels pixels = OpenPngPixels(work.source, work.control);
    PagePicture picture;
    const unsigned channels = pixels.rows->Form().channels;
    const bool isColour = pixels.isPacked ? !pixels.palette.empty() : channels >= 3;
    picture.rows = std::move(pixels.rows);
    picture.size = pixels.size;
    picture.bits = pixels.bits;
    picture.samples = isColour ? PhotoSamples::Rgb : PhotoSamples::Grey;
    picture.palette = std::move(pixels.palette);
    picture.profile = ProfileOfPng(chunks, static_cast<std::size_t>(work.control.limits.metadata));
    picture.orientation = chunks.Orientation();
    picture.resolution = ResolutionOfPng(chunks);
    work.Add(picture);
    return true;
}

bool AddGif(const Work& work) {
    auto picture = ReadGif(work.source, work.control);
    if (picture) work.Add(*picture);
    return picture.has_value();
}

bool AddTiff(const Work& work) {
    TiffPages pages(work.source, work.control);
    while (auto picture = pages.Next()) work.Add(*picture);
    return true;
}

// A file's header has the number of pixels a metre.
Resolution ResolutionOfBmp(PictureSource& source) {
    constexpr std::uint64_t kPlace = 38;
    std::uint8_t bytes[8] = {};
    if (ReadPicture(source, kPlace, bytes) != sizeof bytes) return {};
    const std::span<const std::uint8_t> numbers(bytes);
    return {LittleEndian32(numbers) * 0.0254, LittleEndian32(numbers.subspan(4)) * 0.0254};
}

Resolution ResolutionOf(const DecodedPhoto& photo) {
    MemorySource exif(photo.exif);
    return ResolutionOfExif(TiffDirectories(exif));
}

bool AddPhoto(const Work& work, const PhotoForm& form) {
    if (form.isSequence) return false;
    auto photo = DecodePhoto(form.kind, work.source, work.heifLibrary, work.control);
    if (!photo) return false;
    PagePicture picture;
    picture.size = photo->rows->Form().size;
    picture.bits = photo->rows->Form().bits;
    picture.samples = photo->samples;
    picture.zeroAlphaIsUnset = photo->zeroAlphaIsUnset;
    picture.orientation = photo->orientation;
    picture.resolution =
        form.kind == PhotoKind::Bmp ? ResolutionOfBmp(work.source) : ResolutionOf(*photo);
    picture.profile = std::move(photo->profile);
    picture.rows = std::move(photo->rows);
    work.Add(picture);
    return true;
}

struct KindRow {
    std::string_view beginning;
    bool (*add)(const Work&);
};
// Photos of other kinds have a table of their own.
constexpr KindRow kKinds[] = {
    {"\xFF\xD8\xFF"sv, &AddJpeg},
    {"\x89PNG\r\n\x1A\n"sv, &AddPng},
    {"GIF87a"sv, &AddGif},
    {"GIF89a"sv, &AddGif},
};

} // namespace

bool WritePictures(PdfOutput& pdf, PictureSource& source, const std::wstring& heifLibrary,
                   PageSink& pages, const PictureControl& control) {
    const Work work{pdf, source, heifLibrary, pages, control};
    std::uint8_t bytes[8];
    const std::string_view begin(reinterpret_cast<const char*>(bytes),
                                 ReadPicture(source, 0, bytes));
    for (const KindRow& row : kKinds)
        if (begin.starts_with(row.beginning)) return row.add(work);
    const PhotoForm form = PhotoFormOf(source);
    return form.kind == PhotoKind::Tiff ? AddTiff(work) : AddPhoto(work, form);
}

} // namespace transforms
