// What a server reports through the open collaboration share interface: its rules for links, and
// the links that there are. Replies are read without the system, so that the fuzzers do it too.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace providers {

using ShareDate = std::chrono::year_month_day;

// What the server's capabilities state. What they don't state isn't demanded.
struct ShareRules {
    bool canShareByLink = false;
    bool needsPassword = false; // each link has to have one
    int shortestPassword = 0;   // characters
    int longestPassword = 0;    // characters; 0: no limit is known
    bool needsUpperAndLower = false;
    bool needsDigit = false;
    bool needsSpecial = false;
    bool needsExpiry = false;      // each link has to end, after `expiryDays` at most
    std::optional<int> expiryDays; // without needsExpiry: what the server proposes

    bool operator==(const ShareRules&) const = default;
};

// One share of a file.
struct ShareEntry {
    std::string id; // digits, letters and "-_.:~=" only, so that it fits into an address
    bool isLink = false;
    std::string url;
    std::string label; // empty: none, or the server knows no labels
    bool hasPassword = false;
    std::optional<ShareDate> ends; // the last day, or the one after it: servers differ

    bool operator==(const ShareEntry&) const = default;
};

// What every reply of the interface has: its own status, which counts also when that of HTTP is
// 200.
struct ShareStatus {
    int code = 0;        // as those of HTTP; 0: the reply has none
    std::string message; // of the server, in any language; not cleaned

    bool operator==(const ShareStatus&) const = default;
};

inline constexpr std::size_t kLongestShareReply = 1u << 20; // bytes
inline constexpr std::size_t kMostShares = 1000;            // of one file

// Nothing when the text is no reply of this interface, or has more than is taken.
std::optional<ShareStatus> ReadShareStatus(std::string_view body);
std::optional<std::vector<ShareEntry>> ReadShares(std::string_view body);

// Nothing when the server states nothing about sharing.
std::optional<ShareRules> ReadShareRules(std::string_view body);

// A date as the interface writes it: "2026-11-30", also with a time after it.
std::optional<ShareDate> ReadShareDate(std::string_view text);
std::string ShareDateText(const ShareDate& date);

} // namespace providers
