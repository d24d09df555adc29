// What the test program last gave back to the heap: shows whether an object freed itself.
#pragma once

namespace obtest {

void* LastFreed();
void ForgetFreed();

} // namespace obtest
