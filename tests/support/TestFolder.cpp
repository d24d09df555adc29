#include "tests/support/TestFolder.h"

#include <algorithm>
#include <atomic>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {
namespace {

std::atomic<unsigned> folderNumber = 0;

bool IsDots(const wchar_t* name) {
    return std::wstring_view(name) == L"." || std::wstring_view(name) == L"..";
}

template <class Visit>
void ForEachEntry(const std::wstring& folder, Visit visit) {
    WIN32_FIND_DATAW data;
    const ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &data));
    if (!search) return;
    do {
        if (!IsDots(data.cFileName)) visit(data);
    } while (FindNextFileW(search.Get(), &data));
}

bool IsFolder(const WIN32_FIND_DATAW& data) {
    return (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void ListInto(const std::wstring& folder, const std::wstring& prefix,
              std::vector<std::wstring>& list) {
    ForEachEntry(folder, [&](const WIN32_FIND_DATAW& data) {
        const std::wstring name = prefix + data.cFileName;
        if (IsFolder(data)) {
            list.push_back(name + L"\\");
            ListInto(folder + L"\\" + data.cFileName, name + L"\\", list);
        } else {
            list.push_back(name);
        }
    });
}

} // namespace

TestFolder::TestFolder() {
    wchar_t temporary[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, temporary);
    path_ = std::wstring(temporary) + L"obtest-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(++folderNumber);
    CreateDirectoryW(path_.c_str(), nullptr);
}

TestFolder::~TestFolder() { RemoveTree(path_); }

std::wstring TestFolder::File(const std::wstring& name, std::string_view content) const {
    const std::wstring path = *this / name;
    WriteFileContent(path, content);
    return path;
}

std::wstring TestFolder::Folder(const std::wstring& name) const {
    const std::wstring path = *this / name;
    CreateDirectoryW(path.c_str(), nullptr);
    return path;
}

bool WriteFileContent(const std::wstring& path, std::string_view content) {
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    return file && WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()),
                             &written, nullptr);
}

std::optional<std::string> ReadFileContent(const std::wstring& path) {
    const ObLib::UniqueKernelHandle file(CreateFileW(
        path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, 0, nullptr));
    if (!file) return std::nullopt;
    std::string content;
    char chunk[4096];
    DWORD count = 0;
    while (::ReadFile(file.Get(), chunk, sizeof(chunk), &count, nullptr) && count > 0) {
        content.append(chunk, count);
    }
    return content;
}

bool FileExists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::vector<std::wstring> ListTree(const std::wstring& folder) {
    std::vector<std::wstring> list;
    ListInto(folder, L"", list);
    std::sort(list.begin(), list.end());
    return list;
}

void RemoveTree(const std::wstring& folder) {
    ForEachEntry(folder, [&](const WIN32_FIND_DATAW& data) {
        const std::wstring path = folder + L"\\" + data.cFileName;
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (IsFolder(data)) {
            RemoveTree(path);
        } else {
            DeleteFileW(path.c_str());
        }
    });
    RemoveDirectoryW(folder.c_str());
}

} // namespace obtest
