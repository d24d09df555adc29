// What the test program last gave back to the heap: tells whether an object freed itself.
#pragma once

namespace obtest {

void* LastFreed();
void ForgetFreed();

} // namespace obtest
