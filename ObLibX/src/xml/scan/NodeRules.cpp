// The rules in their order. Each row is what one unit does in one state of the node.
//
//   state          unit                  becomes
//   start          <                     after <
//                  white space           white-space run (type 4)
//                  other                 text (2), up to <
//   white space    <                     ends the node, before it
//                  not white space       text (2), up to <
//   after <        name start            element (1), up to >, name from here
//                  /                     end tag (0), up to >, name from the next
//                  !                     after <!
//                  ?                     instruction (16), up to ?>, name from the next
//                  other                 error, up to >
//   after <!       -                     after <!-
//                  [                     after <![           (not in a document type)
//                  D                     document type (64)  (not in a document type)
//                  A E N                 declaration (64), up to >  (in a document type only)
//                  other                 error, up to >
//   after <!-      -                     comment (32), up to -->
//                  other                 error, up to >
//   after <![      C                     CDATA section (8), up to ]]>
//                  other                 error, up to >
//   document type  <                     after <, a nested declaration
//                  >                     ends the node, after it
//   up to ...      the terminator        ends the node, after it; in a document type it ends
//                                        the declaration only
//                  < in text, in errors  ends the node, before it
//
// An error is a unit where another was expected. The rules then read that unit once more as part of
// the bad tag, so that "<>" ends with its '>' and "<<a>" loses no tag.
#include "ObLibX/src/xml/scan/NodeRules.h"

#include <algorithm>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kAfterLess = 0x1;
constexpr std::uint32_t kAfterExclamation = 0x2; // <!
constexpr std::uint32_t kAfterDash = 0x4;        // <!-
constexpr std::uint32_t kAfterBracket = 0x8;     // <![
constexpr std::uint32_t kInSpace = 0x10;
constexpr std::uint32_t kInDocType = 0x20;
constexpr std::uint32_t kInSingleQuotes = 0x40;
constexpr std::uint32_t kInDoubleQuotes = 0x80;
constexpr std::uint32_t kAfterEquals = 0x100;
constexpr std::uint32_t kInUnquoted = 0x200;
constexpr std::uint32_t kInName = 0x400;
constexpr std::uint32_t kStarted = 0x800; // a unit was read

constexpr std::int32_t kUndecided = -1; // the type of a node at first; of an error it stays

// The name in the report of a node that the end of the text cuts off.
const wchar_t* NameOfType(std::int32_t type, bool inDocType) {
    if (inDocType) {
        return L"document_type";
    }
    switch (type) {
    case kNodeDocType:
        return L"document_type";
    case kNodeElement:
        return L"start_tag";
    case kNodeEndTag:
        return L"end_tag";
    case kNodeCdata:
        return L"cdata_section";
    case kNodeInstruction:
        return L"processing_instruction";
    case kNodeComment:
        return L"comment";
    default:
        return L"tag";
    }
}

// The front of the text went, so that everything is `removed` units nearer to its start.
void MoveBack(ScannerState& scanner, std::int32_t removed) {
    scanner.cursor -= removed;
    scanner.tokenStart -= removed;
    scanner.tokenEnd -= removed;
    scanner.preservedStart -= removed;
}

} // namespace

void NodeRules::Run() {
    type_ = kUndecided;
    scan_.start = scanner_.cursor;
    scan_.flags = 0;
    for (;;) {
        if (scanner_.cursor >= scanner_.textLength && !MoreText()) {
            AtEndOfText();
            break;
        }
        const wchar_t unit = scanner_.textPointer[scanner_.cursor];
        const Verdict verdict = Apply(unit);
        if (verdict == Verdict::EndBefore) {
            break;
        }
        ++scanner_.cursor;
        if (verdict == Verdict::EndAfter) {
            break;
        }
        lastButOne_ = last_;
        last_ = unit;
    }
    Finish();
}

// At the end of the buffer the source is asked for more, keeping the node and the preserved span,
// and all positions move with the text that it dropped at the front. A block may also be empty,
// when all its units were dropped.
bool NodeRules::MoreText() {
    TextSource* const source = scanner_.channel;
    while (source != nullptr) {
        source->bufferKeepFrom = scanner_.preservedLength > 0
                                     ? std::min(scan_.start, scanner_.preservedStart)
                                     : scan_.start;
        if (!source->ReadMore()) {
            return false;
        }
        scanner_.textPointer = source->documentText->data();
        scanner_.textLength = static_cast<std::int32_t>(source->documentText->size());
        scan_.start -= source->bufferRemoved;
        MoveBack(scanner_, source->bufferRemoved);
        if (scanner_.cursor < scanner_.textLength) {
            return true;
        }
    }
    return false;
}

void NodeRules::AtEndOfText() {
    if (!Has(kStarted)) {
        type_ = kNodeEndOfText;
    } else if (type_ != kNodeText && type_ != kNodeSpace) {
        if (Has(kInName)) {
            scanner_.tokenEnd = scanner_.cursor - 1;
        }
        if (scanner_.reports) {
            Report(scan_.report, L"unterminated_tag_syntax", NameOfType(type_, Has(kInDocType)),
                   kReportType, scan_.start);
        }
        malformed_ = true;
    }
}

NodeRules::Verdict NodeRules::Apply(wchar_t unit) {
    if (!Has(kStarted)) {
        AtStart(unit);
        return Verdict::GoOn;
    }
    if (Has(kInSpace)) {
        if (unit == L'<') {
            return Verdict::EndBefore;
        }
        if (!IsXmlSpace(unit)) {
            states_ &= ~kInSpace;
            Decide(kNodeText, Terminator::Less);
        }
        return Verdict::GoOn;
    }
    if (Has(kAfterLess)) {
        AfterLess(unit);
    } else if (Has(kAfterExclamation)) {
        AfterExclamation(unit);
    } else if (Has(kAfterDash)) {
        AfterDash(unit);
    } else if (Has(kAfterBracket)) {
        AfterBracket(unit);
    } else if (terminator_ == Terminator::None) {
        return WithoutTerminator(unit);
    }
    if (NameGoesOn(unit) || terminator_ == Terminator::None) {
        return Verdict::GoOn;
    }
    if (unit == L'>') {
        return AtGreater();
    }
    // Text ends before a tag, and so does a bad tag.
    if (unit == L'<' && (type_ == kNodeText || type_ == kNodeScanError)) {
        return Verdict::EndBefore;
    }
    Quotes(unit);
    return Verdict::GoOn;
}

void NodeRules::AtStart(wchar_t unit) {
    states_ |= kStarted;
    if (unit == L'<') {
        states_ |= kAfterLess;
    } else if (IsXmlSpace(unit)) {
        states_ |= kInSpace;
        type_ = kNodeSpace;
    } else {
        Decide(kNodeText, Terminator::Less);
    }
}

void NodeRules::AfterLess(wchar_t unit) {
    states_ &= ~kAfterLess;
    if (StartsTagName(unit)) {
        Decide(kNodeElement, Terminator::Greater);
        BeginName(scanner_.cursor);
    } else if (unit == L'/') {
        Decide(kNodeEndTag, Terminator::Greater);
        BeginName(scanner_.cursor + 1);
    } else if (unit == L'!') {
        states_ |= kAfterExclamation;
    } else if (unit == L'?') {
        Decide(kNodeInstruction, Terminator::Instruction);
        BeginName(scanner_.cursor + 1);
    } else {
        SyntaxError(L"first_tag_syntax");
    }
}

void NodeRules::AfterExclamation(wchar_t unit) {
    states_ &= ~kAfterExclamation;
    if (unit == L'-') {
        states_ |= kAfterDash;
    } else if (Has(kInDocType)) {
        AfterExclamationInDocType(unit);
    } else if (unit == L'[') {
        states_ |= kAfterBracket;
    } else if (unit == L'D') {
        states_ |= kInDocType;
        type_ = kNodeDocType;
    } else {
        SyntaxError(L"exclamation_tag_syntax");
    }
}

void NodeRules::AfterExclamationInDocType(wchar_t unit) {
    if (unit == L'A' || unit == L'E' || unit == L'N') {
        Decide(kNodeDocType, Terminator::Greater);
    } else {
        SyntaxError(L"doctype_tag_syntax");
    }
}

void NodeRules::AfterDash(wchar_t unit) {
    states_ &= ~kAfterDash;
    if (unit == L'-') {
        Decide(kNodeComment, Terminator::Comment);
    } else {
        SyntaxError(L"comment_tag_syntax");
    }
}

void NodeRules::AfterBracket(wchar_t unit) {
    states_ &= ~kAfterBracket;
    if (unit == L'C') {
        Decide(kNodeCdata, Terminator::Cdata);
    } else {
        SyntaxError(L"cdata_section_syntax");
    }
}

// In a document type, between its declarations.
NodeRules::Verdict NodeRules::WithoutTerminator(wchar_t unit) {
    QuotesInDocType(unit);
    if (InQuotes()) {
        return Verdict::GoOn;
    }
    if (unit == L'<') {
        states_ |= kAfterLess;
    } else if (unit == L'>') {
        type_ = kNodeDocType;
        return Verdict::EndAfter;
    }
    return Verdict::GoOn;
}

// True while the unit belongs to the name. The unit that ends the name goes through the other
// rules.
bool NodeRules::NameGoesOn(wchar_t unit) {
    if (!Has(kInName)) {
        return false;
    }
    if (scanner_.cursor < scanner_.tokenStart) {
        return true; // the '/' or '?' in front of the name
    }
    if (!EndsTagName(unit) && !(unit == L'?' && type_ == kNodeInstruction)) {
        return true;
    }
    states_ &= ~kInName;
    scanner_.tokenEnd = scanner_.cursor - 1;
    return false;
}

NodeRules::Verdict NodeRules::AtGreater() {
    if (InQuotes() || !PrecededByTerminator()) {
        return Verdict::GoOn;
    }
    if (Has(kInDocType)) {
        terminator_ = Terminator::None;
        type_ = kNodeDocType;
        return Verdict::GoOn;
    }
    if (type_ == kNodeElement && SlashEndsTag()) {
        scan_.flags |= kScanEmptyTag;
    }
    return Verdict::EndAfter;
}

bool NodeRules::PrecededByTerminator() const {
    switch (terminator_) {
    case Terminator::Greater:
        return true;
    case Terminator::Instruction:
        return last_ == L'?';
    case Terminator::Comment:
        return last_ == L'-' && lastButOne_ == L'-';
    case Terminator::Cdata:
        return last_ == L']' && lastButOne_ == L']';
    default:
        return false;
    }
}

// Whether the '>' after these units ends an empty element: in <a href=x/> the slash is the value's.
bool NodeRules::SlashEndsTag() const {
    return last_ == L'/' && (!Has(kInUnquoted) || IsXmlSpace(lastButOne_) || lastButOne_ == L'"' ||
                             lastButOne_ == L'\'');
}

void NodeRules::Quotes(wchar_t unit) {
    if (Has(kInDocType)) {
        if (terminator_ == Terminator::Greater) {
            QuotesInDocType(unit);
        }
    } else if (type_ == kNodeElement) {
        QuotesInStartTag(unit);
    }
}

void NodeRules::QuotesInStartTag(wchar_t unit) {
    if (Has(kInSingleQuotes)) {
        states_ &= unit == L'\'' ? ~kInSingleQuotes : ~0u;
    } else if (Has(kInDoubleQuotes)) {
        states_ &= unit == L'"' ? ~kInDoubleQuotes : ~0u;
    } else if (Has(kInUnquoted)) {
        states_ &= IsXmlSpace(unit) ? ~kInUnquoted : ~0u;
    } else if (unit == L'=' && last_ != L'=') {
        states_ |= kAfterEquals;
    } else if (Has(kAfterEquals) && !IsXmlSpace(unit)) {
        states_ &= ~kAfterEquals;
        states_ |= unit == L'"' ? kInDoubleQuotes : unit == L'\'' ? kInSingleQuotes : kInUnquoted;
    }
}

// Each quote is ignored inside the other.
void NodeRules::QuotesInDocType(wchar_t unit) {
    if (unit == L'"' && !Has(kInSingleQuotes)) {
        states_ ^= kInDoubleQuotes;
    } else if (unit == L'\'' && !Has(kInDoubleQuotes)) {
        states_ ^= kInSingleQuotes;
    }
}

bool NodeRules::InQuotes() const { return Has(kInSingleQuotes | kInDoubleQuotes); }

void NodeRules::Decide(std::int32_t type, Terminator terminator) {
    type_ = type;
    terminator_ = terminator;
}

void NodeRules::BeginName(std::int32_t offset) {
    states_ |= kInName;
    scanner_.tokenStart = offset;
    scanner_.tokenEnd = offset - 1;
    scanner_.tokenFlags &= ~kTokenQuoted;
}

void NodeRules::SyntaxError(const wchar_t* name) {
    Decide(kNodeScanError, Terminator::Greater);
    malformed_ = true;
    if (scanner_.reports) {
        Report(scan_.report, name, nullptr, 0, scanner_.cursor);
    }
}

// A node with an error stays malformed to its end, also where a document type continues after it.
void NodeRules::Finish() {
    scan_.type = malformed_ ? kNodeScanError : type_;
    scan_.length = scanner_.cursor - scan_.start;
}

} // namespace ObLibX
