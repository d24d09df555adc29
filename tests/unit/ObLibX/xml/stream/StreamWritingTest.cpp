// Writing a file forward gives the text that the same calls give in memory.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

// One of the calls that both modes know, chosen by the numbers; the answer of the call.
bool Act(XmlOffsetDocument& document, std::mt19937& random) {
    const unsigned what = random() % 8;
    const std::wstring name(1 + random() % 3, static_cast<wchar_t>(L'a' + random() % 4));
    const std::wstring value(random() % 20, static_cast<wchar_t>(L"x&<]\x4E2D"[random() % 5]));
    const std::uint32_t flags = random() % 32;
    if (what < 4) return document.AddElement(name.c_str(), value.c_str(), flags);
    if (what < 6) return document.IntoElement();
    if (what == 6) return document.OutOfElement();
    return document.SetAttribute(document.CurrentPosition(), name.c_str(), value.c_str());
}

std::wstring TextOf(const StreamFile& file) { return Decoded(file.Read(), L"UTF-8"); }

// A document in stream writing, without a declaration.
class Writing {
public:
    explicit Writing(std::int32_t blockSize = kDefaultBlock) {
        opened_ =
            document_.OpenForWriting(file_.Path(), {.declaration = false, .blockSize = blockSize});
    }
    bool Opened() const { return opened_; }
    XmlOffsetDocument* operator->() { return &document_; }
    std::wstring Close() {
        EXPECT_TRUE(document_.Close());
        return TextOf(file_);
    }

private:
    StreamFile file_;
    XmlOffsetDocument document_;
    bool opened_;
};

} // namespace

TEST(StreamWriting, GivesTheTextThatMemoryGives) {
    const unsigned seeds = 200;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        const StreamFile file;
        XmlOffsetDocument stream;
        const std::int32_t block = static_cast<std::int32_t>(seed % 50 + 1);
        ASSERT_TRUE(stream.OpenForWriting(file.Path(), {.declaration = false, .blockSize = block}));
        XmlOffsetDocument memory;
        std::mt19937 random(seed);
        for (int call = 0; call < 60; ++call) {
            // Entering what has children already, and changing it, needs a way back.
            std::mt19937 same = random;
            if (!Act(stream, random)) {
                continue;
            }
            ASSERT_TRUE(Act(memory, same)) << "seed " << seed << ", call " << call;
        }
        ASSERT_TRUE(stream.Close());
        ASSERT_EQ(memory.Text(), TextOf(file)) << "seed " << seed;
    }
}

TEST(StreamWriting, GivesTheSameFileWhateverTheBlock) {
    std::wstring expected;
    for (const std::int32_t block : {65536, 1, 4, 5, 7, 16, 31, 64, 100, 255, 1000}) {
        Writing writing(block);
        std::mt19937 random(7);
        for (int call = 0; call < 500; ++call) Act(*writing.operator->(), random);
        const std::wstring text = writing.Close();
        if (expected.empty()) expected = text;
        ASSERT_EQ(expected, text) << "block of " << block;
    }
    EXPECT_GT(expected.size(), 3000u);
}

TEST(StreamWriting, KeepsNoMoreThanABlockAndWhatIsntFinished) {
    Writing writing(100);
    ASSERT_TRUE(writing->AddElement(L"r", nullptr));
    ASSERT_TRUE(writing->IntoElement());
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(writing->AddElement(L"item", L"0123456789"));
        EXPECT_LE(writing->Text().size(), 130u);
    }
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(writing->AddElement(L"deep", nullptr));
        ASSERT_TRUE(writing->IntoElement());
    }
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(writing->OutOfElement());
        EXPECT_LE(writing->Text().size(), 130u) << "end tags go too";
    }
    XmlOffsetDocument read;
    EXPECT_TRUE(read.SetText(std::wstring_view(writing.Close())));
    EXPECT_TRUE(read.FindElement(L"/r/item[200]"));
}

TEST(StreamWriting, EntersOnlyASingleTag) {
    Writing writing;
    EXPECT_FALSE(writing->IntoElement()) << "nothing is current";
    EXPECT_FALSE(writing->OutOfElement());
    ASSERT_TRUE(writing->AddElement(L"a", L"text"));
    EXPECT_FALSE(writing->IntoElement()) << "it has its end tag";
    ASSERT_TRUE(writing->AddElement(L"b", nullptr));
    ASSERT_TRUE(writing->IntoElement());
    EXPECT_EQ(writing->ParentPosition(), 1);
    EXPECT_EQ(writing->CurrentPosition(), 0);
    EXPECT_FALSE(writing->IntoElement());
    ASSERT_TRUE(writing->OutOfElement());
    ASSERT_TRUE(writing->IntoElement()) << "still a single tag";
    ASSERT_TRUE(writing->AddElement(L"c", nullptr));
    EXPECT_EQ(writing->CurrentPosition(), 2);
    ASSERT_TRUE(writing->OutOfElement());
    EXPECT_EQ(writing->CurrentPosition(), 1);
    EXPECT_EQ(writing->ChildPosition(), 2);
    EXPECT_FALSE(writing->IntoElement()) << "it has its end tag now";
    EXPECT_FALSE(writing->SetAttribute(1, L"x", L"1")) << "its start tag may have gone";
    EXPECT_EQ(writing.Close(), L"<a>text</a>\r\n<b>\r\n<c/>\r\n</b>\r\n");
}

TEST(StreamWriting, AddsAtTheEndWhateverTheFlags) {
    Writing writing;
    ASSERT_TRUE(writing->AddElement(L"a", nullptr, kAddNoLineEnds));
    EXPECT_FALSE(writing->AddElement(L"b", nullptr, kAddAsChild));
    ASSERT_TRUE(writing->AddElement(L"c", nullptr, kAddNoLineEnds | kAddBefore));
    ASSERT_TRUE(writing->AddElement(L"d", nullptr, kAddNoLineEnds | kAddAtStart));
    EXPECT_FALSE(writing->AddElement(L"e", L"value", kAddNoEndTag));
    EXPECT_FALSE(writing->AddElement(L"no name", nullptr));
    EXPECT_FALSE(writing->AddElement(nullptr, nullptr));
    EXPECT_EQ(writing.Close(), L"<a/><c/><d/>");
}

TEST(StreamWriting, ReadsTheCurrentElementOnly) {
    Writing writing(4);
    ASSERT_TRUE(writing->AddElement(L"r", nullptr));
    ASSERT_TRUE(writing->IntoElement());
    ASSERT_TRUE(writing->AddElement(L"a", L"1 < 2"));
    ASSERT_TRUE(writing->SetAttribute(2, L"x", L"'"));
    EXPECT_EQ(writing->GetTagName(), L"a");
    EXPECT_EQ(writing->GetAttribute(2, L"x"), L"'");
    EXPECT_EQ(writing->GetData(2), L"1 < 2");
    EXPECT_EQ(writing->GetAttribute(1, L"x"), L"");
    EXPECT_EQ(writing->GetData(1), L"");
    EXPECT_FALSE(writing->SetAttribute(1, L"x", L"y"));
    EXPECT_FALSE(writing->FindElement());
    EXPECT_FALSE(writing->FindElement(L"/r"));
    EXPECT_FALSE(writing->FindChildElement());
    EXPECT_FALSE(writing->SetText(L"<a/>"));
    EXPECT_TRUE(writing->ParseText());
    EXPECT_EQ(writing.Close(), L"<r>\r\n<a x=\"&apos;\">1 &lt; 2</a>\r\n</r>\r\n");
}

TEST(StreamWriting, ContinuesOnlyFromItsOwnPosition) {
    Writing writing;
    ASSERT_TRUE(writing->AddElement(L"r", nullptr));
    writing->ResetPosition(1, 0, 0);
    EXPECT_FALSE(writing->AddElement(L"a", nullptr)) << "r wasn't entered";
    EXPECT_FALSE(writing->OutOfElement());
    writing->ResetPosition(0, 1, 0);
    ASSERT_TRUE(writing->IntoElement());
    ASSERT_TRUE(writing->AddElement(L"a", nullptr));
    writing->ResetPosition(0, 0, 0);
    EXPECT_FALSE(writing->AddElement(L"b", nullptr)) << "r is still open";
    EXPECT_EQ(writing.Close(), L"<r>\r\n<a/>\r\n</r>\r\n") << "and it is ended all the same";
}

TEST(StreamWriting, EndsTheOpenElementsWhenTheDocumentIsDestroyed) {
    const StreamFile file;
    {
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForWriting(file.Path(), {.declaration = false}));
        ASSERT_TRUE(document.AddElement(L"r", nullptr, kAddNoEndTag));
        ASSERT_TRUE(document.IntoElement());
        ASSERT_TRUE(document.AddElement(L"a", nullptr, kAddNoLineEnds));
    }
    EXPECT_EQ(TextOf(file), L"<r><a/></r>\r\n");
}

TEST(StreamWriting, BeginsAnewWhenAnotherFileIsOpened) {
    const StreamFile one;
    const StreamFile other;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForWriting(one.Path(), {.declaration = false}));
    ASSERT_TRUE(document.AddElement(L"a", nullptr));
    ASSERT_TRUE(document.OpenForWriting(other.Path(), {.declaration = false}));
    ASSERT_TRUE(document.AddElement(L"b", nullptr));
    ASSERT_TRUE(document.OpenForReading(one.Path()));
    EXPECT_EQ(ElementsInOrder(document), L"a: \n");
    EXPECT_EQ(TextOf(other), L"<b/>\r\n");
    EXPECT_TRUE(document.Close());
}
