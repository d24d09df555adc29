// A picker run: what was asked, and what becomes of the files that the user picked.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Abstract base of a picker run; an object on the driver's stack, used on its one thread.
class OBOpenFileNameDlg {
public:
    OBOpenFileNameDlg(OPENFILENAMEW* request, OBAttachJob& job)
        : Request(request), Options(&job), AttachRecord(&job) {}
    OBOpenFileNameDlg(const OBOpenFileNameDlg&) = delete;
    OBOpenFileNameDlg& operator=(const OBOpenFileNameDlg&) = delete;
    virtual ~OBOpenFileNameDlg() = default;

    // 1 when the run ended with a result that was written into the request, else 0.
    virtual int ShowPickerDialog() = 0;

    // Decides what becomes of the picked files and carries it out. 1: the page receives ResultPath
    // if ResultIsArchive is on, else Files. 0 with an empty LinkText: the user stopped the run or
    // it failed, and a box reported it where it happened. 0 with a LinkText: the page receives that
    // text.
    int ProcessPickedFiles(const std::vector<std::wstring>& picked);

    std::wstring LinkText;     // output
    OPENFILENAMEW* Request;    // null on the dialog path
    OBAttachJob* Options;      // the record, read as options
    OBAttachJob* AttachRecord; // the same record
};

namespace CompressUtils {

// Whether the file's extension, with case, names an archive. If so the job's result is that file.
bool IsAlreadyArchive(OBAttachJob& job, const std::wstring& path);

// Writes job.Files into request.lpstrFile: one file as its full path, several as the first one's
// folder and the bare names. 1 if they fitted; a single file is written without a test against
// nMaxFile. Never writes past `end`, the end of the memory that lpstrFile points into.
int FillOpenFileNameBuffer(const OBAttachJob& job, OPENFILENAMEW& request, const wchar_t* end);

} // namespace CompressUtils
} // namespace obcore
