// Makes PDFs of the pictures of a folder, for checks by other people's tools:
//   topdf_tool picture|a4|letter SOURCE TARGET
// Prints a line a file, its name and its outcome. A picture's PDF has the picture's name and ".pdf"
// after it; the same without personal data has ".clean.pdf".
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/transforms/documents/AnyFile.h"
#include "services/transforms/photos/HeifLibrary.h"
#include "services/transforms/topdf/PicturePdf.h"

namespace {

using namespace transforms;

PictureBytes ReadFileBytes(const std::wstring& path) {
    const ObLib::UniqueKernelHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                     nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size{};
    GetFileSizeEx(file.Get(), &size);
    PictureBytes bytes(static_cast<std::size_t>(size.QuadPart));
    DWORD count = 0;
    ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    return bytes;
}

void WriteFileBytes(const std::wstring& path, const void* bytes, std::size_t size) {
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD count = 0;
    WriteFile(file.Get(), bytes, static_cast<DWORD>(size), &count, nullptr);
}

void MakeOne(const std::wstring& name, const std::wstring& from, const std::wstring& to,
             const PicturePdfRequest& request) {
    const PictureBytes picture = ReadFileBytes(from + L"\\" + name);
    MemorySource source(picture);
    MemoryTarget target;
    const PictureOutcome outcome = MakePicturePdf(source, target, request, {});
    printf("%ls\t%d\n", name.c_str(), static_cast<int>(outcome));
    if (outcome != PictureOutcome::Written) return;
    WriteFileBytes(to + L"\\" + name + L".pdf", target.bytes.data(), target.bytes.size());
    const CleanedFile clean = CleanFile(std::as_bytes(std::span(target.bytes)));
    if (clean.outcome == CleanOutcome::Cleaned)
        WriteFileBytes(to + L"\\" + name + L".clean.pdf", clean.bytes.data(), clean.bytes.size());
}

PdfPageSize SizeOf(const std::wstring& word) {
    return word == L"a4"       ? PdfPageSize::A4
           : word == L"letter" ? PdfPageSize::Letter
                               : PdfPageSize::AsPicture;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count != 4) return 2;
    const PicturePdfRequest request{SizeOf(words[1]),
                                    *ObLib::PathBesideModule(nullptr, kHeifLibraryFileName)};
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((std::wstring(words[2]) + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return 2;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            MakeOne(found.cFileName, words[2], words[3], request);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return 0;
}
