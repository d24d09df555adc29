// The 28 entries of the fake archive service. Every call is recorded; answers come from
// the script under the entry's name, or under the whole line for one call among many. Further keys:
//
//   Password        what PasswordNewDlg_C gives (otherwise "secret")
//   PasswordMethod  the method that PasswordNewDlg_C puts into its method value
//   PublicKey       what GetPublicKeyResult gives; its result is then 1 unless scripted
//   ZipSize         length of the file that a successful Zip leaves
//   ZipWrites       0: a successful Zip leaves no file
#include <windows.h>

#include "contracts/ArchiveService.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/archive/Answers.h"
#include "tests/fakes/archive/Contexts.h"

namespace {

using fakes::AnswerOf;
using fakes::Context;
using fakes::NarrowText;
using fakes::Number;
using fakes::Record;
using obtest::Quoted;
using obtest::WindowText;

const std::wstring kNext = L", ";

std::uint32_t Answer32(const std::wstring& line, const wchar_t* call, std::uint32_t otherwise) {
    return static_cast<std::uint32_t>(AnswerOf(line, call, otherwise));
}

} // namespace

// Declared from the contract's own table, so that an entry with other arguments doesn't compile.
extern "C" {
using namespace obcontract; // the contract's tables name its types bare
#define OB_DECLARE_EXPORT(name, result, arguments) result name arguments;
OB_ARCHIVE_SERVICE_ENTRIES(OB_DECLARE_EXPORT)
#undef OB_DECLARE_EXPORT

ZipContext CreateZipContext() {
    return AnswerOf(Record(L"CreateZipContext"), L"CreateZipContext", fakes::NewContext());
}

void DestroyZipContext(ZipContext context) {
    Record(L"DestroyZipContext", Context(context));
    fakes::EndContext(context);
}

std::uint32_t PasswordDlg_C() { return Answer32(Record(L"PasswordDlg_C"), L"PasswordDlg_C", 0); }

std::uint32_t PasswordNewDlg_C(HWND owner, std::uint32_t* method, char* password,
                               std::uint32_t capacity) {
    const std::wstring line =
        Record(L"PasswordNewDlg_C",
               WindowText(owner) + kNext + Number(*method) + kNext + Number(capacity));
    const std::uint32_t result = Answer32(line, L"PasswordNewDlg_C", 1);
    if (result != 1) return result;
    *method = static_cast<std::uint32_t>(obtest::ScriptedNumber(L"PasswordMethod", *method));
    fakes::GiveNarrowText(L"Password", L"secret", password, capacity);
    return result;
}

void SetZipNameW(ZipContext context, const wchar_t* path) {
    Record(L"SetZipNameW", Context(context) + kNext + Quoted(path));
    fakes::NameZip(context, path);
}

void SetEncrypt(ZipContext context, std::uint32_t method) {
    Record(L"SetEncrypt", Context(context) + kNext + Number(method));
}

void SetTempFolderW(ZipContext context, const wchar_t* folder) {
    Record(L"SetTempFolderW", Context(context) + kNext + Quoted(folder));
}

void SetImageResize() { Record(L"SetImageResize"); }

void AddFileW(ZipContext context, const wchar_t* path) {
    Record(L"AddFileW", Context(context) + kNext + Quoted(path));
}

void SetPassword(ZipContext context, const char* password) {
    Record(L"SetPassword", Context(context) + kNext + NarrowText(password));
}

void SetCompression(ZipContext context, std::uint32_t method) {
    Record(L"SetCompression", Context(context) + kNext + Number(method));
}

void SetDuplicateReferences(ZipContext context, std::uint8_t enabled) {
    Record(L"SetDuplicateReferences", Context(context) + kNext + Number(enabled));
}

std::uint32_t Zip(HWND owner, ZipContext context) {
    const std::wstring line = Record(L"Zip", WindowText(owner) + kNext + Context(context));
    const std::uint32_t result = Answer32(line, L"Zip", 0);
    if (result == 0 && obtest::ScriptedNumber(L"ZipWrites", 1) != 0) {
        fakes::WriteMarker(context, obtest::ScriptedNumber(L"ZipSize", 0));
    }
    return result;
}

void CheckForUpdates_VB(HWND owner, std::uint32_t one) {
    Record(L"CheckForUpdates_VB", WindowText(owner) + kNext + Number(one));
}

void WebHelpW(HWND owner, const wchar_t* topic, const wchar_t* sameTopic) {
    Record(L"WebHelpW", WindowText(owner) + kNext + Quoted(topic) + kNext + Quoted(sameTopic));
}

void Encrypt_String_VB() { Record(L"Encrypt_String_VB"); }

void Decrypt_String_VB() { Record(L"Decrypt_String_VB"); }

std::uint32_t GetOmbrixFIPSSetting() {
    return Answer32(Record(L"GetOmbrixFIPSSetting"), L"GetOmbrixFIPSSetting", 0);
}

std::uint16_t AllowedEncryptMethods() {
    constexpr std::uint32_t both = kEncryptionMethodAes128 | kEncryptionMethodAes256;
    return static_cast<std::uint16_t>(
        Answer32(Record(L"AllowedEncryptMethods"), L"AllowedEncryptMethods", both));
}

std::uint16_t DefaultEncryptionMethod() {
    return static_cast<std::uint16_t>(Answer32(
        Record(L"DefaultEncryptionMethod"), L"DefaultEncryptionMethod", kEncryptionMethodAes128));
}

std::uint32_t TryToShowWarningOrErrorMessage(HWND owner, std::uint32_t zero, std::uint8_t one) {
    const std::wstring line =
        Record(L"TryToShowWarningOrErrorMessage",
               WindowText(owner) + kNext + Number(zero) + kNext + Number(one));
    return Answer32(line, L"TryToShowWarningOrErrorMessage", 0);
}

std::uint32_t GetPublicKeyResult(char* buffer, std::uint32_t capacity) {
    const std::wstring line = Record(L"GetPublicKeyResult", Number(capacity));
    const bool given = fakes::GiveNarrowText(L"PublicKey", nullptr, buffer, capacity);
    return Answer32(line, L"GetPublicKeyResult", given ? 1 : 0);
}

void SetPublicKeyResult(ZipContext context, std::uint32_t result) {
    Record(L"SetPublicKeyResult", Context(context) + kNext + Number(result));
}

void SetPublicKeyW(ZipContext context, const wchar_t* key) {
    Record(L"SetPublicKeyW", Context(context) + kNext + Quoted(key));
}

std::uint32_t ValidateFilespecW(const wchar_t* text, std::uint32_t mode) {
    const std::wstring line = Record(L"ValidateFilespecW", Quoted(text) + kNext + Number(mode));
    return Answer32(line, L"ValidateFilespecW", 0);
}

void LogLaunch() { Record(L"LogLaunch"); }

void LogExit() { Record(L"LogExit"); }

void LogAppletFeature(const wchar_t* feature, const wchar_t* details) {
    Record(L"LogAppletFeature", Quoted(feature) + kNext + Quoted(details));
}

} // extern "C"
