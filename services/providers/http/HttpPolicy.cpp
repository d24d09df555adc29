#include "services/providers/http/HttpPolicy.h"

#include <algorithm>
#include <optional>
#include <string>

#include "ObLib/Src/AsciiLetters.h"
#include "ObLib/Src/Win32/RegistryText.h"
#include "ObLib/Src/Win32/RegistryView.h"
#include "contracts/Policies.h"
#include "services/providers/http/Utf8.h"

namespace providers {
namespace {

constexpr std::size_t kLongestPolicy = 8191; // characters

// Nothing when there is no such value. One that is no text, or too long, is an empty text: what it
// was meant to allow isn't known.
std::optional<std::string> TextIn(ObLib::RegistryView view, const wchar_t* name) {
    const auto key =
        ObLib::OpenRegistryKey(HKEY_LOCAL_MACHINE, obcontract::kPolicyKey, KEY_QUERY_VALUE, view);
    if (!key) return std::nullopt;
    std::wstring text;
    const LSTATUS status = ObLib::ReadRegistryText(key.Get(), name, kLongestPolicy,
                                                   ObLib::RegistryVariables::Expand, text);
    if (status == ERROR_FILE_NOT_FOUND) return std::nullopt;
    return ToUtf8(text);
}

std::string_view Trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

std::string LowerAscii(std::string_view text) {
    std::string low(text);
    std::transform(low.begin(), low.end(), low.begin(), ObLib::FoldAscii<char>);
    return low;
}

bool Fits(std::string_view host, std::string_view item) {
    if (!item.starts_with("*.")) return host == item;
    item.remove_prefix(1);
    return host.size() > item.size() && host.ends_with(item);
}

} // namespace

bool IsCloudPolicyOn(const wchar_t* name) {
    return TextIn(ObLib::RegistryView::Bits64, name) == "1" ||
           TextIn(ObLib::RegistryView::Bits32, name) == "1";
}

bool IsHostListed(std::string_view host, std::string_view list) {
    const std::string items = LowerAscii(list);
    for (std::size_t at = 0; at <= items.size();) {
        const std::size_t end = std::min(items.find(',', at), items.size());
        if (Fits(host, Trimmed(std::string_view(items).substr(at, end - at)))) return true;
        at = end + 1;
    }
    return false;
}

ServerRule RuleFor(const HttpOrigin& origin) {
    if (!origin.isSecure && !IsLoopback(origin) && !IsCloudPolicyOn(L"AllowPlainHttp")) {
        return ServerRule::NeedsHttps;
    }
    auto list = TextIn(ObLib::RegistryView::Bits64, L"AllowedCloudServers");
    if (!list) list = TextIn(ObLib::RegistryView::Bits32, L"AllowedCloudServers");
    return !list || IsHostListed(origin.host, *list) ? ServerRule::Allowed : ServerRule::NotListed;
}

} // namespace providers
