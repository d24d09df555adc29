#include "services/providers/suite/DocumentToPdf.h"

namespace providers {

bool IsSuiteThere() { return false; }

bool IsDocument(HANDLE, const std::wstring&) { return false; }

SuiteOutcome ConvertDocument(const SuiteDocument&, HANDLE, WorkProcess&, CallWait&,
                             const SuiteLimits&) {
    return SuiteOutcome::NoSuite;
}

} // namespace providers
