// A PDF that is refused although the library would take it.
#pragma once

#include <exception>

#include "services/transforms/personal/Findings.h"

namespace transforms::documents {

// Each function that throws it documents it. OutcomeOfPdfError returns its outcome.
class PdfRefusal : public std::exception {
public:
    explicit PdfRefusal(CleanOutcome outcome) noexcept : outcome(outcome) {}
    CleanOutcome outcome;
};

} // namespace transforms::documents
