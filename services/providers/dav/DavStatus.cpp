#include "services/providers/dav/DavStatus.h"

#include <windows.h>
#include <winhttp.h>

#include <algorithm>
#include <charconv>
#include <string>

namespace providers {
namespace {

struct FaultOfStatus {
    int status;
    DavFault fault;
};

constexpr FaultOfStatus kFaults[] = {
    {401, DavFault::WrongLogin},  {403, DavFault::Forbidden}, {404, DavFault::NotFound},
    {405, DavFault::NotPossible}, {409, DavFault::Conflict},  {410, DavFault::NotFound},
    {412, DavFault::Taken},       {413, DavFault::TooLarge},  {423, DavFault::Locked},
    {429, DavFault::TooMany},     {507, DavFault::NoSpace},
};

constexpr std::uint64_t kTicksPerSecond = 10'000'000; // of a FILETIME

// A date of the web in seconds.
std::optional<std::uint64_t> Seconds(std::string_view date) {
    if (date.empty()) return std::nullopt;
    SYSTEMTIME time{};
    FILETIME ticks{};
    const std::wstring text(date.begin(), date.end());
    if (!WinHttpTimeToSystemTime(text.c_str(), &time) || !SystemTimeToFileTime(&time, &ticks))
        return std::nullopt;
    return (static_cast<std::uint64_t>(ticks.dwHighDateTime) << 32 | ticks.dwLowDateTime) /
           kTicksPerSecond;
}

// Seconds, or a date, which counts from the server's own clock.
std::optional<std::uint32_t> RetryAfter(const HttpReply& reply) {
    constexpr std::uint64_t kMost = 86'400;
    const std::string_view text = reply.Header("Retry-After");
    std::uint32_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error == std::errc() && end == text.data() + text.size())
        return std::min<std::uint32_t>(seconds, kMost);
    const auto until = Seconds(text);
    const auto now = ServerTime(reply);
    if (!until || !now) return std::nullopt;
    return static_cast<std::uint32_t>(*until > *now ? std::min(*until - *now, kMost) : 0);
}

// Names of schemes are compared in any case; one header may have several.
bool OffersBasic(std::string_view schemes) {
    constexpr std::string_view kBasic = "basic";
    const auto isSame = [](char left, char right) { return (left | 0x20) == right; };
    return std::ranges::search(schemes, kBasic, isSame).size() != 0;
}

// A server that names no scheme at all is taken for one that knows the usual one.
bool WantsOtherLogin(const HttpReply& reply) {
    constexpr std::string_view kSchemes = "www-authenticate";
    bool hasOther = false;
    for (const HttpHeader& header : reply.headers) {
        const bool isSchemes = std::ranges::equal(
            header.name, kSchemes, [](char left, char right) { return (left | 0x20) == right; });
        if (isSchemes && OffersBasic(header.value)) return false;
        hasOther |= isSchemes;
    }
    return hasOther;
}

DavFault FaultOf(int status) {
    const auto* row =
        std::find_if(std::begin(kFaults), std::end(kFaults),
                     [status](const FaultOfStatus& fault) { return fault.status == status; });
    if (row != std::end(kFaults)) return row->fault;
    return status >= 500 ? DavFault::ServerFailed : DavFault::Other;
}

} // namespace

bool MayHaveActed(const DavError& error) {
    constexpr int kStatuses[] = {kPartlyDone, 408, 500, 502, 503, 504};
    const bool isStatus = error.fault == DavFault::ServerFailed || error.status == 408;
    return IsHttp(error, HttpFault::BrokenOff) || IsHttp(error, HttpFault::TimedOut) ||
           IsHttp(error, HttpFault::Failed) ||
           (isStatus && std::find(std::begin(kStatuses), std::end(kStatuses), error.status) !=
                            std::end(kStatuses));
}

bool MayActLater(const DavError& error) {
    return IsHttp(error, HttpFault::TimedOut) || error.status == 502 || error.status == 504;
}

std::optional<std::uint64_t> ServerTime(const HttpReply& reply) {
    return Seconds(reply.Header("Date"));
}

std::optional<DavError> DavErrorOf(const HttpReply& reply) {
    if (reply.status >= 200 && reply.status < 300) return std::nullopt;
    DavError error{FaultOf(reply.status), reply.status, {}, std::nullopt};
    if (reply.status == 401 && WantsOtherLogin(reply)) error.fault = DavFault::OtherLogin;
    if (reply.status == 429 || reply.status == 503) error.retryAfter = RetryAfter(reply);
    if (reply.status == 503 && error.retryAfter) error.fault = DavFault::TooMany;
    return error;
}

} // namespace providers
