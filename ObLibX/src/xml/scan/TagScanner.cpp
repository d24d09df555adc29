#include "ObLibX/src/xml/scan/TagScanner.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/AttributeIterator.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/NodeRules.h"
#include "ObLibX/src/xml/scan/QuickScan.h"

namespace ObLibX {
namespace {

AttributeIterator AttributesFrom(const TagScanner& scanner) {
    const wchar_t* const text = scanner.textPointer;
    return {text, text + scanner.cursor, text + scanner.textLength};
}

void SetToken(TagScanner& scanner, const UnitSpan& token) {
    scanner.tokenStart = static_cast<std::int32_t>(token.start - scanner.textPointer);
    scanner.tokenEnd = static_cast<std::int32_t>(token.end - scanner.textPointer) - 1;
    scanner.tokenFlags = (scanner.tokenFlags & ~kTokenQuoted) | (token.quoted ? kTokenQuoted : 0);
}

void SetCursor(TagScanner& scanner, const wchar_t* at) {
    scanner.cursor = static_cast<std::int32_t>(at - scanner.textPointer);
}

} // namespace

std::int32_t TagScanner::NextNode(NodeScan& scan) {
    scan.report.clear();
    if (!QuickNode(*this, scan)) {
        NodeRules(*this, scan).Run();
    }
    return scan.type;
}

bool TagScanner::NextName() {
    const wchar_t* const end = textPointer + textLength;
    const wchar_t* const start = SkipSpace(textPointer + cursor, end);
    const UnitSpan name{start, FindUnit(start, end, NameEnd{})};
    SetToken(*this, name);
    SetCursor(*this, name.end);
    return name.start != name.end;
}

bool TagScanner::NextAttributeName() {
    AttributeIterator attributes = AttributesFrom(*this);
    const UnitSpan name = attributes.Name();
    SetToken(*this, name);
    SetCursor(*this, attributes.At());
    return name.start != name.end;
}

bool TagScanner::NextValue() {
    AttributeIterator attributes = AttributesFrom(*this);
    const UnitSpan value = attributes.Value();
    SetToken(*this, value);
    SetCursor(*this, attributes.At());
    return value.quoted || value.start != value.end;
}

bool TagScanner::TokenIs(const wchar_t* name, std::size_t length) const {
    return TokenLength() == static_cast<std::int32_t>(length) &&
           SameName(Token(), name, length, (tokenFlags & kDocIgnoreCase) != 0);
}

bool TagScanner::FindAttribute(const wchar_t* name, std::size_t length) {
    const bool ignoresCase = (tokenFlags & kDocIgnoreCase) != 0;
    AttributeIterator attributes = AttributesFrom(*this);
    UnitSpan found;
    UnitSpan value;
    while (attributes.Next(found, value)) {
        if (static_cast<std::size_t>(found.end - found.start) == length &&
            SameName(found.start, name, length, ignoresCase)) {
            SetToken(*this, value);
            SetCursor(*this, attributes.At());
            return true;
        }
    }
    SetCursor(*this, attributes.At());
    return false;
}

bool TagScanner::FindAttributeAt(std::int32_t index) {
    AttributeIterator attributes = AttributesFrom(*this);
    UnitSpan name;
    UnitSpan value;
    for (; attributes.Next(name, value); --index) {
        if (index == 0) {
            SetToken(*this, name);
            SetCursor(*this, name.end);
            return true;
        }
    }
    SetCursor(*this, attributes.At());
    return false;
}

} // namespace ObLibX
