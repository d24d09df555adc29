// Files for the tests of streams, in the folder where the test runs.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

// A file that goes with the object. Its name is ASCII and another one for each object.
class StreamFile {
public:
    StreamFile(); // a name only; nothing is there
    // The text in an encoding; "UTF-16" and "UTF-16BE" with a byte order mark.
    StreamFile(std::wstring_view text, const wchar_t* encoding);
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
