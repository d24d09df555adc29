#include "services/archive/MachinePolicy.h"

#include <windows.h>

#include <algorithm>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/Paths.h"

namespace obarchive {
namespace {

constexpr wchar_t kPolicyKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies";
constexpr DWORD kCapacity = 2048; // UTF-16 units with the NUL

std::wstring ReadView(const wchar_t* name, REGSAM view) {
    ObLib::UniqueRegistryKey key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPolicyKey, 0, KEY_QUERY_VALUE | view, key.Put()) !=
        ERROR_SUCCESS) {
        return {};
    }
    wchar_t text[kCapacity] = L"";
    DWORD bytes = sizeof text;
    // This call ends a text that was written without its NUL.
    if (RegGetValueW(key.Get(), nullptr, name, RRF_RT_REG_SZ, nullptr, text, &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    return text;
}

bool MayStandInAddress(wchar_t unit) {
    return unit > L' ' && unit < 0x7F && unit != L'"' && unit != L'<' && unit != L'>';
}

} // namespace

std::wstring PolicyText(const wchar_t* name) {
    std::wstring text = ReadView(name, KEY_WOW64_64KEY);
    return text.empty() ? ReadView(name, KEY_WOW64_32KEY) : text;
}

bool PolicyIsOn(const wchar_t* name) {
    return ReadView(name, KEY_WOW64_64KEY) == L"1" || ReadView(name, KEY_WOW64_32KEY) == L"1";
}

std::wstring PolicyAddress(const wchar_t* name) {
    constexpr std::wstring_view kSecure = L"https://";
    const std::wstring address = PolicyText(name);
    const bool secure =
        address.size() > kSecure.size() &&
        EqualIgnoringCase(std::wstring_view(address).substr(0, kSecure.size()), kSecure);
    const bool plain = std::all_of(address.begin(), address.end(), &MayStandInAddress);
    return secure && plain ? address : std::wstring();
}

} // namespace obarchive
