// How the words of the system come into the report, and a page that few systems have.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"
#include "tests/unit/ObLibX/xml/encoding/FakeSystem.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::TextFileChannel;
using obtest::Elements;
using obtest::g_system;
using obtest::ScratchFile;

class FileErrorText : public testing::Test {
protected:
    FileErrorText() { g_system = {}; }

    static std::string Reported(std::uint32_t error, const std::wstring& text) {
        g_system.lastError = error;
        g_system.errorText = text;
        TextFileChannel channel;
        EXPECT_FALSE(channel.ReportFileError());
        return Elements(channel.report);
    }
};

TEST_F(FileErrorText, EndsAtTheFirstLineEnd) {
    EXPECT_EQ(Reported(5, L"Access is denied.\r\n"),
              R"(<file_error msg="Access is denied." n="5"/>)");
    EXPECT_EQ(Reported(39, L"The disk\rfull.\n"), R"(<file_error msg="The disk" n="39"/>)");
    EXPECT_EQ(Reported(39, L"The disk\nis\r\n"), R"(<file_error msg="The disk" n="39"/>)");
    EXPECT_EQ(Reported(109, L"No line end"), R"(<file_error msg="No line end" n="109"/>)");
}

TEST_F(FileErrorText, IsEmptyWhenTheSystemHasNone) {
    EXPECT_EQ(Reported(0, L""), R"(<file_error msg="" n="0"/>)");
    EXPECT_EQ(Reported(12345, L"\r\n"), R"(<file_error msg="" n="12345"/>)");
    EXPECT_EQ(Reported(0xC0000005, L""), R"(<file_error msg="" n="-1073741819"/>)");
}

TEST_F(FileErrorText, IsAddedToWhatTheReportHas) {
    TextFileChannel channel;
    channel.report = L"<read encoding=\"\" length=\"1\"/>";
    g_system.lastError = 5;
    g_system.errorText = L"No";
    EXPECT_FALSE(channel.ReportFileError());
    EXPECT_EQ(Elements(channel.report),
              R"(<read encoding="" length="1"/><file_error msg="No" n="5"/>)");
}

class RarePage : public FileErrorText {};

TEST_F(RarePage, IsReadWholeInEveryBlockSize) {
    std::string content;
    for (int i = 0; i < 30; ++i) {
        content += "a9\x81\x30\x81\x30\xB0\xA1";
    }
    const std::u16string expected = obtest::DecodePage(54936, content);
    const ScratchFile file(content);
    for (std::int32_t size = 40; size <= 70; ++size) {
        TextFileChannel channel = obtest::Reader(file, content.size());
        channel.encoding = L"gb18030";
        std::wstring text;
        std::wstring block;
        for (int blocks = 0; channel.fileOffset < channel.fileLength && blocks < 100; ++blocks) {
            channel.opByteLength = size;
            ASSERT_TRUE(channel.ReadText(block));
            EXPECT_EQ(channel.report.find(L"truncation"), std::wstring::npos);
            text += block;
        }
        EXPECT_EQ(std::u16string(text.begin(), text.end()), expected) << size;
    }
}

TEST_F(RarePage, ReportsTextWithoutABoundaryWithin40BytesAndUsesIt) {
    const std::string content = "\x1B$B" + std::string(100, '$');
    const ScratchFile file(content);
    TextFileChannel channel = obtest::Reader(file, content.size());
    channel.encoding = L"csiso2022jp";
    channel.opByteLength = 83;
    std::wstring text;
    EXPECT_TRUE(channel.ReadText(text));
    EXPECT_EQ(text.size(), 40u);
    EXPECT_EQ(channel.fileOffset, 83u);
    EXPECT_EQ(Elements(channel.report), R"(<read encoding="csiso2022jp" length="83"/>)"
                                        R"(<truncation_error encoding="csiso2022jp"/>)"
                                        R"(<converted_to encoding="UTF-16" length="40"/>)");
}

TEST_F(RarePage, IsNamedAnsiInTheReportWhenItIsTheSystemsOwn) {
    g_system.codePage = 50221;
    const std::string content = "\xFF\x1B$B" + std::string(100, '$');
    const ScratchFile file(content);
    TextFileChannel channel = obtest::Reader(file, content.size());
    channel.opByteLength = 84;
    std::wstring text;
    EXPECT_TRUE(channel.ReadText(text));
    EXPECT_EQ(text.size(), 41u);
    EXPECT_EQ(
        Elements(channel.report),
        R"(<read encoding="" length="84"/><utf8_detection/>)"
        R"(<truncation_error encoding="ANSI"/><converted_to encoding="UTF-16" length="41"/>)");
}

} // namespace
