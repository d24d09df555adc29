// Saving: the only places from which the user's choices reach the registry.
#include <windows.h>

#include "OBCore/options/NameAppendTexts.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/options/SeparatedList.h"
#include "OBCore/options/SettingsStore.h"
#include "OBCore/options/TransformOptions.h"

using obcontract::kCompressionZipx;

namespace obcore {
namespace {

// The list only grows: an extension that the user gave up stays in it.
void ExcludeAltExt(OBOptions& options) {
    if (!options.UseAltExt || options.AltExt.empty()) return;
    if (HasItem(options.ExcludedExt, L';', options.AltExt)) return;
    options.ExcludedExt += L";" + options.AltExt;
}

void WriteNameAppend(HKEY key, NameAppendKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    if (index < kNameAppendTexts.size()) WriteValue(key, L"NameAppend", kNameAppendTexts[index]);
}

void WriteAttachmentSettings(HKEY key, OBOptions& options) {
    WriteSwitch(key, L"SendItem", options.SendItem);
    WriteSwitch(key, L"AutoEncrypt", options.AutoEncrypt);
    WriteSwitch(key, L"UseAltExt", options.UseAltExt);
    WriteSwitch(key, L"SingleAttachFileName", options.SingleAttachFileName);
    WriteSwitch(key, L"SingleAttachConversion", options.SingleAttachConversion);
    WriteNumber(key, L"CompressionMethod", options.CompressionMethod);
    WriteSwitch(key, L"DuplicateReferences", options.DuplicateReferences);
    WriteValue(key, L"DefaultZipName", options.DefaultZipName);
    WriteValue(key, L"AltExt", options.AltExt);
    ExcludeAltExt(options);
    WriteValue(key, L"ExcludedExt", options.ExcludedExt);
    WriteNameAppend(key, options.NameAppend);
}

std::wstring ZipExtension(const OBOptions& options) {
    if (options.UseAltExt) return options.AltExt;
    return options.CompressionMethod == kCompressionZipx ? L"zipx" : L"zip";
}

} // namespace

void OBOptions::SaveAttachmentSettings() {
    Normalize();
    if (const auto key = OpenUserKey(kUserKey)) WriteAttachmentSettings(key.Get(), *this);
    if (const auto key = OpenUserKey(kDefaultExtKey)) {
        WriteValue(key.Get(), L"ZipFiles", ZipExtension(*this));
    }
}

void OBOptions::SaveAutoTransforms() {
    Normalize();
    if (const auto key = OpenUserKey(kUserKey)) SaveTransformOptions(key.Get(), *this);
}

void OBOptions::SaveCloudSettings() {
    if (ExpireFilesAvailable) {
        if (const auto key = OpenUserKey(kUserKey)) {
            WriteSwitch(key.Get(), L"ExpireFiles", ExpireFiles);
            WriteNumber(key.Get(), L"S4DelExpireDays", S4DelExpireDays);
        }
    }
    if (const auto key = OpenUserKey(kQuilletKey)) {
        WriteNumber(key.Get(), L"SendSetting", static_cast<std::uint32_t>(SendSetting));
        WriteNumber(key.Get(), L"MinimumSize", MinimumSize);
        WriteNumber(key.Get(), L"ServiceId", ServiceId);
    }
}

void OBOptions::SaveEncryptionMethod() {
    Normalize();
    if (const auto key = OpenUserKey(kUserKey)) {
        WriteNumber(key.Get(), L"EncryptionMethod", EncryptionMethod);
    }
}

} // namespace obcore
