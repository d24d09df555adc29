// Which documents of older office programs need a password.
#include "services/transforms/documents/OldContainer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace std::string_view_literals;
using transforms::documents::NeedsPassword;

namespace {

constexpr std::size_t kSector = 512;

// A container with a header, the directory in sector 0 and one stream from sector 1 on. Sector 8 is
// the table of sectors, the last one.
struct Container {
    Container(std::string_view name, std::string_view stream) : bytes(10 * kSector, '\0') {
        bytes.replace(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
        bytes[30] = 9;
        bytes[76] = 8;
        bytes.replace(kSector, 20, "R\0o\0o\0t\0 \0E\0n\0t\0r\0y\0"sv);
        bytes[kSector + 66] = 5;
        bytes[kSector + 116] = 3; // the stream of small streams: sectors 3 and 5
        for (std::size_t at = 0; at < kSector; ++at) bytes[9 * kSector + at] = '\xFF';
        bytes.replace(9 * kSector + 12, 4, "\x05\0\0\0"sv);
        char* const entry = bytes.data() + kSector + 128; // after the root's
        for (std::size_t at = 0; at < name.size(); ++at) entry[2 * at] = name[at];
        entry[66] = 2;
        entry[116] = 1;
        entry[121] = 0x20; // 8,192 bytes
        bytes.replace(2 * kSector, stream.size(), stream);
    }
    bool IsProtected() const { return NeedsPassword(std::as_bytes(std::span(bytes))); }
    char& InEntry(std::size_t at) { return bytes[kSector + 128 + at]; }

    std::string bytes;
};

constexpr auto kText = "\xEC\xA5\xC1\0\0\0\0\0\0\0\0\x01"sv; // the last byte has the flag
constexpr auto kTable = "\x09\x08\x04\0\0\x06\x05\0\x86\0\0\0\x2F\0\x02\0\0\0"sv;

TEST(OldContainerPassword, IsNeededByTextsTablesAndSlidesThatDeclareIt) {
    EXPECT_TRUE(Container("WordDocument", kText).IsProtected());
    EXPECT_TRUE(Container("Workbook", kTable).IsProtected());
    EXPECT_TRUE(Container("Book", kTable).IsProtected());
    EXPECT_TRUE(Container("EncryptedSummary", "").IsProtected());
}

TEST(OldContainerPassword, IsNotNeededByOthers) {
    EXPECT_FALSE(Container("WordDocument", "\xEC\xA5\xC1\0\0\0\0\0\0\0\x01\0"sv).IsProtected());
    EXPECT_FALSE(Container("WordDocument", "\xEC\xA6\xC1\0\0\0\0\0\0\0\0\x01"sv).IsProtected());
    EXPECT_FALSE(Container("Workbook", "\x09\x08\x04\0\0\x06\x05\0\x42\0\x04\0\x2F\0\x02\0"sv)
                     .IsProtected());
    EXPECT_FALSE(Container("Other", kText).IsProtected());
    EXPECT_FALSE(Container("WordDocumentX", kText).IsProtected());
    EXPECT_FALSE(Container("WordDocumen", kText).IsProtected());
}

TEST(OldContainerPassword, IsLookedForInStreamsAlone) {
    Container folder("WordDocument", kText);
    folder.InEntry(66) = 1;
    EXPECT_FALSE(folder.IsProtected());
}

// The ninth of the small sectors is the second of the root's stream's second one.
TEST(OldContainerPassword, IsFoundInSmallStreams) {
    Container small("WordDocument", "");
    small.InEntry(121) = 1; // 256 bytes
    small.InEntry(116) = 9;
    EXPECT_FALSE(small.IsProtected());
    small.bytes.replace(6 * kSector + 64, kText.size(), kText);
    EXPECT_TRUE(small.IsProtected());
    small.bytes[9 * kSector + 12] = 3; // a stream that goes in a circle
    small.InEntry(119) = 1;
    EXPECT_FALSE(small.IsProtected());
    small.bytes[kSector + 66] = 2; // no root
    EXPECT_FALSE(small.IsProtected());
}

TEST(OldContainerPassword, IsNotReadPastTheEnd) {
    Container away("WordDocument", kText);
    for (std::size_t at = 116; at < 120; ++at) away.InEntry(at) = '\xFF';
    EXPECT_FALSE(away.IsProtected());
    Container odd("WordDocument", kText);
    odd.bytes[30] = 20;
    EXPECT_FALSE(odd.IsProtected());
    const Container whole("Workbook", kTable);
    for (std::size_t size = 0; size < whole.bytes.size(); size += 7) {
        Container cut = whole;
        cut.bytes.resize(size);
        cut.bytes.shrink_to_fit();
        EXPECT_EQ(cut.IsProtected(), size >= 2 * kSector + 16) << size;
    }
}

} // namespace
