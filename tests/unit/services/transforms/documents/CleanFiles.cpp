// Cleans files, for checks by other people's tools and for measurements:
//   clean_files [FROM TO]
// each file of the folder "in", or FROM, into "out", or TO, under its own name, unless it is
// refused. Writes one line a file to report.txt in "out" or the current folder: the name, the
// outcome, and what was removed, parted by tabs. The password of files whose name begins with it is
// "secret". Prints the seconds that it took. Ends with 0 when
// every file was read and written.
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/transforms/documents/AnyFile.h"

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using UniqueFile = std::unique_ptr<std::FILE, CloseFile>;

constexpr const char* kOutcomes[] = {"cleaned", "nothing found", "not supported",
                                     "damaged", "too large",     "encrypted",
                                     "signed",  "locked",        "other cipher"};
constexpr std::string_view kPassword = "secret";

// The whole file, mapped. False when it can't be read.
template <class Use>
bool WithBytes(const std::string& path, Use&& use) {
    const ObLib::UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                     nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.Get(), &size)) return false;
    if (size.QuadPart == 0) return use(std::span<const std::byte>());
    const ObLib::UniqueKernelHandle mapping(
        CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    const ObLib::UniqueMappedView<const std::byte> view(
        static_cast<const std::byte*>(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0)));
    return view && use(std::span(view.Get(), static_cast<std::size_t>(size.QuadPart)));
}

bool Write(const std::string& path, std::span<const std::byte> bytes) {
    const ObLib::UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                     nullptr) &&
           written == bytes.size();
}

struct Folders {
    std::string from = "in", to = "out", report = "out\\report.txt";
};

bool Clean(const Folders& folders, const std::string& name, std::FILE* report) {
    const bool isProtected = name.starts_with(kPassword);
    const auto password = isProtected ? kPassword : std::string_view();
    transforms::CleanedFile cleaned;
    if (!WithBytes(folders.from + "\\" + name, [&](std::span<const std::byte> bytes) {
            cleaned = transforms::CleanFile(bytes, {.password = password});
            return true;
        })) {
        return false;
    }
    std::fprintf(report, "%s\t%s", name.c_str(), kOutcomes[static_cast<int>(cleaned.outcome)]);
    for (const auto* findings : {&cleaned.removed, &cleaned.stays}) {
        for (const transforms::Finding& finding : *findings) {
            std::fprintf(report, "\t%s=%u", transforms::FindingName(finding.kind).data(),
                         finding.count);
        }
    }
    std::fprintf(report, "\n");
    return cleaned.bytes.empty() || Write(folders.to + "\\" + name, cleaned.bytes);
}

int CleanAll(const Folders& folders) {
    CreateDirectoryA(folders.to.c_str(), nullptr);
    const UniqueFile report(std::fopen(folders.report.c_str(), "wb"));
    WIN32_FIND_DATAA found;
    const ObLib::UniqueFindHandle search(FindFirstFileA((folders.from + "\\*.*").c_str(), &found));
    if (!search || !report) return 1;
    bool isDone = true;
    do {
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!isFolder) isDone = Clean(folders, found.cFileName, report.get()) && isDone;
    } while (FindNextFileA(search.Get(), &found));
    return isDone ? 0 : 1;
}

// The checks and benchmarks give ASCII paths.
std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

} // namespace

int wmain(int count, wchar_t** words) {
    Folders folders;
    if (count == 3) folders = {Narrow(words[1]), Narrow(words[2]), "report.txt"};
    const auto begin = std::chrono::steady_clock::now();
    const int result = CleanAll(folders);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::printf("seconds\t%.3f\n", seconds.count());
    return result;
}
