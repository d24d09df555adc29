// The encoding that a text declares.
#include "ObLibX/src/xml/encoding/TextConverter.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {
namespace {

constexpr std::wstring_view kXml = L"xml";
constexpr std::wstring_view kEncoding = L"encoding";
constexpr std::wstring_view kHtml = L"html";
constexpr std::wstring_view kMeta = L"meta";
constexpr std::wstring_view kHead = L"head";
constexpr std::wstring_view kHttpEquiv = L"http-equiv";
constexpr std::wstring_view kContentType = L"Content-Type";
constexpr std::wstring_view kContent = L"content";
constexpr std::wstring_view kCharset = L"charset";

TagScanner Over(std::wstring_view text) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return {text.data(), std::min(text.size(), most), kDocIgnoreCase};
}

bool TokenIs(const TagScanner& scanner, std::wstring_view name) {
    return scanner.TokenIs(name.data(), name.size());
}

std::wstring_view Token(const TagScanner& scanner) {
    return {scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())};
}

// The value of an attribute of the tag that was just read, of which the last `closing` units are no
// attribute. False when the tag doesn't have the attribute.
bool Attribute(const TagScanner& tag, const NodeScan& scan, std::int32_t closing,
               std::wstring_view name, std::wstring_view& outValue) {
    TagScanner scanner = tag;
    scanner.cursor = tag.tokenEnd + 1;
    scanner.textLength = scan.start + scan.length - closing;
    if (!scanner.FindAttribute(name.data(), name.size())) {
        return false;
    }
    outValue = Token(scanner);
    return true;
}

void SkipSpace(TagScanner& scanner) {
    while (scanner.cursor < scanner.textLength && IsXmlSpace(scanner.textPointer[scanner.cursor])) {
        ++scanner.cursor;
    }
}

bool SkipUnit(TagScanner& scanner, std::wstring_view oneOf) {
    if (scanner.cursor >= scanner.textLength ||
        oneOf.find(scanner.textPointer[scanner.cursor]) == std::wstring_view::npos) {
        return false;
    }
    ++scanner.cursor;
    return true;
}

// The charset of "text/html; charset=utf-8"; empty when there is none.
std::wstring CharsetOf(std::wstring_view content) {
    TagScanner scanner = Over(content);
    while (scanner.cursor < scanner.textLength) {
        const bool isToken = scanner.NextName();
        const bool isCharset = isToken && TokenIs(scanner, kCharset);
        SkipSpace(scanner);
        if (isCharset && SkipUnit(scanner, L"=")) {
            SkipSpace(scanner);
            SkipUnit(scanner, L"\"'");
            return std::wstring(scanner.NextName() ? Token(scanner) : std::wstring_view());
        }
        // A character that is no token is skipped.
        scanner.cursor += isToken ? 0 : 1;
    }
    return {};
}

// Reads the text node by node until the encoding is decided.
class EncodingSearch {
public:
    explicit EncodingSearch(std::wstring_view text) : scanner_(Over(text)) {}

    std::wstring Run() {
        while (!over_) {
            Step(scanner_.NextNode(scan_));
        }
        return found_;
    }

private:
    void Step(std::int32_t type) {
        switch (type) {
        case kNodeElement:
            Element();
            break;
        case kNodeInstruction:
            Instruction();
            break;
        case kNodeEndTag:
            over_ = TokenIs(scanner_, kHead);
            break;
        case kNodeScanError:
        case kNodeEndOfText:
            over_ = true;
            break;
        default:
            break;
        }
    }

    void Instruction() {
        if (scan_.start == 0 && TokenIs(scanner_, kXml)) {
            constexpr std::int32_t questionMarkAndEnd = 2;
            std::wstring_view value;
            Attribute(scanner_, scan_, questionMarkAndEnd, kEncoding, value);
            Answer(value);
        }
    }

    void Element() {
        if (!inHtml_) {
            inHtml_ = TokenIs(scanner_, kHtml);
            over_ = !inHtml_;
        } else if (TokenIs(scanner_, kMeta)) {
            Meta();
        }
    }

    void Meta() {
        std::wstring_view equivalent;
        if (!Attribute(scanner_, scan_, 0, kHttpEquiv, equivalent) ||
            equivalent.size() != kContentType.size() ||
            !SameName(equivalent.data(), kContentType.data(), kContentType.size(), true)) {
            return;
        }
        std::wstring_view content;
        Attribute(scanner_, scan_, 0, kContent, content);
        Answer(CharsetOf(content));
    }

    void Answer(std::wstring_view encoding) {
        found_ = encoding;
        over_ = true;
    }

    TagScanner scanner_;
    NodeScan scan_;
    std::wstring found_;
    bool inHtml_ = false;
    bool over_ = false;
};

} // namespace

std::wstring GetDeclaredEncoding(std::wstring_view text) { return EncodingSearch(text).Run(); }

} // namespace ObLibX
