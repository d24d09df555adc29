// Elements and attributes are added anywhere: the shifted records are those of a fresh parse as
// long as nothing is unended, and in every document they stay within the text.
#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/scan/TagScanner.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "fuzzing/support/Soundness.h"

using namespace ObLibX;

namespace {

constexpr std::uint32_t kModes[] = {0, kDocIgnoreCase, kDocTrim, kDocCollapse};
constexpr std::uint32_t kMostEdits = 12;
constexpr std::size_t kLongestName = 8;
constexpr std::size_t kLongestValue = 24;

// A value of the kind that a document gets, or one from the input.
std::wstring SomeValue(FuzzInput& input) {
    constexpr const wchar_t* kValues[] = {L"", L"v", L"a<b&c>d", L"]]>", L" \r\n ", L"&lt;x"};
    const std::uint32_t choice = input.Byte();
    return choice < 128 ? kValues[choice % 6] : input.Name(kLongestValue);
}

std::uint32_t SomeFlags(FuzzInput& input) {
    const std::uint32_t kinds = input.Byte();
    return (kinds & 0xF) | (kinds & 0x70) << 8; // the four of the element, the three of the place
}

class Editor {
public:
    explicit Editor(FuzzInput& input) : input_(input) {}

    void Run();

private:
    void MoveTo();
    void MoveToNode();
    void Edit();
    void Add(std::uint32_t flags, const std::wstring& value);
    void SetAttribute();
    void RequireSound();

    FuzzInput& input_;
    XmlOffsetDocument document_;
    bool ended_ = false; // each element has its end, so that the text gives the same records
};

void Editor::Run() {
    document_.SetFlags(input_.Pick(kModes));
    const std::uint32_t edits = input_.Below(kMostEdits) + 1;
    FuzzInput steps(input_.Bytes(), input_.Left());
    for (std::uint32_t i = 0; i < 8 * kMostEdits; ++i) input_.Byte();
    const std::wstring text = input_.Rest();
    document_.SetText(std::wstring_view(text));
    ended_ = text.empty() || !(*document_.State().records)[0].Has(kRecordBad);
    input_ = steps;
    for (std::uint32_t i = 0; i < edits; ++i) {
        MoveTo();
        Edit();
        RequireSound();
    }
}

// Moves to an element, before the first child of one, or to a node.
void Editor::MoveTo() {
    const std::uint32_t choice = input_.Byte();
    const auto records = static_cast<std::uint32_t>(document_.State().nextFreePos);
    const std::uint32_t element = input_.Byte() % records;
    const ElementRecord& record = (*document_.State().records)[element];
    const auto at = static_cast<std::int32_t>(element);
    if (choice % 4 == 0 || element == 0) {
        document_.ResetPosition(at, 0, 0);
    } else {
        const std::uint32_t child = choice % 4 == 1 ? 0 : record.firstChild;
        document_.ResetPosition(static_cast<std::int32_t>(record.parent), at,
                                static_cast<std::int32_t>(child));
    }
    if (choice >= 192 && ended_) MoveToNode();
}

// Moves to the first node of the parent's content that is no element, if it has one before its
// first child.
void Editor::MoveToNode() {
    DocumentState& state = document_.State();
    const ElementRecord& parent = (*state.records)[state.parentPos];
    TagScanner scanner(state.text.data(), parent.start + parent.length - parent.EndTagLength(),
                       state.docFlags);
    scanner.cursor = static_cast<std::int32_t>(parent.start + parent.StartTagLength());
    NodeScan scan;
    if (scanner.NextNode(scan) <= kNodeElement) return;
    document_.ResetPosition(state.parentPos, 0, 0);
    state.nodeType = scan.type;
    state.nodeOffset = scan.start;
    state.nodeLength = scan.length;
}

void Editor::Edit() {
    const std::uint32_t choice = input_.Byte();
    if (choice % 4 == 0) return SetAttribute();
    const std::uint32_t flags = SomeFlags(input_);
    if (choice % 16 == 1) return Add(flags | kAddNoEndTag, L"");
    Add(flags, SomeValue(input_));
}

void Editor::Add(std::uint32_t flags, const std::wstring& value) {
    const std::wstring name = input_.Flag() ? input_.Name(kLongestName) : L"a";
    const std::wstring before = document_.Text();
    const std::int32_t records = document_.State().nextFreePos;
    const bool added = document_.AddElement(name.c_str(), value.c_str(), flags);
    Require(added || document_.Text() == before, "what is refused changes nothing");
    Require(document_.State().nextFreePos == records + (added ? 1 : 0), "one record for each");
    if (!added) return;
    const std::int32_t at =
        (flags & kAddAsChild) != 0 ? document_.ChildPosition() : document_.CurrentPosition();
    const bool open = (flags & kAddNoEndTag) != 0;
    ended_ = ended_ && !open;
    if (open) return;
    document_.ResetPosition(0, at, 0);
    Require(document_.GetTagName() == name, "an added element has its name");
    if ((document_.Flags() & (kDocTrim | kDocCollapse)) == 0 && (flags & kAddKeepReferences) == 0) {
        Require(document_.GetData(at) == value, "and its value");
    }
}

void Editor::SetAttribute() {
    const std::int32_t at = document_.CurrentPosition();
    const std::wstring name = input_.Flag() ? input_.Name(kLongestName) : L"x";
    const std::wstring value = SomeValue(input_);
    const std::wstring before = document_.Text();
    const bool set = document_.SetAttribute(at, name.c_str(), value.c_str());
    Require(set || document_.Text() == before, "what is refused changes nothing");
    if (!set || (document_.Flags() & (kDocTrim | kDocCollapse)) != 0) return;
    Require(document_.GetAttribute(at, name.c_str()) == value, "an attribute has the value given");
}

void Editor::RequireSound() {
    if (document_.Text().empty()) return;
    RequireSoundRecords(document_);
    if (ended_) RequireAsIndexedAnew(document_);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    Editor(input).Run();
    return 0;
}
