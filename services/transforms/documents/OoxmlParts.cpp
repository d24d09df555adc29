#include "services/transforms/documents/OoxmlParts.h"

#include <algorithm>
#include <charconv>

#include "ObLib/Src/AsciiLetters.h"

namespace transforms::documents {
namespace {

constexpr std::string_view kRelationshipFolder = "_rels/";
constexpr std::string_view kRelationshipEnd = ".rels";

// "%20" and the like as the character; anything else stays.
std::string Decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned char code = 0;
        const char* end = text.data() + std::min(text.size(), at + 3);
        const bool isCode = text[at] == '%' && text.size() - at > 2 &&
                            std::from_chars(text.data() + at + 1, end, code, 16).ptr == end;
        decoded += isCode ? static_cast<char>(code) : text[at];
        if (isCode) at += 2;
    }
    return decoded;
}

std::string FolderOf(const std::string& key) { return key.substr(0, key.find_last_of('/') + 1); }

// The path without "." and "..".
std::string Straightened(std::string_view path) {
    std::vector<std::string_view> folders;
    while (!path.empty()) {
        const auto slash = path.find('/');
        const auto name = path.substr(0, slash);
        path = slash == path.npos ? std::string_view() : path.substr(slash + 1);
        if (name == "..") {
            if (!folders.empty()) folders.pop_back();
        } else if (!name.empty() && name != ".") {
            folders.push_back(name);
        }
    }
    std::string joined;
    for (const auto name : folders) (joined += joined.empty() ? "" : "/") += name;
    return joined;
}

} // namespace

std::string PartKey(std::string_view name) {
    std::string key = Decoded(name);
    for (char& c : key) c = c == '\\' ? '/' : ObLib::FoldAscii(c);
    return key.starts_with('/') ? key.substr(1) : key;
}

std::string RelationshipsOf(const std::string& key) {
    const std::string folder = FolderOf(key);
    return (folder + std::string(kRelationshipFolder) + key.substr(folder.size()))
        .append(kRelationshipEnd);
}

std::optional<std::string> SourceOfRelationships(const std::string& key) {
    const std::string folder = FolderOf(key);
    const bool isInFolder =
        folder == kRelationshipFolder || folder.ends_with('/' + std::string(kRelationshipFolder));
    if (!isInFolder || !key.ends_with(kRelationshipEnd)) return {};
    const std::string name = key.substr(folder.size());
    return folder.substr(0, folder.size() - kRelationshipFolder.size()) +
           name.substr(0, name.size() - kRelationshipEnd.size());
}

std::string TargetOf(const XmlReader& relationship, const std::string& source) {
    if (relationship.Value(Ns::None, "TargetMode") == "External") return {};
    std::string target = PlainText(relationship.Value(Ns::None, "Target"));
    target = target.substr(0, target.find('#'));
    if (target.empty()) return {};
    const bool isFromRoot = target.front() == '/' || target.front() == '\\';
    return Straightened(isFromRoot ? PartKey(target) : FolderOf(source) + PartKey(target));
}

std::vector<Relationship> ReadRelationships(std::string_view text, const std::string& source) {
    std::vector<Relationship> list;
    XmlReader reader(text);
    while (reader.Next()) {
        if (reader.Event() != XmlEvent::Start || reader.Element().name != "Relationship") continue;
        list.push_back({PlainText(reader.Value(Ns::None, "Type")), TargetOf(reader, source)});
    }
    if (!reader.IsWhole()) throw PackageRefusal{CleanOutcome::Damaged};
    return list;
}

ContentTypes::ContentTypes(std::string_view text) {
    XmlReader reader(text);
    while (reader.Next()) {
        if (reader.Event() != XmlEvent::Start) continue;
        const auto type = PlainText(reader.Value(Ns::None, "ContentType"));
        if (reader.Element().name == "Override") {
            byName_[PartKey(PlainText(reader.Value(Ns::None, "PartName")))] = type;
        } else if (reader.Element().name == "Default") {
            byExtension_[PartKey(reader.Value(Ns::None, "Extension"))] = type;
        }
    }
    if (!reader.IsWhole()) throw PackageRefusal{CleanOutcome::Damaged};
}

std::string_view ContentTypes::Of(const std::string& key) const {
    const auto named = byName_.find(key);
    if (named != byName_.end()) return named->second;
    const auto extension = byExtension_.find(key.substr(key.find_last_of('.') + 1));
    return extension == byExtension_.end() ? std::string_view() : extension->second;
}

bool IsXmlType(std::string_view contentType) {
    return contentType.ends_with("+xml") || contentType.ends_with("/xml");
}

} // namespace transforms::documents
