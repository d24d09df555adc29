// Names, content types and relationships of the parts of an OOXML package.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "services/transforms/documents/Package.h"

namespace transforms::documents {

// How a part's name is compared: without letter case, with slashes, without the first one, each
// character as itself.
std::string PartKey(std::string_view name);

// The key of the part with the relationships of a part; of the package for an empty key.
std::string RelationshipsOf(const std::string& key);

// The key of the part with these relationships; nothing when the key is of no such part.
std::optional<std::string> SourceOfRelationships(const std::string& key);

struct Relationship {
    std::string type;
    std::string target; // the key of a part; empty for something outside the package
};

// Of a part of relationships, in their order. Throws PackageRefusal when it isn't XML.
std::vector<Relationship> ReadRelationships(std::string_view text, const std::string& source);

// The key to which a relationship of `source` leads; empty for something outside the package.
std::string TargetOf(const XmlReader& relationship, const std::string& source);

class ContentTypes {
public:
    // Throws PackageRefusal when the text isn't XML.
    explicit ContentTypes(std::string_view text);

    // Empty when the part has none.
    std::string_view Of(const std::string& key) const;

private:
    std::map<std::string, std::string, std::less<>> byName_;
    std::map<std::string, std::string, std::less<>> byExtension_;
};

// Whether parts of this content type are read as XML.
bool IsXmlType(std::string_view contentType);

} // namespace transforms::documents
