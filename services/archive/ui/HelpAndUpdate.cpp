#include "services/archive/ui/HelpAndUpdate.h"

#include <shellapi.h>

#include <cstdio>
#include <vector>

#include "services/archive/ThisModule.h"
#include "services/archive/policy/MachinePolicy.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/texts/ProductTexts.h"
#include "services/archive/texts/ServiceTextIds.h"

namespace obarchive {
namespace {

constexpr wchar_t kHelpPage[] = L"help\\index.html";

bool OpenInShell(HWND owner, const std::wstring& page) {
    constexpr INT_PTR kLastError = 32; // documented: larger results are success
    const HINSTANCE result =
        ShellExecuteW(owner, L"open", page.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > kLastError;
}

bool IsFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// With an owner that no longer exists, a box would not appear.
HWND LivingOwner(HWND owner) { return IsWindow(owner) ? owner : nullptr; }

int Show(HWND owner, const std::wstring& text, UINT style) {
    return MessageBoxW(owner, text.c_str(), kProductCaption, style);
}

} // namespace

void ShowHelp(HWND owner) {
    const HWND parent = LivingOwner(owner);
    const std::wstring address = PolicyAddress(kHelpAddressPolicy);
    if (!address.empty() && OpenInShell(parent, address)) return;
    const std::wstring page = PathBesideModule(kHelpPage);
    if (IsFile(page) && OpenInShell(parent, page)) return;
    const std::wstring& place = address.empty() ? page : address;
    Show(parent, FormatMessageText(OB_TEXT_HELP_ELSEWHERE, {place}), MB_OK | MB_ICONEXCLAMATION);
}

void ShowInstalledVersion(HWND owner) {
    const HWND parent = LivingOwner(owner);
    const std::wstring version = ServiceVersion();
    const std::wstring address = PolicyAddress(kUpdateAddressPolicy);
    if (address.empty()) {
        Show(parent, FormatMessageText(OB_TEXT_VERSION, {version}), MB_OK);
        return;
    }
    const std::wstring question =
        FormatMessageText(OB_TEXT_VERSION_AND_ADDRESS, {version, address});
    if (Show(parent, question, MB_YESNO) != IDYES || OpenInShell(parent, address)) return;
    Show(parent, FormatMessageText(OB_TEXT_UPDATES_ELSEWHERE, {address}),
         MB_OK | MB_ICONEXCLAMATION);
}

std::wstring ServiceVersion() {
    const HRSRC found = FindResourceW(ThisModule(), MAKEINTRESOURCEW(VS_VERSION_INFO),
                                      reinterpret_cast<const wchar_t*>(RT_VERSION));
    const HGLOBAL loaded = found ? LoadResource(ThisModule(), found) : nullptr;
    const auto* const start = static_cast<const BYTE*>(loaded ? LockResource(loaded) : nullptr);
    if (!start) return {};
    // VerQueryValueW may change its input, so copy the read-only resource first.
    std::vector<BYTE> block(start, start + SizeofResource(ThisModule(), found));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &size)) return {};
    wchar_t text[64];
    _snwprintf(text, 64, L"%u.%u.%u.%u", HIWORD(fixed->dwFileVersionMS),
               LOWORD(fixed->dwFileVersionMS), HIWORD(fixed->dwFileVersionLS),
               LOWORD(fixed->dwFileVersionLS));
    return text;
}

} // namespace obarchive
