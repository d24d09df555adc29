// Shrinks the pictures of a folder, for checks by other people's tools and for measurements:
//   picture_tool edge|percent|bytes VALUE QUALITY SOURCE TARGET
//   picture_tool fit LIMIT OTHER-BYTES SOURCE TARGET
// Prints a line a file, its name and its outcome, then the seconds that the work took and the most
// memory that the process had. Files that stay unchanged get no target.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/transforms/pictures/MailFit.h"
#include "services/transforms/pictures/Resize.h"

namespace {

using namespace transforms;

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(offset);
    at.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return at;
}

bool ReadFrom(HANDLE file, std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    OVERLAPPED at = At(offset);
    DWORD count = 0;
    const bool good = ReadFile(file, to.data(), static_cast<DWORD>(to.size()), &count, &at);
    read = count;
    return good || GetLastError() == ERROR_HANDLE_EOF;
}

class FileSource final : public PictureSource {
public:
    explicit FileSource(const std::wstring& path)
        : file_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                            nullptr)) {
        LARGE_INTEGER size{};
        GetFileSizeEx(file_.Get(), &size);
        size_ = static_cast<std::uint64_t>(size.QuadPart);
    }
    std::uint64_t Size() const noexcept override { return size_; }
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override {
        return ReadFrom(file_.Get(), offset, to, read);
    }

private:
    ObLib::UniqueKernelHandle file_;
    std::uint64_t size_;
};

// The file is made with the first byte.
class FileTarget final : public PictureTarget {
public:
    explicit FileTarget(std::wstring path) : path_(std::move(path)) {}
    bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) override {
        if (!file_.Get())
            file_.Reset(CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    CREATE_ALWAYS, 0, nullptr));
        OVERLAPPED at = At(offset);
        DWORD count = 0;
        return WriteFile(file_.Get(), from.data(), static_cast<DWORD>(from.size()), &count, &at) &&
               count == from.size();
    }
    bool ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override {
        return ReadFrom(file_.Get(), offset, to, read);
    }

private:
    std::wstring path_;
    ObLib::UniqueKernelHandle file_;
};

std::vector<std::wstring> NamesIn(const std::wstring& folder) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.push_back(found.cFileName);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

void Report(const std::wstring& name, PictureOutcome outcome) {
    printf("%ls\t%d\n", name.c_str(), static_cast<int>(outcome));
}

int ResizeAll(const ResizeRequest& request, const std::wstring& from, const std::wstring& to) {
    for (const auto& name : NamesIn(from)) {
        FileSource source(from + L"\\" + name);
        FileTarget target(to + L"\\" + name);
        Report(name, ResizePicture(source, target, request, {}));
    }
    return 0;
}

int FitAll(std::uint64_t limit, std::uint64_t others, const std::wstring& from,
           const std::wstring& to) {
    const auto names = NamesIn(from);
    std::vector<std::unique_ptr<FileSource>> files;
    std::vector<FitSource> sources;
    for (const auto& name : names)
        sources.push_back(
            {files.emplace_back(std::make_unique<FileSource>(from + L"\\" + name)).get()});
    MailFit fit(sources, limit, others, {});
    const auto outcome = fit.Search();
    Report(L"fit", outcome);
    printf("total\t%llu\nroom\t%llu\n", static_cast<unsigned long long>(fit.TotalBytes()),
           static_cast<unsigned long long>(RoomForFiles(limit)));
    for (std::size_t i = 0; outcome == PictureOutcome::Written && i < names.size(); ++i) {
        FileTarget target(to + L"\\" + names[i]);
        Report(names[i], fit.Write(i, target));
    }
    return 0;
}

ResizeAim AimOf(const std::wstring& word) {
    return word == L"percent" ? ResizeAim::Percent
           : word == L"bytes" ? ResizeAim::Bytes
                              : ResizeAim::LongestEdge;
}

int Run(int count, wchar_t** words) {
    if (count == 6 && std::wstring(words[1]) == L"fit")
        return FitAll(_wcstoui64(words[2], nullptr, 10), _wcstoui64(words[3], nullptr, 10),
                      words[4], words[5]);
    if (count != 6) return 2;
    const ResizeRequest request{AimOf(words[1]), _wcstoui64(words[2], nullptr, 10),
                                static_cast<int>(wcstol(words[3], nullptr, 10))};
    return ResizeAll(request, words[4], words[5]);
}

} // namespace

int wmain(int count, wchar_t** words) {
    const auto begin = std::chrono::steady_clock::now();
    const int result = Run(count, words);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    printf("seconds\t%.3f\nmegabytes\t%.1f\n", seconds.count(),
           static_cast<double>(memory.PeakWorkingSetSize) / (1 << 20));
    return result;
}
