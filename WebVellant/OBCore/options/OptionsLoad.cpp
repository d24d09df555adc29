// Loading: what machine and user have decided, in the order in which it has to be asked.
#include <windows.h>

#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/options/NameAppendTexts.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/options/SeparatedList.h"
#include "OBCore/options/SettingsStore.h"
#include "OBCore/options/TransformOptions.h"

using obcontract::kEncryptionMethodAes128;
using obcontract::kPublicKeyCapacity;

namespace obcore {
namespace {

// Machine policies that a 32-bit installer may have written into its own half.
constexpr RegistryView kBothViews[] = {RegistryView::Bits32, RegistryView::Bits64};

bool IsPolicyOnInEitherView(const wchar_t* name) {
    bool on = false;
    for (const RegistryView view : kBothViews) {
        const auto key = OpenMachineKey(kPolicyKey, view);
        if (key && IsPolicySwitchOn(ReadValue(key.Get(), name))) on = true;
    }
    return on;
}

void LoadEncryptionPolicy(OBOptions& options) {
    ObTrace("load options: SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies");
    if (IsPolicyOnInEitherView(L"AlwaysEncrypt")) options.AlwaysEncrypt = true;
}

void LoadSendItemPolicy(OBOptions& options) {
    const auto key = OpenMachineKey(kPolicyKey);
    if (!key) return;
    const std::uint32_t policy = NumberOf(ReadValue(key.Get(), L"AdminSendItem"));
    options.AdminSendItem = static_cast<AdminSendItemKind>(policy);
}

void LoadSendItem(HKEY userKey, OBOptions& options) {
    if (!ReadSwitch(userKey, L"SendItem", options.SendItem)) {
        if (options.AdminSendItem == AdminSendItemKind::DefaultOn) options.SendItem = true;
        if (options.AdminSendItem == AdminSendItemKind::DefaultOff) options.SendItem = false;
    }
    const bool forcedOn = options.AdminSendItem == AdminSendItemKind::ForcedOn;
    if (!forcedOn && options.AdminSendItem != AdminSendItemKind::ForcedOff) return;
    options.SendItem = forcedOn;
    options.SendItemLocked = true;
}

void LoadAutoEncrypt(HKEY userKey, OBOptions& options) {
    ReadSwitch(userKey, L"AutoEncrypt", options.AutoEncrypt);
    if (options.AlwaysEncrypt) options.AutoEncrypt = true;
}

void LoadNameAppend(HKEY userKey, OBOptions& options) {
    const std::wstring text = ReadValue(userKey, L"NameAppend");
    for (std::size_t kind = 0; kind < kNameAppendTexts.size(); ++kind) {
        if (text == kNameAppendTexts[kind]) options.NameAppend = static_cast<NameAppendKind>(kind);
    }
}

void LoadUserSettings(OBOptions& options) {
    const auto key = OpenUserKey(kUserKey);
    if (!key) return;
    ObTrace("load options: SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix");
    LoadSendItem(key.Get(), options);
    LoadAutoEncrypt(key.Get(), options);
    LoadTransformOptions(key.Get(), options);
    ReadSwitch(key.Get(), L"UseAltExt", options.UseAltExt);
    ReadSwitch(key.Get(), L"SingleAttachFileName", options.SingleAttachFileName);
    // A user who never chose gets the conversion, unlike a record that was never loaded.
    options.SingleAttachConversion = true;
    ReadSwitch(key.Get(), L"SingleAttachConversion", options.SingleAttachConversion);
    options.EncryptionMethod = kEncryptionMethodAes128;
    ReadNumber(key.Get(), L"EncryptionMethod", options.EncryptionMethod);
    // An absent method is 0 here; normalising makes it the standard one.
    options.CompressionMethod = NumberOf(ReadValue(key.Get(), L"CompressionMethod"));
    ReadSwitch(key.Get(), L"DuplicateReferences", options.DuplicateReferences);
    LoadNameAppend(key.Get(), options);
    options.DefaultZipName = ReadValue(key.Get(), L"DefaultZipName");
    options.AltExt = ReadValue(key.Get(), L"AltExt");
    options.ExcludedExt = ReadValue(key.Get(), L"ExcludedExt");
}

bool AreAllCloudServicesListed(const std::wstring& text) { return HasItem(text, L',', L"ALL"); }

// Once the machine has policies at all, update checks are off unless the value switches them on.
bool IsUpdateCheckingOff(const std::wstring& text) { return text.empty() || text == L"1"; }

struct PolicySwitch {
    const wchar_t* value;
    bool OBOptions::*field;
    bool (*isOn)(const std::wstring& text);
};

constexpr PolicySwitch kPolicySwitches[] = {
    {L"DisableMsgEditZipOption", &OBOptions::DisableMsgEditZipOption, IsPolicySwitchOn},
    {L"DisableCloudServices", &OBOptions::DisableCloudServices, AreAllCloudServicesListed},
    {L"NoEncryption", &OBOptions::NoEncryption, IsPolicySwitchOn},
    {L"NoUpdateChecking", &OBOptions::NoUpdateChecking, IsUpdateCheckingOff},
    {L"DisableWebVellant", &OBOptions::DisableWebVellant, IsPolicySwitchOn},
};

void LoadPolicySwitches(OBOptions& options) {
    const auto key = OpenMachineKey(kPolicyKey);
    if (!key) return;
    ObTrace("load options: SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies");
    for (const PolicySwitch& policy : kPolicySwitches) {
        options.*policy.field = policy.isOn(ReadValue(key.Get(), policy.value));
    }
}

void LoadCloudSettings(OBOptions& options) {
    const auto key = OpenUserKey(kQuilletKey);
    if (!key) return;
    ObTrace("load options: Software\\Tavi Ren Computing\\Common\\Quillet");
    auto setting = static_cast<std::uint32_t>(options.SendSetting);
    ReadNumber(key.Get(), L"SendSetting", setting);
    options.SendSetting = static_cast<SendSettingKind>(setting);
    ReadNumber(key.Get(), L"MinimumSize", options.MinimumSize);
    ReadNumber(key.Get(), L"ServiceId", options.ServiceId);
    options.MinimumSizeBytes = options.MinimumSize << 20; // wraps in 32 bits
}

std::wstring Widened(const char* text) {
    const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (units <= 1) return {};
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), units);
    wide.pop_back();
    return wide;
}

void LoadPublicKey(OBOptions& options) {
    char key[kPublicKeyCapacity] = {};
    options.PublicKeyResult = ArchiveService().GetPublicKeyResult(key, kPublicKeyCapacity);
    key[kPublicKeyCapacity - 1] = '\0';
    options.PublicKeyText = options.PublicKeyResult == 1 ? Widened(key) : std::wstring();
}

// The last view that opens has the last word, also against a certificate in the one before.
void LoadCertificate(OBOptions& options) {
    for (const RegistryView view : kBothViews) {
        const auto key = OpenMachineKey(kPolicyKey, view);
        if (key) options.HasEntCertificate = !ReadValue(key.Get(), L"EntX509Certificate").empty();
    }
    if (options.HasEntCertificate) LoadPublicKey(options);
}

void LoadFileExpiry(OBOptions& options) {
    options.ExpireFilesAvailable = !IsPolicyOnInEitherView(L"DISABLEFILEEXPIRATION");
    if (!options.ExpireFilesAvailable) return;
    const auto key = OpenUserKey(kUserKey);
    if (!key) return;
    ReadSwitch(key.Get(), L"ExpireFiles", options.ExpireFiles);
    ReadNumber(key.Get(), L"S4DelExpireDays", options.S4DelExpireDays);
}

} // namespace

void OBOptions::Load() {
    LoadEncryptionPolicy(*this);
    LoadSendItemPolicy(*this);
    LoadUserSettings(*this);
    LoadPolicySwitches(*this);
    LoadCloudSettings(*this);
    LoadCertificate(*this);
    LoadFileExpiry(*this);
    AllowedEncryptMethods = ArchiveService().AllowedEncryptMethods();
    LoadLanguage();
    Normalize();
}

} // namespace obcore
