// Starts GDI+ and shuts it down when this object is destroyed.
#pragma once

#include <windows.h>

namespace ObLibX {

// Usable on any thread; the two ends may be on different ones. When the start fails the object is
// empty, and GDI+ draws nothing.
class GraphicsToken {
public:
    GraphicsToken();
    ~GraphicsToken();
    GraphicsToken(const GraphicsToken&) = delete;
    GraphicsToken& operator=(const GraphicsToken&) = delete;

    explicit operator bool() const { return token_ != 0; }

private:
    ULONG_PTR token_ = 0;
};

} // namespace ObLibX
