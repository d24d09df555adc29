// Addresses that users type and servers write: the first line is one, the rest refers to another
// from it.
#include <algorithm>
#include <string_view>

#include "fuzzing/support/Require.h"
#include "services/providers/http/HttpUrl.h"

using namespace providers;

namespace {

void CheckUrl(const HttpUrl& url) {
    Require(url.path.starts_with('/') && !url.origin.host.empty() && url.origin.port != 0,
            "an address is complete");
    const std::string text = url.path + url.query;
    Require(std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7F; }),
            "and is plain ASCII");
    for (const std::string_view dots : {"/./", "/../"}) {
        Require((url.path + "/").find(dots) == std::string::npos, "without dot segments");
    }
    Require(HttpUrlText(url).size() <= kLongestUrl, "and not too long");
    Require(ParseHttpUrl(HttpUrlText(url)) == url, "and stays as it is");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const std::size_t line = std::min(text.find('\n'), size);
    const std::string_view rest = text.substr(std::min(line + 1, size));
    if (const auto url = ParseHttpUrl(text.substr(0, line))) {
        CheckUrl(*url);
        if (const auto other = ResolveHttpUrl(*url, rest)) CheckUrl(*other);
        const HttpUrl below = UrlBelow(*url, rest);
        const std::string_view encoded =
            std::string_view(below.path).substr(below.path.rfind('/') + 1);
        const bool hasNull = rest.find('\0') != std::string_view::npos;
        Require(hasNull || DecodePercent(encoded) == rest, "a name is read back");
    }
    return 0;
}
