// What the compressor alone takes: reads a folder's files, compresses them in the same blocks on
// two threads, and writes nothing. bare_deflate FOLDER LEVEL... prints "LEVEL<tab>seconds bytes"
// each.
#include <windows.h>

#include <libdeflate.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

constexpr std::uint64_t kBlock = 2 * 1024 * 1024;
constexpr int kThreads = 2;

struct Block {
    std::wstring path;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

std::vector<Block> ListBlocks(const std::wstring& folder) {
    std::vector<Block> blocks;
    WIN32_FIND_DATAW found;
    const ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!search) return blocks;
    do {
        const std::uint64_t size = std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
        for (std::uint64_t at = 0; at < size; at += kBlock) {
            blocks.push_back({folder + L"\\" + found.cFileName, at, std::min(kBlock, size - at)});
        }
    } while (FindNextFileW(search.Get(), &found));
    return blocks;
}

bool Read(const Block& block, std::vector<std::uint8_t>& data) {
    const ObLib::UniqueKernelHandle file(CreateFileW(
        block.path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(block.offset);
    DWORD read = 0;
    return file && SetFilePointerEx(file.Get(), place, nullptr, FILE_BEGIN) &&
           ReadFile(file.Get(), data.data(), static_cast<DWORD>(block.size), &read, nullptr) &&
           read == block.size;
}

// What all threads share while one level is measured.
struct Measurement {
    const std::vector<Block>& blocks;
    int level = 0;
    std::atomic<std::size_t> next = 0;
    std::atomic<std::uint64_t> bytes = 0;
};

void Work(Measurement& run) {
    libdeflate_compressor* const compressor = libdeflate_alloc_compressor(run.level);
    std::vector<std::uint8_t> data(kBlock);
    std::vector<std::uint8_t> packed(libdeflate_deflate_compress_bound(compressor, kBlock));
    for (std::size_t at = run.next++; at < run.blocks.size(); at = run.next++) {
        const auto size = static_cast<std::size_t>(run.blocks[at].size);
        if (!Read(run.blocks[at], data)) std::exit(3);
        const std::size_t smaller = libdeflate_deflate_compress(compressor, data.data(), size,
                                                                packed.data(), packed.size());
        run.bytes += std::min(smaller, size);
    }
    libdeflate_free_compressor(compressor);
}

double Seconds() {
    LARGE_INTEGER now;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 3) return 2;
    const std::vector<Block> blocks = ListBlocks(arguments[1]);
    for (int argument = 2; argument < count; ++argument) {
        Measurement run{blocks, _wtoi(arguments[argument])};
        const double before = Seconds();
        {
            std::vector<std::jthread> threads;
            for (int one = 0; one < kThreads; ++one) threads.emplace_back([&run] { Work(run); });
        }
        std::printf("%d\t%.6f %.0f\n", run.level, Seconds() - before,
                    static_cast<double>(run.bytes));
    }
    return 0;
}
