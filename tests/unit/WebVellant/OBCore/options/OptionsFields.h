// All fields of the record in their order, for comparing and for filling.
#pragma once

#include <tuple>

#include "OBCore/options/OBOptions.h"

template <class Options>
auto FieldsOf(Options& o) {
    return std::tie(o.SendItem, o.AutoConvertPDF, o.AutoCombinePDFs, o.AutoWatermark,
                    o.AlwaysEncrypt, o.AutoEncrypt, o.SendItemLocked, o.EncryptionMethod,
                    o.AutoResizeImages, o.AutoConvertPhotos, o.AutoRemoveInfo, o.AutoSignPDFs,
                    o.AutoConvertFromPDF, o.DefaultZipName, o.UseAltExt, o.AltExt, o.ExcludedExt,
                    o.CompressionMethod, o.DuplicateReferences, o.NameAppend,
                    o.SingleAttachFileName, o.SingleAttachConversion, o.UpdateCheckEnabled,
                    o.UpdateCheckIntervalDays, o.LastUpdateCheck, o.DisableMsgEditZipOption,
                    o.DisableCloudServices, o.NoEncryption, o.NoUpdateChecking, o.DisableWebVellant,
                    o.AllowedEncryptMethods, o.AdminSendItem, o.HasEntCertificate,
                    o.PublicKeyResult, o.PublicKeyText, o.SendSetting, o.MinimumSize,
                    o.MinimumSizeBytes, o.ServiceId, o.ExpireFilesAvailable, o.ExpireFiles,
                    o.S4DelExpireDays, o.UILanguage, o.ProviderManager);
}

// A record in which no field has its default value.
inline obcore::OBOptions OptionsFarFromDefaults() {
    struct {
        std::uint32_t number = 1000;
        void operator()(bool& field) const { field = !field; }
        void operator()(std::wstring& field) { field = L"text " + std::to_wstring(number++); }
        void operator()(std::uint32_t& field) { field = number++; }
        void operator()(std::uint16_t& field) { field = static_cast<std::uint16_t>(number++); }
        void operator()(obcore::NameAppendKind& field) const {
            field = obcore::NameAppendKind::Time;
        }
        void operator()(obcore::SendSettingKind& field) const {
            field = obcore::SendSettingKind::Never;
        }
        void operator()(obcore::AdminSendItemKind& field) const {
            field = obcore::AdminSendItemKind::ForcedOff;
        }
        void operator()(obcontract::ProviderManagerHandle& field) const {
            field = reinterpret_cast<obcontract::ProviderManagerHandle>(std::uintptr_t{0x1230});
        }
    } change;
    obcore::OBOptions options;
    std::apply([&](auto&... fields) { (change(fields), ...); }, FieldsOf(options));
    return options;
}
