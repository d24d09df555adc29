// What a reader finds in a PDF of pictures, by a library that shares no code with the writer.
#pragma once

#include <string>
#include <vector>

#include "services/transforms/topdf/PicturePdf.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace obtest {

struct PagedPicture {
    std::string dictionary;   // of the picture, without its length
    std::string coded;        // its data as they are stored
    std::string samples;      // and decoded; empty for a JPEG
    std::string transparency; // decoded samples of its mask; empty for none
    std::string maskDictionary;
    std::string profile;
    double width = 0, height = 0; // of the page
    double matrix[6] = {};
};

// A page each. Throws std::runtime_error for a file that isn't as it should be.
std::vector<PagedPicture> ReadPdf(const PictureBytes& file);

struct MadePdf {
    transforms::PictureOutcome outcome{};
    PictureBytes file;
    std::vector<PagedPicture> Pages() const { return ReadPdf(file); }
    PagedPicture Page() const;
};

// With the library for HEIC beside the test.
MadePdf MakePdf(const PictureBytes& picture, const transforms::PictureControl& control = {},
                transforms::PdfPageSize page = transforms::PdfPageSize::AsPicture);

inline std::string TextOf(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}
// Samples of 16 bits as PDF stores them, from the processor's order.
std::string HighByteFirst(const PictureBytes& samples);
// The channels [first, first + count) of each pixel.
PictureBytes Channels(const Raster& raster, unsigned first, unsigned count);
// A profile that a colour library can use.
std::string SoundProfile();

} // namespace obtest
