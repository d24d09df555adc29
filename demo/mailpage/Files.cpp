#include "demo/mailpage/Files.h"

#include <shlwapi.h>

#include <cstdio>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/Utf8.h"

namespace mailpage {
namespace {

std::wstring OneLine(const std::wstring& text) {
    std::wstring line;
    for (const wchar_t unit : text) {
        if (unit == L'\n') line += L"\\n";
        if (unit != L'\n' && unit != L'\r') line += unit;
    }
    return line;
}

std::wstring Report(const AttachAnswer& answer) {
    std::wstring text = L"answer=" + answer.answer + L"\n";
    for (const auto& path : answer.paths) text += L"path=" + path + L"\n";
    for (const auto& link : answer.links) text += L"link=" + OneLine(link) + L"\n";
    for (const auto& note : answer.cleanup) {
        text += L"cleanup-folder=" + note.folder + L"\n";
        if (!note.file.empty()) text += L"cleanup-file=" + note.file + L"\n";
    }
    if (answer.browserDialog) text += L"browser-dialog=yes\n";
    return text;
}

bool WriteBytes(const std::wstring& path, const std::string& bytes) {
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                     nullptr) &&
           written == bytes.size();
}

std::wstring LongPath(const std::wstring& path) {
    wchar_t full[MAX_PATH];
    const DWORD length = GetLongPathNameW(path.c_str(), full, MAX_PATH);
    return length == 0 || length >= MAX_PATH ? path : std::wstring(full, length);
}

bool IsBelowTemporaryFolder(const std::wstring& path) {
    wchar_t folder[MAX_PATH];
    const DWORD length = GetTempPathW(MAX_PATH, folder); // ends in a backslash
    if (length == 0 || length >= MAX_PATH || path.find(L"..") != std::wstring::npos) return false;
    const std::wstring root = LongPath(folder);
    const std::wstring inside = LongPath(path);
    return inside.size() > root.size() &&
           CompareStringOrdinal(inside.c_str(), static_cast<int>(root.size()), root.c_str(),
                                static_cast<int>(root.size()), TRUE) == CSTR_EQUAL;
}

void RemoveFile(const std::wstring& path) {
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path.c_str());
}

void RemoveTree(std::wstring folder);

// A folder that is a link to another place is removed as a link.
void EmptyFolder(const std::wstring& folder) {
    WIN32_FIND_DATAW entry;
    const ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &entry));
    for (BOOL more = static_cast<bool>(search); more; more = FindNextFileW(search.Get(), &entry)) {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            RemoveFile(path);
        } else if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
            RemoveDirectoryW(path.c_str());
        } else {
            RemoveTree(path);
        }
    }
}

void RemoveTree(std::wstring folder) {
    while (!folder.empty() && folder.back() == L'\\') folder.pop_back();
    EmptyFolder(folder); // its search is closed by now
    RemoveDirectoryW(folder.c_str());
}

} // namespace

bool WriteAnswer(const std::wstring& file, const AttachAnswer& answer) {
    const std::wstring temporary = file + L".part";
    return WriteBytes(temporary, ObLib::ToUtf8(Report(answer))) &&
           MoveFileExW(temporary.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING);
}

bool CopyToOutbox(const std::wstring& outbox, const std::vector<std::wstring>& attachments) {
    CreateDirectoryW(outbox.c_str(), nullptr);
    bool all = true;
    for (const std::wstring& path : attachments) {
        const std::wstring target = outbox + L"\\" + FileName(path);
        all = CopyFileW(path.c_str(), target.c_str(), FALSE) && all;
    }
    return all;
}

void RemoveTemporary(const CleanupNote& note) {
    if (!note.file.empty() && IsBelowTemporaryFolder(note.file)) RemoveFile(note.file);
    if (!note.folder.empty() && IsBelowTemporaryFolder(note.folder)) RemoveTree(note.folder);
}

std::wstring FileName(const std::wstring& path) { return PathFindFileNameW(path.c_str()); }

std::wstring FileSizeText(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return {};
    const auto size = static_cast<LONGLONG>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    wchar_t text[64] = {};
    StrFormatByteSizeW(size, text, 64);
    return text;
}

} // namespace mailpage
