#include "services/providers/folder/FolderPath.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

#include "ObLib/Src/AsciiLetters.h"

namespace providers {
namespace {

using std::wstring_view;

constexpr std::size_t kLongestName = 255;

bool IsDrive(wstring_view path) {
    return path.size() >= 3 && ObLib::IsAsciiLetter(path[0]) && path[1] == L':' && path[2] == L'\\';
}

// A server and a share, and neither the device "." nor the prefix "?".
bool IsShare(wstring_view path) {
    if (!path.starts_with(L"\\\\")) return false;
    const std::size_t server = path.find(L'\\', 2);
    if (server == wstring_view::npos || server == 2 || server + 1 >= path.size()) return false;
    return path[server + 1] != L'\\' && path.substr(2, server - 2) != L"." &&
           path.substr(2, server - 2) != L"?";
}

bool IsOfPath(wchar_t character) {
    return character >= L' ' && wstring_view(L"<>:\"|?*").find(character) == wstring_view::npos;
}

std::wstring Trimmed(wstring_view text) {
    const wstring_view around = L" \t\"";
    const std::size_t first = text.find_first_not_of(around);
    if (first == wstring_view::npos) return {};
    return std::wstring(text.substr(first, text.find_last_not_of(around) - first + 1));
}

// The system's own form, with neither relative parts nor doubled backslashes.
std::wstring Normalised(const std::wstring& path) {
    std::wstring full(kLongestFolder + 1, L'\0');
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length < full.size() ? length : 0);
    while (full.size() > 3 && full.ends_with(L'\\')) full.pop_back();
    return full;
}

bool HasWholeCharacters(wstring_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (IS_LOW_SURROGATE(text[at])) return false;
        if (!IS_HIGH_SURROGATE(text[at])) continue;
        if (++at == text.size() || !IS_LOW_SURROGATE(text[at])) return false;
    }
    return true;
}

// Devices have their names in every folder, with any extension.
bool IsDevice(const std::wstring& name) {
    wstring_view base = wstring_view(name).substr(0, name.find(L'.'));
    while (base.ends_with(L' ')) base.remove_suffix(1);
    std::wstring upper(base);
    std::ranges::transform(upper, upper.begin(), [](wchar_t character) {
        return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - 32)
                                                      : character;
    });
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
        if (upper == device) return true;
    }
    const bool isNumbered =
        upper.size() == 4 && (upper.starts_with(L"COM") || upper.starts_with(L"LPT"));
    return isNumbered &&
           wstring_view(L"123456789\u00B9\u00B2\u00B3").find(upper[3]) != wstring_view::npos;
}

} // namespace

std::wstring FullFolderPath(const std::wstring& typed) {
    std::wstring path = Trimmed(typed);
    std::ranges::replace(path, L'/', L'\\');
    if (path.size() == 2 && path[1] == L':') path += L'\\';
    const bool isDrive = IsDrive(path);
    if ((!isDrive && !IsShare(path)) || path.size() > kLongestFolder) return {};
    if (!std::ranges::all_of(wstring_view(path).substr(isDrive ? 2 : 0), &IsOfPath)) return {};
    const std::wstring full = Normalised(path);
    return IsDrive(full) || IsShare(full) ? full : std::wstring();
}

std::wstring FolderLabel(const std::wstring& folder) {
    wstring_view path = folder;
    while (path.ends_with(L'\\')) path.remove_suffix(1);
    return std::wstring(path.substr(path.find_last_of(L'\\') + 1));
}

bool IsOnDrive(const std::wstring& folder) { return !folder.starts_with(L"\\\\"); }

std::wstring BelowFolder(const std::wstring& folder, const std::wstring& below) {
    return folder + (folder.ends_with(L'\\') ? L"" : L"\\") + below;
}

bool IsFileName(const std::wstring& name) {
    if (name.empty() || name.size() > kLongestName) return false;
    if (name.ends_with(L'.') || name.ends_with(L' ')) return false;
    if (name.find_first_of(L"\\/") != std::wstring::npos) return false;
    return std::ranges::all_of(name, &IsOfPath) && HasWholeCharacters(name) && !IsDevice(name);
}

} // namespace providers
