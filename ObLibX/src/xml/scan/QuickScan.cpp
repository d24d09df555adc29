#include "ObLibX/src/xml/scan/QuickScan.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/ScannerState.h"

namespace ObLibX {
namespace {

// A node that was read.
struct Found {
    const wchar_t* after = nullptr; // past its last unit; null: the node is left to the rules
    std::int32_t type = 0;
    std::uint32_t flags = 0;
    const wchar_t* name = nullptr; // the token; null for a kind of node that has none
    const wchar_t* nameEnd = nullptr;
};

constexpr Found kLeftToRules{};

// White space, or text with the white space in it, up to the next tag. `last`: no text follows the
// buffer, so that the node may end with it.
Found QuickText(const wchar_t* start, const wchar_t* end, bool last) {
    const wchar_t* at = start;
    while (at != end && IsXmlSpace(*at)) {
        ++at;
    }
    std::int32_t type = kNodeSpace;
    if (at != end && *at != L'<') {
        type = kNodeText;
        at = FindUnit(at, end, EqualTo{L'<'});
    }
    return at != end || last ? Found{.after = at, .type = type} : kLeftToRules;
}

// Returns the place after the value whose '=' is before `at`; or the '>' of the tag, with
// `unquoted` true when an unquoted value ends there. Null when the buffer ends first.
const wchar_t* AfterValue(const wchar_t* at, const wchar_t* end, bool& unquoted) {
    while (at != end && (IsXmlSpace(*at) || (*at == L'=' && at[-1] != L'='))) {
        ++at;
    }
    if (at == end) {
        return nullptr;
    }
    if (*at == L'"' || *at == L'\'') {
        at = FindUnit(at + 1, end, EqualTo{*at});
        return at == end ? nullptr : at + 1;
    }
    unquoted = *at != L'>';
    at = FindUnit(at, end, UnquotedValueEnd{});
    if (at == end || *at == L'>') {
        return at == end ? nullptr : at;
    }
    unquoted = false;
    return at + 1;
}

// Whether the '>' ends an empty element.
bool SlashEndsTag(const wchar_t* greater, bool unquoted) {
    return greater[-1] == L'/' &&
           (!unquoted || IsXmlSpace(greater[-2]) || greater[-2] == L'"' || greater[-2] == L'\'');
}

Found QuickStartTag(const wchar_t* start, const wchar_t* end) {
    const wchar_t* nameEnd = FindUnit(start + 2, end, TagNameEnd{});
    const wchar_t* at = nameEnd;
    bool unquoted = false;
    for (;;) {
        at = FindUnit(at, end, EqualsOrGreater{});
        if (at == end) {
            return kLeftToRules;
        }
        if (*at == L'>') {
            break;
        }
        at = AfterValue(at + 1, end, unquoted);
        if (at == nullptr) {
            return kLeftToRules;
        }
    }
    return {.after = at + 1,
            .type = kNodeElement,
            .flags = SlashEndsTag(at, unquoted) ? kScanEmptyTag : 0,
            .name = start + 1,
            .nameEnd = nameEnd};
}

Found QuickEndTag(const wchar_t* start, const wchar_t* end) {
    const wchar_t* nameEnd = FindUnit(start + 2, end, TagNameEnd{});
    const wchar_t* at = FindUnit(nameEnd, end, EqualTo{L'>'});
    if (at == end) {
        return kLeftToRules;
    }
    return {.after = at + 1, .type = kNodeEndTag, .name = start + 2, .nameEnd = nameEnd};
}

// Past the first '>' from `at` on that follows two units `before`; null when the buffer ends first.
const wchar_t* AfterTwoAndGreater(const wchar_t* at, const wchar_t* end, wchar_t before) {
    for (;; ++at) {
        at = FindUnit(at, end, EqualTo{L'>'});
        if (at == end) {
            return nullptr;
        }
        if (at[-1] == before && at[-2] == before) {
            return at + 1;
        }
    }
}

Found QuickInstruction(const wchar_t* start, const wchar_t* end) {
    const wchar_t* nameEnd = start + 2;
    while (nameEnd != end && !EndsTagName(*nameEnd) && *nameEnd != L'?') {
        ++nameEnd;
    }
    for (const wchar_t* at = nameEnd;; ++at) {
        at = FindUnit(at, end, EqualTo{L'>'});
        if (at == end) {
            return kLeftToRules;
        }
        if (at[-1] == L'?') {
            return {
                .after = at + 1, .type = kNodeInstruction, .name = start + 2, .nameEnd = nameEnd};
        }
    }
}

// Comments and CDATA sections.
Found QuickExclamation(const wchar_t* start, const wchar_t* end) {
    if (end - start < 4) {
        return kLeftToRules;
    }
    if (start[2] == L'-' && start[3] == L'-') {
        return {.after = AfterTwoAndGreater(start + 4, end, L'-'), .type = kNodeComment};
    }
    if (start[2] == L'[' && start[3] == L'C') {
        return {.after = AfterTwoAndGreater(start + 4, end, L']'), .type = kNodeCdata};
    }
    return kLeftToRules;
}

Found QuickTag(const wchar_t* start, const wchar_t* end) {
    if (end - start < 2) {
        return kLeftToRules;
    }
    switch (start[1]) {
    case L'/':
        return QuickEndTag(start, end);
    case L'!':
        return QuickExclamation(start, end);
    case L'?':
        return QuickInstruction(start, end);
    default:
        return StartsTagName(start[1]) ? QuickStartTag(start, end) : kLeftToRules;
    }
}

} // namespace

bool QuickNode(ScannerState& scanner, NodeScan& scan) {
    const wchar_t* const text = scanner.textPointer;
    const wchar_t* const start = text + scanner.cursor;
    const wchar_t* const end = text + scanner.textLength;
    if (start >= end) {
        return false;
    }
    const Found found =
        *start == L'<' ? QuickTag(start, end) : QuickText(start, end, scanner.channel == nullptr);
    if (found.after == nullptr) {
        return false;
    }
    scan.type = found.type;
    scan.start = scanner.cursor;
    scan.length = static_cast<std::int32_t>(found.after - start);
    scan.flags = found.flags;
    scanner.cursor += scan.length;
    if (found.name != nullptr) {
        scanner.tokenStart = static_cast<std::int32_t>(found.name - text);
        scanner.tokenEnd = static_cast<std::int32_t>(found.nameEnd - text) - 1;
        scanner.tokenFlags &= ~kTokenQuoted;
    }
    return true;
}

} // namespace ObLibX
