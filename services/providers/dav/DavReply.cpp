#include "services/providers/dav/DavReply.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "services/providers/dav/DavXml.h"

namespace providers {
namespace {

constexpr std::string_view kDav = "DAV:";
constexpr std::size_t kLongestValue = 16384; // bytes

// A number that the server has written; negative ones mean unknown or unlimited.
std::optional<std::uint64_t> Number(std::string_view text) {
    while (text.starts_with(' ') || text.starts_with('\n')) text.remove_prefix(1);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number > INT64_MAX) return std::nullopt;
    return number;
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

// A version gets into headers of later requests. One that no header may have counts as unknown.
std::string VersionOf(std::string text) {
    const bool isPlain =
        std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7F; });
    return isPlain ? std::move(text) : std::string();
}

// "HTTP/1.1 200 OK".
bool IsSuccess(std::string_view status) {
    const std::size_t blank = status.find(' ');
    return blank != std::string_view::npos && status.substr(blank + 1).starts_with('2');
}

// Fills entries while the elements of a reply pass by.
class MultistatusReader {
public:
    explicit MultistatusReader(std::string_view body) : xml_(body) {}

    std::optional<std::vector<DavEntry>> Read() {
        for (;;) {
            switch (xml_.Next()) {
            case DavXmlEvent::Start:
                if (!Started()) return std::nullopt;
                break;
            case DavXmlEvent::Text:
                if (value_.size() + xml_.Text().size() > kLongestValue) return std::nullopt;
                value_ += xml_.Text();
                break;
            case DavXmlEvent::End:
                Ended();
                if (entries_.size() > kMostDavEntries) return std::nullopt;
                break;
            case DavXmlEvent::Finished:
                return std::move(entries_);
            case DavXmlEvent::Bad:
                return std::nullopt;
            }
        }
    }

private:
    bool Started() {
        value_.clear();
        const std::size_t depth = xml_.Depth();
        if (depth == 1) return xml_.Is(kDav, "multistatus");
        if (depth == 2) {
            entry_ = {};
            hasFailed_ = false;
            isResponse_ = xml_.Is(kDav, "response");
        }
        if (depth == 3) {
            isPropertyList_ = xml_.Is(kDav, "propstat");
            found_ = {};
            hasFailedList_ = false;
        }
        if (depth == 6 && isPropertyList_ && isType_ && xml_.Is(kDav, "collection"))
            found_.isFolder = true;
        if (depth == 5) isType_ = xml_.Is(kDav, "resourcetype");
        return true;
    }

    void Ended() {
        const std::size_t depth = xml_.Depth();
        if (xml_.Namespace() != kDav) return value_.clear();
        if (depth == 2 && isResponse_ && !hasFailed_ && !entry_.href.empty())
            entries_.push_back(std::move(entry_));
        if (depth == 3) EndedPart();
        if (depth == 4 && xml_.Name() == "status") hasFailedList_ = !IsSuccess(Trimmed(value_));
        if (depth == 5) EndedProperty();
        value_.clear();
    }

    void EndedPart() {
        if (xml_.Name() == "href" && entry_.href.empty()) entry_.href = Trimmed(value_);
        if (xml_.Name() == "status") hasFailed_ = !IsSuccess(Trimmed(value_));
        if (!isPropertyList_ || hasFailedList_) return;
        entry_.isFolder |= found_.isFolder;
        if (found_.size) entry_.size = found_.size;
        if (found_.freeBytes) entry_.freeBytes = found_.freeBytes;
        if (found_.usedBytes) entry_.usedBytes = found_.usedBytes;
        if (!found_.etag.empty()) entry_.etag = std::move(found_.etag);
    }

    void EndedProperty() {
        const std::string_view name = xml_.Name();
        if (name == "getcontentlength") found_.size = Number(value_);
        if (name == "getetag") found_.etag = VersionOf(Trimmed(value_));
        if (name == "quota-available-bytes") found_.freeBytes = Number(value_);
        if (name == "quota-used-bytes") found_.usedBytes = Number(value_);
    }

    DavXml xml_;
    std::vector<DavEntry> entries_;
    DavEntry entry_; // of the response that is being read
    DavEntry found_; // by one list of properties, whose status comes last
    std::string value_;
    bool isResponse_ = false;
    bool isPropertyList_ = false;
    bool isType_ = false;
    bool hasFailed_ = false;
    bool hasFailedList_ = false;
};

} // namespace

std::optional<std::vector<DavEntry>> ReadMultistatus(std::string_view body) {
    if (body.size() > kLongestDavReply) return std::nullopt;
    return MultistatusReader(body).Read();
}

std::optional<std::string> TextOfElement(std::string_view body, std::string_view name) {
    DavXml xml(body);
    std::optional<std::string> found;
    bool isInside = false;
    for (;;) {
        const DavXmlEvent event = xml.Next();
        if (event == DavXmlEvent::Bad) return std::nullopt;
        if (event == DavXmlEvent::Finished) return found;
        if (event == DavXmlEvent::Text && isInside) *found += xml.Text();
        if (event == DavXmlEvent::Start || event == DavXmlEvent::End) {
            isInside = event == DavXmlEvent::Start && xml.Is("", name);
            if (isInside && !found) found.emplace();
        }
    }
}

} // namespace providers
