#include "services/transforms/documents/OoxmlRules.h"

#include <algorithm>
#include <iterator>

namespace transforms::documents {
namespace {

using enum XmlAction;
using Kind = FindingKind;

// Where the schemas require a name or a time, every author gets this one name and every change this
// one time.
constexpr std::string_view kAuthor = "Author";
constexpr std::string_view kInitials = "A";
constexpr std::string_view kNobody = "None";
constexpr std::string_view kSomeTime = "2000-01-01T00:00:00.000";
// Programs find a comment's conversation by the author's name of its first comment.
constexpr std::string_view kConversation = "tc={";

constexpr XmlRule kRules[] = {
    // Texts.
    {RemoveElement, Ns::Word, "rsids", Kind::RevisionIds},
    {RemoveElement, Ns::Word, "rsid", Kind::RevisionIds, "style"},
    {RemoveAttribute, Ns::Word, "rsidR", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidRPr", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidRDefault", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidP", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidDel", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidSect", Kind::RevisionIds},
    {RemoveAttribute, Ns::Word, "rsidTr", Kind::RevisionIds},
    {RemoveElement, Ns::Word2010, "docId", Kind::DocumentId},
    {RemoveElement, Ns::Word2012, "docId", Kind::DocumentId},
    {RemoveElement, Ns::Word, "attachedTemplate", Kind::LocalPath},
    {RemoveElement, Ns::Word, "mailMerge", Kind::LocalPath},
    {RemoveElement, Ns::Word, "printerSettings", Kind::PrinterSettings},
    {SetAttribute, Ns::Word, "author", Kind::Authors, {}, kAuthor},
    {SetAttribute, Ns::Word, "initials", Kind::Authors, {}, kInitials},
    {RemoveAttribute, Ns::Word, "date", Kind::Authors},
    {RemoveAttribute, Ns::WordDates, "dateUtc", Kind::Authors},
    {RemoveAttribute, Ns::Word, "ed", Kind::Authors},
    {CountElement, Ns::Word, "delText", Kind::DeletedText},
    {CountElement, Ns::Word, "delInstrText", Kind::DeletedText},
    {CountElement, Ns::Word, "vanish", Kind::HiddenText, "r"},
    {CountElement, Ns::Word, "comment", Kind::Comments},
    {CountElement, Ns::Word, "docVar", Kind::CustomData},
    // Workbooks.
    {ReplaceText, Ns::Sheet, "author", Kind::Authors, "authors", kAuthor, {}, kConversation},
    {RemoveAttribute, Ns::None, "userName", Kind::Person, "fileSharing"},
    {RemoveAttribute, Ns::None, "user", Kind::Person, "scenario"},
    {RemoveAttribute, Ns::None, "comment", Kind::Person, "scenario"},
    {RemoveElement, Ns::Sheet, "customWorkbookViews", Kind::Person},
    {RemoveElement, Ns::Sheet, "customSheetViews", Kind::Person},
    {RemoveAttribute, Ns::None, "refreshedBy", Kind::Person, "pivotCacheDefinition"},
    {RemoveAttribute, Ns::None, "refreshedDate", Kind::Time, "pivotCacheDefinition"},
    {RemoveAttribute, Ns::None, "refreshedDateIso", Kind::Time, "pivotCacheDefinition"},
    {RemoveAttribute, Ns::Relationship, "id", Kind::PrinterSettings, "pageSetup"},
    {RemoveWrapped, Ns::SheetPath, "absPath", Kind::LocalPath},
    {RemoveElement, Ns::SheetRevision, "revisionPtr", Kind::DocumentId},
    {SetAttribute, Ns::None, "displayName", Kind::Authors, "person", kAuthor},
    {SetAttribute, Ns::None, "userId", Kind::Authors, "person", kAuthor},
    {SetAttribute, Ns::None, "providerId", Kind::Authors, "person", kNobody},
    {RemoveAttribute, Ns::None, "dT", Kind::Authors, "threadedComment"},
    {CountElement, Ns::Sheet, "comment", Kind::Comments},
    {CountElement, Ns::Sheet, "sheet", Kind::HiddenSheets, {}, "hidden", "state"},
    {CountElement, Ns::Sheet, "sheet", Kind::HiddenSheets, {}, "veryHidden", "state"},
    {CountElement, Ns::Sheet, "dbPr", Kind::CustomData},
    // Presentations.
    {SetAttribute, Ns::None, "name", Kind::Authors, "cmAuthor", kAuthor},
    {SetAttribute, Ns::None, "initials", Kind::Authors, "cmAuthor", kInitials},
    {SetAttribute, Ns::None, "userId", Kind::Authors, "presenceInfo", kAuthor},
    {SetAttribute, Ns::None, "providerId", Kind::Authors, "presenceInfo", kNobody},
    {SetAttribute, Ns::None, "name", Kind::Authors, "author", kAuthor},
    {SetAttribute, Ns::None, "initials", Kind::Authors, "author", kInitials},
    {SetAttribute, Ns::None, "userId", Kind::Authors, "author", kAuthor},
    {SetAttribute, Ns::None, "providerId", Kind::Authors, "author", kNobody},
    {RemoveAttribute, Ns::None, "dt", Kind::Authors, "cm"},
    {RemoveAttribute, Ns::None, "timeZoneBias", Kind::Authors, "threadingInfo"},
    {SetAttribute, Ns::None, "created", Kind::Authors, "cm", kSomeTime},
    {SetAttribute, Ns::None, "created", Kind::Authors, "reply", kSomeTime},
    {CountElement, Ns::Slides, "cm", Kind::Comments},
    {CountElement, Ns::Slides2018, "cm", Kind::Comments},
    {CountElement, Ns::Slides, "sld", Kind::HiddenSlides, {}, "0", "show"},
    {CountElement, Ns::Slides, "sld", Kind::HiddenSlides, {}, "false", "show"},
};

struct RelationshipRow {
    std::string_view type;
    FindingKind kind;
};

constexpr RelationshipRow kRemoved[] = {
    {"core-properties", Kind::Properties},
    {"extended-properties", Kind::Properties},
    {"extendedProperties", Kind::Properties},
    {"custom-properties", Kind::Properties},
    {"customProperties", Kind::Properties},
    {"classificationlabels", Kind::Properties},
    {"thumbnail", Kind::Thumbnail},
    {"printerSettings", Kind::PrinterSettings},
    {"attachedTemplate", Kind::LocalPath},
    {"mailMergeSource", Kind::LocalPath},
    {"mailMergeHeaderSource", Kind::LocalPath},
    {"recipientData", Kind::LocalPath},
    {"people", Kind::Authors},
    {"documenttasks", Kind::ChangeHistory},
    {"revisionInfo", Kind::RevisionIds},
    {"changesInfo", Kind::ChangeHistory},
    {"revisionHeaders", Kind::ChangeHistory},
    {"usernames", Kind::ChangeHistory},
};

} // namespace

std::span<const XmlRule> OoxmlRules() { return kRules; }

std::string_view LastOfType(std::string_view type) {
    return type.substr(type.find_last_of('/') + 1);
}

std::optional<FindingKind> RemovedWithRelationship(std::string_view type) {
    const auto row = std::ranges::find(kRemoved, LastOfType(type), &RelationshipRow::type);
    if (row == std::end(kRemoved)) return {};
    return row->kind;
}

} // namespace transforms::documents
