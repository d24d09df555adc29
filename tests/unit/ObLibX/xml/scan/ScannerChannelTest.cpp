// A text that is read block by block gives the nodes of the whole text.
#include <gtest/gtest.h>

#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

std::string BytesOf(std::wstring_view text) {
    return obtest::Bytes(std::u16string(text.begin(), text.end()));
}

// The text in a file of UTF-16, of which a scanner sees `block` bytes more each time it asks.
class Blocks {
public:
    Blocks(std::wstring_view text, std::int32_t block)
        : file_(BytesOf(text)), channel_(obtest::Reader(file_, 2 * text.size())) {
        channel_.fileFlags = kFileUtf16;
        channel_.unitSize = 2;
        channel_.encoding = L"UTF-16";
        channel_.blockSize = block;
        channel_.documentText = &text_;
    }

    TagScanner Scanner() {
        TagScanner scanner(text_.data(), text_.size(), 0);
        scanner.channel = &channel_;
        return scanner;
    }
    const std::wstring& Text() const { return text_; }
    const TextFileChannel& Channel() const { return channel_; }

private:
    obtest::ScratchFile file_;
    TextFileChannel channel_;
    std::wstring text_;
};

// Each node with its text, as offsets move with the text.
std::string NodesOf(TagScanner scanner) {
    std::string nodes;
    NodeScan scan;
    while (scanner.NextNode(scan) != kNodeEndOfText) {
        nodes += std::to_string(scan.type) + (scan.flags != 0 ? " empty " : " ") +
                 Narrow({scanner.textPointer + scan.start, std::size_t(scan.length)});
        if (scan.type == kNodeElement || scan.type == kNodeEndTag) {
            nodes += " [" + Narrow({scanner.Token(), std::size_t(scanner.TokenLength())}) + "]";
        }
        nodes += "\n";
    }
    return nodes;
}

constexpr std::wstring_view kText =
    L"<?xml version='1.0'?>\r\n<!DOCTYPE a [<!ENTITY b '>'>]><list kind=\"a > b\"> \r\n <!-- x -- "
    L"> "
    L"--><empty_element c=d/ /><![CDATA[ ]] > ]]>some text\r\n</list  ><1><a b=c>";

TEST(ScannerChannel, ReadsTheSameNodesWhateverTheBlocksAre) {
    const std::string whole = NodesOf(TagScanner(kText.data(), kText.size(), 0));
    for (std::int32_t block = 4; block < 2 * static_cast<std::int32_t>(kText.size()); block += 4) {
        Blocks blocks(kText, block);
        ASSERT_EQ(NodesOf(blocks.Scanner()), whole) << "blocks of " << block;
    }
}

TEST(ScannerChannel, DropsTheTextBeforeTheNode) {
    std::wstring text;
    for (int i = 0; i < 1000; ++i) {
        text += L"<element>text</element>";
    }
    Blocks blocks(text, 64);
    TagScanner scanner = blocks.Scanner();
    NodeScan scan;
    int elements = 0;
    while (scanner.NextNode(scan) != kNodeEndOfText) {
        elements += scan.type == kNodeElement;
        ASSERT_LT(blocks.Text().size(), 200u);
    }
    EXPECT_EQ(elements, 1000);
}

TEST(ScannerChannel, KeepsTheSpanThatIsPreserved) {
    std::wstring text = L"<first>";
    for (int i = 0; i < 200; ++i) {
        text += L"<b>text</b>";
    }
    Blocks blocks(text, 32);
    TagScanner scanner = blocks.Scanner();
    NodeScan scan;
    ASSERT_EQ(scanner.NextNode(scan), kNodeElement);
    ASSERT_EQ(scanner.NextNode(scan), kNodeElement);
    scanner.preservedStart = scan.start;
    scanner.preservedLength = scan.length;
    for (int i = 0; i < 300; ++i) {
        scanner.NextNode(scan);
        ASSERT_EQ(std::wstring(scanner.textPointer + scanner.preservedStart, 3), L"<b>") << i;
    }
    scanner.preservedLength = 0;
    const std::size_t kept = blocks.Text().size();
    while (scanner.NextNode(scan) != kNodeEndOfText) {
    }
    EXPECT_LT(blocks.Text().size(), kept);
}

TEST(ScannerChannel, AnEmptyFileIsAtItsEndAtOnce) {
    Blocks blocks(L"", 16);
    TagScanner scanner = blocks.Scanner();
    NodeScan scan;
    EXPECT_EQ(scanner.NextNode(scan), kNodeEndOfText);
    EXPECT_EQ(scan.length, 0);
}

} // namespace
} // namespace ObLibX
