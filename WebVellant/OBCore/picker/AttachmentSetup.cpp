#include "OBCore/picker/AttachmentSetup.h"

#include "OBCore/modules/ProviderLibrary.h"

using obcontract::kProviderManagerKey;

namespace obcore {
namespace {

// The manager reads and writes below the user's hive, which is passed as a number.
std::int64_t UserHive() noexcept { return reinterpret_cast<std::int64_t>(HKEY_CURRENT_USER); }

// Returns the language that the loaded options ask for.
LANGID LoadInto(OBAttachJob& job, bool uploadBlocked) {
    job.UploadBlocked = uploadBlocked;
    ProviderManager().Init(job.OwnedProviderManager, UserHive(), kProviderManagerKey);
    job.Load();
    return job.UILanguage;
}

} // namespace

AttachmentSetup::AttachmentSetup(HWND owner, bool uploadBlocked)
    : job_(OBOptions(), owner), language_(LoadInto(job_, uploadBlocked)) {}

} // namespace obcore
