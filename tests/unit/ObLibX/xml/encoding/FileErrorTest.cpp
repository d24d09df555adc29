// Files that fail, as they really do, and what is reported of it.
#include <gtest/gtest.h>

#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#else
#include <csignal>
#include <unistd.h>
#endif

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::TextFileChannel;
using obtest::Elements;
using obtest::ScratchFile;

#ifdef _WIN32
constexpr char kFullDisk[] = "Z:\\dev\\full";
constexpr auto Descriptor = _fileno;
constexpr auto CloseDescriptor = _close;
constexpr auto OpenDescriptor = _fdopen;
bool MakePipe(int (&ends)[2]) { return _pipe(ends, 4'096, _O_BINARY) == 0; }
#else
constexpr char kFullDisk[] = "/dev/full";
constexpr auto Descriptor = fileno;
constexpr auto CloseDescriptor = close;
constexpr auto OpenDescriptor = fdopen;
bool MakePipe(int (&ends)[2]) {
    std::signal(SIGPIPE, SIG_IGN);
    return pipe(ends) == 0;
}
#endif

bool HasFileError(const TextFileChannel& channel) {
    const std::string report = Elements(channel.report);
    const std::size_t at = report.find("<file_error msg=\"");
    return at != std::string::npos && report.find("\" n=\"", at) != std::string::npos;
}

TEST(FileError, IsReportedForAReadFromAFileThatIsOnlyForWriting) {
    const ScratchFile file("content");
    TextFileChannel channel;
    channel.file.reset(file.Open("ab"));
    channel.fileLength = 7;
    channel.opByteLength = 7;
    std::wstring text = L"before";
    EXPECT_FALSE(channel.ReadText(text));
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(HasFileError(channel));
    EXPECT_EQ(Elements(channel.report).find("<read"), std::string::npos);
    EXPECT_EQ(channel.fileOffset, 0u);
    EXPECT_EQ(channel.opByteLength, 0);
}

// Much more than the C library reads ahead.
constexpr std::int32_t kLongFile = 100'000;

// Reads four bytes; the next read past the bytes that the C library has buffered fails.
TextFileChannel FailingReader(const ScratchFile& file, std::uint32_t flags) {
    TextFileChannel channel = obtest::Reader(file, kLongFile);
    channel.encoding = L"UTF-8";
    channel.fileFlags = flags;
    channel.opByteLength = 4;
    std::wstring text;
    EXPECT_TRUE(channel.ReadText(text));
    CloseDescriptor(Descriptor(channel.file.get()));
    return channel;
}

TEST(FileError, LeavesWhatWasReadBeforeIt) {
    for (const std::uint32_t flags : {0u, ObLibX::kFileUtf16}) {
        const std::int32_t unit = flags == 0 ? 1 : 2;
        const ScratchFile file(unit == 1 ? std::string(kLongFile, 'a')
                                         : obtest::Bytes(std::u16string(kLongFile / 2, u'a')));
        TextFileChannel channel = FailingReader(file, flags);
        channel.opByteLength = kLongFile - 4;
        std::wstring text;
        EXPECT_FALSE(channel.ReadText(text));
        EXPECT_GT(channel.opByteLength, 0);
        EXPECT_LT(channel.opByteLength, kLongFile - 4);
        EXPECT_EQ(text, std::wstring(static_cast<std::size_t>(channel.opByteLength / unit), L'a'));
        EXPECT_EQ(channel.fileOffset, static_cast<std::uint32_t>(4 + channel.opByteLength));
        EXPECT_EQ(channel.fileLength, static_cast<std::uint32_t>(kLongFile));
        EXPECT_TRUE(HasFileError(channel));
        EXPECT_NE(channel.report.find(L"<read encoding="), std::wstring::npos);
    }
}

TEST(FileError, KeepsTheTextThatWasReadBeforeIt) {
    const ScratchFile file(std::string(kLongFile, 'a'));
    TextFileChannel channel = FailingReader(file, 0);
    std::wstring text = L"before";
    channel.documentText = &text;
    channel.blockSize = kLongFile;
    EXPECT_TRUE(channel.ReadMore());
    EXPECT_TRUE(HasFileError(channel));
    EXPECT_EQ(text.substr(0, 7), L"beforea");
    const std::wstring all = text;
    EXPECT_FALSE(channel.ReadMore());
    EXPECT_TRUE(HasFileError(channel));
    EXPECT_EQ(text, all);
}

TEST(FileError, EndsReadingMoreWithoutTouchingTheText) {
    const ScratchFile file("content");
    TextFileChannel channel;
    channel.file.reset(file.Open("ab"));
    channel.fileLength = 7;
    std::wstring text = L"before";
    channel.documentText = &text;
    channel.bufferKeepFrom = 3;
    EXPECT_FALSE(channel.ReadMore());
    EXPECT_EQ(text, L"before");
    EXPECT_EQ(channel.bufferRemoved, 0);
    EXPECT_TRUE(HasFileError(channel));
}

TEST(FileError, IsReportedForAWriteToAFileThatIsOnlyForReading) {
    const ScratchFile file("content");
    TextFileChannel channel = obtest::Reader(file, 7);
    channel.encoding = L"UTF-8";
    std::wstring document = L"text";
    channel.documentText = &document;
    EXPECT_FALSE(channel.WriteOut(document.data(), 4, true));
    EXPECT_TRUE(HasFileError(channel));
    EXPECT_EQ(Elements(channel.report).find("<write"), std::string::npos);
    EXPECT_EQ(document, L"text");
    EXPECT_EQ(channel.fileOffset, 0u);
    EXPECT_EQ(file.Read(), "content");
}

TEST(FileError, IsReportedWhenTheFlushFindsTheFileClosed) {
    const ScratchFile file;
    TextFileChannel channel = obtest::Writer(file);
    CloseDescriptor(Descriptor(channel.file.get()));
    EXPECT_FALSE(channel.WriteOut(L"text", 4, true));
    EXPECT_TRUE(HasFileError(channel));
}

TEST(FileError, IsReportedWhenTheDiskIsFull) {
    TextFileChannel channel;
    channel.file.reset(std::fopen(kFullDisk, "wb"));
    if (channel.file == nullptr) {
        GTEST_SKIP() << "no " << kFullDisk
                     << " here; a broken pipe and a closed file take the same way";
    }
    EXPECT_FALSE(channel.WriteOut(L"text", 4, true));
    EXPECT_TRUE(HasFileError(channel));
}

TEST(FileError, IsReportedWhenThePipeIsBroken) {
    int ends[2];
    ASSERT_TRUE(MakePipe(ends));
    CloseDescriptor(ends[0]);
    TextFileChannel channel;
    channel.file.reset(OpenDescriptor(ends[1], "wb"));
    EXPECT_FALSE(channel.WriteOut(L"text", 4, true));
    EXPECT_TRUE(HasFileError(channel));
}

TEST(FileError, IsReportedWhenACutCharacterCannotGoBack) {
    int ends[2];
    ASSERT_TRUE(MakePipe(ends));
    TextFileChannel writer;
    writer.file.reset(OpenDescriptor(ends[1], "wb"));
    EXPECT_TRUE(writer.WriteOut(L"ab\x20AC", 3, true));
    TextFileChannel channel;
    channel.file.reset(OpenDescriptor(ends[0], "rb"));
    std::setvbuf(channel.file.get(), nullptr, _IONBF, 0);
    channel.encoding = L"UTF-8";
    channel.fileLength = 5;
    channel.opByteLength = 3;
    std::wstring text;
    const bool good = channel.ReadText(text);
#ifdef _WIN32
    if (good) {
        GTEST_SKIP() << "this system lets a pipe seek";
    }
#endif
    EXPECT_FALSE(good);
    EXPECT_TRUE(HasFileError(channel));
    EXPECT_EQ(text.substr(0, 2), L"ab");
    EXPECT_EQ(channel.fileOffset, 3u);
}

} // namespace
