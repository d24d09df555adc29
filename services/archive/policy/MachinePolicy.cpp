#include "services/archive/policy/MachinePolicy.h"

#include <algorithm>

#include "services/archive/Paths.h"
#include "services/archive/policy/PolicyValues.h"

namespace obarchive {
namespace {

constexpr std::size_t kLongestAddress = 2047; // what browsers take

bool IsAllowedInAddress(wchar_t unit) {
    return unit > L' ' && unit < 0x7F && unit != L'"' && unit != L'<' && unit != L'>';
}

} // namespace

std::wstring PolicyText(const wchar_t* name) {
    std::wstring text = PolicyTextIn(PolicyView::Bits64, name);
    return text.empty() ? PolicyTextIn(PolicyView::Bits32, name) : text;
}

bool PolicyIsOn(const wchar_t* name) {
    return PolicyTextIn(PolicyView::Bits64, name) == L"1" ||
           PolicyTextIn(PolicyView::Bits32, name) == L"1";
}

std::wstring PolicyAddress(const wchar_t* name) {
    constexpr std::wstring_view kSecure = L"https://";
    const std::wstring address = PolicyText(name);
    if (address.size() > kLongestAddress) return {};
    const bool secure =
        address.size() > kSecure.size() &&
        EqualIgnoringCase(std::wstring_view(address).substr(0, kSecure.size()), kSecure);
    const bool plain = std::all_of(address.begin(), address.end(), &IsAllowedInAddress);
    return secure && plain ? address : std::wstring();
}

} // namespace obarchive
