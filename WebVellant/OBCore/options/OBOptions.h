// Everything that the user and the administrator have decided about attachments.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "contracts/ArchiveService.h"
#include "contracts/ProviderManager.h"

namespace obcore {

inline constexpr wchar_t kDefaultZipName[] = L"Ombrix Compressed Attachments";

// What is appended to the name of a zip.
enum class NameAppendKind : std::uint32_t { None, DateYy, DateYyyy, Time, DateTime };

// When the result goes to a cloud service.
enum class SendSettingKind : std::uint32_t { Never, Always, WhenLarger };

// Policy for SendItem.
enum class AdminSendItemKind : std::uint32_t { None, DefaultOn, DefaultOff, ForcedOn, ForcedOff };

// A plain value: each entry point that needs options builds one from its defaults, loads it, uses
// it and drops it. Belongs to the thread that made it. Construction does no input or output.
//
// A field named after a transform may be on only if the provider manager supports that transform.
struct OBOptions {
    bool SendItem = true;
    bool AutoConvertPDF = false;
    bool AutoCombinePDFs = false;
    bool AutoWatermark = false;
    bool AlwaysEncrypt = false; // machine policy only
    bool AutoEncrypt = false;
    bool SendItemLocked = false; // AdminSendItem fixed SendItem
    std::uint32_t EncryptionMethod =
        obcontract::kEncryptionMethodAes128; // a bit of AllowedEncryptMethods
    bool AutoResizeImages = false;
    bool AutoConvertPhotos = false;
    bool AutoRemoveInfo = false;
    bool AutoSignPDFs = false;
    bool AutoConvertFromPDF = false;
    std::wstring DefaultZipName = kDefaultZipName; // base name of a zip of several files
    bool UseAltExt = false;
    std::wstring AltExt;      // without a leading point
    std::wstring ExcludedExt; // semicolon-separated; loaded and saved, read by nobody
    std::uint32_t CompressionMethod = obcontract::kCompressionDeflate;
    bool DuplicateReferences = false;
    NameAppendKind NameAppend = NameAppendKind::None;
    bool SingleAttachFileName = true;
    bool SingleAttachConversion = false; // the loader's default is on
    bool UpdateCheckEnabled = true;
    std::uint32_t UpdateCheckIntervalDays = 1; // 1 or 7
    std::wstring LastUpdateCheck;              // "%d/%d/%d": month, day, year; nobody writes it
    bool DisableMsgEditZipOption = false;
    bool DisableCloudServices = false;
    bool NoEncryption = false;
    bool NoUpdateChecking = false;
    bool DisableWebVellant = false;
    std::uint16_t AllowedEncryptMethods = 0; // 0: no encryption is possible
    AdminSendItemKind AdminSendItem = AdminSendItemKind::None;
    bool HasEntCertificate = false;
    std::uint32_t PublicKeyResult = 0; // 1 is success
    std::wstring PublicKeyText;        // empty unless PublicKeyResult is 1
    SendSettingKind SendSetting = SendSettingKind::WhenLarger;
    std::uint32_t MinimumSize = 5;             // megabytes
    std::uint32_t MinimumSizeBytes = 0x500000; // MinimumSize << 20, computed, never stored
    std::uint32_t ServiceId = 2;               // carried and saved, not interpreted
    bool ExpireFilesAvailable = false;
    bool ExpireFiles = false;
    std::uint32_t S4DelExpireDays = 30;
    LANGID UILanguage = 0;                                       // 0: none is set
    obcontract::ProviderManagerHandle ProviderManager = nullptr; // not owned; set before Load

    // Whether a run makes a zip of the files, encrypted or not.
    bool MakesZip() const noexcept { return SendItem || AutoEncrypt; }

    // Fills the record from the registry of machine and user and repairs it. LoadArchiveService()
    // must have succeeded. Transforms count only when ProviderManager is set and initialised.
    // Reports nothing: a key that doesn't open skips its group. Creates the user's keys.
    void Load();

    // Sets UILanguage alone; needs nothing else and may run on a worker thread.
    void LoadLanguage();

    // Repairs values that aren't valid. Runs at the end of Load and before three of the saves.
    void Normalize();

    // Each writes one group of the user's values; a key that doesn't open skips it silently.
    void SaveAttachmentSettings();
    void SaveAutoTransforms();
    void SaveCloudSettings();
    void SaveEncryptionMethod();

    // Whether cloud choices are to be hidden. Enumerates the storage providers once per process:
    // the first call that had to enumerate sets a flag for the whole process, and later records
    // then return false unless policy disables the services.
    bool CloudServicesUnavailable();
};

} // namespace obcore
