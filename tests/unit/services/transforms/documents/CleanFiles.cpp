// Cleans files, for checks by other people's tools and for measurements:
//   clean_files [FROM TO]
// each file of the folder "in", or FROM, into "out", or TO, under its own name, unless it is
// refused. Writes one line a file to report.txt in "out" or the current folder: the name, the
// outcome, and what was removed, parted by tabs. The password of files whose name begins with it is
// "secret". Prints the seconds that it took. Ends with 0 when
// every file was read and written.
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/transforms/documents/AnyFile.h"

namespace {

using namespace transforms;

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

using Parts = std::span<const std::span<const std::byte>>;

bool Write(const std::string& path, Parts parts) {
    const ObLib::UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    return file && std::ranges::all_of(parts, [&](std::span<const std::byte> part) {
               return ObLib::WriteWhole(file.Get(), part.data(), part.size());
           });
}

struct Folders {
    std::string from = "in", to = "out", report = "out\\report.txt";
};

void Report(std::FILE* report, const std::string& name, const personal::Analysis& analysis) {
    const CleanOutcome outcome = OutcomeOf(analysis);
    std::fprintf(report, "%s\t%s", name.c_str(), kOutcomes[static_cast<int>(outcome)]);
    for (const auto& findings : {analysis.found.List(), analysis.found.Staying()}) {
        for (const Finding& finding : findings) {
            std::fprintf(report, "\t%s=%u", FindingName(finding.kind).data(), finding.count);
        }
    }
    std::fprintf(report, "\n");
}

bool Clean(const Folders& folders, const std::string& name, std::FILE* report) {
    const bool isProtected = name.starts_with(kPassword);
    const auto password = isProtected ? kPassword : std::string_view();
    return WithBytes(folders.from + "\\" + name, [&](std::span<const std::byte> bytes) {
        const auto analysis = AnalyzeFile(bytes, {.password = password});
        Report(report, name, analysis);
        const CleanOutcome outcome = OutcomeOf(analysis);
        const std::string target = folders.to + "\\" + name;
        if (outcome == CleanOutcome::NothingFound) return Write(target, Parts(&bytes, 1));
        return outcome != CleanOutcome::Cleaned || Write(target, analysis.parts.Parts());
    });
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
