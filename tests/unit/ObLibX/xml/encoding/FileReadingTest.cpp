// Reading a file block by block: the text and the report.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::kFileBigEndian;
using ObLibX::kFileUtf16;
using ObLibX::TextFileChannel;
using obtest::Bytes;
using obtest::Elements;
using obtest::Reader;
using obtest::ScratchFile;
using obtest::Swapped;

// One block from the start of a file of these bytes.
struct Block {
    Block(const std::string& content, std::int32_t size, const std::wstring& encoding = {},
          std::uint32_t flags = 0)
        : file(content), channel(Reader(file, content.size())) {
        channel.encoding = encoding;
        channel.fileFlags = flags;
        channel.opByteLength = size;
        good = channel.ReadText(text);
        report = Elements(channel.report);
    }
    ScratchFile file;
    TextFileChannel channel;
    std::wstring text;
    std::string report;
    bool good = false;
};

// The whole file in blocks of `size` bytes; stops when a block makes no progress.
std::wstring ReadAll(const std::string& content, std::int32_t size, const std::wstring& encoding,
                     std::uint32_t flags = 0, int* truncations = nullptr) {
    const ScratchFile file(content);
    TextFileChannel channel = Reader(file, content.size());
    channel.encoding = encoding;
    channel.fileFlags = flags;
    std::wstring text;
    while (channel.fileOffset < channel.fileLength) {
        const std::uint32_t before = channel.fileOffset;
        channel.opByteLength = size;
        std::wstring block = L"was here before";
        EXPECT_TRUE(channel.ReadText(block));
        EXPECT_EQ(block.size(), static_cast<std::size_t>(channel.opTextLength));
        text += block;
        if (truncations != nullptr && channel.report.find(L"truncation") != std::wstring::npos) {
            ++*truncations;
        }
        if (channel.fileOffset == before) {
            ADD_FAILURE() << "no progress with blocks of " << size;
            break;
        }
    }
    return text;
}

TEST(ReadText, ReportsAnEmptyRequestAndSucceeds) {
    const Block block("content", 0, L"UTF-8");
    EXPECT_TRUE(block.good);
    EXPECT_EQ(block.text, L"");
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="0"/>)");
    EXPECT_EQ(block.channel.fileOffset, 0u);
    const Block negative("content", -5, L"UTF-8");
    EXPECT_TRUE(negative.good);
    EXPECT_EQ(negative.report, R"(<read encoding="UTF-8" length="0"/>)");
}

TEST(ReadText, ReportsAnEmptyReadAtTheEndOfTheFile) {
    const Block block("", 100);
    EXPECT_TRUE(block.good);
    EXPECT_EQ(block.report, R"(<read encoding="" length="0"/>)");
    EXPECT_EQ(block.channel.encoding, L"");
}

TEST(ReadText, CutsTheRequestToTheRestOfTheFile) {
    const Block block("content", 100, L"UTF-8");
    EXPECT_TRUE(block.good);
    EXPECT_EQ(block.text, L"content");
    EXPECT_EQ(block.channel.opByteLength, 7);
    EXPECT_EQ(block.channel.opTextLength, 7);
    EXPECT_EQ(block.channel.fileOffset, 7u);
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="7"/>)"
                            R"(<converted_to encoding="UTF-16" length="7"/>)");
    const Block huge("content", std::numeric_limits<std::int32_t>::max(), L"UTF-8");
    EXPECT_EQ(huge.text, L"content");
}

TEST(ReadText, StartsTheReportAnew) {
    Block block("first second", 5, L"UTF-8");
    block.channel.opByteLength = 7;
    EXPECT_TRUE(block.channel.ReadText(block.text));
    EXPECT_EQ(block.text, L" second");
    EXPECT_EQ(Elements(block.channel.report), R"(<read encoding="UTF-8" length="7"/>)"
                                              R"(<converted_to encoding="UTF-16" length="7"/>)");
}

TEST(ReadText, DetectsUtf8AndNamesItInTheReadElement) {
    const Block block("caf\xC3\xA9", 100);
    EXPECT_EQ(block.text, L"caf\xE9");
    EXPECT_EQ(block.channel.encoding, L"UTF-8");
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="5"/><utf8_detection/>)"
                            R"(<converted_to encoding="UTF-16" length="4"/>)");
    EXPECT_EQ(block.channel.opByteLength, 5);
    EXPECT_EQ(block.channel.opTextLength, 4);
}

TEST(ReadText, LeavesTheEncodingOpenWhenTheBytesAreNoUtf8) {
    const Block block("caf\xE9 au lait", 100);
    EXPECT_EQ(block.channel.encoding, L"");
    EXPECT_EQ(block.report, R"(<read encoding="" length="12"/><utf8_detection/>)"
                            R"(<converted_to encoding="UTF-16" length="12"/>)");
    if (ObLibX::SystemCodePage() == 1252) {
        EXPECT_EQ(block.text, L"caf\xE9 au lait");
    }
}

TEST(ReadText, DoesNotDetectWhereTheEncodingIsKnown) {
    const Block block("abc", 100, L"windows-1252");
    EXPECT_EQ(block.report.find("utf8_detection"), std::string::npos);
    EXPECT_EQ(block.channel.encoding, L"windows-1252");
}

TEST(ReadText, DetectsPerBlockAsLongAsNoEncodingIsKnown) {
    Block block("\xE9 abcdef", 2);
    EXPECT_EQ(block.channel.encoding, L"");
    block.channel.opByteLength = 3;
    block.channel.ReadText(block.text);
    EXPECT_EQ(block.channel.encoding, L"UTF-8");
    EXPECT_NE(block.channel.report.find(L"utf8_detection"), std::wstring::npos);
    block.channel.opByteLength = 3;
    block.channel.ReadText(block.text);
    EXPECT_EQ(block.channel.report.find(L"utf8_detection"), std::wstring::npos);
}

TEST(ReadText, TakesBytesWithANulBeforeAnyHighByteForUtf8) {
    const Block block(std::string("ab\0c\xE9 d", 7), 100);
    EXPECT_EQ(block.channel.encoding, L"UTF-8");
    EXPECT_EQ(block.report.substr(0, block.report.find("<conv")),
              R"(<read encoding="UTF-8" length="7"/><nulls_removed count="1"/><utf8_detection/>)");
}

TEST(ReadText, TakesASequenceThatANulBreaksForNoUtf8) {
    const Block last(std::string("ab\xC3\0\xA9", 5), 100);
    EXPECT_EQ(last.channel.encoding, L"");
    // It is the NUL that breaks it here, and not the block's end.
    const Block followed(std::string("ab\xC3\0\xA9 and more", 14), 5);
    EXPECT_EQ(followed.channel.encoding, L"");
}

TEST(ReadText, ForgivesInDetectionASequenceThatTheBlocksEndCuts) {
    const Block inside("ab\xE2\x82\xAC", 4);
    EXPECT_EQ(inside.channel.encoding, L"UTF-8");
    EXPECT_EQ(inside.text, L"ab");
    const Block atTheEnd("ab\xE2\x82", 4);
    EXPECT_EQ(atTheEnd.channel.encoding, L"");
}

TEST(ReadText, GivesACutCharacterBackToTheFile) {
    Block block("ab\xE2\x82\xAC"
                "c",
                4, L"UTF-8");
    EXPECT_EQ(block.text, L"ab");
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="2"/>)"
                            R"(<converted_to encoding="UTF-16" length="2"/>)");
    EXPECT_EQ(block.channel.fileOffset, 2u);
    EXPECT_EQ(block.channel.opByteLength, 2);
    EXPECT_EQ(block.channel.opTextLength, 2);
    EXPECT_EQ(std::ftell(block.channel.file.get()), 2);
    block.channel.opByteLength = 100;
    EXPECT_TRUE(block.channel.ReadText(block.text));
    EXPECT_EQ(block.text, L"\x20AC"
                          L"c");
}

TEST(ReadText, GivesNothingBackInTheLastBlock) {
    const Block block("ab\xE2\x82", 4, L"UTF-8");
    EXPECT_EQ(block.channel.fileOffset, 4u);
    EXPECT_NE(block.report.find(R"(length="4")"), std::string::npos);
}

TEST(ReadText, ReportsABlockWithoutABoundaryAndUsesItUnchanged) {
    const Block named("\xF0\x9F\x98\x80", 3, L"UTF-8");
    EXPECT_TRUE(named.good);
    EXPECT_EQ(named.report.find(
                  R"(<read encoding="UTF-8" length="3"/><truncation_error encoding="UTF-8"/>)"
                  R"(<converted_to encoding="UTF-16" length=")"),
              0u);
    EXPECT_EQ(named.channel.fileOffset, 3u);
}

TEST(ReadText, ReadsEveryBlockSizeToTheSameText) {
    const std::string content =
        "x\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 ab\xF4\x8F\xBF\xBF\xEF\xBF\xBFz";
    const std::wstring text = L"x\xE9\x20AC\xD83D\xDE00 ab\xDBFF\xDFFF\xFFFFz";
    for (std::int32_t size = 4; size <= 30; ++size) {
        int truncations = 0;
        EXPECT_EQ(ReadAll(content, size, L"UTF-8", 0, &truncations), text) << size;
        EXPECT_EQ(ReadAll(content, size, L"", 0, &truncations), text) << size;
        EXPECT_EQ(truncations, 0) << size;
    }
    for (std::int32_t size = 1; size <= 3; ++size) {
        int truncations = 0;
        ReadAll(content, size, L"UTF-8", 0, &truncations);
        EXPECT_GT(truncations, 0) << size;
    }
}

TEST(ReadText, ReadsADoubleBytePageInEveryBlockSize) {
    if (!obtest::HasPage(932)) {
        GTEST_SKIP() << "no code page 932 here; encodings_fake_system_test reads one of its own";
    }
    std::string content;
    for (int i = 0; i < 50; ++i) {
        content += "a\x82\xA0\x83\x5C\x95\x5C";
    }
    const std::u16string expected = obtest::DecodePage(932, content);
    for (std::int32_t size = 40; size <= 90; ++size) {
        const std::wstring text = ReadAll(content, size, L"Shift_JIS");
        EXPECT_EQ(std::u16string(text.begin(), text.end()), expected) << size;
    }
}

TEST(ReadText, DropsNulBytes) {
    const Block block(std::string("\0a\0\0b\0c\0", 8), 100, L"UTF-8");
    EXPECT_EQ(block.text, L"abc");
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="8"/><nulls_removed count="5"/>)"
                            R"(<converted_to encoding="UTF-16" length="3"/>)");
    const Block nothing(std::string(4, '\0'), 100);
    EXPECT_TRUE(nothing.good);
    EXPECT_EQ(nothing.text, L"");
    EXPECT_NE(nothing.report.find(R"(<nulls_removed count="4"/>)"), std::string::npos);
}

TEST(ReadText, LosesNothingWhenNulsFollowABoundary) {
    // The bytes that are given back have NULs in and around them, in the file but not in the block.
    const std::string content("ab\0\xE2\0\x82\0\0\xAC\0cd\0\xC3\0\xA9\0e", 19);
    for (std::int32_t size = 6; size <= 20; ++size) { // a character and its NULs
        EXPECT_EQ(ReadAll(content, size, L"UTF-8"), L"ab\x20AC"
                                                    L"cd\xE9"
                                                    L"e")
            << size;
    }
    const Block block(content, 8, L"UTF-8");
    EXPECT_EQ(block.text, L"ab");
    EXPECT_EQ(block.channel.fileOffset, 3u);
    EXPECT_EQ(block.report, R"(<read encoding="UTF-8" length="3"/><nulls_removed count="1"/>)"
                            R"(<converted_to encoding="UTF-16" length="2"/>)");
}

TEST(ReadText, ReadsUtf16WithoutConversion) {
    for (const std::uint32_t flags : {kFileUtf16, kFileUtf16 | 0x10}) {
        const Block block(Bytes(u"a\x20AC\xD83D\xDE00"), 100, L"UTF-16LE", flags);
        EXPECT_TRUE(block.good);
        EXPECT_EQ(block.text, L"a\x20AC\xD83D\xDE00");
        EXPECT_EQ(block.report, R"(<read encoding="UTF-16LE" length="4"/>)");
        EXPECT_EQ(block.channel.opByteLength, 8);
        EXPECT_EQ(block.channel.opTextLength, 4);
        EXPECT_EQ(block.channel.unitSize, 2);
    }
}

TEST(ReadText, SwapsBigEndianUtf16) {
    for (const std::uint32_t flags : {kFileBigEndian, kFileBigEndian | kFileUtf16}) {
        const Block block(Swapped(Bytes(u"a\x20AC\x0100")), 100, L"UTF-16BE", flags);
        EXPECT_EQ(block.text, L"a\x20AC\x0100");
        EXPECT_EQ(block.report, R"(<read encoding="UTF-16BE" length="3"/><endian_swap/>)");
    }
}

TEST(ReadText, DropsNulUnitsOfUtf16AndNotNulBytes) {
    const std::u16string content = {u'a', 0, 0, 0x0100, 0, u'b'};
    const Block little(Bytes(content), 100, L"", kFileUtf16);
    EXPECT_EQ(little.text, L"a\x0100"
                           L"b");
    EXPECT_EQ(little.report, R"(<read encoding="" length="6"/><nulls_removed count="3"/>)");
    EXPECT_EQ(little.channel.opTextLength, 3);
    const Block big(Swapped(Bytes(content)), 100, L"", kFileBigEndian);
    EXPECT_EQ(big.text, L"a\x0100"
                        L"b");
    EXPECT_EQ(big.report,
              R"(<read encoding="" length="6"/><nulls_removed count="3"/><endian_swap/>)");
}

TEST(ReadText, GivesASurrogateAtTheEndOfABlockBack) {
    for (const std::uint32_t flags : {kFileUtf16, kFileBigEndian}) {
        const std::string bytes = Bytes(u"ab\xD83D\xDE00"
                                        u"c");
        Block block(flags == kFileUtf16 ? bytes : Swapped(bytes), 6, L"UTF-16", flags);
        EXPECT_EQ(block.text, L"ab");
        EXPECT_EQ(block.channel.fileOffset, 4u);
        EXPECT_NE(block.report.find(R"(<read encoding="UTF-16" length="2"/>)"), std::string::npos);
        block.channel.opByteLength = 100;
        EXPECT_TRUE(block.channel.ReadText(block.text));
        EXPECT_EQ(block.text, L"\xD83D\xDE00"
                              L"c");
    }
}

TEST(ReadText, ReadsUtf16InEveryBlockSizeOddOnesToo) {
    const std::u16string content = {u'a', 0xD83D, 0xDE00, u'b', 0, 0xD83D, 0xDE01, 0xDC00, u'c'};
    const std::wstring text = L"a\xD83D\xDE00"
                              L"b\xD83D\xDE01\xDC00"
                              L"c";
    for (std::int32_t size = 1; size <= 20; ++size) {
        EXPECT_EQ(ReadAll(Bytes(content), size, L"UTF-16", kFileUtf16), text) << size;
        EXPECT_EQ(ReadAll(Swapped(Bytes(content)), size, L"", kFileBigEndian), text) << size;
    }
}

TEST(ReadText, LeavesOutHalfAUnitAtTheEndOfAFile) {
    EXPECT_EQ(ReadAll(Bytes(u"ab") + "c", 100, L"", kFileUtf16), L"ab");
    EXPECT_EQ(ReadAll(Bytes(u"ab") + "c", 4, L"", kFileUtf16), L"ab");
    EXPECT_EQ(ReadAll("c", 100, L"", kFileUtf16), L"");
}

TEST(ReadText, GivesBackAPartOfAUnitOfAWiderEncoding) {
    std::string content;
    for (const char32_t value : U"a\x20AC\U0001F600\x0141") {
        if (value != 0) {
            content.append(reinterpret_cast<const char*>(&value), sizeof value);
        }
    }
    // NUL bytes are dropped from files of bytes, so only characters without them come through: the
    // point is that no read passes the end of the block.
    for (std::int32_t size = 1; size <= 20; ++size) {
        ReadAll(content, size, L"UTF-32");
        ReadAll(content, size, L"utf-16");
    }
}

TEST(ReadText, TakesAFileThatEndsEarlyForEndedThere) {
    const ScratchFile file("short");
    TextFileChannel channel = Reader(file, 5'000);
    channel.encoding = L"UTF-8";
    channel.opByteLength = 100;
    std::wstring text;
    EXPECT_TRUE(channel.ReadText(text));
    EXPECT_EQ(text, L"short");
    EXPECT_EQ(channel.fileLength, 5u);
    EXPECT_EQ(channel.opByteLength, 5);
    EXPECT_EQ(Elements(channel.report), R"(<read encoding="UTF-8" length="5"/>)"
                                        R"(<converted_to encoding="UTF-16" length="5"/>)");
}

TEST(ReadText, ReadsNothingPastTheEndOfTheFile) {
    const ScratchFile file("content");
    TextFileChannel channel = Reader(file, 3);
    channel.fileOffset = 4'000'000'000u;
    channel.opByteLength = 100;
    std::wstring text;
    EXPECT_TRUE(channel.ReadText(text));
    EXPECT_EQ(text, L"");
    EXPECT_EQ(channel.fileOffset, 4'000'000'000u);
}

TEST(ReadBlockRaw, ReadsBytesAndCountsUnits) {
    const ScratchFile file(std::string("a\0b", 3));
    TextFileChannel channel = Reader(file, 3);
    channel.opByteLength = 3;
    char place[4] = "###";
    EXPECT_TRUE(channel.ReadBlockRaw(place));
    EXPECT_EQ(std::string(place, 2), "ab");
    EXPECT_EQ(channel.opByteLength, 3);
    EXPECT_EQ(channel.opTextLength, 2);
    EXPECT_EQ(channel.fileOffset, 3u);
    EXPECT_EQ(Elements(channel.report),
              R"(<read encoding="" length="3"/><nulls_removed count="1"/>)");
}

TEST(ReadBlockRaw, StillSwapsWhenTheReportTakesNoMore) {
    const ScratchFile file(Swapped(Bytes(u"ab")));
    TextFileChannel channel = Reader(file, 4);
    channel.report = L"<x>" + std::wstring(1'000, L'.') + L"</x>";
    const std::wstring before = channel.report;
    channel.fileFlags = kFileBigEndian;
    channel.unitSize = 2;
    channel.opByteLength = 4;
    wchar_t place[2];
    EXPECT_TRUE(channel.ReadBlockRaw(place));
    EXPECT_EQ(std::wstring(place, 2), L"ab");
    EXPECT_EQ(channel.report, before);
}

// ---- More text for the scanner

struct Stream {
    explicit Stream(const std::string& content, std::int32_t blockSize)
        : file(content), channel(Reader(file, content.size())) {
        channel.encoding = L"UTF-8";
        channel.blockSize = blockSize;
        channel.documentText = &text;
    }
    ScratchFile file;
    std::wstring text;
    TextFileChannel channel;
};

TEST(ReadMore, AppendsABlockOfTheSizeRoundedDownToFourPlusFour) {
    Stream stream("0123456789abcdefghijklmnopqrstuvwxyz", 11);
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.text, L"0123456789ab"); // 11 & ~3, plus 4
    EXPECT_EQ(stream.channel.bufferRemoved, 0);
    EXPECT_EQ(stream.channel.blockSize, 11);
}

TEST(ReadMore, DropsTheUnusedFrontAndReportsItsLength) {
    Stream stream("0123456789abcdefghijklmnopqrstuvwxyz", 8);
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.text, L"0123456789ab");
    stream.channel.bufferKeepFrom = 9;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.bufferRemoved, 9);
    EXPECT_EQ(stream.channel.blockSize, 8);
    EXPECT_EQ(stream.text, L"9abcdefghij"); // 8 - 3, down to 4, plus 4
}

TEST(ReadMore, DoublesTheBlockWhenMoreThanHalfIsInUse) {
    Stream stream("0123456789abcdefghijklmnopqrstuvwxyz", 8);
    EXPECT_TRUE(stream.channel.ReadMore()); // 12 units
    stream.channel.bufferKeepFrom = 6;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.blockSize, 8); // just half
    stream.text = L"0123456789";
    stream.channel.bufferKeepFrom = 4;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.blockSize, 16);
}

TEST(ReadMore, AddsTextAlthoughTheTextIsLongerThanABlock) {
    Stream stream(std::string(100, 'x'), 4);
    stream.text = std::wstring(1'000, L'y');
    stream.channel.bufferKeepFrom = 0;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.blockSize, 8);
    EXPECT_EQ(stream.text.size(), 1'004u);
}

TEST(ReadMore, WorksWithAnyBlockSize) {
    for (const std::int32_t size :
         {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 3, (1 << 30) - 1, 1 << 30,
          std::numeric_limits<std::int32_t>::max()}) {
        Stream stream("0123456789", size);
        std::size_t before = 0;
        stream.channel.bufferKeepFrom = 0;
        while (stream.channel.ReadMore()) {
            EXPECT_GT(stream.text.size(), before);
            before = stream.text.size();
        }
        EXPECT_EQ(stream.text, L"0123456789") << size;
    }
}

TEST(ReadMore, IsFalseAtTheEndAndLeavesTheText) {
    Stream stream("0123", 8);
    EXPECT_TRUE(stream.channel.ReadMore());
    stream.channel.bufferKeepFrom = 2;
    EXPECT_FALSE(stream.channel.ReadMore());
    EXPECT_EQ(stream.text, L"0123");
    EXPECT_EQ(stream.channel.bufferRemoved, 0);
}

TEST(ReadMore, SavesTheTextThatMustSurvive) {
    Stream stream("0123456789abcdefghijklmnopqrstuvwxyz", 8);
    EXPECT_TRUE(stream.channel.ReadMore());
    stream.channel.savedFrom = 5;
    stream.channel.bufferKeepFrom = 9;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.savedText, L"5678");
    EXPECT_EQ(stream.channel.savedFrom, 0);
    stream.channel.bufferKeepFrom = 10;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.savedText, L"56789abcdefghi");
    // A savedFrom after the unused front moves with the text.
    stream.channel.savedText.clear();
    stream.channel.savedFrom = 7;
    stream.channel.bufferKeepFrom = 3;
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.channel.savedText, L"");
    EXPECT_EQ(stream.channel.savedFrom, 4);
}

TEST(ReadMore, PassesOverBlocksWithoutText) {
    Stream stream("0123" + std::string(100, '\0') + "4567", 0);
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.text, L"0123");
    EXPECT_TRUE(stream.channel.ReadMore());
    EXPECT_EQ(stream.text, L"01234567");
    EXPECT_FALSE(stream.channel.ReadMore());
}

TEST(ReadMore, ReadsAFileInConstantMemory) {
    std::string content;
    while (content.size() < 300'000) {
        content += "<item>caf\xC3\xA9 \xE2\x82\xAC</item>";
    }
    Stream stream(content, 4'096);
    std::size_t units = 0;
    std::size_t most = 0;
    while (stream.channel.ReadMore()) {
        units += stream.text.size();
        most = std::max(most, stream.text.size());
        stream.channel.bufferKeepFrom = static_cast<std::int32_t>(stream.text.size());
    }
    const std::size_t items = content.size() / 22;
    EXPECT_EQ(content.size() % 22, 0u);
    EXPECT_EQ(units, items * 19);
    EXPECT_LE(most, 4'100u);
}

} // namespace
