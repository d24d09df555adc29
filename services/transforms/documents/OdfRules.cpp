#include "services/transforms/documents/OdfRules.h"

#include <algorithm>
#include <iterator>

#include "services/transforms/documents/LocalPath.h"

namespace transforms::documents {
namespace {

using enum XmlAction;
using Kind = FindingKind;

// The schema requires an author and a time of a change, and of a note neither.
constexpr XmlRule kRules[] = {
    {ReplaceText, Ns::DublinCore, "creator", Kind::Authors, "annotation", "Author"},
    {RemoveElement, Ns::DublinCore, "date", Kind::Authors, "annotation"},
    {RemoveElement, Ns::OdfMeta, "date-string", Kind::Authors, "annotation"},
    {RemoveElement, Ns::OdfMeta, "creator-initials", Kind::Authors, "annotation"},
    {RemoveElement, Ns::OfficeExtension, "sender-initials", Kind::Authors, "annotation"},
    {ReplaceText, Ns::DublinCore, "creator", Kind::Authors, "change-info", "Author"},
    {ReplaceText, Ns::DublinCore, "date", Kind::Authors, "change-info", "2000-01-01T00:00:00"},
    {RemoveAttribute, Ns::OdfTable, "comment", Kind::Person, "scenario"},
    {RemoveAttribute, Ns::OfficeExtension, "rsid", Kind::RevisionIds},
    {RemoveAttribute, Ns::OfficeExtension, "paragraph-rsid", Kind::RevisionIds},
    {CountElement, Ns::Office, "annotation", Kind::Comments},
    {CountElement, Ns::OdfText, "deletion", Kind::DeletedText},
    {CountElement, Ns::OdfTable, "deletion", Kind::DeletedText},
    {CountElement, Ns::OdfText, "hidden-text", Kind::HiddenText},
    {CountElement, Ns::OdfText, "hidden-paragraph", Kind::HiddenText},
    {CountElement, Ns::OdfStyle, "text-properties", Kind::HiddenText, {}, "none", "display"},
};

struct FileRow {
    std::string_view path; // a folder when it ends in a slash; otherwise the end of a path
    FindingKind kind;
};

constexpr FileRow kFiles[] = {
    {"meta.xml", Kind::Properties},
    {"manifest.rdf", Kind::Properties},
    {"Thumbnails/", Kind::Thumbnail},
    {"layout-cache", Kind::PrivateData},
};

struct SettingRow {
    std::string_view name;
    FindingKind kind;
};

constexpr SettingRow kSettings[] = {
    {"PrinterName", Kind::PrinterSettings},
    {"PrinterSetup", Kind::PrinterSettings},
    {"PrintFaxName", Kind::PrinterSettings},
    {"Rsid", Kind::RevisionIds},
    {"RsidRoot", Kind::RevisionIds},
    {"CurrentDatabaseDataSource", Kind::LocalPath},
    {"CurrentDatabaseCommand", Kind::LocalPath},
    {"CurrentDatabaseCommandType", Kind::LocalPath},
};

// "$(user)/..." isn't the path of a computer, but a setting with it is removed like one with a
// path.
bool IsPath(std::string_view text) { return IsLocalPath(text) || text.starts_with("$("); }

} // namespace

std::span<const XmlRule> OdfRules() { return kRules; }

std::optional<FindingKind> RemovedOdfFile(std::string_view path) {
    for (const FileRow& row : kFiles) {
        const bool isFolder = row.path.ends_with('/');
        const bool isFile = path == row.path || (path.ends_with(row.path) &&
                                                 path[path.size() - row.path.size() - 1] == '/');
        if (isFolder ? path.find(row.path) != path.npos : isFile) return row.kind;
    }
    return {};
}

std::optional<FindingKind> RemovedOdfSetting(std::string_view name, std::string_view text) {
    const auto row = std::ranges::find(kSettings, name, &SettingRow::name);
    if (row != std::end(kSettings)) return row->kind;
    if (IsPath(text)) return FindingKind::LocalPath;
    return {};
}

void HiddenOdfParts::LookAt(const XmlReader& reader, personal::FindingCounter& found) {
    const XmlElement& element = reader.Element();
    if (element.ns == Ns::OdfStyle && element.name == "style") {
        style_ = reader.Value(Ns::OdfStyle, "name");
    }
    if (element.ns == Ns::OdfStyle &&
        (reader.Value(Ns::OdfTable, "display") == "false" ||
         reader.Value(Ns::OdfPresentation, "visibility") == "hidden")) {
        hidden_.insert(style_);
    }
    if (element.ns == Ns::OdfTable && element.name == "table" &&
        hidden_.contains(reader.Value(Ns::OdfTable, "style-name"))) {
        found.Note(FindingKind::HiddenSheets);
    }
    if (element.ns == Ns::OdfDraw && element.name == "page" &&
        hidden_.contains(reader.Value(Ns::OdfDraw, "style-name"))) {
        found.Note(FindingKind::HiddenSlides);
    }
}

} // namespace transforms::documents
