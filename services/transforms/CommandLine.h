// The command line of the work process: the two pipe handles that it inherited.
#pragma once

#include <cstdint>
#include <optional>

namespace transforms {

struct WorkPipes {
    std::uint64_t requests; // handle values, not zero
    std::uint64_t replies;
};

// The words after the program's name are the two handles, as decimal numbers without a sign.
// Nothing for anything else, as when a user starts the program.
std::optional<WorkPipes> ParseWorkCommandLine(const wchar_t* commandLine) noexcept;

} // namespace transforms
