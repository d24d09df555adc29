#include "OBCore/compression/ZipEncryption.h"

#include "OBCore/modules/Messages.h"

using obcontract::kPasswordCapacity;

namespace obcore {
namespace {

constexpr std::uint32_t kNoEncryption = 0;
constexpr std::uint32_t kPublicKeyUsable = 1;
constexpr std::uint32_t kPasswordGiven = 1;

bool SetUpPublicKey(const OBAttachJob& job, UniqueZipContext& context) {
    ArchiveService().SetPublicKeyResult(context.Get(), job.PublicKeyResult);
    if (job.PublicKeyResult != kPublicKeyUsable) {
        // This way out ends nothing on purpose: the context lives on and the empty folder stays.
        static_cast<void>(context.Release());
        ShowStringWarning(job.ParentWindow, TextId::PublicKeyUnusable);
        return false;
    }
    ArchiveService().SetPublicKeyW(context.Get(), job.PublicKeyText.c_str());
    return true;
}

// The password exists in this buffer and in the context, nowhere else: no record, no registry, no
// trace line. Nobody clears the buffer: it leaves scope when this returns.
bool SetUpPassword(const OBAttachJob& job, UniqueZipContext& context, const std::wstring& folder) {
    std::uint32_t method = job.EncryptionMethod; // the dialog's own copy
    char password[kPasswordCapacity] = {};
    if (ArchiveService().PasswordNewDlg_C(job.ParentWindow, &method, password, kPasswordCapacity) !=
        kPasswordGiven) {
        RemoveDirectoryW(folder.c_str());
        context.Reset();
        return false;
    }
    ArchiveService().SetPassword(context.Get(), password);
    return true;
}

} // namespace

bool SetUpEncryption(OBAttachJob& job, UniqueZipContext& context, const std::wstring& folder) {
    if (!job.AutoEncrypt) {
        ArchiveService().SetEncrypt(context.Get(), kNoEncryption);
        return true;
    }
    if (job.HasEntCertificate && !SetUpPublicKey(job, context)) return false;
    ArchiveService().SetEncrypt(context.Get(), job.EncryptionMethod);
    if (job.EncryptionMethod != kNoEncryption) job.Usage.UsageEncrypted = true;
    return SetUpPassword(job, context, folder);
}

} // namespace obcore
