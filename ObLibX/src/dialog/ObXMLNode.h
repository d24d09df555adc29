// A node of a plain XML tree: what is left of an element once the document has been released.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ObLib/Src/ObString.h"

namespace ObLibX {

struct ObXMLAttribute {
    ObLib::ObString name;
    ObLib::ObString value; // decoded
};

// One element. Owns its children; a node with children of its own can be copied and moved, and
// trees of any depth are copied and released without recursion. Names compare ignoring case.
// Throws std::bad_alloc only. Belongs to one thread.
class ObXMLNode {
public:
    ObXMLNode() = default;
    ObXMLNode(const ObXMLNode& other); // deep; the copy has no parent
    ObXMLNode(ObXMLNode&& other) noexcept;
    ObXMLNode& operator=(ObXMLNode other) noexcept; // `parent` stays
    ~ObXMLNode();

    void Swap(ObXMLNode& other) noexcept; // all but `parent`

    // The first direct child of this name; null when there is none.
    [[nodiscard]] const ObXMLNode* FirstChild(const wchar_t* childName) const;
    // Deep copies of all direct children of this name, in order, in place of what `out` had. True
    // when there is one.
    bool Children(const wchar_t* childName, std::vector<std::unique_ptr<ObXMLNode>>& out) const;
    // The text of FirstChild.
    [[nodiscard]] ObLib::ObString ChildText(const wchar_t* childName,
                                            const ObLib::ObString& fallback) const;

    // Where two attributes have one name, the first counts.
    [[nodiscard]] ObLib::ObString Attribute(const wchar_t* attributeName,
                                            const ObLib::ObString& fallback) const;
    // By DecimalValue.
    [[nodiscard]] std::int32_t IntAttribute(const wchar_t* attributeName,
                                            std::int32_t fallback) const;
    [[nodiscard]] bool AttributeEquals(const wchar_t* attributeName, const wchar_t* value) const;

    ObXMLNode* parent = nullptr; // not owned
    ObLib::ObString name;
    ObLib::ObString text;                             // the element's data
    std::vector<ObXMLAttribute> attributes;           // in document order
    std::vector<std::unique_ptr<ObXMLNode>> children; // in document order
    std::uint32_t reserved = 0;                       // always 0

private:
    [[nodiscard]] const ObXMLAttribute* Find(const wchar_t* attributeName) const;
};

// The number at the beginning of a text, after white space and with an optional sign, as wcstol
// reads it: 0 when there is none, `fallback` when it doesn't fit in 32 bits.
std::int32_t DecimalValue(const wchar_t* text, std::int32_t fallback);

} // namespace ObLibX
