#include "ObLibX/src/dialog/DialogDescription.h"

#include "ObLib/Src/ObFatal.h"

namespace ObLibX {
namespace {

using ObLib::ObString;

constexpr std::int32_t kLargestTextId = 0xFFFF;
constexpr std::uint32_t kLargestColor = 0xFFFFFF;
constexpr std::int32_t kDefaultFontSize = 9; // points
constexpr std::int32_t kSmallestFont = 1;
constexpr std::int32_t kLargestFont = 1638;

constexpr wchar_t kModule[] = L"ObLibX\\src\\DialogDescription.cpp";

const ObXMLNode* Below(const ObXMLNode& node, const wchar_t* first, const wchar_t* second) {
    const ObXMLNode* const child = node.FirstChild(first);
    return child != nullptr ? child->FirstChild(second) : nullptr;
}

// A size in points that no font has counts as none: texts that don't fit are tried in each size
// below theirs.
std::int32_t SizeOf(const ObXMLNode& font, std::int32_t fallback) {
    const std::int32_t size = font.IntAttribute(L"size", fallback);
    return size >= kSmallestFont && size <= kLargestFont ? size : fallback;
}

void ReadBaseFont(const ObXMLNode& fonts, BaseFont& font) {
    const ObXMLNode* const base = fonts.FirstChild(L"default");
    if (base == nullptr) return;
    const ObString name = base->Attribute(L"name", ObString());
    ObAssert(name.HasText());
    font = {name, SizeOf(*base, kDefaultFontSize)};
}

void ReadSubstitution(const ObXMLNode& pair, FontSubstitution& substitution) {
    const ObXMLNode* const orig = pair.FirstChild(L"orig");
    const ObXMLNode* const subst = pair.FirstChild(L"subst");
    ObAssert(orig != nullptr && subst != nullptr);
    const ObString origName = orig->Attribute(L"name", ObString());
    const ObString substName = subst->Attribute(L"name", ObString());
    ObAssert(origName.HasText() && substName.HasText());
    const std::int32_t origSize = orig->IntAttribute(L"size", kAnyFontSize);
    const std::int32_t substSize = SizeOf(*subst, kAnyFontSize);
    ObAssert(origSize == kAnyFontSize || substSize != kAnyFontSize);
    substitution.Add(origName, origSize, substName, substSize);
}

struct StyleAttribute {
    const wchar_t* name;
    std::int32_t bit;
};

constexpr StyleAttribute kStyleAttributes[] = {
    {L"italic", kFontItalic}, {L"underline", kFontUnderline}, {L"strikeout", kFontStrikeout}};

void ReadFont(const ObXMLNode& control, const BaseFont& base, ControlDescription& described) {
    const ObXMLNode* const font = control.FirstChild(L"font");
    if (font == nullptr) return;
    described.fontName = font->Attribute(L"name", base.name);
    described.fontSize = SizeOf(*font, base.size);
    described.fontWeight = font->IntAttribute(L"weight", kNormalFontWeight);
    for (const StyleAttribute& attribute : kStyleAttributes) {
        if (font->AttributeEquals(attribute.name, L"true")) described.fontStyle |= attribute.bit;
    }
}

// The system would take the low bits of a larger number for another text's id.
bool IsTextId(std::int32_t number) { return number >= 0 && number <= kLargestTextId; }

// A number that can't be an id of a string table is the tooltip itself.
ObString TooltipOf(const ObXMLNode& control) {
    ObString text = control.ChildText(L"tooltip", ObString());
    const bool isId = text.IsInteger() && IsTextId(text.ToInteger());
    return isId ? ObString(text.ToInteger()) : text;
}

std::uint32_t ColorOf(const ObXMLNode& control, std::uint32_t accent) {
    const ObString text = control.ChildText(L"color", ObString());
    if (text.HasText() && text.CompareNoCase(ObString(L"HOTLIGHT")) == 0) return accent;
    const auto color = static_cast<std::uint32_t>(text.IsInteger() ? text.ToInteger() : 0);
    return color <= kLargestColor ? color : 0;
}

std::int32_t TitleOf(const ObXMLNode& column) {
    const std::int32_t id = column.IntAttribute(L"title", 0);
    return IsTextId(id) ? id : 0;
}

ColumnAlignment AlignmentOf(const ObXMLNode& column) {
    if (column.AttributeEquals(L"align", L"right")) return ColumnAlignment::Right;
    if (column.AttributeEquals(L"align", L"center")) return ColumnAlignment::Centre;
    return ColumnAlignment::Left;
}

void ReadColumns(const ObXMLNode& control, std::vector<ColumnDescription>& columns) {
    const ObXMLNode* const list = control.FirstChild(L"columns");
    if (list == nullptr) return;
    std::vector<std::unique_ptr<ObXMLNode>> described;
    list->Children(L"column", described);
    for (const auto& column : described) {
        columns.push_back(
            {TitleOf(*column), column->IntAttribute(L"width", 0), AlignmentOf(*column)});
    }
}

ControlDescription ReadControl(const ObXMLNode& control, const DescriptionContext& context) {
    ControlDescription described;
    described.id = control.IntAttribute(L"id", 0);
    described.subclass = control.ChildText(L"subclass", ObString());
    ReadFont(control, context.font, described);
    described.color = ColorOf(control, context.accentColor);
    described.cue = control.ChildText(L"cue", ObString());
    described.tooltip = TooltipOf(control);
    described.itemData = control.ChildText(L"itemdata", ObString());
    ReadColumns(control, described.columns);
    return described;
}

// The first dialog of this id among the children of the root.
const ObXMLNode* FindDialog(const ObXML& description, std::int32_t dialogId) {
    const ObString wanted(L"dialog");
    for (const auto& child : description.children) {
        const bool isDialog = child->name.CompareNoCase(wanted) == 0;
        if (isDialog && child->IntAttribute(L"id", -1) == dialogId) return child.get();
    }
    return nullptr;
}

} // namespace

void ReadDialogDefaults(const ObXML& description, BaseFont& font, FontSubstitution& substitution) {
    const ObXMLNode* const fonts = Below(description, L"defaults", L"fonts");
    if (fonts == nullptr) return;
    ReadBaseFont(*fonts, font);
    std::vector<std::unique_ptr<ObXMLNode>> pairs;
    fonts->Children(L"font", pairs);
    for (const auto& pair : pairs) ReadSubstitution(*pair, substitution);
}

bool ReadDialogControls(const ObXML& description, std::int32_t dialogId,
                        const DescriptionContext& context,
                        std::vector<ControlDescription>& controls) {
    controls.clear();
    const ObXMLNode* const dialog = FindDialog(description, dialogId);
    if (dialog == nullptr) return false;
    std::vector<std::unique_ptr<ObXMLNode>> described;
    dialog->Children(L"control", described);
    controls.reserve(described.size());
    for (const auto& control : described) controls.push_back(ReadControl(*control, context));
    return true;
}

} // namespace ObLibX
