// What the stages of one run did to its files.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "services/providers/worker/WorkReport.h"

namespace providers {

// Paths are compared as the system compares names: letter case makes no difference.
struct PathOrder {
    bool operator()(const std::wstring& one, const std::wstring& other) const;
};

// What became of a file when personal data was removed from it.
struct CleanRecord {
    WorkResult result = WorkResult::NotSupported;
    std::vector<WorkFound> found;
};

// What is done with a picture when all pictures are made to fit, as noted in the per-file stage.
struct FitNote {
    bool isConverted = false;
    bool isStamped = false;

    explicit operator bool() const noexcept { return isConverted || isStamped; }
};

struct RunRecord {
    // The per-file stage's results by the paths that it was given: two picks of one name are twice
    // in the list, and the second visit gets the first one's result.
    std::map<std::wstring, std::wstring, PathOrder> visited;
    // The results of the per-file transforms, and those that a list stage made of them since.
    std::set<std::wstring, PathOrder> done;
    std::set<std::wstring, PathOrder> made;
    // By the path of the result.
    std::map<std::wstring, CleanRecord, PathOrder> cleaned;
    // By the path of the picture that the steps are still to be done with.
    std::map<std::wstring, FitNote, PathOrder> noted;
    // The user has read that a photo has no decoder on this machine.
    bool hasSaidNoDecoder = false;
    // The user has read that no office program is there for documents.
    bool hasSaidNoSuite = false;
    // Of the last list stage, for GetTargetFile.
    std::vector<std::wstring> results;
};

} // namespace providers
