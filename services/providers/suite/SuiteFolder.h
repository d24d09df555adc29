// The folder of its own in which a suite works on one document.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <utility>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/files/FileIdentity.h"

namespace providers {

// Contains a copy of the document, the suite's profile and temporary files, and what it writes.
// Deleted with everything in it at the end; nothing that a link in it leads to is touched.
class SuiteFolder {
public:
    // A new folder below `folder`, that of the document's copy. When its path is too long for the
    // suites: below the run's top folder in the temporary one, or below the temporary one. Null
    // when it can't be made. Throws std::bad_alloc.
    static std::unique_ptr<SuiteFolder> MakeFor(const std::wstring& folder);
    // Waits up to two seconds for files that an ended program still has open, and for memory.
    ~SuiteFolder();
    SuiteFolder(const SuiteFolder&) = delete;
    SuiteFolder& operator=(const SuiteFolder&) = delete;

    // Makes a file, which is open for writing, or a folder; `name` may have folders, which exist.
    // Empty or false when it can't be made. Throw std::bad_alloc.
    bool MakeFolder(const wchar_t* name) const;
    ObLib::UniqueKernelHandle MakeFile(const wchar_t* name) const;

    // The full path of a name in the folder, without the prefix for long paths: for programs.
    std::wstring operator/(const std::wstring& name) const { return path_ + L'\\' + name; }

private:
    static std::unique_ptr<SuiteFolder> Own(std::wstring path, const std::wstring& prefixed);
    SuiteFolder(std::wstring path, std::wstring prefixed, const FileIdentity& identity)
        : path_(std::move(path)), prefixed_(std::move(prefixed)), identity_(identity) {}
    bool TryToDelete() const;

    std::wstring path_;
    std::wstring prefixed_; // the same for long paths
    FileIdentity identity_;
};

} // namespace providers
