#include "services/transforms/CommandLine.h"

namespace transforms {
namespace {

// Moves past one number. Zero for anything that isn't one, or is too large for a handle.
std::uint64_t TakeNumber(const wchar_t*& at) noexcept {
    constexpr std::uint64_t kLargest = 0x7fffffff; // handles fit in 31 bits
    std::uint64_t number = 0;
    while (*at >= L'0' && *at <= L'9' && number <= kLargest) {
        number = number * 10 + static_cast<std::uint64_t>(*at++ - L'0');
    }
    return number <= kLargest ? number : 0;
}

} // namespace

std::optional<WorkPipes> ParseWorkCommandLine(const wchar_t* at) noexcept {
    if (*at++ != L'"') return {};
    while (*at != L'\0' && *at != L'"') ++at;
    if (*at++ != L'"' || *at++ != L' ') return {};
    WorkPipes pipes{TakeNumber(at), 0};
    if (pipes.requests == 0 || *at++ != L' ') return {};
    pipes.replies = TakeNumber(at);
    if (pipes.replies == 0 || *at != L'\0') return {};
    return pipes;
}

} // namespace transforms
