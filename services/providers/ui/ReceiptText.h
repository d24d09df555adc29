// What the user reads of a run that removed personal data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/providers/worker/WorkReport.h"

namespace providers {

// One file of the receipt.
struct ReceiptFile {
    std::wstring name;
    // Changed: cleaned; Unchanged: nothing was found; anything else: why it can't be cleaned.
    WorkResult result = WorkResult::NotSupported;
    std::vector<WorkFound> found; // what was removed, and what stays (keys with "stays." in front)

    bool IsRest() const { return result != WorkResult::Changed && result != WorkResult::Unchanged; }
};

// Why a file can't be cleaned, as the end of a sentence.
std::wstring RestReason(WorkResult result);

// What a key of the work process means; a key that isn't known here is other data.
std::wstring FoundText(const WorkFound& found);

// The sentence above the list: of the files that can't be cleaned if there are any, otherwise of
// those that were cleaned.
std::wstring ReceiptHeadline(const std::vector<ReceiptFile>& files);

// The list, with a line break at the end of each line: first the files that can't be cleaned, then
// what was removed and what stays, file by file. With `onlyRest` without the latter.
std::wstring ReceiptList(const std::vector<ReceiptFile>& files, bool onlyRest);

} // namespace providers
