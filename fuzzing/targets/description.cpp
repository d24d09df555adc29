// The description of the dialogs, on any text: the tree has the elements that were indexed, and
// what is read for a dialog is what its elements have.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "ObLibX/src/dialog/DialogDescription.h"
#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/document/Navigation.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;
using ObLib::ObString;

namespace {

bool IsTrimmed(const ObString& text) {
    constexpr std::wstring_view kTrimmed = L" \r\n";
    const std::wstring_view units(text.CStr(), text.Length());
    return units.empty() || (kTrimmed.find(units.front()) == std::wstring_view::npos &&
                             kTrimmed.find(units.back()) == std::wstring_view::npos);
}

// All nodes of a tree, each checked.
std::vector<const ObXMLNode*> NodesOf(const ObXMLNode& root) {
    std::vector<const ObXMLNode*> nodes{&root};
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const ObXMLNode& node = *nodes[at];
        Require(IsTrimmed(node.name) && IsTrimmed(node.text), "names and texts are trimmed");
        for (const auto& child : node.children) {
            Require(child->parent == &node, "each child knows its parent");
            nodes.push_back(child.get());
        }
    }
    return nodes;
}

// The elements that the document library indexes below the first one, itself included.
std::size_t IndexedElements(const std::wstring& text) {
    XmlOffsetDocument document;
    document.SetText(text.c_str());
    DocumentState& state = document.State();
    if (!state.records) return 0;
    const auto root = static_cast<std::int32_t>(RecordAt(state, 0).firstChild);
    const auto end = root == 0 ? 0 : static_cast<std::int32_t>(RecordAt(state, root).next);
    std::size_t count = 0;
    for (std::int32_t at = root; at != end && at != 0; at = NextInDocumentOrder(state, at)) ++count;
    return count;
}

bool IsSame(const ObString& one, const ObString& other) {
    return std::wstring_view(one.CStr(), one.Length()) ==
           std::wstring_view(other.CStr(), other.Length());
}

void CompareCopy(const ObXMLNode& tree) {
    const ObXMLNode copy(tree);
    const auto originals = NodesOf(tree);
    const auto copies = NodesOf(copy);
    Require(originals.size() == copies.size(), "a copy has as many nodes");
    for (std::size_t at = 0; at < copies.size(); ++at) {
        Require(IsSame(originals[at]->name, copies[at]->name), "the same names");
        Require(IsSame(originals[at]->text, copies[at]->text), "the same texts");
        Require(std::ranges::equal(originals[at]->attributes, copies[at]->attributes,
                                   [](const ObXMLAttribute& one, const ObXMLAttribute& other) {
                                       return IsSame(one.name, other.name) &&
                                              IsSame(one.value, other.value);
                                   }),
                "the same attributes");
    }
}

// Of the children of a name in any case.
std::size_t CountOf(const ObXMLNode& node, const wchar_t* name) {
    std::size_t count = 0;
    for (const auto& child : node.children) count += child->name.CompareNoCase(ObString(name)) == 0;
    return count;
}

bool IsFontSize(std::int32_t size) { return size >= 1 && size <= 1638; }

bool HasTitleId(const ColumnDescription& column) {
    return column.titleId >= 0 && column.titleId <= 0xFFFF;
}

void CheckDialog(const ObXML& tree, const ObXMLNode& dialog) {
    std::vector<ControlDescription> controls;
    const std::int32_t id = dialog.IntAttribute(L"id", -1);
    Require(ReadDialogControls(tree, id, {}, controls), "a dialog of the tree is found");
    const bool isSame = controls.size() == CountOf(dialog, L"control");
    const bool isFirst = tree.FirstChild(L"dialog") == &dialog;
    Require(isSame || !isFirst, "it has the controls of its element");
    for (const ControlDescription& control : controls) {
        Require(control.fontStyle >= 0 && control.fontStyle <= 7, "only bits that exist");
        Require(IsFontSize(control.fontSize), "its size can be made");
        Require(control.color <= 0xFFFFFF, "a colour that there is");
        Require(std::ranges::all_of(control.columns, &HasTitleId), "ids of a string table");
    }
}

bool HasName(const ObXMLNode* node) {
    return node != nullptr && node->Attribute(L"name", ObString()).HasText();
}

bool IsCompletePair(const ObXMLNode& pair) {
    const ObXMLNode* const orig = pair.FirstChild(L"orig");
    const ObXMLNode* const subst = pair.FirstChild(L"subst");
    return HasName(orig) && HasName(subst) &&
           (orig->IntAttribute(L"size", kAnyFontSize) == kAnyFontSize ||
            IsFontSize(subst->IntAttribute(L"size", kAnyFontSize)));
}

// Whether nothing in the element contradicts itself, which would end the process.
bool IsSound(const ObXMLNode& fonts) {
    const ObXMLNode* const base = fonts.FirstChild(L"default");
    if (base != nullptr && !HasName(base)) return false;
    std::vector<std::unique_ptr<ObXMLNode>> pairs;
    fonts.Children(L"font", pairs);
    return std::ranges::all_of(pairs, [](const auto& pair) { return IsCompletePair(*pair); });
}

void CheckDefaults(const ObXML& tree) {
    const ObXMLNode* const defaults = tree.FirstChild(L"defaults");
    const ObXMLNode* const fonts = defaults != nullptr ? defaults->FirstChild(L"fonts") : nullptr;
    if (fonts != nullptr && !IsSound(*fonts)) return;
    BaseFont font;
    FontSubstitution substitution;
    ReadDialogDefaults(tree, font, substitution);
    const bool isNamed = fonts != nullptr && fonts->FirstChild(L"default") != nullptr;
    Require(font.name.HasText() == isNamed, "the base font is the one of the element");
    Require(IsFontSize(font.size), "its size can be made");
    std::vector<std::unique_ptr<ObXMLNode>> pairs;
    if (fonts == nullptr || !fonts->Children(L"font", pairs)) return;
    const ObXMLNode& orig = *pairs.front()->FirstChild(L"orig");
    FontRequest wanted;
    wanted.name = orig.Attribute(L"name", ObString());
    wanted.size = orig.IntAttribute(L"size", kAnyFontSize);
    const FontRequest applied = substitution.Apply(wanted);
    Require(applied.name.HasText(), "a font that is replaced has a name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::wstring text = WithoutNulls(FuzzInput(bytes, size).Rest());
    ObXML tree;
    const bool isLoaded = tree.LoadText(ObString(text.c_str()));
    const std::size_t elements = IndexedElements(text);
    Require(isLoaded == (elements != 0), "a tree is there when there is an element");
    if (!isLoaded) return 0;
    Require(NodesOf(tree).size() == elements, "a node for each element");
    CompareCopy(tree);
    CheckDefaults(tree);
    for (const auto& child : tree.children) {
        if (child->name.CompareNoCase(ObString(L"dialog")) == 0) CheckDialog(tree, *child);
    }
    return 0;
}
