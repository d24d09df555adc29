// Cleans a text of XML by a table of rules: each names an element or an attribute and what becomes
// of it. Everything else of the text stays byte for byte as it was.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "services/transforms/documents/XmlReader.h"
#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

enum class XmlAction : std::uint8_t {
    RemoveElement, // with everything in it
    RemoveWrapped, // the same, with the alternatives around it (Compatibility, "AlternateContent")
    ReplaceText,   // everything in the element becomes the value
    RemoveAttribute,
    SetAttribute, // to the value
    CountElement, // reported, and left as it is
};

struct XmlRule {
    XmlAction action;
    Ns ns; // of the element or attribute; Ns::Any fits all
    std::string_view name;
    FindingKind kind;
    // If it isn't empty, the rule is only for elements inside such a one, for attributes of such a
    // one.
    std::string_view of = {};
    std::string_view value = {};
    // For CountElement: the element has this attribute, with this value or, if it is empty, with
    // any.
    std::string_view attribute = {};
    std::string_view exceptWithStart = {}; // ReplaceText: leave a text that begins with this
};

// One place of the text and what it becomes.
struct XmlEdit {
    std::size_t begin;
    std::size_t end;
    std::string replacement;
};

// What a format looks at besides its rules, at each start of an element: a place to be replaced.
using XmlLook = std::function<std::optional<XmlEdit>(const XmlReader& reader)>;

struct XmlResult {
    CleanOutcome outcome = CleanOutcome::NothingFound; // or Cleaned, Damaged, NotSupported
    std::string text;                                  // only when Cleaned
};

// Attributes that link to a file or describe one keep the file's name alone of a path of a
// computer, whatever the rules.
XmlResult CleanXml(std::string_view text, std::span<const XmlRule> rules,
                   personal::FindingCounter& found, const XmlLook& look = {});

// The place of an attribute or of its value.
XmlEdit RemovalOf(std::string_view text, std::string_view part);
XmlEdit ReplacementOf(std::string_view text, std::string_view part, std::string replacement);
// Of the element whose start the reader has just read, and which contains no other.
XmlEdit RemovalOfElement(const XmlReader& reader);

} // namespace transforms::documents
