#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/options/OBOptions.h"

using obcontract::kCompressionDeflate;
using obcontract::kCompressionZipx;
using obcontract::kExtensionRules;
using obcontract::kFileNameRules;

namespace obcore {
namespace {

bool IsRejected(const std::wstring& text, std::uint32_t rules) {
    return ArchiveService().ValidateFilespecW(text.c_str(), rules) != 0;
}

void RepairNames(OBOptions& options) {
    if (IsRejected(options.DefaultZipName, kFileNameRules)) {
        options.DefaultZipName = kDefaultZipName;
    }
    if (!options.UseAltExt) return;
    // The text itself stays, so that the settings can show it again.
    if (IsRejected(options.AltExt, kExtensionRules) || IsRejected(options.AltExt, kFileNameRules)) {
        options.UseAltExt = false;
    }
}

void RepairCompression(OBOptions& options) {
    if (options.CompressionMethod != kCompressionZipx) {
        options.CompressionMethod = kCompressionDeflate;
    }
}

void RepairUpdateCheck(OBOptions& options) {
    constexpr std::uint32_t kDaily = 1;
    constexpr std::uint32_t kWeekly = 7;
    if (options.UpdateCheckIntervalDays != kWeekly) options.UpdateCheckIntervalDays = kDaily;
    if (options.NoUpdateChecking) options.UpdateCheckEnabled = false;
}

void SwitchEncryptionOff(OBOptions& options) {
    options.AutoEncrypt = false;
    options.EncryptionMethod = 0;
}

void RepairEncryption(OBOptions& options) {
    if (options.AllowedEncryptMethods == 0) {
        SwitchEncryptionOff(options);
    } else if ((options.EncryptionMethod & options.AllowedEncryptMethods) == 0) {
        options.EncryptionMethod = ArchiveService().DefaultEncryptionMethod();
    }
    if (options.NoEncryption) SwitchEncryptionOff(options);
}

} // namespace

void OBOptions::Normalize() {
    RepairNames(*this);
    RepairCompression(*this);
    RepairUpdateCheck(*this);
    RepairEncryption(*this);
}

} // namespace obcore
