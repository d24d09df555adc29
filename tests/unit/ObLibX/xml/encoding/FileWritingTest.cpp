// Writing text into a file: the bytes and the report.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::kFileBigEndian;
using ObLibX::kFileUtf16;
using ObLibX::TextFileChannel;
using obtest::Bytes;
using obtest::Elements;
using obtest::ScratchFile;
using obtest::Swapped;
using obtest::Writer;

std::int32_t Length(const std::wstring& text) { return static_cast<std::int32_t>(text.size()); }

// One WriteText into a file of its own.
struct Written {
    Written(const std::wstring& text, const std::wstring& encoding, std::uint32_t flags = 0)
        : channel(Writer(file)) {
        channel.encoding = encoding;
        channel.fileFlags = flags;
        good = channel.WriteText(text.data(), Length(text));
        report = Elements(channel.report);
        std::fflush(channel.file.get());
        bytes = file.Read();
    }
    ScratchFile file;
    TextFileChannel channel;
    bool good = false;
    std::string report;
    std::string bytes;
};

TEST(WriteText, ReportsAnEmptyWrite) {
    const Written written(L"", L"UTF-8");
    EXPECT_TRUE(written.good);
    EXPECT_EQ(written.report, R"(<write encoding="UTF-8" length="0"/>)");
    TextFileChannel channel = Writer(written.file);
    channel.report = L"<old/>";
    EXPECT_TRUE(channel.WriteText(nullptr, -1));
    EXPECT_EQ(Elements(channel.report), R"(<write encoding="" length="0"/>)");
}

TEST(WriteText, ConvertsToTheEncodingOfTheFile) {
    const Written written(L"a\x20AC\xD83D\xDE00", L"UTF-8");
    EXPECT_TRUE(written.good);
    EXPECT_EQ(written.bytes, "a\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(written.report, R"(<converted_from encoding="UTF-16" length="4"/>)"
                              R"(<write encoding="UTF-8" length="8"/>)");
    EXPECT_EQ(written.channel.fileOffset, 8u);
    EXPECT_EQ(written.channel.opByteLength, 8);
    EXPECT_EQ(written.channel.opTextLength, 8);
}

TEST(WriteText, ReportsThatACharacterHadNoEquivalent) {
    if (!obtest::HasPage(1252)) {
        GTEST_SKIP() << "no code page 1252 here";
    }
    const Written written(L"a\x3042z", L"windows-1252");
    EXPECT_EQ(written.bytes, "a?z");
    EXPECT_EQ(written.report, R"(<converted_from encoding="UTF-16" length="3"/>)"
                              R"(<conversion_loss/>)"
                              R"(<write encoding="windows-1252" length="3"/>)");
    const Written whole(L"a\xE9z", L"windows-1252");
    EXPECT_EQ(whole.bytes, "a\xE9z");
    EXPECT_EQ(whole.report.find("conversion_loss"), std::string::npos);
}

TEST(WriteText, WritesUtf16WithoutConversion) {
    const Written written(L"a\x20AC", L"UTF-16LE", kFileUtf16);
    EXPECT_EQ(written.bytes, Bytes(u"a\x20AC"));
    EXPECT_EQ(written.report, R"(<write encoding="UTF-16LE" length="2"/>)");
    EXPECT_EQ(written.channel.fileOffset, 4u);
    EXPECT_EQ(written.channel.opTextLength, 2);
}

TEST(WriteText, SwapsACopyForABigEndianFile) {
    const std::wstring text = L"a\x20AC";
    const Written written(text, L"UTF-16BE", kFileBigEndian);
    EXPECT_EQ(written.bytes, Swapped(Bytes(u"a\x20AC")));
    EXPECT_EQ(written.report, R"(<endian_swap/><write encoding="UTF-16BE" length="2"/>)");
    EXPECT_EQ(text, L"a\x20AC");
}

TEST(WriteText, WritesWholeUnitsOfAWiderEncoding) {
    const Written written(L"a\xD83D\xDE00", L"UTF-32");
    EXPECT_EQ(written.bytes, std::string("a\0\0\0\0\xF6\x01\0", 8));
}

TEST(WriteText, WritesNothingForAPageThatTheSystemLacks) {
    if (obtest::HasPage(57002)) {
        GTEST_SKIP() << "this system has page 57002";
    }
    const Written written(L"text", L"x-iscii-de");
    EXPECT_TRUE(written.good);
    EXPECT_EQ(written.bytes, "");
    EXPECT_EQ(written.report, R"(<converted_from encoding="UTF-16" length="4"/>)"
                              R"(<write encoding="x-iscii-de" length="0"/>)");
}

TEST(WriteBlockRaw, SwapsInPlaceWhatItOwns) {
    const ScratchFile file;
    TextFileChannel channel = Writer(file);
    channel.fileFlags = kFileBigEndian;
    channel.unitSize = 2;
    std::wstring text = L"ab";
    EXPECT_TRUE(channel.WriteBlockRaw(text.data(), 2, false));
    EXPECT_EQ(text, L"ab");
    EXPECT_TRUE(channel.WriteBlockRaw(text.data(), 2, true));
    EXPECT_EQ(text, L"\x6100\x6200");
    std::fflush(channel.file.get());
    EXPECT_EQ(file.Read(), Swapped(Bytes(u"abab")));
}

TEST(WriteOut, DecidesTheEncodingByTheTextAtTheFirstWrite) {
    const ScratchFile file;
    TextFileChannel channel = Writer(file);
    const std::wstring text = L"<?xml version=\"1.0\" encoding=\"windows-1252\"?>";
    EXPECT_TRUE(channel.WriteOut(text.data(), Length(text), false));
    EXPECT_EQ(channel.encoding, L"windows-1252");
}

TEST(WriteOut, WritesUtf8WhenTheTextDeclaresNothing) {
    const ScratchFile file;
    TextFileChannel channel = Writer(file);
    EXPECT_TRUE(channel.WriteOut(L"<a>\xE9</a>", 8, true));
    EXPECT_EQ(channel.encoding, L"UTF-8");
    EXPECT_EQ(file.Read(), "<a>\xC3\xA9</a>");
}

TEST(WriteOut, DecidesNothingWhereTheEncodingIsKnownOrBytesWereWritten) {
    const ScratchFile file;
    TextFileChannel known = Writer(file);
    known.encoding = L"UTF-8";
    const std::wstring text = L"<?xml encoding=\"windows-1252\"?>";
    EXPECT_TRUE(known.WriteOut(text.data(), Length(text), false));
    EXPECT_EQ(known.encoding, L"UTF-8");
    TextFileChannel later = Writer(file);
    later.fileOffset = 3;
    EXPECT_TRUE(later.WriteOut(text.data(), Length(text), false));
    EXPECT_EQ(later.encoding, L"");
}

TEST(WriteOut, TakesWhatWasWrittenFromTheDocumentsText) {
    const ScratchFile file;
    TextFileChannel channel = Writer(file);
    std::wstring document = L"<a>one</a><b>two</b>";
    channel.documentText = &document;
    EXPECT_TRUE(channel.WriteOut(document.data(), 10, false));
    EXPECT_EQ(document, L"<b>two</b>");
    EXPECT_TRUE(channel.WriteOut(document.data(), 10, true));
    EXPECT_EQ(document, L"");
    EXPECT_TRUE(channel.WriteOut(document.data(), 0, true));
    EXPECT_EQ(file.Read(), "<a>one</a><b>two</b>");
}

TEST(WriteOut, FlushesOnlyWhenItIsAskedTo) {
    const ScratchFile file;
    TextFileChannel channel = Writer(file);
    EXPECT_TRUE(channel.WriteOut(L"abc", 3, false));
    EXPECT_EQ(file.Read(), "");
    EXPECT_TRUE(channel.WriteOut(L"", 0, true));
    EXPECT_EQ(file.Read(), "abc");
}

TEST(TextFileChannel, ReadsBackWhatItWrote) {
    const std::wstring text = L"<a b=\"\xE9\">\x20AC\xD83D\xDE00</a>";
    const struct {
        const wchar_t* encoding;
        std::uint32_t flags;
    } forms[] = {{L"UTF-8", 0}, {L"UTF-16LE", kFileUtf16}, {L"UTF-16BE", kFileBigEndian}};
    for (const auto& form : forms) {
        const Written written(text, form.encoding, form.flags);
        TextFileChannel channel = obtest::Reader(written.file, written.bytes.size());
        channel.encoding = form.encoding;
        channel.fileFlags = form.flags;
        channel.opByteLength = 1'000;
        std::wstring back;
        EXPECT_TRUE(channel.ReadText(back));
        EXPECT_EQ(back, text);
    }
}

} // namespace
