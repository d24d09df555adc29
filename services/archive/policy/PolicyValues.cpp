#include "services/archive/policy/PolicyValues.h"

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/Policies.h"

namespace obarchive {
namespace {

constexpr std::size_t kMostDigits = 9; // of a number that fits into 32 bits whatever its digits

ObLib::UniqueRegistryKey OpenKey(PolicyView view) {
    return ObLib::OpenRegistryKey(HKEY_LOCAL_MACHINE, obcontract::kPolicyKey, KEY_QUERY_VALUE,
                                  view);
}

std::optional<DWORD> DwordOf(const ObLib::UniqueRegistryKey& key, const wchar_t* name) {
    DWORD number = 0;
    DWORD bytes = sizeof number;
    const LSTATUS status =
        RegGetValueW(key.Get(), nullptr, name, RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    return status == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
}

std::wstring TextOf(const ObLib::UniqueRegistryKey& key, const wchar_t* name) {
    // RegGetValueW checks the type, and adds a NUL where the stored text has none.
    const auto read = [&](void* text, DWORD* bytes) {
        return RegGetValueW(key.Get(), nullptr, name, RRF_RT_REG_SZ, nullptr, text, bytes) ==
               ERROR_SUCCESS;
    };
    DWORD bytes = 0;
    if (!read(nullptr, &bytes)) return {};
    std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (!read(text.data(), &bytes)) return {};
    text.resize(wcsnlen(text.data(), text.size()));
    return text;
}

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

} // namespace

bool HasPolicies(PolicyView view) { return static_cast<bool>(OpenKey(view)); }

std::wstring PolicyTextIn(PolicyView view, const wchar_t* name) {
    const ObLib::UniqueRegistryKey key = OpenKey(view);
    if (!key) return {};
    if (const auto number = DwordOf(key, name)) return std::to_wstring(*number);
    return TextOf(key, name);
}

std::optional<std::uint32_t> PolicyNumberIn(PolicyView view, const wchar_t* name) {
    const std::wstring text = PolicyTextIn(view, name);
    if (text.empty() || text.size() > kMostDigits) return std::nullopt;
    std::uint32_t number = 0;
    for (const wchar_t unit : text) {
        if (!IsDigit(unit)) return std::nullopt;
        number = number * 10 + static_cast<std::uint32_t>(unit - L'0');
    }
    return number;
}

} // namespace obarchive
