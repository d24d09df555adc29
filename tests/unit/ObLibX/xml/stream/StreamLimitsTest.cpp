// Large, deep and wide files in little memory.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

constexpr int kItems = 610000;
constexpr wchar_t kWords[] = L"words & words that go on for a while, \x4E2D and so on and on";
constexpr std::size_t kLargeFile = 64u << 20;

std::size_t FileSize(const StreamFile& file) {
    std::FILE* const stream = std::fopen(file.NarrowPath(), "rb");
    if (stream == nullptr) return 0;
    std::fseek(stream, 0, SEEK_END);
    const long size = std::ftell(stream);
    std::fclose(stream);
    return static_cast<std::size_t>(size);
}

// Writes kItems elements below a root; gives the most units that the text had room for.
std::size_t WriteLarge(const StreamFile& file, std::int32_t block) {
    XmlOffsetDocument document;
    EXPECT_TRUE(document.OpenForWriting(file.Path(), {.blockSize = block}));
    EXPECT_TRUE(document.AddElement(L"root", nullptr));
    EXPECT_TRUE(document.IntoElement());
    std::size_t most = 0;
    for (int i = 0; i < kItems; ++i) {
        const bool added = document.AddElement(L"item", kWords) &&
                           document.SetAttribute(2, L"number", std::to_wstring(i).c_str()) &&
                           document.SetAttribute(2, L"other", L"0123456789");
        if (!added) {
            ADD_FAILURE() << "item " << i;
            return 0;
        }
        most = std::max(most, document.Text().capacity());
    }
    EXPECT_LT(document.State().records->Size(), 100u);
    EXPECT_TRUE(document.Close());
    return most;
}

std::size_t ReadLarge(const StreamFile& file, std::int32_t block) {
    XmlOffsetDocument document;
    EXPECT_TRUE(document.OpenForReading(file.Path(), {.encoding = {}, .blockSize = block}));
    EXPECT_TRUE(document.FindElement(L"root"));
    EXPECT_TRUE(document.IntoElement());
    std::size_t most = 0;
    int items = 0;
    while (document.FindElement()) {
        if (items % 64 == 0) {
            EXPECT_EQ(document.GetAttribute(2, L"number"), std::to_wstring(items));
            EXPECT_EQ(document.GetData(2), kWords);
        }
        ++items;
        most = std::max(most, document.Text().capacity());
    }
    EXPECT_EQ(items, kItems);
    EXPECT_LT(document.State().records->Size(), 100u);
    EXPECT_TRUE(document.ParseText());
    EXPECT_TRUE(document.Close());
    return most;
}

// So many start tags and their end tags, with nothing between.
std::wstring Nested(int depth, const std::wstring& name) {
    std::wstring text;
    for (int i = 0; i < depth; ++i) text += L"<" + name + L">";
    for (int i = 0; i < depth; ++i) text += L"</" + name + L">";
    return text;
}

} // namespace

TEST(StreamLimits, AFileOf64MegabytesNeedsLittleMemory) {
    const StreamFile file;
    EXPECT_LT(WriteLarge(file, 16 * 1024), 64u * 1024);
    EXPECT_GE(FileSize(file), kLargeFile);
    for (const std::int32_t block : {4 * 1024, 64 * 1024}) {
        EXPECT_LT(ReadLarge(file, block), 4u * static_cast<std::size_t>(block));
    }
}

TEST(StreamLimits, ADepthOfAMillion) {
    constexpr int kDepth = 1000000;
    const StreamFile file(Nested(kDepth, L"a") + L"<b/>", L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    ASSERT_TRUE(document.FindElement(L"//b")) << "and back";
    EXPECT_EQ(document.CurrentPosition(), 1);
    EXPECT_TRUE(document.ParseText());
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    int depth = 0;
    while (document.FindElement(L"a") && document.IntoElement()) ++depth;
    EXPECT_EQ(depth, kDepth);
    EXPECT_EQ(document.ParentPosition(), kDepth);
    EXPECT_EQ((*document.State().records)[kDepth].Level(), kRecordLevelMask)
        << "as deep as its name";
    while (document.OutOfElement()) --depth;
    EXPECT_EQ(depth, 0);
    EXPECT_TRUE(document.FindElement(L"b"));
}

TEST(StreamLimits, AMillionUnendedTags) {
    std::wstring text;
    for (int i = 0; i < 1000000; ++i) text += L"<a>";
    const StreamFile file(text + L"</b>", L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    EXPECT_FALSE(document.FindElement(L"//c"));
    EXPECT_EQ(document.State().nodeType, kNodeLoneEndTag);
    EXPECT_FALSE(document.FindElement(L"//c"));
    EXPECT_EQ(document.State().nodeLength, 0);
    EXPECT_EQ(document.State().channel->openTags.Depth(), 0u);
    EXPECT_FALSE(document.ParseText());
    EXPECT_LT(document.Result().size(), 2 * 1000u);
}

TEST(StreamLimits, ManyDifferentNamesSideBySide) {
    constexpr int kNames = 20000;
    std::wstring text = L"<r>";
    for (int i = 0; i < kNames; ++i) text += L"<n" + std::to_wstring(i) + L"/>";
    const StreamFile file(text + L"<n7/></r>", L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    EXPECT_TRUE(document.FindElement(L"/r/n7[2]"));
    EXPECT_FALSE(document.FindElement());
}

TEST(StreamLimits, WritesAMillionDeep) {
    constexpr int kDepth = 1000000;
    const StreamFile file;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForWriting(file.Path(), {.declaration = false}));
    for (int i = 0; i < kDepth; ++i) {
        ASSERT_TRUE(document.AddElement(L"a", nullptr, kAddNoLineEnds));
        ASSERT_TRUE(document.IntoElement());
    }
    ASSERT_TRUE(document.Close());
    // The innermost one was entered and got nothing.
    EXPECT_EQ(FileSize(file), 7u * (kDepth - 1) + 4u);
}

TEST(StreamLimits, ATagLongerThanItsFieldIsBadAndNotWrapped) {
    const std::wstring value(kLongestStartTag, L'v');
    const std::wstring name(kLongestEndTag, L'n');
    const StreamFile file(L"<r><a x='" + value + L"'>data</a><" + name + L">more</" + name + L"><" +
                              name + L"></" + name + L"><b/></r>",
                          L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    ASSERT_TRUE(document.FindElement(L"/r/a"));
    EXPECT_TRUE((*document.State().records)[2].Has(kRecordBad));
    EXPECT_TRUE(ResultHas(document, L"<tag_too_long type=\"start_tag\" offset="));
    EXPECT_FALSE(document.ParseText());
    EXPECT_EQ(document.GetData(2), L"") << "nobody knows where it begins";
    ASSERT_TRUE(document.FindElement());
    EXPECT_EQ(document.GetTagName(), name);
    EXPECT_EQ(document.GetData(2), L"more");
    EXPECT_TRUE((*document.State().records)[2].Has(kRecordBad));
    EXPECT_TRUE(ResultHas(document, L"<tag_too_long type=\"end_tag\" offset="));
    ASSERT_TRUE(document.FindElement(L"b")) << "past the one that wasn't read";
    EXPECT_FALSE(document.FindElement());
}

TEST(StreamLimits, RefusesToWriteATagLongerThanItsField) {
    const StreamFile file;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForWriting(file.Path(), {.declaration = false, .blockSize = 4}));
    const std::wstring longest(kLongestEndTag - 3, L'n');
    EXPECT_TRUE(document.AddElement(longest.c_str(), L"v"));
    EXPECT_FALSE(document.AddElement((longest + L'n').c_str(), L"v"));
    EXPECT_TRUE(document.AddElement((longest + L'n').c_str(), nullptr));
    EXPECT_TRUE(document.IntoElement());
    EXPECT_FALSE(document.AddElement(L"a", nullptr)) << "its end tag couldn't be written";
    EXPECT_TRUE(document.OutOfElement());
    EXPECT_TRUE(document.AddElement(L"a", nullptr));
    EXPECT_TRUE(document.Close());
    XmlOffsetDocument read;
    read.SetText(std::wstring_view(Decoded(file.Read(), L"UTF-8")));
    EXPECT_TRUE(read.FindElement(L"/a"));
    EXPECT_FALSE(read.State().records->operator[](0).Has(kRecordBad));
}
