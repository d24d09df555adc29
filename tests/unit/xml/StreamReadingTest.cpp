// Reading a file forward gives what reading it in memory gives, whatever the block's size.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "tests/unit/xml/StreamFiles.h"

using ObLibX::XmlOffsetDocument;

namespace {

// Every element in document order: name, attributes and data, indented by its level.
void Walk(XmlOffsetDocument& document, int depth, std::wstring& out) {
    while (document.FindElement()) {
        out.append(static_cast<std::size_t>(depth), L' ').append(document.GetTagName());
        for (int i = 0;; ++i) {
            const std::wstring name = document.GetAttributeNameAt(i);
            if (name.empty()) break;
            out += L' ' + name + L'=' +
                   document.GetAttribute(document.CurrentPosition(), name.c_str());
        }
        out += L": " + document.GetData(document.CurrentPosition()) + L'\n';
        if (document.IntoElement()) {
            Walk(document, depth + 1, out);
            document.OutOfElement();
        }
    }
}

constexpr wchar_t kText[] =
    L"<?xml version=\"1.0\"?>\r\n<!-- <no/> -->\r\n<root a=\"1\" b='&lt;2>'>\r\n"
    L"  <empty/><text x=\"y\">plain &amp; simple</text>\r\n"
    L"  <deep><deeper><deepest z=\"9\">end</deepest></deeper> mixed <i>x</i></deep>\r\n"
    L"  <c><![CDATA[ <raw> ]]>and more</c><e></e>\x4E2D\xD83D\xDE00\r\n</root>";

} // namespace

TEST(StreamReading, GivesWhatMemoryGivesForEveryBlockSize) {
    XmlOffsetDocument memory;
    ASSERT_TRUE(memory.SetText(kText));
    std::wstring expected;
    Walk(memory, 0, expected);
    const StreamFile file(kText, L"UTF-8");
    for (int block = 1; block < 400; ++block) {
        XmlOffsetDocument stream;
        ASSERT_TRUE(stream.OpenForReading(file.Path(), {.encoding = {}, .blockSize = block}));
        std::wstring found;
        Walk(stream, 0, found);
        ASSERT_EQ(expected, found) << "block of " << block;
        EXPECT_TRUE(stream.Close());
    }
}
