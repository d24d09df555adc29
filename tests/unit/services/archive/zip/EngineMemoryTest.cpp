// What a run has in memory, however much it packs.
#include <psapi.h>

#include "services/archive/compress/AdaptiveDeflate.h"
#include "services/archive/compress/WorkerPool.h"
#include "services/archive/zip/ReadAhead.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/services/archive/zip/EngineFixture.h"

namespace obtest {
namespace {

using obarchive::kBlockSize;
using obarchive::ZipResult;

class EngineMemoryTest : public EngineFixture {
protected:
    // Two blocks a worker and two more are read ahead; each may be there packed too, and what
    // writes has some blocks of its own.
    static std::size_t Bound() {
        const std::size_t ahead = 2 * obarchive::WorkerPool().Size() + 2;
        return (2 * ahead + 4) * kBlockSize;
    }

    // Noise, and after it a hole, or only the hole.
    void AddLarge(std::uint64_t size, std::size_t noise) {
        const std::wstring path = Add(L"large.bin", EngineNoise(noise));
        const ObLib::UniqueKernelHandle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        LARGE_INTEGER end;
        end.QuadPart = static_cast<LONGLONG>(size);
        ASSERT_TRUE(SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(file.Get()));
    }

    std::size_t PeakOfARun() {
        const HeapPeak peak;
        EXPECT_EQ(Run(), ZipResult::Ok);
        DeleteFileW(job_.target.c_str());
        return peak.Bytes();
    }

    // Names for one file's content, in folders of some, as a name that is new is looked for in the
    // whole of its folder.
    void AddLinks(std::size_t count, std::size_t size) {
        constexpr std::size_t kFolder = 200;
        const std::wstring first = in_.File(L"content", EngineProse(size));
        std::wstring folder;
        for (std::size_t index = 0; index < count; ++index) {
            if (index % kFolder == 0) folder = in_.Folder(L"folder" + std::to_wstring(index));
            const std::wstring link = folder + L"\\link" + std::to_wstring(index);
            ASSERT_TRUE(CreateHardLinkW(link.c_str(), first.c_str(), nullptr));
            job_.files.push_back(link);
        }
    }
};

// Each read is shown to take place, so that the bound isn't that of a run that read nothing.
TEST_F(EngineMemoryTest, ALargeFileThatIsStoredTakesSomeBlocksOfMemory) {
    const std::uint64_t size = 5 * Bound();
    AddLarge(size, 2 * kBlockSize);
    for (const bool encrypted : {false, true}) {
        if (encrypted) Encrypt();
        std::uint64_t read = 0;
        const HeapPeak peak;
        EXPECT_EQ(Run([&](const obarchive::ZipProgress& now) {
                      read = now.bytesRead;
                      return true;
                  }),
                  ZipResult::Ok);
        EXPECT_EQ(read, size);
        EXPECT_LT(peak.Bytes(), Bound());
        EXPECT_GT(peak.Bytes(), kBlockSize) << "the blocks are seen";
        DeleteFileW(job_.target.c_str());
    }
}

TEST_F(EngineMemoryTest, ALargeFileThatShrinksTakesSomeBlocksOfMemory) {
    AddLarge(3 * Bound(), 0);
    EXPECT_LT(PeakOfARun(), Bound());
    job_.duplicateReferences = true;
    job_.files.push_back(in_ / L"same.bin");
    ASSERT_TRUE(CopyFileW(job_.files.front().c_str(), job_.files.back().c_str(), TRUE));
    EXPECT_LT(PeakOfARun(), Bound()) << "with a copy of it";
}

// What a file adds is what is noted of it: names, times, its place in the zip.
TEST_F(EngineMemoryTest, KeepsAtMostABoundedNumberOfSmallFilesInMemory) {
    constexpr std::size_t kSize = 10'000;
    constexpr std::size_t kFew = 500;
    constexpr std::size_t kMany = 4'000;
    constexpr std::size_t kNotes = 1'500; // of one file
    AddLinks(kMany, kSize);
    const std::vector<std::wstring> all = job_.files;
    job_.files.resize(kFew);
    const std::size_t few = PeakOfARun();
    EXPECT_LT(few, Bound() + kFew * kNotes);
    job_.files = all;
    const std::size_t many = PeakOfARun();
    EXPECT_LT(many, few + (kMany - kFew) * kNotes);
    RecordProperty("BytesOfAFile", static_cast<int>((many - few) / (kMany - kFew)));
    EXPECT_LT(many, kMany * kSize / 2);
}

DWORD WINAPI FourProcessors(WORD) { return 4; }

// Lines of columns, which are compressed thoroughly: that takes the most memory.
std::string EngineTable(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string table;
    while (table.size() < size) {
        char line[64];
        std::snprintf(line, sizeof line, "%05zX;%u;%s;%u\n", table.size() / 16,
                      unsigned(random() % 50), random() % 3 ? "Lu" : "Ll",
                      unsigned(random() % 1000));
        table += line;
    }
    return table;
}

// A suite of its own, as the peak is that of a whole process.
class EngineProcessMemory : public EngineFixture {
protected:
    // In parts, so that the test itself never has all of it in memory.
    void AddTable(std::size_t megabytes) {
        const std::wstring path = Add(L"table.txt", "");
        const ObLib::UniqueKernelHandle file(
            CreateFileW(path.c_str(), FILE_APPEND_DATA, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        for (unsigned part = 0; part < megabytes; ++part) {
            const std::string table = EngineTable(1'000'000, part);
            DWORD written = 0;
            ASSERT_TRUE(WriteFile(file.Get(), table.data(), static_cast<DWORD>(table.size()),
                                  &written, nullptr));
            ASSERT_EQ(written, table.size());
        }
    }

    static PROCESS_MEMORY_COUNTERS Memory() {
        PROCESS_MEMORY_COUNTERS memory{};
        K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        return memory;
    }
};

// The machine may have fewer processors than the pool has workers at most.
TEST_F(EngineProcessMemory, GrowsByLessThan64MegabytesWithFourWorkersOnATable) {
    const ImportPatch<decltype(&GetActiveProcessorCount)> patch(
        "kernel32.dll", "GetActiveProcessorCount", &FourProcessors);
    ASSERT_TRUE(patch.Ok());
    ASSERT_EQ(obarchive::WorkerPool().Size(), 4U);
    AddTable(40);
    {
        const std::string part = EngineTable(1'000'000, 0);
        obarchive::BlockCompressor compressor;
        ASSERT_TRUE(obarchive::IsWorthThoroughWork(
            compressor, {reinterpret_cast<const std::uint8_t*>(part.data()), part.size()}));
    }
    const std::size_t before = Memory().WorkingSetSize;
    ASSERT_EQ(Run(), ZipResult::Ok);
    const std::size_t most = Memory().PeakWorkingSetSize;
    ASSERT_GT(most, before + 8 * kBlockSize) << "the blocks are seen";
    EXPECT_LT(most - before, 64'000'000U);
    RecordProperty("Megabytes", static_cast<int>((most - before) / 1'000'000));
}

} // namespace
} // namespace obtest
