#include "services/transforms/personal/Findings.h"

#include <iterator>

namespace transforms {
namespace {

// In the order of FindingKind.
constexpr std::string_view kNames[] = {
    "position",         "camera",       "camera-settings",
    "maker-notes",      "time",         "person",
    "software",         "description",  "thumbnail",
    "other-pictures",   "xmp",          "iptc",
    "comment",          "text",         "credentials",
    "application-data", "private-data", "stray-bytes",
    "trailing-data",    "unreadable",
};
static_assert(std::size(kNames) == static_cast<std::size_t>(FindingKind::Unreadable) + 1);

} // namespace

std::string_view FindingName(FindingKind kind) { return kNames[static_cast<std::size_t>(kind)]; }

} // namespace transforms
