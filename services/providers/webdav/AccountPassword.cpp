#include "services/providers/webdav/AccountPassword.h"

#include <windows.h>
#include <wincred.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

// The key of an account is made at random: the name reveals neither server nor user.
std::wstring TargetName(const std::wstring& accountKey) { return L"WebVellant/" + accountKey; }

struct CredentialPolicy : ObLib::NullPolicy<CREDENTIALW*> {
    static void Close(CREDENTIALW* credential) noexcept {
        SecureZeroMemory(credential->CredentialBlob, credential->CredentialBlobSize);
        CredFree(credential);
    }
};
using UniqueCredential = ObLib::UniqueResource<CredentialPolicy>;

} // namespace

bool SaveAccountPassword(const std::wstring& accountKey, const ObLib::Secret& password) {
    const auto bytes = password.Bytes();
    if (accountKey.empty() || bytes.empty() || bytes.size() > kLongestAccountPassword) return false;
    std::wstring target = TargetName(accountKey);
    CREDENTIALW credential{};
    credential.Type = CRED_TYPE_GENERIC;
    credential.TargetName = target.data();
    credential.CredentialBlobSize = static_cast<DWORD>(bytes.size());
    credential.CredentialBlob = const_cast<BYTE*>(bytes.data());
    credential.Persist = CRED_PERSIST_LOCAL_MACHINE; // of this user, on this machine
    return CredWriteW(&credential, 0) != FALSE;
}

std::optional<ObLib::Secret> LoadAccountPassword(const std::wstring& accountKey) {
    UniqueCredential credential;
    if (accountKey.empty() ||
        !CredReadW(TargetName(accountKey).c_str(), CRED_TYPE_GENERIC, 0, credential.Put())) {
        return std::nullopt;
    }
    const DWORD size = credential.Get()->CredentialBlobSize;
    if (size == 0 || size > kLongestAccountPassword) return std::nullopt;
    ObLib::WipedBuffer<char, kLongestAccountPassword + 1> text;
    std::memcpy(text.data, credential.Get()->CredentialBlob, size);
    return ObLib::Secret(text.data);
}

bool ForgetAccountPassword(const std::wstring& accountKey) {
    if (accountKey.empty()) return true;
    return CredDeleteW(TargetName(accountKey).c_str(), CRED_TYPE_GENERIC, 0) ||
           GetLastError() == ERROR_NOT_FOUND;
}

} // namespace providers
