// The work process: takes requests from the provider manager until its pipe is closed. It shows no
// window and opens no file by a path. A crash ends it without a box; the manager then reports the
// file and starts another one.
#include <windows.h>

#include <new>
#include <optional>
#include <utility>

#include "services/transforms/CommandLine.h"
#include "services/transforms/FileRequests.h"
#include "services/transforms/WorkChannel.h"

namespace {

constexpr int kServed = 0;
constexpr int kNotForUsers = 2; // started without the manager's pipes

// Memory that runs out concerns one request; the next one may be smaller.
std::optional<transforms::WorkEnd> Carried(transforms::WorkRequest& request,
                                           transforms::WorkChannel& channel,
                                           transforms::SeriesWork& series) {
    try {
        return transforms::CarryOut(request, channel, series);
    } catch (const std::bad_alloc&) {
        return transforms::WorkEnd(obcontract::WorkFailure::TooLarge);
    }
}

// Closes the files before the last reply, as the manager then renames or deletes them.
bool Serve(transforms::WorkRequest request, transforms::WorkChannel& channel,
           transforms::SeriesWork& series) {
    const auto end = Carried(request, channel, series);
    request = {};
    return end && channel.SendEnd(*end);
}

ObLib::UniqueKernelHandle Inherited(std::uint64_t value) {
    return ObLib::UniqueKernelHandle(reinterpret_cast<HANDLE>(value));
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const auto pipes = transforms::ParseWorkCommandLine(GetCommandLineW());
    if (!pipes) return kNotForUsers;
    transforms::WorkChannel channel(Inherited(pipes->requests), Inherited(pipes->replies));
    transforms::SeriesWork series(channel);
    while (auto request = channel.Next()) {
        if (!Serve(std::move(*request), channel, series)) break;
    }
    return kServed;
}
