#include "services/transforms/documents/Ooxml.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "services/transforms/documents/LocalPath.h"
#include "services/transforms/documents/OoxmlParts.h"
#include "services/transforms/documents/OoxmlRules.h"

namespace transforms::documents {
namespace {

using namespace personal;

constexpr std::string_view kContentTypes = "[Content_Types].xml";

// The main part's content type names what is written in it; the binary form of workbooks isn't
// read.
constexpr std::string_view kKnownKinds[] = {"wordprocessingml", "spreadsheetml", "presentationml",
                                            "ms-word",          "ms-excel",      "ms-powerpoint"};

// A relationship, and a part's content type, that names content that stays.
struct StayingRow {
    std::string_view type;
    FindingKind kind;
};
constexpr StayingRow kStaying[] = {
    {"vbaProject", FindingKind::Macros},
    {"xlMacrosheet", FindingKind::Macros},
    {"xlIntlMacrosheet", FindingKind::Macros},
    {"customXml", FindingKind::CustomData},
};
// The signatures of macros: parts of the macros, which aren't named a second time.
constexpr std::string_view kMacroSignature = "vbaProjectSignature";

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != text.npos; }

class OoxmlCleaner {
public:
    explicit OoxmlCleaner(Package& package)
        : package_(package), types_(TextOf(package.Read(*package.Find(kContentTypes)))) {
        for (std::size_t part = 0; part < package.Count(); ++part) {
            const bool isNew = byKey_.emplace(PartKey(package.Name(part)), part).second;
            if (!isNew) throw PackageRefusal{CleanOutcome::Damaged};
        }
    }

    void Run() {
        Reach({});
        CheckMainPart();
        for (const auto& [key, part] : byKey_) {
            if (const auto source = SourceOfRelationships(key)) CleanRelationships(*source, part);
        }
        for (const auto& [key, part] : byKey_) TakePart(key, part);
        CleanContentTypes();
    }

private:
    FindingCounter& Found() { return package_.Found(); }

    // Follows the relationships of a part, and those of what they lead to.
    void Reach(const std::string& start) {
        std::vector<std::string> open{start};
        while (!open.empty()) {
            const std::string source = std::move(open.back());
            open.pop_back();
            const auto found = byKey_.find(RelationshipsOf(source));
            if (found == byKey_.end()) continue;
            reached_.insert(found->first);
            const OwnedBytes text = package_.Read(found->second);
            for (auto& relationship : ReadRelationships(TextOf(text), source)) {
                Follow(source, relationship, open);
            }
        }
    }

    void Follow(const std::string& source, const Relationship& relationship,
                std::vector<std::string>& open) {
        const auto last = LastOfType(relationship.type);
        if (Contains(relationship.type, "digital-signature")) {
            throw PackageRefusal{CleanOutcome::Signed};
        }
        if (RemovedWithRelationship(relationship.type)) return;
        if (source.empty() && last == "officeDocument") main_ = relationship.target;
        const auto row = std::ranges::find(kStaying, last, &StayingRow::type);
        if (row != std::end(kStaying)) Found().Note(row->kind);
        const bool isMacros = row != std::end(kStaying) && row->kind == FindingKind::Macros;
        if (isMacros || last.starts_with(kMacroSignature)) known_.insert(relationship.target);
        if (!byKey_.contains(relationship.target)) return;
        if (reached_.insert(relationship.target).second) open.push_back(relationship.target);
    }

    void CheckMainPart() {
        if (!byKey_.contains(main_)) throw PackageRefusal{CleanOutcome::Damaged};
        const auto type = types_.Of(main_);
        const auto isOfType = [&](std::string_view kind) { return Contains(type, kind); };
        if (!IsXmlType(type) || std::ranges::none_of(kKnownKinds, isOfType)) {
            throw PackageRefusal{CleanOutcome::NotSupported};
        }
    }

    void TakePart(const std::string& key, std::size_t part) {
        if (key == PartKey(kContentTypes)) return;
        if (!reached_.contains(key)) return RemovePart(key, part);
        if (SourceOfRelationships(key)) return;
        const auto type = types_.Of(key);
        if (Contains(type, "svg")) return Found().Note(FindingKind::EmbeddedFiles);
        if (Contains(type, "vmlDrawing")) return package_.CleanLooseXmlPart(part, OoxmlRules());
        if (IsXmlType(type)) return CleanXmlPart(part);
        const bool isFont = Contains(type, "font") || Contains(type, "Font");
        if (!isFont && !known_.contains(key)) package_.CleanPicturePart(part);
    }

    // A folder's own entry has no content.
    void RemovePart(const std::string& key, std::size_t part) {
        package_.Remove(part);
        removed_.insert(key);
        const bool isNamed = leftTo_.contains(key) || key.ends_with('/');
        if (!isNamed) Found().Note(FindingKind::OldVersions);
    }

    // The value of this attribute identifies the editing session in which an element was made. On
    // comments it stays, as they refer to each other by it.
    void CleanXmlPart(std::size_t part) {
        package_.CleanXmlPart(
            part, OoxmlRules(), [&](const XmlReader& reader) -> std::optional<XmlEdit> {
                const auto& all = reader.Attributes();
                const auto id = std::ranges::find_if(all, [](const XmlAttribute& attribute) {
                    return attribute.ns == Ns::SheetRevision && attribute.name == "uid";
                });
                if (id == all.end() || reader.Element().name == "comment") return {};
                Found().Note(FindingKind::RevisionIds);
                return RemovalOf(reader.Text(), id->whole);
            });
    }

    void CleanRelationships(const std::string& source, std::size_t part) {
        if (!reached_.contains(RelationshipsOf(source))) return;
        package_.CleanXmlPart(part, {}, [&](const XmlReader& reader) -> std::optional<XmlEdit> {
            if (reader.Element().name != "Relationship") return {};
            const auto kind = RemovedWithRelationship(PlainText(reader.Value(Ns::None, "Type")));
            if (!kind) return CutExternalPath(reader);
            Found().Note(*kind);
            leftTo_.insert(TargetOf(reader, source));
            return RemovalOfElement(reader);
        });
    }

    // A target from the root leads to another part, or out of the document to a computer's folder.
    // The other forms of paths are cut in every attribute of its name.
    std::optional<XmlEdit> CutExternalPath(const XmlReader& reader) {
        const auto target = reader.Value(Ns::None, "Target");
        const bool isExternal = reader.Value(Ns::None, "TargetMode") == "External";
        const auto name = FileOfLocalAddress(target);
        if (!isExternal || !name || IsLocalPath(target)) return {};
        Found().Note(FindingKind::LocalPath);
        return ReplacementOf(reader.Text(), target, std::string(*name));
    }

    void CleanContentTypes() {
        package_.CleanXmlPart(*package_.Find(kContentTypes), {},
                              [&](const XmlReader& reader) -> std::optional<XmlEdit> {
                                  if (reader.Element().name != "Override") return {};
                                  const auto name =
                                      PartKey(PlainText(reader.Value(Ns::None, "PartName")));
                                  if (!removed_.contains(name)) return {};
                                  return RemovalOfElement(reader);
                              });
    }

    Package& package_;
    ContentTypes types_;
    std::map<std::string, std::size_t> byKey_;
    std::set<std::string> reached_; // parts that stay
    std::set<std::string> leftTo_;  // parts of relationships that are removed
    std::set<std::string> removed_;
    std::set<std::string> known_; // parts of another kind that are reported already
    std::string main_;
};

} // namespace

bool IsOoxml(const Package& package) { return package.Find(kContentTypes).has_value(); }

void CleanOoxml(Package& package) { OoxmlCleaner(package).Run(); }

} // namespace transforms::documents
