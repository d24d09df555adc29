// Files that don't open, don't read, don't take what is written, and memory that runs out.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;
using obtest::FailEachAllocation;

namespace {

constexpr wchar_t kText[] =
    L"<?xml version='1.0' encoding='windows-1252'?><root_with_a_name a='&lt;1234567890'>"
    L"<child_with_a_long_name x='a value that is long'>text &amp; more<![CDATA[and more]]>"
    L"</child_with_a_long_name></lone_end_tag_here><b><c><d>words and words</d></c></b>"
    L"<1><unended></root_with_a_name>";

// A file of a length that takes no room on the disk, as nothing was written before its end.
void MakeSparse(const StreamFile& file, std::int64_t length) {
    std::FILE* const stream = std::fopen(file.NarrowPath(), "wb");
    ASSERT_NE(stream, nullptr);
#ifdef _WIN32
    const int moved = _fseeki64(stream, length - 1, SEEK_SET);
#else
    const int moved = fseeko(stream, length - 1, SEEK_SET);
#endif
    EXPECT_EQ(moved, 0);
    EXPECT_NE(std::fputc('>', stream), EOF);
    EXPECT_EQ(std::fclose(stream), 0);
}

// Everything that a stream of reading knows, without a care for the answers.
void ReadAll(XmlOffsetDocument& document, const wchar_t* path) {
    document.OpenForReading(path, {.encoding = {}, .blockSize = 16});
    document.FindElement(L"//child_with_a_long_name[@x='a value that is long']");
    ElementsInOrder(document);
    document.FindElement(L"/root_with_a_name/b/c/d[1]/@none");
    document.FindElement(L"//*");
    document.Close();
}

void WriteAll(XmlOffsetDocument& document, const wchar_t* path) {
    document.OpenForWriting(path, {.encoding = L"UTF-8", .blockSize = 16});
    for (int i = 0; i < 4; ++i) {
        document.AddElement(L"an_element_with_a_name", nullptr);
        document.SetAttribute(document.CurrentPosition(), L"attribute", L"value & value & value");
        document.IntoElement();
        document.AddElement(L"another_of_its_kind", L"some < data that is somewhat longer");
    }
    document.Close();
}

} // namespace

TEST(StreamFileErrors, ReportAFileThatIsNotThere) {
    const StreamFile missing;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.SetText(L"<a/>"));
    EXPECT_FALSE(document.OpenForReading(missing.Path()));
    EXPECT_TRUE(ResultHas(document, L"<file_error msg=\""));
    EXPECT_TRUE(ResultHas(document, L" n=\"2\"")) << "not found";
    EXPECT_EQ(document.Flags(), 0u);
    EXPECT_TRUE(document.Text().empty());
    EXPECT_FALSE(document.FindElement());
    EXPECT_TRUE(document.SetText(L"<a/>")) << "it is an ordinary document";
    EXPECT_FALSE(document.OpenForReading(L""));
    EXPECT_TRUE(ResultHas(document, L"<file_error msg=\""));
}

TEST(StreamFileErrors, ReportAFileThatCannotBeMade) {
    XmlOffsetDocument document;
    EXPECT_FALSE(document.OpenForWriting(L"no-such-folder/file.xml"));
    EXPECT_TRUE(ResultHas(document, L"<file_error msg=\""));
    EXPECT_EQ(document.Flags(), 0u);
    EXPECT_TRUE(document.Text().empty());
    EXPECT_FALSE(document.OpenForWriting(L""));
    EXPECT_TRUE(document.Close()) << "nothing is open";
}

TEST(StreamFileErrors, RefuseAFileThatIsTooLargeForOffsets) {
    const StreamFile file;
    MakeSparse(file, 0x100000000);
    XmlOffsetDocument document;
    EXPECT_FALSE(document.OpenForReading(file.Path()));
    EXPECT_TRUE(ResultHas(document, L"<file_error msg=\"The file is too large"));
    EXPECT_EQ(document.Flags(), 0u);
    MakeSparse(file, 0xFFFFFFFF);
    EXPECT_TRUE(document.OpenForReading(file.Path())) << "one byte less";
    EXPECT_TRUE(document.Close());
}

TEST(StreamFileErrors, ReportThatReadingFailed) {
    const StreamFile file(L"<r><a/></r>", L"UTF-8");
    const StreamFile other;
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    document.State().channel->file.reset(std::fopen(other.NarrowPath(), "wb"));
    EXPECT_FALSE(document.FindElement());
    EXPECT_FALSE(document.FindElement());
    EXPECT_EQ(document.GetData(0), L"");
    document.Close();
    EXPECT_TRUE(ResultHas(document, L"<file_error "));
    EXPECT_FALSE(ResultHas(document, L"no_root_element")) << "nobody knows";
}

TEST(StreamFileErrors, TakeAFileThatBecameShorterAsItIs) {
    const StreamFile file(L"<r><a>words</a>" + std::wstring(1000, L' ') + L"<b/></r>", L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForReading(file.Path(), {.encoding = {}, .blockSize = 8}));
    document.State().channel->fileLength += 100; // as if it had been longer at the opening
    EXPECT_EQ(ElementsInOrder(document), L"r: \n a: words\n b: \n");
    EXPECT_TRUE(document.Close());
    EXPECT_FALSE(ResultHas(document, L"file_error"));
}

TEST(StreamFileErrors, ReportThatWritingFailedAndWriteNothingMore) {
    const StreamFile file;
    const StreamFile other(L"untouched", L"UTF-8");
    XmlOffsetDocument document;
    ASSERT_TRUE(document.OpenForWriting(file.Path(), {.declaration = false, .blockSize = 4}));
    ASSERT_TRUE(document.AddElement(L"first", nullptr));
    document.State().channel->file.reset(std::fopen(other.NarrowPath(), "rb"));
    // Unbuffered, so that the write of the element itself fails and not a later flush.
    std::setvbuf(document.State().channel->file.get(), nullptr, _IONBF, 0);
    EXPECT_FALSE(document.AddElement(L"second", nullptr));
    EXPECT_TRUE(ResultHas(document, L"<file_error "));
    const std::wstring reported = document.Result();
    EXPECT_FALSE(document.AddElement(L"third", nullptr));
    EXPECT_EQ(document.Result(), reported) << "reported once";
    ExpectWithinText(document);
    EXPECT_FALSE(document.Close()) << "the file isn't whole";
    EXPECT_TRUE(ResultHas(document, L"<file_error "));
    EXPECT_EQ(document.Flags() & kDocStreams, 0u);
    EXPECT_EQ(other.Read(), Encoded(L"untouched", L"UTF-8"));
}

TEST(StreamFileErrors, ReportAFullDisk) {
#ifdef _WIN32
    GTEST_SKIP() << "no file is always full here: the native build has one, and "
                    "ReportThatWritingFailedAndWriteNothingMore covers the same path";
#endif
    for (const std::int32_t block : {4, 65536}) {
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForWriting(L"/dev/full", {.blockSize = block}));
        for (int i = 0; i < 10000; ++i) document.AddElement(L"a", L"some data");
        EXPECT_FALSE(document.Close());
        EXPECT_TRUE(ResultHas(document, L"<file_error msg=\""));
    }
}

TEST(StreamOutOfMemory, LeavesAStreamOfReadingThatCloses) {
    const StreamFile file(kText, L"UTF-8");
    const auto prepare = [] { return std::make_unique<XmlOffsetDocument>(); };
    const auto work = [&](XmlOffsetDocument& document) { ReadAll(document, file.Path()); };
    std::wstring expected;
    {
        const auto whole = prepare();
        work(*whole);
        expected = whole->Result();
    }
    const auto check = [&](XmlOffsetDocument& document, bool failed) {
        ASSERT_TRUE(failed);
        ExpectWithinText(document);
        (void)CurrentElement(document);
        (void)ElementsInOrder(document);
        ExpectWithinText(document);
        EXPECT_TRUE(document.Close());
        EXPECT_EQ(document.Flags(), 0u);
        work(document);
        EXPECT_EQ(document.Result(), expected) << "from the start it is all there";
    };
    EXPECT_GT(FailEachAllocation(prepare, work, check), 50u);
}

TEST(StreamOutOfMemory, LeavesAStreamOfWritingThatCloses) {
    const StreamFile file;
    const auto prepare = [] { return std::make_unique<XmlOffsetDocument>(); };
    const auto work = [&](XmlOffsetDocument& document) { WriteAll(document, file.Path()); };
    work(*prepare());
    const std::vector<std::uint8_t> expected = file.Read();
    ASSERT_GT(expected.size(), 500u);
    const auto check = [&](XmlOffsetDocument& document, bool failed) {
        ASSERT_TRUE(failed);
        ExpectWithinText(document);
        document.AddElement(L"one_more", L"value");
        document.IntoElement();
        document.OutOfElement();
        ExpectWithinText(document);
        document.Close();
        EXPECT_EQ(document.Flags() & kDocStreams, 0u);
        work(document);
        EXPECT_EQ(file.Read(), expected);
    };
    EXPECT_GT(FailEachAllocation(prepare, work, check), 50u);
}

// The window drops a long comment and gets the short rest of the file, and then there is
// no memory to report the error in it. Where the blocks end depends on the comment.
TEST(StreamOutOfMemory, LeavesNoRecordOfATextThatMoved) {
    std::size_t failures = 0;
    for (std::size_t comment = 40; comment < 400; comment += 9) {
        const StreamFile file(L"<!--" + std::wstring(comment, L'c') +
                                  L"--><a x='1'>data that is read <1></a>",
                              L"UTF-8");
        const auto prepare = [&] {
            auto document = std::make_unique<XmlOffsetDocument>();
            EXPECT_TRUE(document->OpenForReading(file.Path(), {.encoding = {}, .blockSize = 8}));
            EXPECT_TRUE(document->FindElement(L"a"));
            return document;
        };
        const auto work = [](XmlOffsetDocument& document) {
            EXPECT_EQ(document.GetData(1), L"data that is read ");
        };
        const auto check = [](XmlOffsetDocument& document, bool failed) {
            ASSERT_TRUE(failed);
            ExpectWithinText(document);
            (void)CurrentElement(document);
            (void)document.FindElement();
            ExpectWithinText(document);
            EXPECT_TRUE(document.Close());
        };
        failures += FailEachAllocation(prepare, work, check);
    }
    EXPECT_GT(failures, 100u);
}

TEST(StreamOutOfMemory, WritesNothingTwice) {
    const StreamFile file;
    const auto prepare = [&] {
        auto document = std::make_unique<XmlOffsetDocument>();
        EXPECT_TRUE(document->OpenForWriting(file.Path(), {.declaration = false, .blockSize = 4}));
        return document;
    };
    const auto work = [](XmlOffsetDocument& document) {
        for (int i = 0; i < 4; ++i) document.AddElement(L"element", nullptr, kAddNoLineEnds);
    };
    const auto check = [&](XmlOffsetDocument& document, bool) {
        const bool whole = document.Close();
        const std::wstring text = Decoded(file.Read(), L"UTF-8");
        for (std::size_t at = 0; at < text.size(); at += 10) {
            EXPECT_EQ(text.substr(at, 10), L"<element/>") << "whole: " << whole;
        }
        EXPECT_LE(text.size(), 40u);
    };
    EXPECT_GT(FailEachAllocation(prepare, work, check), 5u);
}

TEST(StreamOutOfMemory, ClosesTheFileOfADocumentThatIsDestroyed) {
    const StreamFile file;
    for (std::size_t failing = 0; failing < 40; ++failing) {
        auto document = std::make_unique<XmlOffsetDocument>();
        ASSERT_TRUE(document->OpenForWriting(file.Path(), {.blockSize = 4}));
        ASSERT_TRUE(document->AddElement(L"a_name_that_is_long_enough", nullptr));
        ASSERT_TRUE(document->IntoElement());
        const obtest::FailingAllocations failure({.succeeding = failing});
        document.reset(); // closes the file, with the end tag or without
    }
    EXPECT_EQ(std::remove(file.NarrowPath()), 0) << "the file is closed";
}
