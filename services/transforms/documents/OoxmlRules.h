// What leaves the parts of an OOXML document, as tables.
#pragma once

#include <optional>
#include <span>

#include "services/transforms/documents/XmlRules.h"

namespace transforms::documents {

// For every part of XML: the rules name their namespaces.
std::span<const XmlRule> OoxmlRules();

// What a relationship of this type leads to, if that is removed with the relationship. The types of
// the strict form end in the same words.
std::optional<FindingKind> RemovedWithRelationship(std::string_view type);

// The part of a type by which the tables know it.
std::string_view LastOfType(std::string_view type);

} // namespace transforms::documents
