#include "ObLibX/src/dialog/ObXML.h"

#include <string>
#include <string_view>
#include <utility>

#include "ObLibX/src/dialog/ToolkitTexts.h"
#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/document/ElementText.h"

namespace ObLibX {
namespace {

using ObLib::ObString;

// Without blanks and line ends at both ends; a tab stays.
std::wstring_view Trimmed(std::wstring_view text) {
    constexpr std::wstring_view kTrimmed = L" \r\n";
    const std::size_t first = text.find_first_not_of(kTrimmed);
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kTrimmed) - first + 1);
}

// Most elements have no text: a null string needs no memory.
ObString StringOf(std::wstring_view text) { return text.empty() ? ObString() : ObString(text); }

ObString StringFrom(const std::wstring& text) { return ObString(std::wstring_view(text)); }

// Reads elements out of an indexed document.
class TreeReader {
public:
    explicit TreeReader(XmlOffsetDocument& document) : document_(document) {}

    // The element of this record and all below it. A worklist takes the place of recursion, so that
    // the depth of the text doesn't count.
    void Read(std::int32_t root, ObXMLNode& node) {
        ReadOwn(root, node);
        std::vector<std::pair<std::int32_t, ObXMLNode*>> open{{root, &node}};
        while (!open.empty()) {
            const auto [position, parent] = open.back();
            open.pop_back();
            parent->children.reserve(CountChildren(position));
            for (std::int32_t child = FirstChildOf(position); child != 0; child = NextOf(child)) {
                parent->children.push_back(std::make_unique<ObXMLNode>());
                ObXMLNode* const added = parent->children.back().get();
                added->parent = parent;
                ReadOwn(child, *added);
                if (FirstChildOf(child) != 0) open.emplace_back(child, added);
            }
        }
    }

    std::int32_t FirstChildOf(std::int32_t position) const {
        return static_cast<std::int32_t>(RecordAt(document_.State(), position).firstChild);
    }

private:
    std::int32_t NextOf(std::int32_t position) const {
        return static_cast<std::int32_t>(RecordAt(document_.State(), position).next);
    }
    std::size_t CountChildren(std::int32_t position) const {
        std::size_t count = 0;
        for (std::int32_t at = FirstChildOf(position); at != 0; at = NextOf(at)) ++count;
        return count;
    }
    void ReadOwn(std::int32_t position, ObXMLNode& node) {
        const DocumentState& state = document_.State();
        node.name = StringOf(Trimmed(ElementName(state, position)));
        node.text = TextAt(position);
        ReadAttributes(position, node.attributes);
    }
    ObString TextAt(std::int32_t position) {
        const auto plain = PlainData(document_.State(), position);
        if (plain) return StringOf(Trimmed(*plain));
        return StringOf(Trimmed(document_.GetData(position)));
    }
    void ReadAttributes(std::int32_t position, std::vector<ObXMLAttribute>& attributes) {
        cursor_.Begin(position);
        while (document_.GetNextAttribute(cursor_)) {
            attributes.push_back({StringFrom(cursor_.Name()), StringFrom(cursor_.Value())});
        }
    }

    XmlOffsetDocument& document_;
    AttributeCursor cursor_;
};

} // namespace

bool ObXML::LoadText(const ObString& text) {
    ObXMLNode tree;
    bool hasElement = false;
    {
        XmlOffsetDocument document;
        document.SetText(text.CStr());
        TreeReader reader(document);
        const std::int32_t root = document.State().records ? reader.FirstChildOf(0) : 0;
        hasElement = root != 0;
        if (hasElement) reader.Read(root, tree);
    }
    ObString error = hasElement ? ObString() : ObString(kTextEmptyDocument);
    Swap(tree);
    error_.Swap(error);
    return hasElement;
}

} // namespace ObLibX
