#include "services/archive/policy/EncryptionRules.h"

#include <bcrypt.h>

#include "contracts/ArchiveService.h"
#include "services/archive/ThisModule.h"
#include "services/archive/policy/MachinePolicy.h"
#include "services/archive/policy/PolicyValues.h"
#include "services/archive/texts/ProductTexts.h"
#include "services/archive/texts/ServiceTextIds.h"

namespace obarchive {
namespace {

constexpr wchar_t kNoEncryption[] = L"NoEncryption";
constexpr wchar_t kAllowedMethods[] = L"AllowedEncryptionMethods";
constexpr wchar_t kDefaultMethod[] = L"DefaultEncryptionMethod";
constexpr wchar_t kFipsMode[] = L"FipsMode";

constexpr std::uint32_t kEveryMethod =
    obcontract::kEncryptionMethodAes128 | obcontract::kEncryptionMethodAes256;

std::uint32_t AllowedIn(PolicyView view) {
    return PolicyNumberIn(view, kAllowedMethods).value_or(kEveryMethod);
}

std::uint32_t ChosenDefault() {
    const auto chosen = PolicyNumberIn(PolicyView::Bits64, kDefaultMethod);
    return chosen ? *chosen : PolicyNumberIn(PolicyView::Bits32, kDefaultMethod).value_or(0);
}

} // namespace

std::uint16_t AllowedMethods() {
    const std::uint32_t allowed = AllowedIn(PolicyView::Bits64) & AllowedIn(PolicyView::Bits32);
    return static_cast<std::uint16_t>(allowed & kEveryMethod);
}

// Without a choice of the administrator, the stronger one: it takes a few per cent more time.
std::uint16_t DefaultMethod() {
    const std::uint16_t allowed = AllowedMethods();
    const std::uint32_t chosen = ChosenDefault();
    for (const std::uint16_t method :
         {obcontract::kEncryptionMethodAes256, obcontract::kEncryptionMethodAes128}) {
        if (chosen == method && (allowed & method)) return method;
    }
    return allowed & obcontract::kEncryptionMethodAes256 ? obcontract::kEncryptionMethodAes256
                                                         : allowed;
}

FipsSetting ReadFipsSetting() {
    if (PolicyIsOn(kFipsMode)) return FipsSetting::AskedByPolicy;
    BOOLEAN system = FALSE;
    const bool asked = BCryptGetFipsAlgorithmMode(&system) == 0 && system;
    return asked ? FipsSetting::AskedBySystem : FipsSetting::NotAsked;
}

bool WarnIfEncryptionIsOff(HWND owner) {
    if (!PolicyIsOn(kNoEncryption) && AllowedMethods() != 0) return false;
    std::wstring text = ProductText(kEncryptionOffMessage);
    if (text.empty()) text = OwnText(OB_TEXT_ENCRYPTION_OFF);
    // With an owner that no longer exists, the box would not appear.
    const HWND parent = IsWindow(owner) ? owner : nullptr;
    MessageBoxW(parent, text.c_str(), kProductCaption, MB_OK | MB_ICONEXCLAMATION);
    return true;
}

} // namespace obarchive
