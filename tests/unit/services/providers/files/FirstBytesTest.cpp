#include "services/providers/files/FirstBytes.h"

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/TestFolder.h"

namespace {

using providers::BeginsAsPdf;
using providers::BytesAt;
using providers::FirstBytes;

class FileBeginning : public testing::Test {
protected:
    ObLib::UniqueKernelHandle Open(const std::string& content, DWORD access = GENERIC_READ) const {
        const std::wstring path = folder_.File(L"file", content);
        return ObLib::UniqueKernelHandle(
            CreateFileW(path.c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    const obtest::TestFolder folder_;
};

TEST_F(FileBeginning, EndsWithTheFile) {
    const auto file = Open("12345");
    EXPECT_EQ(FirstBytes(file.Get(), 3), "123");
    EXPECT_EQ(FirstBytes(file.Get(), 9), "12345");
    EXPECT_EQ(BytesAt(file.Get(), 3, 9), "45");
    EXPECT_EQ(BytesAt(file.Get(), 5, 9), "");
    EXPECT_EQ(BytesAt(file.Get(), std::uint64_t{1} << 33, 9), "");
}

TEST_F(FileBeginning, IsEmptyForAFileThatCannotBeRead) {
    EXPECT_EQ(FirstBytes(Open("12345", GENERIC_WRITE).Get(), 3), "");
    EXPECT_EQ(FirstBytes(nullptr, 3), "");
}

TEST_F(FileBeginning, IsThatOfAPdfOnlyAtTheFirstByte) {
    EXPECT_TRUE(BeginsAsPdf(Open("%PDF-1.7").Get()));
    EXPECT_TRUE(BeginsAsPdf(Open("%PDF-").Get()));
    for (const char* const content : {"", "%PDF", " %PDF-1.7", "\xEF\xBB\xBF%PDF-1.7", "PK"}) {
        EXPECT_FALSE(BeginsAsPdf(Open(content).Get())) << content;
    }
}

} // namespace
