// The scanner over a file that comes in blocks finds what it finds in the whole text.
#include <cstdio>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "ObLibX/src/xml/scan/TagScanner.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

bool HasName(std::int32_t type) {
    return type == kNodeElement || type == kNodeEndTag || type == kNodeInstruction;
}

std::wstring_view TokenOf(const TagScanner& scanner) {
    return {scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())};
}

// The channel's text, scanned from the front.
class Window {
public:
    Window(std::string& file, std::int32_t blockSize, bool bigEndian, std::uint32_t flags)
        : scanner_(nullptr, 0, flags) {
        channel_.file.reset(fmemopen(file.data(), file.size(), "rb"));
        Require(channel_.file != nullptr, "a file in memory opens");
        channel_.fileLength = static_cast<std::uint32_t>(file.size());
        channel_.fileFlags = kFileUtf16 | (bigEndian ? kFileBigEndian : 0);
        channel_.blockSize = blockSize;
        channel_.documentText = &text_;
        channel_.savedFrom = 0;
        scanner_.textPointer = text_.data();
        scanner_.channel = &channel_;
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    std::int32_t NextNode(NodeScan& scan) { return scanner_.NextNode(scan); }
    const TagScanner& Scanner() const { return scanner_; }
    std::wstring_view NodeText(const NodeScan& scan) const {
        return std::wstring_view(text_).substr(static_cast<std::size_t>(scan.start),
                                               static_cast<std::size_t>(scan.length));
    }
    // What was dropped in front and what is still there.
    std::wstring AllText() const {
        return channel_.savedText + text_.substr(static_cast<std::size_t>(channel_.savedFrom));
    }

private:
    std::wstring text_;
    TextFileChannel channel_;
    TagScanner scanner_;
};

void RequireSameNodes(Window& window, const std::wstring& text, std::uint32_t flags) {
    TagScanner whole(text.data(), text.size(), flags);
    NodeScan wholeScan;
    NodeScan scan;
    for (;;) {
        const std::int32_t type = whole.NextNode(wholeScan);
        Require(window.NextNode(scan) == type, "a node's type is the same in blocks");
        if (type == kNodeEndOfText) break;
        Require(scan.length == wholeScan.length, "and its length");
        Require(scan.flags == wholeScan.flags, "and its flags");
        Require(window.NodeText(scan) == text.substr(static_cast<std::size_t>(wholeScan.start),
                                                     static_cast<std::size_t>(wholeScan.length)),
                "and its text");
        Require(scan.report.empty() == wholeScan.report.empty(), "and whether it is reported");
        Require(!HasName(type) || TokenOf(window.Scanner()) == TokenOf(whole), "and its name");
    }
    Require(window.AllText() == text, "what must survive survives");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const auto blockSize = static_cast<std::int32_t>(input.Byte());
    const std::uint32_t modes = input.Byte();
    const bool bigEndian = (modes & 1) != 0;
    const std::uint32_t flags = (modes & 2) != 0 ? kDocIgnoreCase : 0;
    const std::wstring text = WithoutNulls(input.Rest());
    if (text.empty()) return 0;
    std::string file = Utf16Of(text, bigEndian);
    Window window(file, blockSize, bigEndian, flags);
    RequireSameNodes(window, text, flags);
    return 0;
}
