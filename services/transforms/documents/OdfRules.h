// What leaves the files of an ODF document, as tables.
#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "services/transforms/documents/XmlRules.h"

namespace transforms::documents {

// For every file of XML: the rules name their namespaces.
std::span<const XmlRule> OdfRules();

// Whether a file of the package is removed whole, by its path.
std::optional<FindingKind> RemovedOdfFile(std::string_view path);

// Whether an entry of the settings describes the author's computer, by its name or its text.
std::optional<FindingKind> RemovedOdfSetting(std::string_view name, std::string_view text);

// Counts sheets and slides that are hidden by their style. A style comes before its use.
class HiddenOdfParts {
public:
    void LookAt(const XmlReader& reader, personal::FindingCounter& found);

private:
    std::string style_;
    std::set<std::string, std::less<>> hidden_;
};

} // namespace transforms::documents
