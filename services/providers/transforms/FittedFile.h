// One file of a mail whose pictures are made to fit, and the steps that were noted for it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "services/providers/transforms/StageCall.h"
#include "services/providers/transforms/Watermark.h"

namespace providers {

struct FittedFile {
    std::wstring path;
    WorkingCopy copy;
    std::uint64_t copySize = 0;
    FitNote note{}; // what is still to be done with it

    // What goes out unless the file is made smaller; for a noted one that is known once it is
    // whole.
    std::unique_ptr<NewFile> stepped{}; // with the noted steps done; null: the copy
    std::uint64_t size = 0;             // of that
    std::uint64_t bytes = 0;            // that it counts for
    bool isMeasured = false;            // as the zip makes it
    // FitAdd doesn't take it with the steps that were noted: they are done, or it has none.
    bool isSettled = false;

    std::optional<std::uint32_t> number{}; // of a picture that can be made smaller
    std::unique_ptr<NewFile> smaller{};    // null for a file that stays
    std::optional<WorkReport> written{};   // into that

    HANDLE Unshrunk() const noexcept { return stepped ? stepped->Handle() : copy.Handle(); }
    bool IsKnown() const noexcept { return !note || stepped; }
    void Count(std::uint64_t unshrunk) noexcept {
        size = bytes = unshrunk;
        isMeasured = false;
    }
};

// Does the noted steps as they are done without a fit, and counts the result. A step that passes
// the file is noted no longer. `watermark` may be null where none is noted. False, after a
// sentence, when the run has to stop.
bool DoSteps(StageCall& call, FittedFile& file, const WatermarkOrder* watermark);

// Whether the new file is what the work process reported, and a JPEG or PNG where a photo was to be
// converted.
bool IsWhole(const NewFile& made, const WorkReport& report, const FittedFile& file);

// Puts what was written, or else what is whole, in the place of the copy, or beside it under the
// name of a converted photo, and `file.path` becomes that of the result. False, after a sentence,
// when that fails. Nothing to do for a file that stays.
bool PlaceFitted(StageCall& call, FittedFile& file);

// Stops the run with the sentence for a result by which the file can't be made to fit; false.
bool RefuseFitted(StageCall& call, WorkResult result, const FittedFile& file);

} // namespace providers
