// Makes the zips that check_archives.py opens with other tools: every file below "in", in the order
// of their paths, into "out\<name>" for each row of the table. The password comes from the
// environment, in the code page UTF-8. Ends with 0 when every zip was made.
//
//     archive_make FOLDER ZIP ENCRYPTION
//
// makes one zip of that folder instead, deflated, and prints how long that took.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "tests/contract/archive/LoadedService.h"
#include "tests/contract/archive/MakerPassword.h"

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

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }

std::uint32_t Make(const obtest::LoadedService& service, const Row& row, const std::wstring& target,
                   const std::vector<std::wstring>& files, const std::string& password) {
    const obcontract::ZipContext context = service->CreateZipContext();
    // The many files of that folder say nothing more in a second form, and take other tools long.
    const bool plain = row.compression == 8 && row.encryption == 0;
    for (const std::wstring& file : files) {
        const bool ofMany = file.find(L"\\in\\m\\") != std::wstring::npos;
        if (plain || !ofMany) service->AddFileW(context, file.c_str());
    }
    service->SetZipNameW(context, target.c_str());
    service->SetTempFolderW(context, FolderOf(target).c_str());
    service->SetEncrypt(context, row.encryption);
    if (row.encryption) service->SetPassword(context, password.c_str());
    service->SetCompression(context, row.compression);
    const std::uint32_t result = service->Zip(nullptr, context);
    service->DestroyZipContext(context);
    return result;
}

int MakeTable(const obtest::LoadedService& service, const std::string& password) {
    std::vector<std::wstring> files;
    ListFiles(L"\\\\?\\C:\\app\\in", files);
    std::sort(files.begin(), files.end());
    CreateDirectoryW(L"C:\\app\\out", nullptr);
    int failures = 0;
    for (const Row& row : kRows) {
        const std::wstring target = std::wstring(L"C:\\app\\out\\") + row.name;
        const std::uint32_t result = Make(service, row, target, files, password);
        std::printf("%ls: %u files, result %u\n", row.name, static_cast<unsigned>(files.size()),
                    result);
        failures += result != 0;
    }
    return failures;
}

int MakeOne(const obtest::LoadedService& service, wchar_t** arguments,
            const std::string& password) {
    std::vector<std::wstring> files;
    ListFiles(arguments[0], files);
    std::sort(files.begin(), files.end());
    const auto encryption = static_cast<std::uint32_t>(std::wcstoul(arguments[2], nullptr, 10));
    const ULONGLONG start = GetTickCount64();
    const std::uint32_t result = Make(service, {L"", 8, encryption}, arguments[1], files, password);
    std::printf("%u files, result %u, %u ms\n", static_cast<unsigned>(files.size()), result,
                static_cast<unsigned>(GetTickCount64() - start));
    return result != 0;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const obtest::LoadedService service;
    if (!service.IsComplete()) return 2;
    const std::string password = MakerPassword();
    return count == 4 ? MakeOne(service, arguments + 1, password) : MakeTable(service, password);
}
