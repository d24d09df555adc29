#include "ObLibX/src/dialog/ObXMLNode.h"

#include <algorithm>
#include <cwctype>
#include <limits>
#include <utility>

namespace ObLibX {
namespace {

using ObLib::ObString;
using Nodes = std::vector<std::unique_ptr<ObXMLNode>>;

void CopyOwn(const ObXMLNode& from, ObXMLNode& to) {
    to.name = from.name;
    to.text = from.text;
    to.attributes = from.attributes;
    to.reserved = from.reserved;
}

// A copy of each child of `from` without its own children, as a child of `to`.
void CopyChildren(const ObXMLNode& from, ObXMLNode& to) {
    to.children.reserve(from.children.size());
    for (const auto& child : from.children) {
        auto copy = std::make_unique<ObXMLNode>();
        CopyOwn(*child, *copy);
        copy->parent = &to;
        to.children.push_back(std::move(copy));
    }
}

bool HasName(const ObXMLNode& node, const ObString& name) {
    return node.name.CompareNoCase(name) == 0;
}

} // namespace

ObXMLNode::ObXMLNode(const ObXMLNode& other) {
    CopyOwn(other, *this);
    std::vector<std::pair<const ObXMLNode*, ObXMLNode*>> open{{&other, this}};
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        CopyChildren(*from, *to);
        for (std::size_t at = 0; at < from->children.size(); ++at) {
            if (from->children[at]->children.empty()) continue;
            open.emplace_back(from->children[at].get(), to->children[at].get());
        }
    }
}

ObXMLNode::ObXMLNode(ObXMLNode&& other) noexcept { Swap(other); }

ObXMLNode& ObXMLNode::operator=(ObXMLNode other) noexcept {
    Swap(other);
    return *this;
}

// Takes the tree apart from the leaves of its last branch upwards. The way back is written into
// `parent`, so that neither memory nor recursion is needed.
ObXMLNode::~ObXMLNode() {
    ObXMLNode* node = this;
    while (true) {
        if (!node->children.empty()) {
            ObXMLNode* const last = node->children.back().get();
            last->parent = node;
            node = last;
        } else if (node != this) {
            node = node->parent;
            node->children.pop_back();
        } else {
            return;
        }
    }
}

void ObXMLNode::Swap(ObXMLNode& other) noexcept {
    name.Swap(other.name);
    text.Swap(other.text);
    attributes.swap(other.attributes);
    children.swap(other.children);
    std::swap(reserved, other.reserved);
    for (const auto& child : children) child->parent = this;
    for (const auto& child : other.children) child->parent = &other;
}

const ObXMLNode* ObXMLNode::FirstChild(const wchar_t* childName) const {
    const ObString wanted(childName);
    const auto found =
        std::ranges::find_if(children, [&](const auto& child) { return HasName(*child, wanted); });
    return found == children.end() ? nullptr : found->get();
}

bool ObXMLNode::Children(const wchar_t* childName, Nodes& out) const {
    const ObString wanted(childName);
    Nodes found;
    for (const auto& child : children) {
        if (HasName(*child, wanted)) found.push_back(std::make_unique<ObXMLNode>(*child));
    }
    out.swap(found);
    return !out.empty();
}

ObString ObXMLNode::ChildText(const wchar_t* childName, const ObString& fallback) const {
    const ObXMLNode* const child = FirstChild(childName);
    return child != nullptr ? child->text : fallback;
}

const ObXMLAttribute* ObXMLNode::Find(const wchar_t* attributeName) const {
    const ObString wanted(attributeName);
    const auto found = std::ranges::find_if(attributes, [&](const ObXMLAttribute& attribute) {
        return attribute.name.CompareNoCase(wanted) == 0;
    });
    return found == attributes.end() ? nullptr : &*found;
}

ObString ObXMLNode::Attribute(const wchar_t* attributeName, const ObString& fallback) const {
    const ObXMLAttribute* const found = Find(attributeName);
    return found != nullptr ? found->value : fallback;
}

std::int32_t ObXMLNode::IntAttribute(const wchar_t* attributeName, std::int32_t fallback) const {
    const ObXMLAttribute* const found = Find(attributeName);
    return found != nullptr ? DecimalValue(found->value.CStr(), fallback) : fallback;
}

bool ObXMLNode::AttributeEquals(const wchar_t* attributeName, const wchar_t* value) const {
    const ObXMLAttribute* const found = Find(attributeName);
    return found != nullptr && found->value.CompareNoCase(ObString(value)) == 0;
}

std::int32_t DecimalValue(const wchar_t* text, std::int32_t fallback) {
    while (std::iswspace(static_cast<std::wint_t>(*text)) != 0) ++text;
    const bool isNegative = *text == L'-';
    if (*text == L'-' || *text == L'+') ++text;
    std::int64_t value = 0;
    for (; *text >= L'0' && *text <= L'9'; ++text) {
        value = value * 10 + (*text - L'0');
        if (value > std::int64_t{std::numeric_limits<std::int32_t>::max()} + (isNegative ? 1 : 0)) {
            return fallback;
        }
    }
    return static_cast<std::int32_t>(isNegative ? -value : value);
}

} // namespace ObLibX
