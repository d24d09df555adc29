// The replies of the share interface: whatever a server sends, what is kept of it is within the
// limits, comes from a sound text, and fits where it is used later.
#include <string_view>

#include "fuzzing/support/Require.h"
#include "services/providers/dav/DavXml.h"
#include "services/providers/dav/ShareReply.h"

using namespace providers;

namespace {

bool IsSound(std::string_view text) {
    DavXml xml(text);
    for (;;) {
        const DavXmlEvent event = xml.Next();
        if (event == DavXmlEvent::Finished) return true;
        if (event == DavXmlEvent::Bad) return false;
    }
}

void CheckDate(const ShareDate& date) {
    Require(date.ok(), "a date is in the calendar");
    Require(ReadShareDate(ShareDateText(date)) == date, "a date that is written is read back");
}

void CheckShare(const ShareEntry& share, std::size_t size) {
    const std::string_view kNotInAPart = "/?#%&\\ ";
    Require(!share.id.empty() && share.id.find_first_of(kNotInAPart) == std::string::npos &&
                share.id.find("..") != 0,
            "an id is one part of an address");
    Require(share.url.size() <= size && share.label.size() <= size, "texts come from the reply");
    if (share.ends) CheckDate(*share.ends);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const bool isSound = IsSound(text);
    const auto status = ReadShareStatus(text);
    const auto shares = ReadShares(text);
    const auto rules = ReadShareRules(text);
    Require(isSound || (!status && !shares && !rules), "a reply that is taken is sound");
    Require(!status || (status->code > 0 && status->message.size() <= size),
            "a status is a number of the reply");
    if (shares) {
        Require(shares->size() <= kMostShares, "no more shares than are taken");
        for (const ShareEntry& share : *shares) CheckShare(share, size);
    }
    if (rules) {
        Require(rules->shortestPassword >= 0 && rules->shortestPassword <= 1000 &&
                    rules->longestPassword >= 0 && rules->longestPassword <= 1000,
                "passwords can be made");
        Require(!rules->expiryDays || (*rules->expiryDays >= 0 && *rules->expiryDays <= 36'500),
                "days can be counted");
    }
    if (const auto date = ReadShareDate(text)) CheckDate(*date);
    return 0;
}
