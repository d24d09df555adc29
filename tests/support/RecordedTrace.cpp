#include "tests/support/RecordedTrace.h"

#include <cstdarg>
#include <cstdio>

#include "OBCore/modules/ObTrace.h"

namespace {

std::vector<std::string>& Lines() {
    static std::vector<std::string> lines;
    return lines;
}

void (*traceObserver)(const std::string& line) = nullptr;

} // namespace

namespace obcore {

void ObTrace(const char* format, ...) noexcept {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    Lines().emplace_back(line);
    if (traceObserver) traceObserver(Lines().back());
}

} // namespace obcore

namespace obtest {

const std::vector<std::string>& TraceLines() { return Lines(); }
void ForgetTrace() { Lines().clear(); }
void ObserveTrace(void (*observer)(const std::string& line)) { traceObserver = observer; }

} // namespace obtest
