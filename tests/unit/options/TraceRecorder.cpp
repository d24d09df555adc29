#include "tests/unit/options/TraceRecorder.h"

#include <cstdarg>
#include <cstdio>

#include "OBCore/modules/ObTrace.h"
#include "tests/unit/options/RegistryRecorder.h"

std::vector<std::string>& TraceLines() {
    static std::vector<std::string> lines;
    return lines;
}

namespace obcore {

// Stands before the one of the library, which the linker then leaves out.
void ObTrace(const char* format, ...) noexcept {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    TraceLines().push_back(line);
    RegistryRecorder::Note(std::string("trace ") + line);
}

} // namespace obcore
