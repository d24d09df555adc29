// The 28 exports. Each forwards to the component that implements it. They are declared from the
// contract's table, so that one with other arguments doesn't compile. No exception leaves an
// export.
#include <windows.h>

#include <optional>
#include <string>

#include "ObLib/Src/Win32/Guarded.h"
#include "contracts/ArchiveService.h"
#include "services/archive/ContextTable.h"
#include "services/archive/password/PasswordPrompt.h"
#include "services/archive/policy/EncryptionRules.h"
#include "services/archive/recovery/RecoveryComment.h"
#include "services/archive/recovery/RecoveryKey.h"
#include "services/archive/ui/HelpAndUpdate.h"
#include "services/archive/usage/UsageRecord.h"
#include "services/archive/zip/FileNameRules.h"
#include "services/archive/zip/ZipForUser.h"

namespace {

using obarchive::ZipJob;
using obarchive::ZipResult;
using ObLib::Guarded;

obarchive::ContextTable contexts;

std::wstring TextOf(const wchar_t* text) { return text ? text : L""; }

} // namespace

extern "C" {
using namespace obcontract; // the contract's tables name its types bare
#define OB_DECLARE_EXPORT(name, result, arguments) result name arguments;
OB_ARCHIVE_SERVICE_ENTRIES(OB_DECLARE_EXPORT)
#undef OB_DECLARE_EXPORT

ZipContext CreateZipContext() {
    return Guarded(ZipContext{0}, [] { return contexts.Create(); });
}

void DestroyZipContext(ZipContext context) { contexts.Destroy(context); }

// The method is chosen before the prompt and not in it.
std::uint32_t PasswordNewDlg_C(HWND owner, std::uint32_t*, char* password, std::uint32_t capacity) {
    const auto result = Guarded(obarchive::PromptResult::NotShown, [=] {
        return obarchive::AskNewPassword(owner, password, capacity);
    });
    return static_cast<std::uint32_t>(result);
}

void SetZipNameW(ZipContext context, const wchar_t* path) {
    contexts.ChangeOrDestroy(context, [path](ZipJob& job) { job.target = TextOf(path); });
}

void SetEncrypt(ZipContext context, std::uint32_t method) {
    contexts.ChangeOrDestroy(context, [method](ZipJob& job) { job.encryptionMethod = method; });
}

void SetTempFolderW(ZipContext context, const wchar_t* folder) {
    contexts.ChangeOrDestroy(context,
                             [folder](ZipJob& job) { job.temporaryFolder = TextOf(folder); });
}

void AddFileW(ZipContext context, const wchar_t* path) {
    contexts.ChangeOrDestroy(context, [path](ZipJob& job) { job.files.push_back(TextOf(path)); });
}

void SetPassword(ZipContext context, const char* password) {
    contexts.ChangeOrDestroy(
        context, [password](ZipJob& job) { job.password = obarchive::Secret(password); });
}

void SetCompression(ZipContext context, std::uint32_t method) {
    contexts.ChangeOrDestroy(context, [method](ZipJob& job) { job.compressionMethod = method; });
}

void SetDuplicateReferences(ZipContext context, std::uint8_t enabled) {
    contexts.ChangeOrDestroy(context,
                             [enabled](ZipJob& job) { job.duplicateReferences = enabled != 0; });
}

std::uint32_t Zip(HWND owner, ZipContext context) {
    const auto result = Guarded(ZipResult::Unexpected, [=] {
        std::optional<ZipJob> job = contexts.Copy(context);
        if (!job) return obarchive::RefuseForUser(owner, ZipResult::BadContext);
        // When recovery can't be carried out, the job still asks for it, and the run refuses.
        obarchive::AddRecovery(*job);
        return obarchive::ZipForUser(owner, *job);
    });
    return static_cast<std::uint32_t>(result);
}

void CheckForUpdates_VB(HWND owner, std::uint32_t) {
    ObLib::RanGuarded([owner] { obarchive::ShowInstalledVersion(owner); });
}

// There is one page for all topics.
void WebHelpW(HWND owner, const wchar_t*, const wchar_t*) {
    ObLib::RanGuarded([owner] { obarchive::ShowHelp(owner); });
}

std::uint32_t GetOmbrixFIPSSetting() {
    const auto setting =
        Guarded(obarchive::FipsSetting::NotAsked, [] { return obarchive::ReadFipsSetting(); });
    return static_cast<std::uint32_t>(setting);
}

// When the policy can't be read, a forbidden method is better than files without encryption.
std::uint16_t AllowedEncryptMethods() {
    constexpr std::uint16_t kEveryMethod = kEncryptionMethodAes128 | kEncryptionMethodAes256;
    return Guarded(kEveryMethod, [] { return obarchive::AllowedMethods(); });
}

std::uint16_t DefaultEncryptionMethod() {
    return Guarded(kEncryptionMethodAes256, [] { return obarchive::DefaultMethod(); });
}

// There is one message only, so the kind and the switch are ignored.
std::uint32_t TryToShowWarningOrErrorMessage(HWND owner, std::uint32_t, std::uint8_t) {
    const bool off = Guarded(false, [owner] { return obarchive::WarnIfEncryptionIsOff(owner); });
    return off ? kSwitchEncryptionOff : 0;
}

std::uint32_t GetPublicKeyResult(char* buffer, std::uint32_t capacity) {
    const auto result = Guarded(obarchive::RecoveryKeyResult::Unexpected,
                                [=] { return obarchive::ReadRecoveryKey(buffer, capacity); });
    return static_cast<std::uint32_t>(result);
}

// A result of 1 or a key means that the caller relies on recovery: Zip carries it out or refuses.
void SetPublicKeyResult(ZipContext context, std::uint32_t result) {
    contexts.ChangeOrDestroy(
        context, [result](ZipJob& job) { job.recoveryAsked = job.recoveryAsked || result == 1; });
}

void SetPublicKeyW(ZipContext context, const wchar_t* key) {
    contexts.ChangeOrDestroy(context, [key](ZipJob& job) {
        job.recoveryAsked = true;
        job.recoveryKey = TextOf(key);
    });
}

std::uint32_t ValidateFilespecW(const wchar_t* text, std::uint32_t mode) {
    return static_cast<std::uint32_t>(obarchive::CheckFilespec(text, mode));
}

void LogLaunch() { obarchive::RecordProcessUsage(L"launch"); }
void LogExit() { obarchive::RecordProcessUsage(L"exit"); }
void LogAppletFeature(const wchar_t* feature, const wchar_t* details) {
    obarchive::RecordUsage(feature, details);
}

// Callers bind these and never call them.
std::uint32_t PasswordDlg_C() { return 0; }
void SetImageResize() {}
void Encrypt_String_VB() {}
void Decrypt_String_VB() {}

} // extern "C"
