// Makes the zips that check_archives.py opens with other tools: every file below "in", in the order
// of their paths, into "out\<name>" for each row of the table. The password comes from the
// environment, in the code page UTF-8. Ends with 0 when every zip stands.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/contract/archive/LoadedService.h"

namespace {

struct Row {
    const wchar_t* name;
    std::uint32_t compression;
    std::uint32_t encryption;
};

constexpr Row kRows[] = {
    {L"plain.zip", 8, 0},  {L"plain.zipx", 0xFFFFFFFF, 0},  {L"aes128.zip", 8, 4},
    {L"aes256.zip", 8, 8}, {L"aes256.zipx", 0xFFFFFFFF, 8},
};

// With the prefix for long paths, as the tree is deep.
void ListFiles(const std::wstring& folder, std::vector<std::wstring>& files) {
    WIN32_FIND_DATAW found;
    const ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!search) return;
    do {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            ListFiles(path, files);
        } else {
            files.push_back(path);
        }
    } while (FindNextFileW(search.Get(), &found));
}

std::string Password() {
    wchar_t wide[260] = L"";
    GetEnvironmentVariableW(L"OB_PASSWORD", wide, 260);
    char utf8[780] = "";
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, sizeof utf8, nullptr, nullptr);
    return utf8;
}

std::uint32_t Make(const obtest::LoadedService& service, const Row& row,
                   const std::vector<std::wstring>& files, const std::string& password) {
    const obcore::ZipContext context = service->CreateZipContext();
    // The many files of that folder say nothing more in a second form, and take other tools long.
    const bool plain = row.compression == 8 && row.encryption == 0;
    for (const std::wstring& file : files) {
        const bool ofMany = file.find(L"\\in\\m\\") != std::wstring::npos;
        if (plain || !ofMany) service->AddFileW(context, file.c_str());
    }
    service->SetZipNameW(context, (std::wstring(L"C:\\app\\out\\") + row.name).c_str());
    service->SetTempFolderW(context, L"C:\\app\\out");
    service->SetEncrypt(context, row.encryption);
    if (row.encryption) service->SetPassword(context, password.c_str());
    service->SetCompression(context, row.compression);
    const std::uint32_t result = service->Zip(nullptr, context);
    service->DestroyZipContext(context);
    return result;
}

} // namespace

int wmain() {
    const obtest::LoadedService service;
    if (!service.IsComplete()) return 2;
    std::vector<std::wstring> files;
    ListFiles(L"\\\\?\\C:\\app\\in", files);
    std::sort(files.begin(), files.end());
    CreateDirectoryW(L"C:\\app\\out", nullptr);
    const std::string password = Password();
    int failures = 0;
    for (const Row& row : kRows) {
        const std::uint32_t result = Make(service, row, files, password);
        std::printf("%ls: %u files, result %u\n", row.name, static_cast<unsigned>(files.size()),
                    result);
        failures += result != 0;
    }
    return failures;
}
