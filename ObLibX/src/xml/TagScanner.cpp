#include "ObLibX/src/xml/TagScanner.h"

#include <algorithm>

#include "ObLibX/src/xml/DocumentState.h"
#include "ObLibX/src/xml/FindUnit.h"
#include "ObLibX/src/xml/NodeRules.h"
#include "ObLibX/src/xml/QuickScan.h"
#include "ObLibX/src/xml/TextFileChannel.h"
#include "ObLibX/src/xml/XmlCharacters.h"

namespace ObLibX {
namespace {

bool AtEnd(const TagScanner& scanner) { return scanner.cursor >= scanner.textLength; }
wchar_t Unit(const TagScanner& scanner) { return scanner.textPointer[scanner.cursor]; }
bool AtUnit(const TagScanner& scanner, wchar_t unit) {
    return !AtEnd(scanner) && Unit(scanner) == unit;
}

void SkipSpace(TagScanner& scanner) {
    while (!AtEnd(scanner) && IsXmlSpace(Unit(scanner))) {
        ++scanner.cursor;
    }
}

// A token up to the first unit of the set.
template <typename Set>
void ReadToken(TagScanner& scanner, Set set) {
    const wchar_t* const text = scanner.textPointer;
    const wchar_t* const end = FindUnit(text + scanner.cursor, text + scanner.textLength, set);
    scanner.tokenStart = scanner.cursor;
    scanner.cursor = static_cast<std::int32_t>(end - text);
    scanner.tokenEnd = scanner.cursor - 1;
    scanner.tokenFlags &= ~kTokenQuoted;
}

template <typename Set>
bool NextToken(TagScanner& scanner, Set set) {
    SkipSpace(scanner);
    ReadToken(scanner, set);
    return scanner.TokenLength() > 0;
}

// The '=' in front of a value and the white space around it. A '=' that follows another directly
// belongs to the value.
void SkipEquals(TagScanner& scanner) {
    for (;; ++scanner.cursor) {
        if (AtEnd(scanner)) {
            return;
        }
        const wchar_t unit = Unit(scanner);
        const bool doubled = scanner.cursor > 0 && scanner.textPointer[scanner.cursor - 1] == L'=';
        if (!IsXmlSpace(unit) && (unit != L'=' || doubled)) {
            return;
        }
    }
}

void ReadQuoted(TagScanner& scanner, wchar_t quote) {
    ++scanner.cursor;
    ReadToken(scanner, EqualTo{quote});
    scanner.tokenFlags |= kTokenQuoted;
    scanner.cursor += AtEnd(scanner) ? 0 : 1;
}

// The slash of "x />" and of "x"/>" is the tag's, that of "x/>" the value's, as for the tag itself.
void ReadUnquoted(TagScanner& scanner) {
    ReadToken(scanner, UnquotedValueEnd{});
    const std::int32_t end = scanner.tokenEnd;
    if (scanner.TokenLength() > 0 && AtUnit(scanner, L'>') && scanner.textPointer[end] == L'/' &&
        end > 0) {
        const wchar_t before = scanner.textPointer[end - 1];
        if (IsXmlSpace(before) || before == L'"' || before == L'\'') {
            --scanner.tokenEnd;
        }
    }
}

// Whether a value follows; white space before '=' is passed over.
bool EqualsFollows(TagScanner& scanner) {
    SkipSpace(scanner);
    return AtUnit(scanner, L'=');
}

// The name of the next attribute of the tag; values without a name are passed over with what else
// is no name.
bool NextAttributeOfTag(TagScanner& scanner) {
    while (!scanner.NextAttributeName()) {
        if (AtEnd(scanner) || Unit(scanner) == L'>') {
            return false;
        }
        if (Unit(scanner) == L'=') {
            scanner.NextValue();
        } else {
            ++scanner.cursor;
        }
    }
    return true;
}

} // namespace

std::int32_t TagScanner::NextNode(NodeScan& scan) {
    scan.report.clear();
    if (!QuickNode(*this, scan)) {
        NodeRules(*this, scan).Run();
    }
    return scan.type;
}

bool TagScanner::ReadMore(NodeScan& scan) {
    while (channel != nullptr) {
        channel->bufferKeepFrom =
            preservedLength > 0 ? std::min(scan.start, preservedStart) : scan.start;
        if (!channel->ReadMore()) {
            return false;
        }
        const std::int32_t removed = channel->bufferRemoved;
        textPointer = channel->documentText->data();
        textLength = static_cast<std::int32_t>(channel->documentText->size());
        scan.start -= removed;
        cursor -= removed;
        tokenStart -= removed;
        tokenEnd -= removed;
        preservedStart -= removed;
        if (cursor < textLength) {
            return true; // a block may also be empty, when all its units were dropped
        }
    }
    return false;
}

bool TagScanner::NextName() { return NextToken(*this, NameEnd{}); }

bool TagScanner::NextAttributeName() { return NextToken(*this, AttributeNameEnd{}); }

bool TagScanner::NextValue() {
    SkipEquals(*this);
    if (AtEnd(*this)) {
        ReadToken(*this, UnquotedValueEnd{});
        return false;
    }
    const wchar_t unit = Unit(*this);
    if (unit == L'"' || unit == L'\'') {
        ReadQuoted(*this, unit);
        return true;
    }
    ReadUnquoted(*this);
    return TokenLength() > 0;
}

bool TagScanner::TokenIs(const wchar_t* name, std::size_t length) const {
    return TokenLength() == static_cast<std::int32_t>(length) &&
           SameName(Token(), name, length, (tokenFlags & kDocIgnoreCase) != 0);
}

bool TagScanner::FindAttribute(const wchar_t* name, std::size_t length) {
    while (NextAttributeOfTag(*this)) {
        const bool found = TokenIs(name, length);
        const std::int32_t nameStart = tokenStart;
        const std::int32_t nameEnd = tokenEnd;
        if (EqualsFollows(*this)) {
            NextValue();
        } else {
            tokenStart = nameStart;
            tokenEnd = nameEnd;
        }
        if (found) {
            return true;
        }
    }
    return false;
}

bool TagScanner::FindAttributeAt(std::int32_t index) {
    for (; NextAttributeOfTag(*this); --index) {
        if (index == 0) {
            return true;
        }
        if (EqualsFollows(*this)) {
            NextValue();
        }
    }
    return false;
}

} // namespace ObLibX
