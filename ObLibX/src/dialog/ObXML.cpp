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
ObString Trimmed(std::wstring_view text) {
    constexpr std::wstring_view kTrimmed = L" \r\n";
    const std::size_t first = text.find_first_not_of(kTrimmed);
    if (first == std::wstring_view::npos) return ObString(L"");
    const std::size_t last = text.find_last_not_of(kTrimmed);
    return ObString(std::wstring(text.substr(first, last - first + 1)).c_str());
}

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
    void ReadOwn(std::int32_t position, ObXMLNode& node) {
        node.name = Trimmed(ElementName(document_.State(), position));
        node.text = Trimmed(document_.GetData(position));
        cursor_.Begin(position);
        while (document_.GetNextAttribute(cursor_)) {
            node.attributes.push_back({cursor_.Name().c_str(), cursor_.Value().c_str()});
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
