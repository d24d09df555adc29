// Makes the zips whose passwords check_recovery.py recovers: "in.txt" beside the program into
// "out\<name>" for each row, with the key that the service returns. The password comes from the
// environment, as text. Returns 0 when every zip exists and the run with a wrong key was refused.
#include <windows.h>

#include <cstdio>
#include <string>

#include "tests/contract/archive/LoadedService.h"
#include "tests/contract/archive/MakerPassword.h"
#include "tests/support/MessageBoxWatcher.h"

namespace {

struct Row {
    const wchar_t* name;
    std::uint32_t compression;
    std::uint32_t encryption;
    bool rightKey;
};

constexpr Row kRows[] = {
    {L"aes128.zip", 8, 4, true},
    {L"aes256.zip", 8, 8, true},
    {L"aes256.zipx", 0xFFFFFFFF, 8, true},
    {L"refused.zip", 8, 8, false},
};

std::uint32_t Make(const obtest::LoadedService& service, const Row& row, std::wstring key) {
    if (!row.rightKey) key.back() = key.back() == L'0' ? L'1' : L'0';
    const obcontract::ZipContext context = service->CreateZipContext();
    service->AddFileW(context, L"C:\\app\\in.txt");
    service->SetZipNameW(context, (std::wstring(L"C:\\app\\out\\") + row.name).c_str());
    service->SetTempFolderW(context, L"C:\\app\\out");
    service->SetPublicKeyResult(context, 1);
    service->SetPublicKeyW(context, key.c_str());
    service->SetEncrypt(context, row.encryption);
    service->SetPassword(context, MakerPassword().c_str());
    service->SetCompression(context, row.compression);
    const std::uint32_t result = service->Zip(nullptr, context);
    service->DestroyZipContext(context);
    return result;
}

} // namespace

int wmain() {
    const obtest::LoadedService service;
    if (!service.IsComplete()) return 100;
    char key[obcontract::kPublicKeyCapacity] = "";
    const std::uint32_t keyResult = service->GetPublicKeyResult(key, sizeof key);
    std::printf("key: result %u, %s\n", keyResult, key);
    if (keyResult != 1) return 101;
    const std::string narrow = key;
    CreateDirectoryW(L"C:\\app\\out", nullptr);
    const obtest::MessageBoxWatcher boxes; // a refusal is shown in one
    int failures = 0;
    for (const Row& row : kRows) {
        const std::uint32_t result = Make(service, row, std::wstring(narrow.begin(), narrow.end()));
        std::printf("%ls: result %u\n", row.name, result);
        failures += (result == 0) != row.rightKey;
    }
    return failures;
}
