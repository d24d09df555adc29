#include "services/providers/dav/ShareReply.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <iterator>

#include "ObLib/Src/AsciiLetters.h"
#include "services/providers/dav/DavXml.h"

namespace providers {
namespace {

constexpr std::size_t kLongestValue = 16384; // bytes
constexpr int kMostDays = 36'500;            // a longer limit is none
constexpr int kLongestLimit = 1000;          // characters of a password

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

// Passes the elements of a reply, each with its path below the outermost one ("meta/statuscode").
class ReplyWalk {
public:
    explicit ReplyWalk(std::string_view body) : xml_(body) {}

    // `ended` gets the path and, for an element without others in it, its text; it returns false
    // to refuse the reply. False for a reply that is refused or isn't one of this interface.
    bool Run(const std::function<bool(std::string_view path, const std::string& text)>& ended) {
        for (;;) {
            switch (xml_.Next()) {
            case DavXmlEvent::Start:
                if (!Started()) return false;
                break;
            case DavXmlEvent::Text:
                if (value_.size() + xml_.Text().size() > kLongestValue) return false;
                value_ += xml_.Text();
                break;
            case DavXmlEvent::End:
                if (!ended(path_, Trimmed(value_))) return false;
                value_.clear();
                path_.resize(ends_.back());
                ends_.pop_back();
                break;
            case DavXmlEvent::Finished:
                return true;
            case DavXmlEvent::Bad:
                return false;
            }
        }
    }

private:
    bool Started() {
        value_.clear();
        ends_.push_back(path_.size());
        if (xml_.Depth() == 1) return xml_.Is("", "ocs");
        if (!path_.empty()) path_ += '/';
        path_ += xml_.Name();
        return true;
    }

    DavXml xml_;
    std::string path_;
    std::vector<std::size_t> ends_; // length of the path around each element that is open
    std::string value_;
};

bool IsTrue(const std::string& text) { return text == "1" || text == "true"; }

std::optional<int> Number(const std::string& text, int most) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 0 || number > most)
        return std::nullopt;
    return number;
}

// What is read into before the parts are put together.
struct StatedRules {
    std::optional<bool> isOn;     // the whole interface
    std::optional<bool> hasLinks; // links that anybody can open
    ShareRules rules;
};

struct Statement {
    std::string_view path; // below "data/capabilities"
    void (*read)(StatedRules& stated, const std::string& text);
};

template <bool ShareRules::*Member>
void ReadSwitch(StatedRules& stated, const std::string& text) {
    stated.rules.*Member = stated.rules.*Member || IsTrue(text);
}

template <bool ShareRules::*Member>
void ReadLeast(StatedRules& stated, const std::string& text) {
    stated.rules.*Member = stated.rules.*Member || Number(text, kLongestLimit).value_or(0) > 0;
}

void ReadShortest(StatedRules& stated, const std::string& text) {
    stated.rules.shortestPassword =
        std::max(stated.rules.shortestPassword, Number(text, kLongestLimit).value_or(0));
}

// Servers write some of these in two ways.
constexpr Statement kStatements[] = {
    {"files_sharing/api_enabled",
     [](StatedRules& stated, const std::string& text) { stated.isOn = IsTrue(text); }},
    {"files_sharing/public/enabled",
     [](StatedRules& stated, const std::string& text) { stated.hasLinks = IsTrue(text); }},
    {"files_sharing/public/password/enforced", &ReadSwitch<&ShareRules::needsPassword>},
    {"files_sharing/public/password/enforced_for/read_only",
     &ReadSwitch<&ShareRules::needsPassword>},
    {"files_sharing/public/expire_date/enforced", &ReadSwitch<&ShareRules::needsExpiry>},
    {"files_sharing/public/expire_date/days",
     [](StatedRules& stated, const std::string& text) {
         stated.rules.expiryDays = Number(text, kMostDays);
     }},
    {"password_policy/minLength", &ReadShortest},
    {"password_policy/min_characters", &ReadShortest},
    {"password_policy/max_characters",
     [](StatedRules& stated, const std::string& text) {
         stated.rules.longestPassword = Number(text, kLongestLimit).value_or(0);
     }},
    {"password_policy/enforceUpperLowerCase", &ReadSwitch<&ShareRules::needsUpperAndLower>},
    {"password_policy/min_lowercase_characters", &ReadLeast<&ShareRules::needsUpperAndLower>},
    {"password_policy/min_uppercase_characters", &ReadLeast<&ShareRules::needsUpperAndLower>},
    {"password_policy/enforceNumericCharacters", &ReadSwitch<&ShareRules::needsDigit>},
    {"password_policy/min_digits", &ReadLeast<&ShareRules::needsDigit>},
    {"password_policy/enforceSpecialCharacters", &ReadSwitch<&ShareRules::needsSpecial>},
    {"password_policy/min_special_characters", &ReadLeast<&ShareRules::needsSpecial>},
};

bool IsId(const std::string& text) {
    constexpr std::string_view kOthers = "-_.:~=";
    return !text.empty() && text.size() <= 200 && text != "." && text != ".." &&
           std::all_of(text.begin(), text.end(), [kOthers](char c) {
               return (c >= '0' && c <= '9') || ObLib::IsAsciiLetter(c) ||
                      kOthers.find(c) != std::string_view::npos;
           });
}

// "3" is a link that anybody can open.
void ReadField(ShareEntry& entry, std::string_view name, const std::string& text) {
    if (name == "id" && IsId(text)) entry.id = text;
    if (name == "share_type") entry.isLink = text == "3";
    if (name == "url") entry.url = text;
    if (name == "expiration") entry.ends = ReadShareDate(text);
    // Older servers have a name where newer ones have a label, and newer ones a name for others.
    if (name == "label" || (name == "name" && entry.label.empty())) entry.label = text;
    // The password itself isn't shown; these are there, in any form, when there is one.
    if (name == "share_with" || name == "password") entry.hasPassword |= !text.empty();
}

} // namespace

std::optional<ShareStatus> ReadShareStatus(std::string_view body) {
    if (body.size() > kLongestShareReply) return std::nullopt;
    ShareStatus status;
    const bool isSound = ReplyWalk(body).Run([&](std::string_view path, const std::string& text) {
        if (path == "meta/statuscode") status.code = Number(text, 9999).value_or(0);
        if (path == "meta/message") status.message = text;
        return true;
    });
    if (!isSound || status.code == 0) return std::nullopt;
    return status;
}

std::optional<std::vector<ShareEntry>> ReadShares(std::string_view body) {
    if (body.size() > kLongestShareReply) return std::nullopt;
    std::vector<ShareEntry> shares;
    ShareEntry entry;
    const auto read = [&](std::string_view path, const std::string& text) {
        constexpr std::string_view kData = "data";
        constexpr std::string_view kInList = "data/element";
        // A list, or one share that is the data itself.
        if (path == kInList || path == kData) {
            if (!entry.id.empty()) shares.push_back(std::move(entry));
            entry = {};
            return shares.size() <= kMostShares;
        }
        const std::string_view above = path.substr(0, std::min(path.rfind('/'), path.size()));
        if (above == kInList || above == kData)
            ReadField(entry, path.substr(above.size() + 1), text);
        return true;
    };
    if (!ReplyWalk(body).Run(read)) return std::nullopt;
    return shares;
}

std::optional<ShareRules> ReadShareRules(std::string_view body) {
    if (body.size() > kLongestShareReply) return std::nullopt;
    StatedRules stated;
    const auto read = [&](std::string_view path, const std::string& text) {
        constexpr std::string_view kFront = "data/capabilities/";
        if (!path.starts_with(kFront)) return true;
        path.remove_prefix(kFront.size());
        const auto* row =
            std::find_if(std::begin(kStatements), std::end(kStatements),
                         [path](const Statement& known) { return known.path == path; });
        if (row != std::end(kStatements)) row->read(stated, text);
        return true;
    };
    if (!ReplyWalk(body).Run(read) || (!stated.isOn && !stated.hasLinks)) return std::nullopt;
    stated.rules.canShareByLink = stated.isOn.value_or(true) && stated.hasLinks.value_or(true);
    return stated.rules;
}

std::optional<ShareDate> ReadShareDate(std::string_view text) {
    if (text.size() < 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    if (text.size() > 10 && text[10] != ' ' && text[10] != 'T') return std::nullopt;
    const auto number = [text](std::size_t at, std::size_t size) {
        return Number(std::string(text.substr(at, size)), 9999);
    };
    const auto year = number(0, 4);
    const auto month = number(5, 2);
    const auto day = number(8, 2);
    if (!year || !month || !day) return std::nullopt;
    const ShareDate date{std::chrono::year(*year),
                         std::chrono::month(static_cast<unsigned>(*month)),
                         std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    return date;
}

std::string ShareDateText(const ShareDate& date) {
    const auto padded = [](unsigned number, std::size_t width) {
        std::string digits = std::to_string(number);
        return std::string(width - std::min(width, digits.size()), '0') + digits;
    };
    return padded(static_cast<unsigned>(static_cast<int>(date.year())), 4) + "-" +
           padded(static_cast<unsigned>(date.month()), 2) + "-" +
           padded(static_cast<unsigned>(date.day()), 2);
}

} // namespace providers
