#include "services/transforms/personal/Findings.h"

#include <iterator>

namespace transforms {
namespace {

// In the order of FindingKind.
constexpr std::string_view kNames[] = {
    "position",
    "camera",
    "camera-settings",
    "maker-notes",
    "time",
    "person",
    "software",
    "description",
    "thumbnail",
    "other-pictures",
    "xmp",
    "iptc",
    "comment",
    "text",
    "credentials",
    "application-data",
    "private-data",
    "stray-bytes",
    "trailing-data",
    "unreadable",
    "local-path",
    "revision-ids",
    "authors",
    "printer-settings",
    "old-versions",
    "document-id",
    "properties",
    "change-history",
    "file-structure",
    "stays.deleted-text",
    "stays.hidden-sheets",
    "stays.hidden-slides",
    "stays.hidden-text",
    "stays.comments",
    "stays.embedded-files",
    "stays.macros",
    "stays.custom-data",
};
static_assert(std::size(kNames) == kFindingKinds);

} // namespace

std::string_view FindingName(FindingKind kind) { return kNames[static_cast<std::size_t>(kind)]; }

} // namespace transforms
