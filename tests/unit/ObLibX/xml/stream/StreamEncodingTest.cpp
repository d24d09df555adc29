// Files in every kind of encoding: detected, declared, given by an option, with a BOM; read in
// blocks of any size and written so that they can be read again.
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

// What an encoding has, beside ASCII.
struct Sample {
    const wchar_t* encoding;
    const wchar_t* characters;
};
constexpr Sample kSamples[] = {
    {L"UTF-8", L"\xE4\x20AC\x4E2D\xD83D\xDE00"},
    {L"windows-1252", L"\xE4\xF6\x20AC\x201E"},
    {L"windows-1251", L"\x416\x434\x44F"},
    {L"iso-8859-2", L"\x159\x17E\x11B"},
    {L"koi8-r", L"\x416\x434\x44F"},
    {L"shift_jis", L"\x65E5\x672C\x30BD\x8868"}, // the last two have a '\\' as their second byte
    {L"gbk", L"\x4E2D\x6587\x5B57"},
    {L"big5", L"\x4E2D\x6587\x529F"},
    {L"euc-kr", L"\xD55C\xAE00"},
    {L"gb18030", L"\x4E2D\xE4\x6587"},
    {L"us-ascii", L"plain"},
};

// The characters as names, values, data, comments and CDATA.
std::wstring TextWith(const std::wstring& characters, const std::wstring& declared) {
    std::wstring text;
    if (!declared.empty()) text = L"<?xml version='1.0' encoding='" + declared + L"'?>\r\n";
    text += L"<r a='" + characters + L"'>\r\n<!-- " + characters + L" -->";
    for (int i = 0; i < 4; ++i) {
        text +=
            L"<b>" + characters + L'x' + characters + L"</b><c><![CDATA[" + characters + L"]]></c>";
    }
    return text + L"<n" + characters + L"/></r>\r\n";
}

std::wstring Characters(const Sample& sample) { return sample.characters; }

std::vector<std::uint8_t> Joined(std::vector<std::uint8_t> front,
                                 const std::vector<std::uint8_t>& back) {
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

std::vector<std::uint8_t> WithoutMark(std::wstring_view text, const wchar_t* utf16) {
    const std::vector<std::uint8_t> bytes = Encoded(text, utf16);
    return {bytes.begin() + 2, bytes.end()};
}

void ExpectForAnyBlock(const std::wstring& text, const StreamFile& file,
                       const std::wstring& encoding) {
    const std::wstring expected = ElementsOfText(text);
    for (std::int32_t block = 4; block < 260; ++block) {
        ASSERT_EQ(expected, ElementsOfFile(file.Path(), {.encoding = encoding, .blockSize = block}))
            << "block of " << block;
    }
}

// Writes a few elements with the characters, and reads them again with no hint but the file.
void ExpectRoundTrip(const StreamWriteOptions& options, const std::wstring& characters) {
    const StreamFile file;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForWriting(file.Path(), options));
    ASSERT_TRUE(document.AddElement(L"r", nullptr));
    ASSERT_TRUE(document.IntoElement());
    std::wstring expected = L"r: \n";
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(document.AddElement((L"n" + characters).c_str(), characters.c_str()));
        ASSERT_TRUE(
            document.SetAttribute(document.CurrentPosition(), L"a", (characters + L"'\"").c_str()));
        expected += L" n" + characters + L" a=" + characters + L"'\": " + characters + L"\n";
    }
    ASSERT_TRUE(document.Close());
    EXPECT_FALSE(ResultHas(document, L"conversion_loss"));
    EXPECT_EQ(ElementsOfFile(file.Path(), {.encoding = {}, .blockSize = 37}), expected);
}

} // namespace

class StreamEncoding : public testing::TestWithParam<Sample> {
protected:
    bool Installed() const { return IsInstalled(GetParam().encoding); }
    const std::wstring encoding_ = GetParam().encoding;
    const std::wstring characters_ = Characters(GetParam());
};

TEST_P(StreamEncoding, IsReadAsItIsDeclared) {
    if (!Installed()) GTEST_SKIP() << "this system doesn't have the code page";
    const std::wstring text = TextWith(characters_, encoding_);
    ExpectForAnyBlock(text, StreamFile(text, encoding_), {});
}

TEST_P(StreamEncoding, IsReadInTheEncodingThatIsGiven) {
    if (!Installed()) GTEST_SKIP() << "this system doesn't have the code page";
    const std::wstring text = TextWith(characters_, {});
    ExpectForAnyBlock(text, StreamFile(text, encoding_), encoding_);
}

TEST_P(StreamEncoding, IsDeclaredByWhatIsWritten) {
    if (!Installed()) GTEST_SKIP() << "this system doesn't have the code page";
    for (const std::int32_t block : {4, 50, 65536}) {
        ExpectRoundTrip({.encoding = encoding_, .blockSize = block}, characters_);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, StreamEncoding, testing::ValuesIn(kSamples), [](const auto& info) {
    std::string name;
    for (const wchar_t unit : std::wstring(info.param.encoding)) {
        const bool plain = (unit >= L'a' && unit <= L'z') || (unit >= L'0' && unit <= L'9');
        name += plain                          ? static_cast<char>(unit)
                : unit >= L'A' && unit <= L'Z' ? static_cast<char>(unit)
                                               : '_';
    }
    return name;
});

TEST(StreamBom, SelectsTheEncodingAndIsNoText) {
    const std::wstring characters = Characters(kSamples[0]);
    const std::wstring text = TextWith(characters, L"windows-1252"); // the mark knows better
    ExpectForAnyBlock(text, StreamFile(Joined({0xEF, 0xBB, 0xBF}, Encoded(text, L"UTF-8"))), {});
    ExpectForAnyBlock(text, StreamFile(text, L"UTF-16"), L"windows-1252");
    ExpectForAnyBlock(text, StreamFile(text, L"UTF-16BE"), {});
    const StreamFile only(std::vector<std::uint8_t>{0xFF, 0xFE});
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(only.Path()));
    EXPECT_FALSE(document.FindElement());
    EXPECT_TRUE(document.Text().empty());
    EXPECT_TRUE(document.Result().empty()) << "no element is missing in an empty text";
}

TEST(StreamBom, IsNotNeededForUtf16) {
    const std::wstring text = TextWith(Characters(kSamples[0]), L"UTF-16");
    ExpectForAnyBlock(text, StreamFile(WithoutMark(text, L"UTF-16")), {});
    ExpectForAnyBlock(text, StreamFile(WithoutMark(text, L"UTF-16BE")), {});
    const std::wstring behindSpace = L"\r\n" + TextWith(Characters(kSamples[0]), {});
    ExpectForAnyBlock(behindSpace, StreamFile(WithoutMark(behindSpace, L"UTF-16")), L"UTF-16");
    ExpectForAnyBlock(behindSpace, StreamFile(WithoutMark(behindSpace, L"UTF-16BE")), L"utf-16be");
}

TEST(StreamEncodings, OfWideUnitsCantBeDeclaredInBytes) {
    const std::wstring text = TextWith(Characters(kSamples[0]), L"UTF-16");
    ExpectForAnyBlock(text, StreamFile(text, L"UTF-8"), {});
}

TEST(StreamEncodings, OfTheSystemLastToTheFilesEnd) {
    if (SystemCodePage() != 1252) GTEST_SKIP() << "the system's own page is another one";
    const std::wstring plain(20000, L' ');
    const StreamFile file(L"<r><a>\xE9</a>" + plain + L"<b>\xE9</b></r>", L"windows-1252");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path(), {.encoding = {}, .blockSize = 64}));
    for (const wchar_t* const path : {L"//a", L"//b"}) {
        ASSERT_TRUE(document.FindElement(path));
        EXPECT_EQ(L"\xE9", document.GetData(document.CurrentPosition()));
    }
}

TEST(StreamEncodings, AreFoundInHtml) {
    const std::wstring text = L"<html><head><meta http-equiv=\"content-type\" content=\"text/html; "
                              L"charset=windows-1251\"/></head><body>\x416\x434</body></html>";
    if (!IsInstalled(L"windows-1251")) GTEST_SKIP() << "this system doesn't have the code page";
    ExpectForAnyBlock(text, StreamFile(text, L"windows-1251"), {});
}

TEST(StreamEncodings, OfUtf32AreRefused) {
    const StreamFile file(L"<a/>", L"UTF-8");
    for (const wchar_t* encoding : {L"UTF-32", L"utf-32", L"utf-32be"}) {
        XmlOffsetDocument document;
        EXPECT_FALSE(document.OpenForReading(file.Path(), {.encoding = encoding}));
        EXPECT_TRUE(ResultHas(document, L"<file_error msg="));
        EXPECT_EQ(document.Flags(), 0u);
        EXPECT_FALSE(document.OpenForWriting(file.Path(), {.encoding = encoding}));
        EXPECT_TRUE(ResultHas(document, L"<file_error msg="));
    }
    XmlOffsetDocument document;
    EXPECT_FALSE(document.OpenForWriting(file.Path(), {.encoding = L"no such thing"}));
    EXPECT_FALSE(document.OpenForWriting(file.Path(), {.encoding = L""}));
    EXPECT_EQ(file.Read(), Encoded(L"<a/>", L"UTF-8")) << "the file wasn't touched";
}

TEST(StreamEncodings, DropNulls) {
    std::vector<std::uint8_t> bytes = Encoded(L"<r><a>one</a></r>", L"UTF-8");
    bytes.insert(bytes.begin() + 9, 3, 0);
    const StreamFile file(bytes);
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    EXPECT_EQ(ElementsInOrder(document), L"r: \n a: one\n");
    EXPECT_TRUE(document.Close());
    EXPECT_TRUE(ResultHas(document, L"<nulls_removed count=\"3\"/>"));
}

TEST(StreamsWritten, CanBeReadAgain) {
    const std::wstring characters = Characters(kSamples[0]);
    for (const wchar_t* encoding : {L"UTF-8", L"UTF-16", L"utf-16le", L"UTF-16BE"}) {
        for (const bool mark : {false, true}) {
            for (const bool declaration : {false, true}) {
                for (const std::int32_t block : {4, 33, 1000}) {
                    ExpectRoundTrip({.encoding = encoding,
                                     .byteOrderMark = mark,
                                     .declaration = declaration,
                                     .blockSize = block},
                                    characters);
                }
            }
        }
    }
}

TEST(StreamsWritten, BeginWithTheBomAndDeclarationOfTheOptions) {
    struct Case {
        const wchar_t* encoding;
        bool mark;
        bool declaration;
        std::vector<std::uint8_t> bytes;
    };
    const std::wstring utf8 = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<a/>\r\n";
    const std::wstring utf16 = L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<a/>\r\n";
    const Case cases[] = {
        {L"UTF-8", false, false, Encoded(L"<a/>\r\n", L"UTF-8")},
        {L"UTF-8", false, true, Encoded(utf8, L"UTF-8")},
        {L"UTF-8", true, true, Joined({0xEF, 0xBB, 0xBF}, Encoded(utf8, L"UTF-8"))},
        {L"UTF-16", false, true, Encoded(utf16, L"UTF-16")},
        {L"UTF-16BE", true, false, Encoded(L"<a/>\r\n", L"UTF-16BE")},
        {L"us-ascii", true, false, Encoded(L"<a/>\r\n", L"UTF-8")},
    };
    for (const Case& each : cases) {
        const StreamFile file;
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForWriting(file.Path(), {.encoding = each.encoding,
                                                          .byteOrderMark = each.mark,
                                                          .declaration = each.declaration}));
        ASSERT_TRUE(document.AddElement(L"a", nullptr));
        ASSERT_TRUE(document.Close());
        EXPECT_EQ(file.Read(), each.bytes);
    }
}

TEST(StreamsWritten, ReportCharactersThatTheEncodingDoesNotHave) {
    if (!IsInstalled(L"windows-1252")) GTEST_SKIP() << "this system doesn't have the code page";
    for (const std::int32_t block : {4, 65536}) {
        const StreamFile file;
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForWriting(
            file.Path(), {.encoding = L"windows-1252", .declaration = false, .blockSize = block}));
        ASSERT_TRUE(document.AddElement(L"a", L"\xE4\x4E2D", kAddNoLineEnds));
        for (int i = 0; i < 5; ++i) ASSERT_TRUE(document.AddElement(L"b", L"x", kAddNoLineEnds));
        ASSERT_TRUE(document.Close()) << "the rest isn't lost";
        EXPECT_TRUE(ResultHas(document, L"<conversion_loss/>")) << "however long ago it was";
        const std::wstring text = Decoded(file.Read(), L"windows-1252");
        EXPECT_EQ(text, L"<a>\xE4?</a><b>x</b><b>x</b><b>x</b><b>x</b><b>x</b>");
    }
}
