// One working copy changed by one request to the work process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// The sentences of a transform for what the file itself is the reason of; %1 is its name.
struct RefusalTexts {
    UINT damaged;
    UINT tooLarge;
    UINT cannotFit; // zero: the transform has no such result
    UINT failed;    // the work process couldn't read it, or reported what it can't
};

// Stops the run with the sentence for a result by which a file doesn't change; false.
bool RefuseResult(StageCall& call, WorkResult result, const RefusalTexts& texts,
                  const std::wstring& path);

// What a transform decides about a result that isn't a change, after it has asked the user: true
// for a file that goes out as it is, false for a run that stops; nothing for what it doesn't know.
using DecideResult = std::optional<bool>(StageCall& call, WorkResult result,
                                         const std::wstring& path);

// Puts what the request makes of the working copy in its place. A file that passes stays as it is.
// False, after a sentence for the user, when the run has to stop. `folder` as for
// WorkingCopy::Open; `decide` may be null.
bool ChangeCopy(StageCall& call, const std::wstring& path, const std::wstring& folder,
                const WorkOrder& order, const RefusalTexts& texts, DecideResult* decide = nullptr);

// What became of one step on one file.
enum class StepResult : std::uint8_t {
    Made,    // the new file is whole
    Passed,  // the file goes on as it is
    Stopped, // the run has to stop; the user has read why
};

// The extension of a result, and whether the file has a name for it already.
struct ResultKind {
    const wchar_t* extension;
    bool hasName;
};

// Puts a whole result of another kind in the place of the working copy, or beside it under a name
// of its own, where the copy is deleted; `path` becomes that of the result. False, after a
// sentence, with all as it was.
bool PlaceResult(StageCall& call, NewFile& made, WorkingCopy& copy, const ResultKind& kind,
                 std::wstring& path);

} // namespace providers
