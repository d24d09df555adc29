// Values of the machine's policies, stored in any way, and the texts that are made from them.
#include <algorithm>
#include <string>

#include "fuzzing/shim/WindowsCalls.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "services/archive/password/PromptHint.h"
#include "services/archive/policy/MachinePolicy.h"
#include "services/archive/policy/PasswordPolicy.h"
#include "services/archive/policy/PolicyValues.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/texts/ProductTexts.h"

using namespace obarchive;

namespace {

constexpr const wchar_t* kValues[] = {L"PasswordMinimumLength",  L"PasswordNeedsLowerCase",
                                      L"PasswordNeedsUpperCase", L"PasswordNeedsDigit",
                                      L"PasswordNeedsSymbol",    L"Address"};

// A value of any type and any bytes: half a unit at its end, NULs inside, no NUL at its end.
RegistryValue AnyValue(FuzzInput& input) {
    constexpr DWORD kTypes[] = {REG_SZ, REG_SZ, REG_DWORD, 3, 7};
    RegistryValue value{input.Pick(kTypes), {}};
    if (value.type == REG_DWORD) {
        value.data = {input.Byte(), input.Byte(), input.Byte(), input.Byte()};
        return value;
    }
    for (const wchar_t unit : input.Name(24)) {
        value.data.push_back(static_cast<BYTE>(unit));
        value.data.push_back(static_cast<BYTE>(unit >> 8));
    }
    for (std::uint32_t more = input.Below(4); more != 0; --more) value.data.push_back(0);
    return value;
}

void FillPolicies(FuzzInput& input) {
    System().policies.clear();
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
        if (input.Flag()) continue;
        auto& values = System().policies[view];
        for (const wchar_t* name : kValues) {
            if (input.Flag()) values[name] = AnyValue(input);
        }
    }
}

void CheckNumber(PolicyView view, const wchar_t* name) {
    const std::wstring text = PolicyTextIn(view, name);
    Require(text.find(L'\0') == std::wstring::npos, "a text ends at its first NUL");
    const auto number = PolicyNumberIn(view, name);
    const bool digits =
        !text.empty() && text.find_first_not_of(L"0123456789") == std::wstring::npos;
    if (number && digits) {
        Require(text.find_last_not_of(L'0') == std::wstring::npos
                    ? *number == 0
                    : std::to_wstring(*number) == text.substr(text.find_first_not_of(L'0')),
                "a number is the one that is written");
    }
    Require(!number || digits || text.empty(), "what isn't written in digits is no number");
}

void CheckAddress() {
    const std::wstring address = PolicyAddress(L"Address");
    if (address.empty()) return;
    Require(address.size() > 8 && address.size() <= 2047,
            "an address has a length that can be opened");
    for (const wchar_t unit : address) {
        Require(unit > L' ' && unit < 0x7F && unit != L'"' && unit != L'<' && unit != L'>',
                "an address has plain characters only");
    }
    std::wstring scheme = address.substr(0, 8);
    for (wchar_t& unit : scheme) unit = unit >= L'A' && unit <= L'Z' ? unit + 0x20 : unit;
    Require(scheme == L"https://", "an address is a secure one");
}

void CheckPolicy(const std::wstring& password) {
    const PasswordPolicy policy = ReadPasswordPolicy();
    Require(policy.minimumLength >= 1 && policy.minimumLength <= kMostPasswordBytes,
            "the length has its limits");
    Require(policy.classes <= 15, "there are four classes");
    Require(policy.minimumLength >= static_cast<std::uint32_t>(__builtin_popcount(policy.classes)),
            "the length has room for one of each class");
    const bool meets = Meets(policy, password);
    Require(!meets || CharactersIn(password) >= policy.minimumLength,
            "a short password is refused");
    Require(!meets || (ClassesOf(password) & policy.classes) == policy.classes,
            "so is a plain one");
    Require(Meets(policy, password + std::wstring(128, L'x') + L"aA1!"),
            "a long mixed one is taken");
    PolicyMessage(policy);
    PolicyHint(policy);
}

// "%1" to "%9" and "%%", done by looking for the next one again and again.
std::wstring PlainlyFormatted(std::wstring pattern, const std::wstring& first,
                              const std::wstring& second) {
    std::wstring made;
    for (std::size_t sign = pattern.find(L'%'); sign != std::wstring::npos;
         sign = pattern.find(L'%')) {
        made += pattern.substr(0, sign);
        const std::wstring place = pattern.substr(sign, 2);
        pattern.erase(0, sign + (place == L"%1" || place == L"%2" || place == L"%%" ? 2 : 1));
        made += place == L"%1" ? first : place == L"%2" ? second : L"%";
    }
    return made + pattern;
}

void CheckFormatting(const std::wstring& pattern, const std::wstring& insert) {
    System().ownTexts[OB_TEXT_PHRASE] = pattern;
    Require(FormatMessageText(OB_TEXT_PHRASE, {insert, L"%1%%"}) ==
                PlainlyFormatted(pattern, insert, L"%1%%"),
            "places are filled once and inserts aren't looked into");
    Require(FormatMessageText(OB_TEXT_PHRASE + 5000, {insert}).empty(), "an absent text is empty");
    const std::wstring numbered = Formatted(pattern, 17);
    const bool plain = pattern.find_first_of(L"%&") == std::wstring::npos;
    Require(!plain || numbered == pattern, "a text without signs stays as it is");
    Require(Formatted(L"%d%%&&" + pattern, 17) == L"17%&" + numbered, "signs are single, in order");
}

void CheckHint(FuzzInput& input, const std::wstring& text) {
    for (UINT id = OB_TEXT_PASSWORDS_DIFFER; id < OB_TEXT_PASSWORDS_DIFFER + 60; ++id)
        System().ownTexts[id] = text;
    for (UINT classes = 0; classes < 16; ++classes)
        System().productTexts[kPolicyMessageBase + classes] = text;
    PromptState state;
    state.problem = input.Flag() ? OB_TEXT_PASSWORDS_DIFFER : 0;
    state.differ = input.Flag();
    state.capsLock = input.Flag();
    state.phraseBits = input.Byte();
    state.copied = input.Flag();
    state.meetsPolicy = input.Flag();
    state.policy = ReadPasswordPolicy();
    const bool calm = state.problem == 0 && !state.differ && !state.capsLock &&
                      state.phraseBits == 0 && !state.copied && state.meetsPolicy;
    Require(!calm || HintText(state).empty(), "where nothing is wrong there is no hint");
    HintText(state);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    System() = {};
    FillPolicies(input);
    for (const wchar_t* name : kValues) {
        CheckNumber(PolicyView::Bits64, name);
        CheckNumber(PolicyView::Bits32, name);
    }
    CheckAddress();
    const std::wstring insert = input.Name(20);
    CheckHint(input, insert);
    const std::wstring pattern = input.Rest();
    CheckPolicy(pattern);
    CheckFormatting(pattern, insert);
    return 0;
}
