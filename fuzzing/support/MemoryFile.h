// A file in memory that has a path, for code that opens files by name.
#pragma once

#include <string>

// Made once and filled anew for each input; throws nothing, ends the process when the system
// refuses.
class MemoryFile {
public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const wchar_t* Path() const { return path_.c_str(); }
    void Write(const std::string& bytes) const;
    std::string Read() const;

private:
    int descriptor_;
    std::wstring path_;
};
