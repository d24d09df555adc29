#include "services/providers/folder/PartFile.h"

#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/RepeatedStep.h"

namespace providers {

PartFile::~PartFile() {
    file_.Reset();
    const bool isGone = !isMade_ || Repeat([this] {
        return DeleteFileW(path_.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND;
    });
    if (isGone && note_) note_->Remove();
}

DWORD PartFile::Open(BreakableCalls& calls, DWORD how) {
    file_ = calls.Run([this, how] {
        return ObLib::UniqueKernelHandle(
            CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, how,
                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    });
    return file_ ? 0 : GetLastError();
}

// When the connection breaks, the server may have made the file.
DWORD PartFile::Make(BreakableCalls& calls) {
    const DWORD error = Open(calls, CREATE_NEW);
    isMade_ = error == 0 || error == ERROR_OPERATION_ABORTED ||
              FolderErrorOf(error) == FolderError::Unreachable;
    return error;
}

DWORD PartFile::OpenAgain(BreakableCalls& calls) {
    file_.Reset();
    return Open(calls, OPEN_EXISTING);
}

} // namespace providers
