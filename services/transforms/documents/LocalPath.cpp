#include "services/transforms/documents/LocalPath.h"

#include <algorithm>

#include "ObLib/Src/AsciiLetters.h"

namespace transforms::documents {
namespace {

bool IsOfServerName(char c) {
    return ObLib::IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
}

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

bool IsFileAddress(std::string_view text) {
    constexpr std::string_view kScheme = "file:";
    return text.size() > kScheme.size() &&
           std::ranges::equal(text.substr(0, kScheme.size()), kScheme,
                              [](char c, char lower) { return ObLib::FoldAscii(c) == lower; });
}

bool HasDrive(std::string_view text) {
    return text.size() > 3 && ObLib::IsAsciiLetter(text[0]) && (text[1] == ':' || text[1] == '|') &&
           IsSeparator(text[2]);
}

// "\\server\share". A single letter or digit is a number format rather than a server.
bool IsOfServer(std::string_view text) {
    if (!text.starts_with("\\\\")) return false;
    const auto name = text.substr(2);
    const auto length = std::ranges::find_if_not(name, IsOfServerName) - name.begin();
    const auto end = static_cast<std::size_t>(length);
    return end > 1 && end + 1 < name.size() && name[end] == '\\';
}

std::string_view LastName(std::string_view text) {
    const auto separator = text.find_last_of("/\\:");
    const auto name = text.substr(separator + 1);
    return name.empty() ? std::string_view(".") : name;
}

} // namespace

bool IsLocalPath(std::string_view text) {
    const bool hasSlash = !text.empty() && text.front() == '/';
    return IsFileAddress(text) || HasDrive(text) || IsOfServer(text) ||
           (hasSlash && HasDrive(text.substr(1)));
}

std::optional<std::string_view> FileOfLocalPath(std::string_view text) {
    if (!IsLocalPath(text)) return {};
    return LastName(text);
}

std::optional<std::string_view> FileOfLocalAddress(std::string_view text) {
    if (!IsLocalPath(text) && !text.starts_with('/')) return {};
    return LastName(text);
}

} // namespace transforms::documents
