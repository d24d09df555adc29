// Work on a picture of any bytes, as the fuzz targets of pictures do it.
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

#include "fuzzing/support/Require.h"
#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"

// Small enough that no input takes long.
inline transforms::PictureControl SmallLimits() {
    transforms::PictureControl control;
    control.limits = {1 << 18, 16 << 20, 1 << 20, 20};
    return control;
}

struct PictureRun {
    transforms::PictureOutcome outcome;
    transforms::PictureBytes file;
    friend bool operator==(const PictureRun&, const PictureRun&) = default;
};

// Runs `work(source, target)`. The file is on the heap and of the exact size, so that the sanitizer
// sees a read past its end. What passes may not be written.
template <class Work>
PictureRun RunOnPicture(std::span<const std::uint8_t> file, Work&& work) {
    using transforms::PictureOutcome;
    const auto copy = std::make_unique<std::uint8_t[]>(file.size());
    std::ranges::copy(file, copy.get());
    transforms::MemorySource source({copy.get(), file.size()});
    transforms::MemoryTarget target;
    const PictureOutcome outcome = work(source, target);
    const bool isPassed =
        outcome == PictureOutcome::Unchanged || outcome == PictureOutcome::Unsupported;
    Require(!isPassed || target.bytes.empty(), "what passes isn't written");
    return {outcome, std::move(target.bytes)};
}

// The same twice: equal files give equal results.
template <class Work>
PictureRun RunTwiceOnPicture(std::span<const std::uint8_t> file, Work&& work) {
    const PictureRun first = RunOnPicture(file, work);
    Require(first == RunOnPicture(file, work), "equal files give equal results");
    return first;
}
