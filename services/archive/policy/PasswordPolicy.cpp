#include "services/archive/policy/PasswordPolicy.h"

#include <windows.h>

#include <algorithm>
#include <bit>

#include "ObLib/Src/AsciiLetters.h"
#include "services/archive/ThisModule.h"
#include "services/archive/policy/MachinePolicy.h"
#include "services/archive/policy/PolicyValues.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/texts/ProductTexts.h"
#include "services/archive/texts/ServiceTextIds.h"

namespace obarchive {
namespace {

constexpr wchar_t kMinimumLength[] = L"PasswordMinimumLength";

struct ClassRow {
    std::uint32_t bit;
    const wchar_t* policy;
    UINT name; // in the hint
};
constexpr ClassRow kClasses[] = {
    {kLowerCase, L"PasswordNeedsLowerCase", OB_TEXT_A_LOWER_CASE},
    {kUpperCase, L"PasswordNeedsUpperCase", OB_TEXT_AN_UPPER_CASE},
    {kDigit, L"PasswordNeedsDigit", OB_TEXT_A_DIGIT},
    {kSymbol, L"PasswordNeedsSymbol", OB_TEXT_A_SYMBOL},
};

std::uint32_t MinimumIn(PolicyView view) {
    return std::min(PolicyNumberIn(view, kMinimumLength).value_or(0), kMostPasswordBytes);
}

std::uint32_t ClassOf(wchar_t unit) {
    if (ObLib::IsAsciiLower(unit)) return kLowerCase;
    if (ObLib::IsAsciiUpper(unit)) return kUpperCase;
    if (unit >= L'0' && unit <= L'9') return kDigit;
    return unit > L' ' && unit < 0x7F ? kSymbol : 0;
}

} // namespace

PasswordPolicy ReadPasswordPolicy() {
    PasswordPolicy policy;
    for (const ClassRow& row : kClasses) {
        if (PolicyIsOn(row.policy)) policy.classes |= row.bit;
    }
    const auto oneEach = static_cast<std::uint32_t>(std::popcount(policy.classes));
    policy.minimumLength =
        std::max({1U, oneEach, MinimumIn(PolicyView::Bits64), MinimumIn(PolicyView::Bits32)});
    return policy;
}

std::uint32_t ClassesOf(std::wstring_view text) {
    std::uint32_t classes = 0;
    for (const wchar_t unit : text) classes |= ClassOf(unit);
    return classes;
}

std::uint32_t CharactersIn(std::wstring_view text) {
    const auto isSecondHalf = [](wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; };
    return static_cast<std::uint32_t>(
        std::count_if(text.begin(), text.end(), [&](wchar_t unit) { return !isSecondHalf(unit); }));
}

bool Meets(const PasswordPolicy& policy, std::wstring_view password) {
    const std::uint32_t missing = policy.classes & ~ClassesOf(password);
    return missing == 0 && CharactersIn(password) >= policy.minimumLength;
}

std::wstring Formatted(std::wstring_view text, std::uint32_t number) {
    std::wstring formatted;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::wstring_view pair = text.substr(at, 2);
        if (pair == L"%d") formatted += std::to_wstring(number);
        if (pair == L"%%" || pair == L"&&") formatted += text[at];
        if (pair == L"%d" || pair == L"%%" || pair == L"&&") {
            ++at;
        } else {
            formatted += text[at];
        }
    }
    return formatted;
}

std::wstring PolicyMessage(const PasswordPolicy& policy) {
    const std::wstring text = ProductText(kPolicyMessageBase + policy.classes);
    return text.empty() ? PolicyHint(policy) : Formatted(text, policy.minimumLength);
}

std::wstring PolicyHint(const PasswordPolicy& policy) {
    std::wstring list;
    for (const ClassRow& row : kClasses) {
        if (!(policy.classes & row.bit)) continue;
        if (!list.empty()) list += OwnText(OB_TEXT_LIST_COMMA);
        list += OwnText(row.name);
    }
    const UINT text = list.empty() ? OB_TEXT_POLICY_LENGTH : OB_TEXT_POLICY_CLASSES;
    return FormatMessageText(text, {std::to_wstring(policy.minimumLength), list});
}

} // namespace obarchive
