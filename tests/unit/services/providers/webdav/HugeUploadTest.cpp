// Whole uploads of files of 4 GiB and of one byte more, where numbers of 32 bits end.
#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/services/providers/webdav/DavUploadFixture.h"

namespace providers {
namespace {

constexpr std::uint64_t kFourGibibytes = 1ull << 32;
constexpr std::size_t kMark = 1'000; // bytes, none of them 0

// Where the file has anything else than holes.
std::vector<std::uint64_t> MarksOf(std::uint64_t size) {
    return {0, (1ull << 31) - kMark / 2, size - 2 * kMark, size - kMark};
}
std::string Mark(std::uint64_t offset) {
    std::string mark(kMark, '\0');
    for (std::size_t at = 0; at < kMark; ++at)
        mark[at] = static_cast<char>(1 + (offset / kMark * 7 + at) % 255);
    return mark;
}

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

void WriteMark(HANDLE file, std::uint64_t offset) {
    const std::string mark = Mark(offset);
    OVERLAPPED place = At(offset);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, mark.data(), static_cast<DWORD>(mark.size()), &written, &place));
}

std::string MarkIn(HANDLE file, std::uint64_t offset) {
    std::string bytes(kMark, '\0');
    OVERLAPPED place = At(offset);
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file, bytes.data(), static_cast<DWORD>(kMark), &read, &place));
    bytes.resize(read);
    return bytes;
}

class HugeUpload : public DavUploadAccount {
protected:
    // The relay stores the bytes in the server's own file, with its holes, and the server does all
    // else: a real disk would take most of the test's time.
    void Expect(std::uint64_t size) {
        std::string folder = ToUtf8(FilesOf(Server())).substr(2); // without the drive
        std::replace(folder.begin(), folder.end(), '\\', '/');
        relay_.Begin(GetParam());
        relay_.On("PUT", ("holes " + folder).c_str(), 3); // after those that find out about parts
        source_ = folder_ / L"huge";
        {
            const auto source = MakeSparse(source_, size);
            for (const std::uint64_t at : MarksOf(size)) WriteMark(source.Get(), at);
        }
        const UploadResult result = Upload(L"huge.zip", L"huge");
        ASSERT_EQ(result.end, UploadEnd::Done) << ToUtf8(result.sentence);
        EXPECT_EQ(result.stored.size, size);
        EXPECT_EQ(progress_.sent_, size);
        EXPECT_EQ(progress_.total_, size);
        ExpectStored(size);
        EXPECT_EQ(1, Count("MOVE"));
    }

    void ExpectStored(std::uint64_t size) const {
        const ObLib::UniqueKernelHandle stored(
            CreateFileW((FilesOf(Server()) + L"\\huge\\huge.zip").c_str(), GENERIC_READ,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
        LARGE_INTEGER length{};
        ASSERT_TRUE(GetFileSizeEx(stored.Get(), &length));
        EXPECT_EQ(static_cast<std::uint64_t>(length.QuadPart), size);
        for (const std::uint64_t at : MarksOf(size))
            EXPECT_EQ(MarkIn(stored.Get(), at), Mark(at)) << at;
        // So whatever else came is 0. The small requests before have brought the first two bytes.
        EXPECT_EQ(relay_.BytesInHoles(), MarksOf(size).size() * kMark - 2);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, HugeUpload, testing::Values("apache"));

TEST_P(HugeUpload, StoresExactlyFourGibibytes) { Expect(kFourGibibytes); }

TEST_P(HugeUpload, StoresOneByteMoreThanFourGibibytes) { Expect(kFourGibibytes + 1); }

} // namespace
} // namespace providers
