// Cleans the files that check_pictures.py or check_documents.py made, for other tools to look at:
// each file of the folder "in" into the folder "out" under its own name, unless it is refused.
// Writes one line a file to "out\report.txt": the name, the outcome, and what was removed, parted
// by tabs. Ends with 0 when every file was read and written.
#include <windows.h>

#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/transforms/documents/AnyFile.h"

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using UniqueFile = std::unique_ptr<std::FILE, CloseFile>;

constexpr const char* kOutcomes[] = {"cleaned",   "nothing found", "not supported", "damaged",
                                     "too large", "encrypted",     "signed"};

bool Read(const std::string& path, std::vector<std::byte>& bytes) {
    const UniqueFile file(std::fopen(path.c_str(), "rb"));
    if (!file) return false;
    std::byte block[65536];
    while (const std::size_t size = std::fread(block, 1, sizeof block, file.get())) {
        bytes.insert(bytes.end(), block, block + size);
    }
    return std::ferror(file.get()) == 0;
}

bool Write(const std::string& path, std::span<const std::byte> bytes) {
    const UniqueFile file(std::fopen(path.c_str(), "wb"));
    return file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
}

bool Clean(const std::string& name, std::FILE* report) {
    std::vector<std::byte> bytes;
    if (!Read("in\\" + name, bytes)) return false;
    const transforms::CleanedFile cleaned = transforms::CleanFile(bytes);
    std::fprintf(report, "%s\t%s", name.c_str(), kOutcomes[static_cast<int>(cleaned.outcome)]);
    for (const auto* findings : {&cleaned.removed, &cleaned.stays}) {
        for (const transforms::Finding& finding : *findings) {
            std::fprintf(report, "\t%s=%u", transforms::FindingName(finding.kind).data(),
                         finding.count);
        }
    }
    std::fprintf(report, "\n");
    return cleaned.bytes.empty() || Write("out\\" + name, cleaned.bytes);
}

int CleanAll() {
    CreateDirectoryW(L"out", nullptr);
    const UniqueFile report(std::fopen("out\\report.txt", "wb"));
    WIN32_FIND_DATAA found;
    const ObLib::UniqueFindHandle search(FindFirstFileA("in\\*.*", &found));
    if (!search || !report) return 1;
    bool isDone = true;
    do {
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!isFolder) isDone = Clean(found.cFileName, report.get()) && isDone;
    } while (FindNextFileA(search.Get(), &found));
    return isDone ? 0 : 1;
}

} // namespace

int wmain() { return CleanAll(); }
