#include "services/transforms/documents/Odf.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>

#include "services/transforms/documents/OdfRules.h"

namespace transforms::documents {
namespace {

using namespace personal;

constexpr std::string_view kMimeType = "mimetype";
constexpr std::string_view kManifest = "META-INF/manifest.xml";
constexpr std::string_view kSignatures[] = {"META-INF/documentsignatures.xml",
                                            "META-INF/macrosignatures.xml"};
constexpr std::string_view kOdf = "application/vnd.oasis.opendocument.";
// Templates have more after these.
constexpr std::string_view kKinds[] = {"text", "spreadsheet", "presentation", "graphics"};

struct Listed {
    std::string type;
    bool isEncrypted = false;
};

// The manifest's list: the path of each file, and what it is.
using Manifest = std::map<std::string, Listed, std::less<>>;

Manifest ReadManifest(std::string_view text) {
    Manifest list;
    XmlReader reader(text);
    std::string path;
    while (reader.Next()) {
        if (reader.Event() != XmlEvent::Start) continue;
        if (reader.Element().name == "encryption-data") list[path].isEncrypted = true;
        if (reader.Element().name != "file-entry") continue;
        path = PlainText(reader.Value(Ns::OdfManifest, "full-path"));
        list[path].type = PlainText(reader.Value(Ns::OdfManifest, "media-type"));
    }
    if (!reader.IsWhole()) throw PackageRefusal{CleanOutcome::Damaged};
    return list;
}

bool IsMacro(std::string_view path) {
    return path.starts_with("Basic/") || path.starts_with("Scripts/");
}

class OdfCleaner {
public:
    explicit OdfCleaner(Package& package) : package_(package) {}

    void Run() {
        CheckKind();
        const auto manifest = package_.Find(kManifest);
        if (!manifest) throw PackageRefusal{CleanOutcome::Damaged};
        list_ = ReadManifest(TextOf(package_.Read(*manifest)));
        const auto isEncrypted = [](const auto& row) { return row.second.isEncrypted; };
        if (std::ranges::any_of(list_, isEncrypted)) throw PackageRefusal{CleanOutcome::Encrypted};
        const auto isInPackage = [&](std::string_view name) {
            return package_.Find(name).has_value();
        };
        if (std::ranges::any_of(kSignatures, isInPackage)) {
            throw PackageRefusal{CleanOutcome::Signed};
        }
        for (std::size_t part = 0; part < package_.Count(); ++part) TakePart(part);
        CleanManifest(*manifest);
        package_.PutFirst(*package_.Find(kMimeType));
    }

private:
    FindingCounter& Found() { return package_.Found(); }

    void CheckKind() {
        const OwnedBytes bytes = package_.Read(*package_.Find(kMimeType));
        std::string_view kind = TextOf(bytes);
        kind.remove_prefix(std::min(kind.size(), kOdf.size()));
        const auto begins = [&](std::string_view known) { return kind.starts_with(known); };
        if (std::ranges::none_of(kKinds, begins)) throw PackageRefusal{CleanOutcome::NotSupported};
    }

    void TakePart(std::size_t part) {
        const auto path = package_.Name(part);
        if (path == kMimeType || path == kManifest) return;
        if (const auto kind = RemovedOdfFile(path)) return RemovePart(part, *kind);
        const auto row = list_.find(path);
        if (row == list_.end()) return RemovePart(part, FindingKind::OldVersions);
        CleanPart(part, path, row->second.type);
    }

    // A folder's own entry has no content.
    void RemovePart(std::size_t part, FindingKind kind) {
        package_.Remove(part);
        if (!package_.Name(part).ends_with('/')) Found().Note(kind);
    }

    void CleanPart(std::size_t part, std::string_view path, std::string_view type) {
        // The program's own menus, of which some are empty files, and pictures of objects, which it
        // draws again.
        const bool isView =
            path.starts_with("Configurations2/") || path.starts_with("ObjectReplacements/");
        if (path.ends_with('/') || isView) return;
        if (IsMacro(path)) return NoteMacros();
        if (type == "text/xml" || path.ends_with(".xml")) return CleanXmlPart(part);
        if (type.find("font") == type.npos) package_.CleanPicturePart(part);
    }

    void NoteMacros() {
        if (!hasMacros_) Found().Note(FindingKind::Macros);
        hasMacros_ = true;
    }

    void CleanXmlPart(std::size_t part) {
        HiddenOdfParts hidden;
        package_.CleanXmlPart(part, OdfRules(), [&](const XmlReader& reader) {
            hidden.LookAt(reader, Found());
            return LookAtSetting(reader);
        });
    }

    std::optional<XmlEdit> LookAtSetting(const XmlReader& reader) {
        const XmlElement& element = reader.Element();
        if (element.ns != Ns::OdfConfig || element.name != "config-item") return {};
        auto text = reader.Text().substr(element.tagEnd);
        text = text.substr(0, text.find('<'));
        if (text.empty()) return {};
        const auto kind = RemovedOdfSetting(reader.Value(Ns::OdfConfig, "name"), PlainText(text));
        if (!kind) return {};
        Found().Note(*kind);
        return RemovalOfElement(reader);
    }

    // Without the rows of what was removed.
    void CleanManifest(std::size_t manifest) {
        package_.CleanXmlPart(manifest, {}, [&](const XmlReader& reader) -> std::optional<XmlEdit> {
            if (reader.Element().name != "file-entry") return {};
            const auto path = PlainText(reader.Value(Ns::OdfManifest, "full-path"));
            const auto part = package_.Find(path);
            const bool isRemoved =
                part ? package_.IsRemoved(*part) : RemovedOdfFile(path).has_value();
            if (!isRemoved) return {};
            return RemovalOfElement(reader);
        });
    }

    Package& package_;
    Manifest list_;
    bool hasMacros_ = false;
};

} // namespace

bool IsOdf(const Package& package) {
    const auto part = package.Find(kMimeType);
    return part && StartsWith(package.Read(*part), kOdf);
}

void CleanOdf(Package& package) { OdfCleaner(package).Run(); }

} // namespace transforms::documents
