// Office documents become PDFs by an office suite that is installed on the machine: LibreOffice as
// a program of its own, otherwise Microsoft Office, whose programs are driven by automation.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "services/providers/suite/SuiteWatch.h"
#include "services/providers/worker/CallWait.h"
#include "services/providers/worker/WorkProcess.h"

namespace providers {

enum class SuiteOutcome : std::uint8_t {
    Converted,    // the target is a whole PDF
    NotADocument, // by name and first bytes; nothing was started
    NoSuite,      // none is installed that may be started; see IsSuiteThere
    Protected,    // the document opens only with a password
    Failed,       // the suite couldn't be started or ended without a whole PDF
    NoAnswer,     // the suite asked or hung, and was ended
    Unwritable,   // the target or the suite's own folder can't be written, as on a full disk
    Cancelled,    // the call was to end; the suite was ended
    Busy,         // the user has the office program open, and it can't be started a second time
};

// A document to convert. The suite never gets the file itself but a copy in a folder of its own, so
// that links of the document to files beside it lead nowhere and nothing can change it.
struct SuiteDocument {
    HANDLE source = nullptr; // the file, open for reading; stays the caller's
    std::wstring name;       // its file name, whose extension is the kind of the document
    std::wstring folder;     // of the run, below the temporary path, as WorkingCopy::Folder
};

// Whether a suite is installed that ConvertDocument would use. Reads the registry and looks at
// files; starts nothing. On any thread. May throw std::bad_alloc.
bool IsSuiteThere();

// Whether ConvertDocument would try to convert the file, by its name and first bytes: docx, docm,
// doc, odt, rtf, xlsx, xlsm, xls, ods, pptx, pptm, ppt and odp. Text and tables of text (txt, csv)
// aren't documents here: everybody can open them, and their look would be a guess.
bool IsDocument(HANDLE source, const std::wstring& name);

// Writes the document as PDF into `target`, a new empty file that is open for writing
// and stays the caller's; it is empty again unless the outcome is Converted. Macros aren't run and
// links aren't updated. The suite works in a folder of its own (see SuiteFolder), which is deleted
// in every outcome, and is ended in every outcome unless the user has begun to work in it.
// `process` looks first whether the document needs a password. Called by a stage on its thread;
// returns soon after the wait has ended. Throws std::bad_alloc, with nothing left.
SuiteOutcome ConvertDocument(const SuiteDocument& document, HANDLE target, WorkProcess& process,
                             CallWait& wait, const SuiteLimits& limits = {});

} // namespace providers
