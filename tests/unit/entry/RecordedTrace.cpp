#include "tests/unit/entry/RecordedTrace.h"

#include <cstdarg>
#include <cstdio>

#include "OBCore/modules/ObTrace.h"

namespace {

std::vector<std::string>& Lines() {
    static std::vector<std::string> lines;
    return lines;
}

} // namespace

namespace obcore {

void ObTrace(const char* format, ...) noexcept {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    Lines().emplace_back(line);
}

} // namespace obcore

namespace obtest {

const std::vector<std::string>& TraceLines() { return Lines(); }
void ForgetTrace() { Lines().clear(); }

} // namespace obtest
