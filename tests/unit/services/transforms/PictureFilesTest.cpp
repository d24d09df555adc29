// The files of a request as the picture codecs use them: any place, any size, both sides of a
// block.
#include "services/transforms/PictureFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/TestFolder.h"

using transforms::FileSource;
using transforms::FileTarget;
using Bytes = std::vector<std::uint8_t>;

namespace {

Bytes Random(std::size_t size) {
    std::mt19937 random(7);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

class PictureFilesTest : public testing::Test {
protected:
    ObLib::UniqueKernelHandle Open(DWORD access, DWORD how) const {
        return ObLib::UniqueKernelHandle(
            CreateFileW(Path().c_str(), access, 0, nullptr, how, 0, nullptr));
    }
    std::wstring Path() const { return folder_ / L"file"; }
    Bytes Content() const {
        const std::string content = *obtest::ReadFileContent(Path());
        return {content.begin(), content.end()};
    }
    const obtest::TestFolder folder_;
};

TEST_F(PictureFilesTest, AreReadFromAnyPlaceUpToTheirEnd) {
    const Bytes content = Random(700'001);
    ASSERT_TRUE(obtest::WriteFileContent(Path(), std::string(content.begin(), content.end())));
    const auto file = Open(GENERIC_READ, OPEN_EXISTING);
    FileSource source(file.Get());
    ASSERT_TRUE(source.IsOpen());
    EXPECT_EQ(source.Size(), content.size());
    std::mt19937 random(8);
    for (int turn = 0; turn < 500; ++turn) {
        const std::size_t offset = random() % (content.size() + 10);
        Bytes to(turn % 50 == 0 ? 600'000 : random() % 5000);
        std::size_t read = 0;
        ASSERT_TRUE(source.ReadAt(offset, to, read));
        const std::size_t there = offset < content.size() ? content.size() - offset : 0;
        ASSERT_EQ(read, std::min(to.size(), there));
        ASSERT_TRUE(std::equal(to.begin(), to.begin() + static_cast<std::ptrdiff_t>(read),
                               content.begin() +
                                   static_cast<std::ptrdiff_t>(std::min(offset, content.size()))));
    }
}

TEST_F(PictureFilesTest, AreWrittenInOrderAndBackAtTheirStart) {
    const Bytes content = Random(900'000);
    {
        const auto file = Open(GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        FileTarget target(file.Get());
        for (std::size_t at = 0, size = 1; at < content.size();
             at += size, size = size * 3 % 70'001) {
            size = std::min(size, content.size() - at);
            ASSERT_TRUE(target.WriteAt(at, std::span(content).subspan(at, size)));
        }
        const Bytes begin{1, 2, 3};
        ASSERT_TRUE(target.WriteAt(4, begin));
        Bytes back(5);
        std::size_t read = 0;
        ASSERT_TRUE(target.ReadBack(3, back, read));
        EXPECT_EQ(back, (Bytes{content[3], 1, 2, 3, content[7]}));
        ASSERT_TRUE(target.WriteAt(content.size(), begin));
        EXPECT_EQ(target.Size(), content.size() + 3);
        ASSERT_TRUE(target.Flush());
    }
    Bytes expected = content;
    std::copy_n(Bytes{1, 2, 3}.begin(), 3, expected.begin() + 4);
    expected.insert(expected.end(), {1, 2, 3});
    EXPECT_EQ(Content(), expected);
}

TEST_F(PictureFilesTest, ReportWhatCannotBeReadOrWritten) {
    ASSERT_TRUE(obtest::WriteFileContent(Path(), "content"));
    const auto writing = Open(GENERIC_WRITE, OPEN_EXISTING);
    FileSource source(writing.Get()); // without the right to read
    Bytes to(3);
    std::size_t read = 0;
    EXPECT_FALSE(source.ReadAt(0, to, read));
    EXPECT_FALSE(FileSource(nullptr).IsOpen());
    FileTarget target(nullptr);
    EXPECT_TRUE(target.WriteAt(0, to)); // collected
    EXPECT_FALSE(target.Flush());
    EXPECT_FALSE(target.WriteAt(0, Bytes(300'000)));
}

} // namespace
