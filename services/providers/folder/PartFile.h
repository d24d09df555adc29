// The file of an upload while it has its temporary name.
#pragma once

#include <windows.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/BreakableCalls.h"
#include "services/providers/storage/PartNotes.h"

namespace providers {

// Nobody else can open the file while it is open here. It is deleted with this object unless it got
// its own name; then its note is removed, too. Where that can't be known, as while its share is
// gone, the note stays.
class PartFile {
public:
    // The path, with the long path's prefix, is one that no other file has. `note` may be null and
    // outlives this object.
    PartFile(std::wstring path, PartNote* note) : path_(std::move(path)), note_(note) {}
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::wstring& Path() const noexcept { return path_; }
    HANDLE Handle() const noexcept { return file_.Get(); }

    // Make it, or open it again after a break. 0, or the system's error.
    DWORD Make(BreakableCalls& calls);
    DWORD OpenAgain(BreakableCalls& calls);
    void Close() noexcept { file_.Reset(); }

    // It has its own name now.
    void SetNamed() noexcept { isMade_ = false; }

private:
    DWORD Open(BreakableCalls& calls, DWORD how);

    std::wstring path_;
    PartNote* note_;
    ObLib::UniqueKernelHandle file_;
    bool isMade_ = false; // or may be
};

} // namespace providers
