// The start of GDI+, ended with its owner.
#pragma once

#include <windows.h>

namespace ObLibX {

// On any thread; the same for both ends isn't needed. What fails leaves it empty: GDI+ then draws
// nothing.
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
