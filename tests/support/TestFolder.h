// A fresh folder of a test's own.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace obtest {

// Made below the temporary folder, removed with everything in it at the end of the scope.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    // Without a trailing backslash.
    const std::wstring& Path() const { return path_; }

    // Full path of a name in the folder; nothing is made.
    std::wstring operator/(const std::wstring& name) const { return path_ + L"\\" + name; }

    // Writes a file and gives its full path.
    std::wstring File(const std::wstring& name, std::string_view content = "content") const;

    // Makes a subfolder and gives its full path without a trailing backslash.
    std::wstring Folder(const std::wstring& name) const;

private:
    std::wstring path_;
};

bool WriteFileContent(const std::wstring& path, std::string_view content);
std::optional<std::string> ReadFileContent(const std::wstring& path);
bool FileExists(const std::wstring& path);

// Paths below `folder`, relative to it, sorted; folders end in a backslash.
std::vector<std::wstring> ListTree(const std::wstring& folder);

// Removes a folder with everything in it, read-only files too.
void RemoveTree(const std::wstring& folder);

} // namespace obtest
