// A file of the running test's own, gone with it, and a channel over one.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include "ObLibX/src/xml/encoding/TextFileChannel.h"

namespace obtest {

class ScratchFile {
public:
    explicit ScratchFile(const std::string& content = {}) {
        const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
        path_ = testing::TempDir() + test->test_suite_name() + "." + test->name() + ".bin";
        Write(content);
    }
    ~ScratchFile() { std::remove(path_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return path_; }
    std::FILE* Open(const char* mode) const { return std::fopen(path_.c_str(), mode); }

    void Write(const std::string& content) const {
        std::FILE* const file = Open("wb");
        EXPECT_NE(file, nullptr) << path_;
        EXPECT_EQ(std::fwrite(content.data(), 1, content.size(), file), content.size());
        std::fclose(file);
    }
    std::string Read() const {
        std::FILE* const file = Open("rb");
        std::string content(1 << 20, '\0');
        content.resize(std::fread(content.data(), 1, content.size(), file));
        std::fclose(file);
        return content;
    }

private:
    std::string path_;
};

inline ObLibX::TextFileChannel Reader(const ScratchFile& file, std::size_t length) {
    ObLibX::TextFileChannel channel;
    channel.file.reset(file.Open("rb"));
    channel.fileLength = static_cast<std::uint32_t>(length);
    return channel;
}

inline ObLibX::TextFileChannel Writer(const ScratchFile& file) {
    ObLibX::TextFileChannel channel;
    channel.file.reset(file.Open("wb"));
    return channel;
}

// The elements of a report, without the line ends between them.
inline std::string Elements(const std::wstring& report) {
    std::string elements;
    for (const wchar_t unit : report) {
        if (unit != L'\r' && unit != L'\n') {
            elements += unit < 0x80 ? static_cast<char>(unit) : '~';
        }
    }
    return elements;
}

// The bytes of units, low byte first.
inline std::string Bytes(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    }
    return bytes;
}

inline std::string Swapped(std::string bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        std::swap(bytes[i], bytes[i + 1]);
    }
    return bytes;
}

} // namespace obtest
