#include "benchmarks/toolkit/DescriptionBench.h"

#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "ObLibX/src/dialog/ObXML.h"
#include "benchmarks/support/Stopwatch.h"

namespace bench {
namespace {

constexpr std::size_t kUnits = 20 * 1024;

std::wstring Description() {
    std::wstring text = L"<dialogs>";
    for (int dialog = 2000; text.size() < kUnits; ++dialog) {
        text += L"\r\n  <dialog id=\"" + std::to_wstring(dialog) + L"\">";
        for (int control = 1000; control < 1010; ++control) {
            text += L"\r\n    <control id=\"" + std::to_wstring(control) +
                    L"\"><subclass> blue </subclass><tooltip>Shows &amp; hides it</tooltip>"
                    L"<font name=\"Segoe UI\" size=\"9\"/></control>";
        }
        text += L"\r\n  </dialog>";
    }
    return text + L"\r\n</dialogs>";
}

// The same tree of strings from the other library.
struct Node {
    std::wstring name;
    std::wstring text;
    std::vector<std::pair<std::wstring, std::wstring>> attributes;
    std::vector<std::unique_ptr<Node>> children;
};

std::wstring Trimmed(std::wstring_view text) {
    const std::size_t first = text.find_first_not_of(L" \r\n");
    if (first == std::wstring_view::npos) return {};
    return std::wstring(text.substr(first, text.find_last_not_of(L" \r\n") - first + 1));
}

std::unique_ptr<Node> TreeOf(const pugi::xml_node& element) {
    auto node = std::make_unique<Node>();
    node->name = Trimmed(element.name());
    node->text = Trimmed(element.text().get());
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        node->attributes.emplace_back(attribute.name(), attribute.value());
    }
    for (const pugi::xml_node& child : element.children()) {
        if (child.type() == pugi::node_element) node->children.push_back(TreeOf(child));
    }
    return node;
}

std::size_t CountOf(const Node& node) {
    std::size_t count = 1;
    for (const auto& child : node.children) count += CountOf(*child);
    return count;
}

std::size_t CountOf(const ObLibX::ObXMLNode& node) {
    std::size_t count = 1;
    for (const auto& child : node.children) count += CountOf(*child);
    return count;
}

std::size_t ReadOurs(const std::wstring& text, std::vector<double>& times) {
    const Stopwatch watch;
    auto tree = std::make_unique<ObLibX::ObXML>();
    tree->LoadText(ObLib::ObString(text.c_str()));
    times.push_back(watch.Nanoseconds() / 1000);
    return CountOf(*tree);
}

std::size_t ReadTheirs(const std::wstring& text, std::vector<double>& times) {
    const Stopwatch watch;
    std::unique_ptr<Node> tree;
    {
        pugi::xml_document document;
        document.load_buffer(text.data(), text.size() * sizeof(wchar_t), pugi::parse_default,
                             pugi::encoding_wchar);
        tree = TreeOf(document.document_element());
    }
    times.push_back(watch.Nanoseconds() / 1000);
    return CountOf(*tree);
}

} // namespace

Pair MeasureDescription(int rounds) {
    const std::wstring text = Description();
    Pair times;
    for (int round = 0; round < rounds; ++round) {
        if (ReadOurs(text, times.ours) != ReadTheirs(text, times.theirs)) return {};
    }
    return times;
}

} // namespace bench
