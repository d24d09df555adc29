#include "services/providers/dav/ShareApi.h"

#include <algorithm>

#include "services/providers/dav/UnshownCharacters.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/PickLimits.h"

namespace providers {
namespace {

using std::string_view;

constexpr string_view kSharesPath = "ocs/v2.php/apps/files_sharing/api/v1/shares";
constexpr string_view kCapabilitiesPath = "ocs/v2.php/cloud/capabilities";
constexpr std::size_t kLongestMessage = 200; // characters

// Where the interface may be, and which folder its paths begin at.
struct Place {
    HttpUrl base; // ends with a slash
    std::string filesPath;
};

// The length of a path up to the end of the folder that has all files of the user.
std::size_t LengthOfFilesPath(string_view path, std::size_t from) {
    const string_view rest = path.substr(from);
    if (rest.starts_with("webdav/")) return from + 7;
    constexpr string_view kFiles = "dav/files/";
    if (!rest.starts_with(kFiles)) return path.size();
    const std::size_t end = rest.find('/', kFiles.size());
    return end == string_view::npos ? path.size() : from + end + 1;
}

std::vector<Place> PlacesFor(const HttpUrl& davRoot) {
    constexpr string_view kFront = "/remote.php/";
    std::string path = davRoot.path;
    if (!path.ends_with('/')) path += '/';
    const std::size_t front = path.find(kFront);
    const bool hasFront = front != std::string::npos;
    // Any other folder may be another application's than the interface at the server's root.
    if (!hasFront && !path.starts_with("/webdav/") && !path.starts_with("/dav/files/")) return {};
    const std::size_t files = LengthOfFilesPath(path, hasFront ? front + kFront.size() : 1);
    const auto filesPath = DecodePercent(string_view(path).substr(0, files));
    if (!filesPath) return {};
    std::vector<Place> places;
    if (hasFront && front > 0)
        places.push_back({{davRoot.origin, path.substr(0, front) + "/"}, *filesPath});
    places.push_back({{davRoot.origin, "/"}, *filesPath});
    return places;
}

HttpRequest RequestTo(const char* method, HttpUrl url) {
    HttpRequest request;
    request.method = method;
    url.query += url.query.empty() ? "?format=xml" : "&format=xml";
    request.url = std::move(url);
    request.headers = {{"OCS-APIRequest", "true"}, {"Accept", "application/xml"}};
    request.longestReply = kLongestShareReply;
    return request;
}

// A form. What is in it is wiped at its end.
class Form {
public:
    ~Form() { SecureZeroMemory(text_.data(), text_.size()); }

    // Copies the text while it grows, so that no part of it stays in memory that was given up.
    Form& Add(string_view name, string_view value) {
        std::string grown;
        grown.reserve(text_.size() + name.size() + 3 * value.size() + 2);
        grown.append(text_).append(text_.empty() ? "" : "&").append(name).append("=");
        AppendPathPart(grown, value);
        SecureZeroMemory(text_.data(), text_.size());
        text_.swap(grown);
        return *this;
    }
    void SetBody(HttpRequest& request) const {
        request.headers.push_back({"Content-Type", "application/x-www-form-urlencoded"});
        request.body = ObLib::Secret(text_.c_str());
    }

private:
    std::string text_;
};

ShareError ErrorOf(const DavError& error) { return {ShareFault::Dav, error, {}}; }
ShareError ErrorOf(ShareFault fault) { return {fault, {}, {}}; }

// Of the first version of the interface, besides those of HTTP.
int HttpStatusOf(int code) {
    return code == 996 ? 500 : code == 997 ? 401 : code == 998 ? 404 : code;
}

// A sentence needs none of the characters without a width either.
bool IsInvisible(wchar_t c) {
    return IsUnshown(c) || c == 0xAD || (c >= 0x200B && c <= 0x200D) ||
           (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || c >= 0xFFF0;
}

// A server's text for a sentence in quotation marks: one line, without what could change the look
// of the sentence around it.
std::wstring CleanMessage(const std::string& message) {
    std::wstring clean;
    for (const wchar_t c : FromUtf8(message).value_or(L"")) {
        const bool isBlank = c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == 0xA0;
        if (isBlank && (clean.empty() || clean.back() == L' ')) continue;
        if (isBlank)
            clean += L' ';
        else if (c == L'"' || c == 0x201C || c == 0x201D)
            clean += L'\'';
        else if (!IsInvisible(c))
            clean += c;
    }
    if (clean.size() > kLongestMessage) {
        clean.resize(kLongestMessage - 1);
        if (IS_HIGH_SURROGATE(clean.back())) clean.pop_back();
        clean += L'\u2026';
    }
    while (clean.ends_with(L' ')) clean.pop_back();
    return clean;
}

// Nothing for a success. The status of the interface counts besides that of HTTP.
std::optional<ShareError> ErrorIn(const HttpReply& reply) {
    const auto status = ReadShareStatus(reply.body);
    const auto error = DavErrorOf(reply);
    if (!status && error) return ErrorOf(*error);
    if (!status) return ErrorOf(ShareFault::Damaged);
    if (!error && status->code == 100) return std::nullopt;
    HttpReply stated = reply;
    if (!error) stated.status = HttpStatusOf(status->code);
    const auto meant = DavErrorOf(stated);
    if (!meant) return std::nullopt;
    const bool isRefusal = stated.status < 500 && meant->fault != DavFault::WrongLogin &&
                           meant->fault != DavFault::OtherLogin &&
                           meant->fault != DavFault::TooMany;
    return ShareError{isRefusal ? ShareFault::Refused : ShareFault::Dav, *meant,
                      CleanMessage(status->message)};
}

ShareOutcome<HttpReply> Outcome(DavResult<HttpReply> result) {
    if (const auto* error = std::get_if<DavError>(&result)) return ErrorOf(*error);
    auto& reply = std::get<HttpReply>(result);
    if (const auto error = ErrorIn(reply)) return *error;
    return std::move(reply);
}

// The one share that a reply has.
ShareOutcome<ShareEntry> EntryIn(const ShareOutcome<HttpReply>& result) {
    if (const auto* error = std::get_if<ShareError>(&result)) return *error;
    auto shares = ReadShares(std::get<HttpReply>(result).body);
    if (!shares || shares->size() != 1) return ErrorOf(ShareFault::Damaged);
    return std::move(shares->front());
}

// Whether the server may have made the share in spite of the error.
bool MayBeMade(const ShareError& error) {
    return error.fault == ShareFault::Damaged ||
           (error.fault == ShareFault::Dav &&
            (MayHaveActed(error.dav) || IsHttp(error.dav, HttpFault::ReplyTooLong) ||
             error.dav.fault == DavFault::ServerFailed));
}

bool IsFor(const ShareEntry& entry, const ShareWish& wish) {
    return entry.isLink && (entry.label.empty() ? wish.isOwnFile : entry.label == wish.label);
}

// The share that came between two lists.
const ShareEntry* NewIn(const std::vector<ShareEntry>& after, const std::vector<ShareEntry>& before,
                        const ShareWish& wish) {
    const auto isNew = [&](const ShareEntry& entry) {
        return entry.isLink && (entry.label.empty() || entry.label == wish.label) &&
               std::none_of(before.begin(), before.end(),
                            [&](const ShareEntry& old) { return old.id == entry.id; });
    };
    const auto found = std::find_if(after.begin(), after.end(), isNew);
    return found == after.end() ? nullptr : &*found;
}

// Asked where a refusal certainly is the login's: the same one may count for the files only. And a
// wrong one is tried once, as servers lock an account after a few.
std::optional<DavError> LoginError(const DavClient& client, const HttpUrl& davRoot) {
    const auto root = client.Look(davRoot);
    const auto* error = std::get_if<DavError>(&root);
    const bool isEnd =
        error && (error->fault == DavFault::WrongLogin || error->fault == DavFault::OtherLogin ||
                  IsHttp(*error, HttpFault::Cancelled));
    return isEnd ? std::optional(*error) : std::nullopt;
}

// How far the server's clock is ahead, in whole days; a few hours are none.
int DaysAhead(const HttpReply& reply) {
    constexpr std::int64_t kDay = 86'400;
    constexpr std::int64_t kTicksPerSecond = 10'000'000;
    const auto server = ServerTime(reply);
    if (!server) return 0;
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const auto ticks = static_cast<std::int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    const std::int64_t ahead = static_cast<std::int64_t>(*server) - ticks / kTicksPerSecond;
    return static_cast<int>((ahead + (ahead < 0 ? -kDay / 2 : kDay / 2)) / kDay);
}

HttpUrl UrlOf(const HttpUrl& shares, const std::string& id) {
    HttpUrl url = shares;
    url.path += "/" + id;
    return url;
}

// The rules in a reply; nothing when it has none, and its error when that may pass.
ShareOutcome<std::optional<ShareRules>> RulesIn(const DavResult<HttpReply>& result) {
    if (const auto* error = std::get_if<DavError>(&result)) {
        if (IsHttp(*error, HttpFault::Redirected)) return std::nullopt;
        return ErrorOf(*error);
    }
    const auto& reply = std::get<HttpReply>(result);
    const auto error = ErrorIn(reply);
    if (!error) return ReadShareRules(reply.body);
    const bool mayPass = error->dav.fault == DavFault::TooMany ||
                         (error->dav.fault == DavFault::ServerFailed && error->dav.status != 501);
    if (mayPass) return *error;
    return std::nullopt;
}

} // namespace

ShareDate Today() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {std::chrono::year(now.wYear), std::chrono::month(now.wMonth),
            std::chrono::day(now.wDay)};
}

ShareDate DaysLater(const ShareDate& date, int days) {
    return {std::chrono::sys_days(date) + std::chrono::days(days)};
}

bool IsUsableLink(string_view link, const HttpOrigin& account) {
    constexpr string_view kNotInAMail = "\"<>\\^`{|}";
    const bool isPlain = std::all_of(link.begin(), link.end(), [=](char c) {
        return c > ' ' && c < 0x7F && kNotInAMail.find(c) == string_view::npos;
    });
    if (!isPlain || link.size() > kLongestLink) return false;
    const auto url = ParseHttpUrl(link);
    return url && (url->origin.isSecure || !account.isSecure);
}

ShareOutcome<std::optional<ShareApi>> ShareApi::Find(const DavClient& client,
                                                     const HttpUrl& davRoot) {
    const std::vector<Place> places = PlacesFor(davRoot);
    if (places.empty()) return std::nullopt;
    if (const auto error = LoginError(client, davRoot)) return ErrorOf(*error);
    const DWORD limit = client.Patience().question;
    std::optional<ShareError> failure;
    for (const Place& place : places) {
        HttpUrl url = place.base;
        url.path += kCapabilitiesPath;
        HttpRequest request = RequestTo("GET", url);
        request.times = HttpTimes{limit, limit, limit, limit};
        const auto reply = client.AskForAny(request);
        const auto found = RulesIn(reply);
        if (const auto* error = std::get_if<ShareError>(&found)) {
            // A server that is silent at one place is so at the other.
            if (IsHttp(error->dav, HttpFault::Cancelled) || IsHttp(error->dav, HttpFault::TimedOut))
                return *error;
            if (!failure) failure = *error;
            continue;
        }
        const auto& rules = std::get<0>(found);
        if (!rules) continue;
        url.path = place.base.path + std::string(kSharesPath);
        return ShareApi(url, place.filesPath, *rules, DaysAhead(std::get<HttpReply>(reply)));
    }
    if (failure) return *failure;
    return std::nullopt;
}

// The path of a file as the interface names it.
std::optional<std::string> ShareApi::PathOf(const HttpUrl& file) const {
    const auto path = DecodePercent(file.path);
    if (!path || file.origin != base_.origin || !path->starts_with(filesPath_)) return std::nullopt;
    return path->substr(filesPath_.size() - 1);
}

std::optional<ShareError> ShareApi::Refusal(const ShareWish& wish) const {
    if (!rules_.canShareByLink) return ErrorOf(ShareFault::Off);
    if (rules_.needsPassword && (!wish.password || wish.password->Empty()))
        return ErrorOf(ShareFault::NeedsPassword);
    return std::nullopt;
}

// The day in the server's calendar; empty where the server's own limit comes first, which it then
// sets itself.
std::string ShareApi::ExpiryField(const ShareDate& day) const {
    if (rules_.needsExpiry && rules_.expiryDays && day >= DaysLater(Today(), *rules_.expiryDays))
        return {};
    return ShareDateText(DaysLater(day, clockDays_));
}

std::optional<ShareDate> ShareApi::OwnDay(const std::optional<ShareDate>& serversDay) const {
    if (!serversDay) return std::nullopt;
    return DaysLater(*serversDay, -clockDays_);
}

ShareOutcome<ShareApi::Shares> ShareApi::List(const DavClient& client,
                                              const std::string& path) const {
    HttpUrl url = base_;
    url.query = "?path=" + EncodePathPart(path);
    const auto result = Outcome(client.AskForAny(RequestTo("GET", url)));
    if (const auto* error = std::get_if<ShareError>(&result)) {
        const bool isMissing = error->dav.fault == DavFault::NotFound;
        return isMissing ? ErrorOf(error->dav) : *error;
    }
    auto shares = ReadShares(std::get<HttpReply>(result).body);
    if (!shares) return ErrorOf(ShareFault::Damaged);
    return std::move(*shares);
}

ShareOutcome<ShareEntry> ShareApi::Create(const DavClient& client, const std::string& path,
                                          const ShareWish& wish) const {
    Form form;
    form.Add("path", path).Add("shareType", "3").Add("permissions", "1");
    form.Add("label", wish.label).Add("name", wish.label);
    if (wish.password) form.Add("password", wish.password->Text());
    const std::string day = wish.expires ? ExpiryField(*wish.expires) : "";
    if (!day.empty()) form.Add("expireDate", day);
    HttpRequest request = RequestTo("POST", base_);
    form.SetBody(request);
    return EntryIn(Outcome(client.SendForAny(std::move(request))));
}

// One field a request: older servers take no more.
ShareOutcome<ShareEntry> ShareApi::Change(const DavClient& client, const std::string& id,
                                          string_view field, const ObLib::Secret& value) const {
    Form form;
    form.Add(field, value.Text());
    HttpRequest request = RequestTo("PUT", UrlOf(base_, id));
    form.SetBody(request);
    return EntryIn(Outcome(client.AskForAny(request)));
}

// The share of an earlier try, as it is wished for now: that one's password may be lost.
ShareOutcome<ShareEntry> ShareApi::Renew(const DavClient& client, ShareEntry entry,
                                         const ShareWish& wish) const {
    if (wish.password || entry.hasPassword) {
        auto changed =
            Change(client, entry.id, "password", wish.password ? *wish.password : ObLib::Secret());
        if (std::holds_alternative<ShareError>(changed)) return changed;
        entry = std::get<ShareEntry>(changed);
    }
    const std::string day = wish.expires ? ExpiryField(*wish.expires) : "";
    if (day.empty()) return entry;
    return Change(client, entry.id, "expireDate", ObLib::Secret(day.c_str()));
}

// A share that isn't there yet.
ShareOutcome<ShareEntry> ShareApi::MakeOnce(const DavClient& client, const std::string& path,
                                            const ShareWish& wish, const Shares& before) const {
    DWORD pause = client.Patience().pause;
    for (int breaks = 0;; ++breaks, pause *= 2) {
        const auto made = Create(client, path, wish);
        const auto* failure = std::get_if<ShareError>(&made);
        if (failure && !MayBeMade(*failure)) return *failure;
        if (!failure && breaks == 0) return made;
        // After a break an earlier request may be carried out late, beside this one.
        const auto after = List(client, path);
        const auto* shares = std::get_if<Shares>(&after);
        if (!shares && failure) return std::get<ShareError>(after);
        const ShareEntry* found = shares ? NewIn(*shares, before, wish) : nullptr;
        if (found) return DropOthers(client, *found, *shares, wish);
        if (!failure) return made;
        const bool isBroken =
            failure->fault == ShareFault::Dav && IsHttp(failure->dav, HttpFault::BrokenOff);
        if (!isBroken || breaks == client.Patience().breaks) return *failure;
        if (const auto cancelled = client.Pause(pause)) return ErrorOf(*cancelled);
    }
}

// Keeps one of the shares with the wish's label.
ShareEntry ShareApi::DropOthers(const DavClient& client, const ShareEntry& kept,
                                const Shares& shares, const ShareWish& wish) const {
    for (const ShareEntry& entry : shares) {
        const bool isOther =
            entry.id != kept.id && entry.isLink && !wish.label.empty() && entry.label == wish.label;
        if (isOther) static_cast<void>(Remove(client, entry.id));
    }
    return kept;
}

// A link that is to have a password and has none is ended: a server may ignore the password, or the
// share is another request's.
ShareOutcome<ShareEntry> ShareApi::Protected(const DavClient& client, const ShareEntry& entry,
                                             const ShareWish& wish) const {
    if (!wish.password || wish.password->Empty() || entry.hasPassword) return entry;
    auto changed = Change(client, entry.id, "password", *wish.password);
    const auto* share = std::get_if<ShareEntry>(&changed);
    if (share && share->hasPassword) return changed;
    static_cast<void>(Remove(client, entry.id));
    return share ? ErrorOf(ShareFault::NoPassword) : std::get<ShareError>(changed);
}

ShareOutcome<LinkShare> ShareApi::Checked(const DavClient& client, const ShareEntry& entry) const {
    if (!entry.isLink || !IsUsableLink(entry.url, base_.origin)) {
        static_cast<void>(Remove(client, entry.id)); // nobody gets to know this link
        return ErrorOf(ShareFault::OddLink);
    }
    return LinkShare{entry.id, FromUtf8(entry.url).value_or(L""), OwnDay(entry.ends)};
}

ShareOutcome<LinkShare> ShareApi::Make(const DavClient& client, const ShareWish& wish) const {
    if (const auto refusal = Refusal(wish)) return *refusal;
    const auto path = PathOf(wish.file);
    if (!path) return ErrorOf(DavError{DavFault::NotFound, 0, {}, std::nullopt});
    const auto listed = List(client, *path);
    if (const auto* error = std::get_if<ShareError>(&listed)) return *error;
    const auto& before = std::get<Shares>(listed);
    const auto earlier = std::find_if(before.begin(), before.end(),
                                      [&](const ShareEntry& entry) { return IsFor(entry, wish); });
    const auto share = earlier == before.end() ? MakeOnce(client, *path, wish, before)
                                               : Renew(client, *earlier, wish);
    if (const auto* error = std::get_if<ShareError>(&share)) return *error;
    const auto result = Protected(client, std::get<ShareEntry>(share), wish);
    if (const auto* error = std::get_if<ShareError>(&result)) return *error;
    return Checked(client, std::get<ShareEntry>(result));
}

// A server that refuses a later day than its own may have ended the link earlier already.
ShareOutcome<ShareDate> ShareApi::SetExpiry(const DavClient& client, const std::string& id,
                                            const ShareDate& last) const {
    const std::string day = ExpiryField(last);
    ShareOutcome<ShareEntry> result = ErrorOf(ShareFault::Refused);
    if (!day.empty()) result = Change(client, id, "expireDate", ObLib::Secret(day.c_str()));
    const auto* error = std::get_if<ShareError>(&result);
    if (error && error->fault != ShareFault::Refused) return *error;
    auto there = result;
    if (error) there = EntryIn(Outcome(client.AskForAny(RequestTo("GET", UrlOf(base_, id)))));
    if (const auto* missing = std::get_if<ShareError>(&there)) return *missing;
    const auto ends = OwnDay(std::get<ShareEntry>(there).ends);
    if (ends && *ends <= DaysLater(last, 1)) return *ends;
    if (error) return *error;
    return ErrorOf(ShareFault::Damaged);
}

std::optional<ShareError> ShareApi::Remove(const DavClient& client, const std::string& id) const {
    const auto result = Outcome(client.AskForAny(RequestTo("DELETE", UrlOf(base_, id))));
    const auto* error = std::get_if<ShareError>(&result);
    if (!error || error->dav.fault == DavFault::NotFound) return std::nullopt;
    return *error;
}

} // namespace providers
