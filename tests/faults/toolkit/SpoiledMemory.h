// Memory that is spoiled when it is given back, so that a use of an object after its end is seen.
#pragma once

namespace obtest {

// For a scope: what `delete` gives back is overwritten with a pattern that is no object, and kept
// until the end of the scope, so that nothing else gets it. One at a time; single objects of the
// test's own thread.
class SpoiledMemory {
public:
    SpoiledMemory();
    ~SpoiledMemory();
    SpoiledMemory(const SpoiledMemory&) = delete;
    SpoiledMemory& operator=(const SpoiledMemory&) = delete;
};

} // namespace obtest
