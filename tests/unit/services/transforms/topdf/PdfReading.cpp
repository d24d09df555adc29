#include "tests/unit/services/transforms/topdf/PdfReading.h"

#include <gtest/gtest.h>

#include <lcms2.h>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <sstream>

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/transforms/photos/HeifLibrary.h"

namespace obtest {

using namespace transforms;

namespace {

std::string TextOf(const std::shared_ptr<Buffer>& data) {
    return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
}

// The filter as it is named: the library also knows JPEG.
std::string Decoded(QPDFObjectHandle stream) {
    if (!stream.getDict().getKey("/Filter").isNameAndEquals("/FlateDecode")) return {};
    return TextOf(stream.getStreamData(qpdf_dl_generalized));
}

void ReadMatrix(const std::string& drawing, PagedPicture& picture) {
    std::istringstream words(drawing);
    std::string begin, end, name, draw, last;
    words >> begin;
    for (double& number : picture.matrix) words >> number;
    words >> end >> name >> draw >> last;
    if (begin != "q" || end != "cm" || name != "/Picture" || draw != "Do" || last != "Q")
        throw std::runtime_error("unexpected contents: " + drawing);
}

PagedPicture ReadPage(QPDFPageObjectHelper& page) {
    PagedPicture picture;
    auto box = page.getObjectHandle().getKey("/MediaBox").getArrayAsVector();
    picture.width = box.at(2).getNumericValue();
    picture.height = box.at(3).getNumericValue();
    std::string drawing;
    for (auto& part : page.getPageContents()) drawing += TextOf(part.getStreamData());
    ReadMatrix(drawing, picture);
    auto image = page.getImages().at("/Picture");
    picture.coded = TextOf(image.getRawStreamData());
    picture.samples = Decoded(image);
    auto dictionary = image.getDict();
    if (auto mask = dictionary.getKey("/SMask"); mask.isStream()) {
        picture.transparency = Decoded(mask);
        picture.maskDictionary = mask.getDict().unparse();
    }
    auto space = dictionary.getKey("/ColorSpace");
    if (space.isArray() && space.getArrayItem(0).isNameAndEquals("/Indexed"))
        space = space.getArrayItem(1);
    if (space.isArray() && space.getArrayItem(0).isNameAndEquals("/ICCBased"))
        picture.profile = Decoded(space.getArrayItem(1));
    dictionary.removeKey("/Length");
    picture.dictionary = dictionary.unparse();
    return picture;
}

} // namespace

std::vector<PagedPicture> ReadPdf(const PictureBytes& file) {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.setAttemptRecovery(false);
    pdf.processMemoryFile("a test's file", reinterpret_cast<const char*>(file.data()), file.size());
    std::vector<PagedPicture> pages;
    for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages()) pages.push_back(ReadPage(page));
    for (auto& object : pdf.getAllObjects()) object.unparseResolved();
    if (pdf.anyWarnings()) throw std::runtime_error(pdf.getWarnings().at(0).what());
    return pages;
}

PagedPicture MadePdf::Page() const {
    EXPECT_EQ(outcome, PictureOutcome::Written);
    const auto pages = Pages();
    EXPECT_EQ(pages.size(), 1u);
    return pages.at(0);
}

MadePdf MakePdf(const PictureBytes& picture, const PictureControl& control, PdfPageSize page) {
    MemorySource source(picture);
    MemoryTarget target;
    const PicturePdfRequest request{page, *ObLib::PathBesideModule(nullptr, kHeifLibraryFileName)};
    const PictureOutcome outcome = MakePicturePdf(source, target, request, control);
    return {outcome, std::move(target.bytes)};
}

std::string HighByteFirst(const PictureBytes& samples) {
    std::string swapped(samples.begin(), samples.end());
    for (std::size_t at = 0; at + 1 < swapped.size(); at += 2)
        std::swap(swapped[at], swapped[at + 1]);
    return swapped;
}

PictureBytes Channels(const Raster& raster, unsigned first, unsigned count) {
    const std::size_t sample = raster.bits / 8;
    PictureBytes bytes;
    for (std::size_t pixel = 0; pixel < std::size_t{raster.width} * raster.height; ++pixel) {
        const auto at = raster.bytes.begin() +
                        static_cast<std::ptrdiff_t>((pixel * raster.channels + first) * sample);
        bytes.insert(bytes.end(), at, at + static_cast<std::ptrdiff_t>(count * sample));
    }
    return bytes;
}

std::string SoundProfile() {
    const cmsHPROFILE profile = cmsCreate_sRGBProfile();
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::string bytes(size, '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

} // namespace obtest
