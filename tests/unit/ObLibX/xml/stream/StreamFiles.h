// Files for the tests of streams, in the folder where the test runs.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

// The text in an encoding; "UTF-16" and "UTF-16BE" with a byte order mark.
std::vector<std::uint8_t> Encoded(std::wstring_view text, const std::wstring& encoding);
// The text of bytes without a mark.
std::wstring Decoded(const std::vector<std::uint8_t>& bytes, const std::wstring& encoding);
// Whether the system knows the encoding's code page.
bool IsInstalled(const std::wstring& encoding);

// A file that is removed with the object. Its name is ASCII and differs for each object.
class StreamFile {
public:
    StreamFile(); // a name only; nothing is there
    StreamFile(std::wstring_view text, const std::wstring& encoding);
    explicit StreamFile(const std::vector<std::uint8_t>& bytes);
    ~StreamFile();
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    const wchar_t* Path() const { return path_.c_str(); }
    const char* NarrowPath() const { return narrowPath_.c_str(); }
    void Write(const std::vector<std::uint8_t>& bytes) const;
    std::vector<std::uint8_t> Read() const;

private:
    std::string narrowPath_;
    std::wstring path_;
};
