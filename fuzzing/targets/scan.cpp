// The scanner: QuickScan and NodeRules give the same nodes, and all tokens are in the text.
#include <memory>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/scan/NodeRules.h"
#include "ObLibX/src/xml/scan/TagScanner.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

bool HasName(std::int32_t type) {
    return type == kNodeElement || type == kNodeEndTag || type == kNodeInstruction;
}

void RequireSameNode(const TagScanner& one, const NodeScan& oneScan, const TagScanner& other,
                     const NodeScan& otherScan) {
    Require(oneScan.type == otherScan.type, "both ways give the node's type");
    Require(oneScan.start == otherScan.start, "both ways give the node's start");
    Require(oneScan.length == otherScan.length, "both ways give the node's length");
    Require(oneScan.flags == otherScan.flags, "both ways give the node's flags");
    Require(oneScan.report == otherScan.report, "both ways report the same");
    Require(one.cursor == other.cursor, "both ways stop at the same place");
    if (!HasName(oneScan.type)) return;
    Require(one.tokenStart == other.tokenStart && one.tokenEnd == other.tokenEnd,
            "both ways give the node's name");
}

void RequireTokenInText(const TagScanner& scanner) {
    Require(scanner.tokenStart >= 0 && scanner.TokenLength() >= 0, "a token has a length");
    Require(scanner.tokenEnd < scanner.textLength, "a token is in the text");
    Require(scanner.cursor >= 0 && scanner.cursor <= scanner.textLength, "so does the cursor");
}

// Everything that can be read of a tag, whatever it is.
void ReadTag(TagScanner scanner, const NodeScan& scan) {
    RequireTokenInText(scanner);
    const std::int32_t afterName = scanner.tokenEnd + 1;
    scanner.textLength = scan.start + scan.length;
    for (std::int32_t index = 0;; ++index) {
        scanner.cursor = afterName;
        if (!scanner.FindAttributeAt(index)) break;
        RequireTokenInText(scanner);
        const std::wstring name(scanner.Token(), static_cast<std::size_t>(scanner.TokenLength()));
        scanner.cursor = afterName;
        Require(scanner.FindAttribute(name.data(), name.size()), "a listed attribute is found");
        RequireTokenInText(scanner);
    }
}

void ReadNodes(const wchar_t* text, std::size_t length, std::uint32_t flags, bool reports) {
    TagScanner quick(text, length, flags);
    TagScanner plain(text, length, flags);
    quick.reports = reports;
    plain.reports = reports;
    NodeScan quickScan;
    NodeScan plainScan;
    std::int32_t at = 0;
    while (quick.NextNode(quickScan) != kNodeEndOfText) {
        plainScan.report.clear();
        NodeRules(plain, plainScan).Run();
        RequireSameNode(quick, quickScan, plain, plainScan);
        Require(quickScan.start == at && quickScan.length > 0,
                "each node begins where the last one ended");
        at += quickScan.length;
        if (quickScan.type == kNodeElement) ReadTag(quick, quickScan);
    }
    Require(at == static_cast<std::int32_t>(length), "the nodes are the text");
}

void ReadTokens(const wchar_t* text, std::size_t length, std::uint32_t flags) {
    using Read = bool (TagScanner::*)();
    for (const Read read :
         {&TagScanner::NextName, &TagScanner::NextAttributeName, &TagScanner::NextValue}) {
        TagScanner scanner(text, length, flags);
        while (scanner.cursor < scanner.textLength) {
            const std::int32_t before = scanner.cursor;
            (scanner.*read)();
            RequireTokenInText(scanner);
            Require(scanner.cursor >= before, "a token is never read backwards");
            scanner.cursor += scanner.cursor == before ? 1 : 0;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::uint32_t choice = input.Byte();
    const std::uint32_t flags = choice % 2 != 0 ? kDocIgnoreCase : 0;
    // Writing a report takes longer than all the rest.
    const bool reports = choice >= 192;
    const std::wstring rest = input.Rest();
    // Exactly as long, so that a read past the end is noticed.
    const auto text = std::make_unique<wchar_t[]>(rest.size());
    rest.copy(text.get(), rest.size());
    ReadNodes(text.get(), rest.size(), flags, reports);
    ReadTokens(text.get(), rest.size(), flags);
    return 0;
}
