#include "tests/unit/ObLibX/xml/scan/Scans.h"

#include <map>

#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/NodeRules.h"

namespace ObLibX {
namespace {

std::string NameOf(std::int32_t type) {
    static const std::map<std::int32_t, std::string> names = {
        {kNodeEndTag, "end"},      {kNodeElement, "element"}, {kNodeText, "text"},
        {kNodeSpace, "space"},     {kNodeCdata, "cdata"},     {kNodeInstruction, "instruction"},
        {kNodeComment, "comment"}, {kNodeDocType, "doctype"}, {kNodeScanError, "error"}};
    const auto found = names.find(type);
    return found == names.end() ? "type " + std::to_string(type) : found->second;
}

bool HasName(std::int32_t type) {
    return type == kNodeElement || type == kNodeEndTag || type == kNodeInstruction;
}

std::string LineOf(const TagScanner& scanner, const NodeScan& scan) {
    std::string line =
        NameOf(scan.type) + " " + std::to_string(scan.start) + "+" + std::to_string(scan.length);
    if (HasName(scan.type)) {
        line += " [" + Narrow({scanner.Token(), std::size_t(scanner.TokenLength())}) + "]";
    }
    if (scan.flags != 0) {
        line += scan.flags == kScanEmptyTag ? " empty" : " flags " + std::to_string(scan.flags);
    }
    std::string reports = Narrow(scan.report);
    std::erase_if(reports, [](char c) { return c == '\r' || c == '\n'; });
    return reports.empty() ? line : line + " {" + reports + "}";
}

template <typename Step>
std::string AllOf(std::wstring_view text, Step step) {
    TagScanner scanner(text.data(), text.size(), 0);
    NodeScan scan;
    std::string all;
    while (step(scanner, scan) != kNodeEndOfText) {
        all += (all.empty() ? "" : "; ") + LineOf(scanner, scan);
        if (scan.length <= 0) {
            return all + " MAKES NO PROGRESS";
        }
    }
    const bool atEnd = scan.start == static_cast<std::int32_t>(text.size()) && scan.length == 0;
    return all + (atEnd ? "" : "; the end is misplaced");
}

} // namespace

std::string Scans(std::wstring_view text) {
    return AllOf(text, [](TagScanner& scanner, NodeScan& scan) { return scanner.NextNode(scan); });
}

std::string PlainScans(std::wstring_view text) {
    return AllOf(text, [](TagScanner& scanner, NodeScan& scan) {
        scan.report.clear();
        NodeRules(scanner, scan).Run();
        return scan.type;
    });
}

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t unit : text) {
        narrow += unit < 0x80 ? static_cast<char>(unit) : '~';
    }
    return narrow;
}

} // namespace ObLibX
