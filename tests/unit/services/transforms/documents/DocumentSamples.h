// What the tests of documents share: properties that are true whatever the file is.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/transforms/documents/AnyFile.h"
#include "tests/unit/services/transforms/SamplePhoto.h"

namespace samples {

// A text in a place that stays; Samples.h has the one of places that are cleaned.
inline constexpr std::string_view kKept = "KEPT";

struct CleanedDocument {
    CleanOutcome outcome;
    std::string file;
    std::vector<Finding> removed;
    std::vector<Finding> stays;
};

inline CleanedDocument CleanDocument(const std::string& file) {
    const auto result = transforms::CleanFile(BytesOf(file));
    return {result.outcome, SampleOf(result.bytes), result.removed, result.stays};
}

inline bool Has(const std::vector<Finding>& findings, FindingKind kind) {
    for (const Finding& finding : findings) {
        if (finding.kind == kind) return true;
    }
    return false;
}

// A result is clean, equal input gives equal bytes, cleaning it again changes nothing, what is
// found is what is removed, and what stays is reported of the result as well. Returns the result.
inline CleanedDocument CheckDocument(const std::string& file) {
    CleanedDocument once = CleanDocument(file);
    const auto found = transforms::FindInFile(BytesOf(file));
    const bool isClean = once.outcome == CleanOutcome::NothingFound;
    if (once.outcome != CleanOutcome::Cleaned && !isClean) {
        EXPECT_TRUE(once.file.empty() && once.removed.empty() && once.stays.empty());
        EXPECT_EQ(found.size(), once.outcome == CleanOutcome::Damaged ? 1u : 0u);
        return once;
    }
    EXPECT_EQ(found, once.removed);
    EXPECT_EQ(isClean, once.removed.empty());
    EXPECT_TRUE(!isClean || once.file == file);
    EXPECT_EQ(CleanDocument(file).file, once.file);
    const CleanedDocument twice = CleanDocument(once.file);
    EXPECT_EQ(twice.outcome, CleanOutcome::NothingFound);
    EXPECT_TRUE(twice.file == once.file);
    EXPECT_EQ(twice.stays, once.stays);
    return once;
}

} // namespace samples
