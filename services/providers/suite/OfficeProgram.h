// The office programs that are driven from outside, and how each of them is driven.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "services/providers/suite/Automation.h"
#include "services/providers/suite/DocumentKind.h"

namespace providers {

// The names are those of the program's own object model.
struct OfficeProgram {
    const wchar_t* name; // under which its class is registered
    const wchar_t* documents;
    AutomationArguments settings; // of the application, for as long as it runs
    const wchar_t* optionsOf;     // the application's object with the options
    AutomationArguments options;  // which the program stores, put back in any case; may be empty
    AutomationArguments open;     // besides FileName
    const wchar_t* write;         // the method that writes a PDF
    const wchar_t* writeFile;     // its argument with the path
    AutomationArguments writeRest;
    AutomationArguments close; // of the document, without saving it
    AutomationArguments quit;
};

const OfficeProgram& ProgramFor(DocumentKind kind);

struct InstalledOffice {
    CLSID classId;
    std::wstring path; // of the program, without links and short names
};

// Nothing when no such program is registered, or only one that TrustedProgram refuses. The
// registration that the system would use counts, the user's own before that of the machine. May
// throw std::bad_alloc.
std::optional<InstalledOffice> OfficeFor(DocumentKind kind);

} // namespace providers
