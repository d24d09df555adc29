// What the bench process has in memory.
#pragma once

namespace bench {

// KB in use in all heaps of the process, as what it has committed grows in large steps only.
double HeapKilobytes();

// What the process has committed for itself: private memory, and the writable parts of images,
// of which each process gets its own copy. The system's own counter stays 0 under Wine.
double PrivateBytes();

} // namespace bench
