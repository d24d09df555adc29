// Puts PDFs together for other tools to look at, and for the benchmark: combine_files TARGET
// SOURCE... Prints the seconds of the work, without the start of the program. Ends with 0 when all
// were read and one was written.
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "services/transforms/combine/PdfCombine.h"

namespace {

using namespace transforms;

// Null when the file can't be opened.
FILE* Open(const std::wstring& path, const wchar_t* mode) { return _wfopen(path.c_str(), mode); }

bool Read(const std::wstring& path, std::vector<std::byte>& bytes) {
    FILE* const file = Open(path, L"rb");
    if (!file) return false;
    std::fseek(file, 0, SEEK_END);
    bytes.resize(static_cast<std::size_t>(std::ftell(file)));
    std::fseek(file, 0, SEEK_SET);
    const bool isWhole = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && isWhole;
}

class FileSink : public combine::PdfSink {
public:
    explicit FileSink(FILE* file) : file_(file) {}
    bool Write(personal::Bytes bytes) override {
        return std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size();
    }

private:
    FILE* file_;
};

std::string TitleOf(const std::wstring& path) {
    const std::wstring name = path.substr(path.find_last_of(L"\\/") + 1);
    return {name.begin(), name.end()}; // the tests' names are ASCII
}

bool Combine(const std::wstring& target, const std::vector<std::wstring>& sources) {
    std::vector<std::vector<std::byte>> files(sources.size()); // outlive the combiner
    combine::PdfCombiner combiner;
    for (std::size_t at = 0; at < sources.size(); ++at) {
        if (!Read(sources[at], files[at])) return false;
        if (combiner.Add({TitleOf(sources[at]), files[at]}) != CleanOutcome::Cleaned) return false;
    }
    FILE* const file = Open(target, L"wb");
    if (!file) return false;
    FileSink sink(file);
    const bool isWhole = combiner.Write(sink);
    return std::fclose(file) == 0 && isWhole;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count < 3) return 2;
    const auto start = std::chrono::steady_clock::now();
    if (!Combine(words[1], {words + 2, words + count})) return 1;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("seconds\t%.6f\n", seconds.count());
    return 0;
}
