// Kinds of photos by their first bytes.
#include <gtest/gtest.h>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;
using namespace std::string_literals;

PhotoForm FormOf(const PictureBytes& file) {
    MemorySource source(file);
    return PhotoFormOf(source);
}
PhotoForm FormOf(const std::string& file) { return FormOf(PictureBytes(file.begin(), file.end())); }

std::string Container(const std::string& major, const std::string& others = "mif1") {
    return "\0\0\0"s + static_cast<char>(16 + others.size()) + "ftyp" + major + "\0\0\0\0"s +
           others + std::string(64, 'x');
}

TEST(PhotoKindTest, IsFoundByTheFirstBytes) {
    const std::pair<std::string, PhotoKind> rows[] = {
        {"RIFF\x10\0\0\0WEBPVP8 "s, PhotoKind::Webp},
        {"BM\x10\0\0\0\0\0\0\0"s, PhotoKind::Bmp},
        {"II\xBC\1\x20\0\0\0"s, PhotoKind::JpegXr},
        {"FUJIFILMCCD-RAW 0201"s, PhotoKind::Raw},
        {"IIRO\x08\0\0\0"s, PhotoKind::Raw},
        {"IIU\0\x18\0\0\0"s, PhotoKind::Raw},
        {"II*\0\x10\0\0\0CR\2\0"s, PhotoKind::Raw},
        {Container("heic"), PhotoKind::Heic},
        {Container("heix"), PhotoKind::Heic},
        {Container("mif1", "mif1heic"), PhotoKind::Heic},
        {Container("avif"), PhotoKind::Avif},
        {Container("mif1", "miafavif"), PhotoKind::Avif},
        {Container("crx "), PhotoKind::Raw},
    };
    for (const auto& [file, kind] : rows) {
        EXPECT_EQ(FormOf(file).kind, kind) << file.substr(0, 12);
        EXPECT_FALSE(FormOf(file).isSequence);
    }
}

TEST(PhotoKindTest, IsNoneForWhatIsNotConverted) {
    for (const std::string& file :
         {""s, "I"s, "\xFF\xD8\xFF\xE0"s, "\x89PNG\r\n\x1A\n"s, "GIF89a"s, "%PDF-1.7"s,
          Container("isom"), Container("mp42", "isom"), Container("mif1", "miaf"),
          "\0\0\0\x08"
          "ftypheic"s,
          "\xFF\xFF\xFF\xFF"
          "ftyp"s})
        EXPECT_EQ(FormOf(file).kind, PhotoKind::None) << file.substr(0, 12);
}

TEST(PhotoKindTest, ReportsMovingPictures) {
    for (const char* major : {"avis", "msf1", "hevc", "hevx"})
        EXPECT_TRUE(FormOf(Container(major, "mif1heicavif")).isSequence) << major;
}

TEST(PhotoKindTest, IsRawForAThumbnailInADirectoryOfARawPhoto) {
    const auto tiff = [](std::vector<TiffTag> tags) {
        return FormOf(PlainTiff(4, 4, 8, 3, std::string(48, 'x'), tags)).kind;
    };
    EXPECT_EQ(tiff({ShortTag(262, {2})}), PhotoKind::Tiff);
    EXPECT_EQ(tiff({ShortTag(262, {2}), LongTag(254, 1)}), PhotoKind::Tiff);
    EXPECT_EQ(tiff({ShortTag(262, {2}), LongTag(330, 8)}), PhotoKind::Tiff);
    EXPECT_EQ(tiff({ShortTag(262, {2}), LongTag(254, 1), LongTag(330, 8)}), PhotoKind::Raw);
    EXPECT_EQ(tiff({ShortTag(262, {32803})}), PhotoKind::Raw);
    EXPECT_EQ(tiff({ShortTag(262, {2}), {50706, 7, "\1\4\0\0"s}}), PhotoKind::Raw);
}

} // namespace
