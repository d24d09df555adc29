// One document on its way through an office program that is driven from outside.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/suite/OfficeProgram.h"
#include "services/providers/suite/OfficeSession.h"

namespace providers {

enum class OfficeEnd : std::uint8_t {
    Written, // the program reported success
    Failed,
    Busy,    // the user has the program open, and it would work in that same process
    NotOurs, // the system doesn't let this process end the one that was started
};

// Runs on a thread of its own, since calls of another program can't be given up by the thread that
// waits for them. The thread owns the object together with the caller, and keeps this module
// loaded: it may outlive its caller when the program doesn't even start.
//
// Only a process that this run started is used, so that no document of the user's is touched and
// the process can be ended. It is in the job from its start on.
class OfficeRun {
public:
    // Paths without the prefix for long paths. Throws std::bad_alloc.
    OfficeRun(DocumentKind kind, InstalledOffice office, std::wstring source, std::wstring target,
              ObLib::UniqueKernelHandle job)
        : kind_(kind), office_(std::move(office)), source_(std::move(source)),
          target_(std::move(target)), job_(std::move(job)) {}
    OfficeRun(const OfficeRun&) = delete;
    OfficeRun& operator=(const OfficeRun&) = delete;

    // The thread, which is set when the run has ended; empty when it can't be made.
    static ObLib::UniqueKernelHandle Start(std::shared_ptr<OfficeRun> run);

    HANDLE Job() const noexcept { return job_.Get(); }
    // Valid once the thread has ended.
    OfficeEnd End() const noexcept { return end_; }

    // Lets a program in which the user has opened a window outlive this process. True when there is
    // one. On any thread.
    bool FreeIfInUse() noexcept;

    // Nobody waits for the result any more. Ends the program, also one that is only starting; one
    // in which the user has opened a window goes on, and the thread leaves it to the user.
    void Abandon() noexcept;

private:
    static DWORD WINAPI Entry(void* run) noexcept;
    OfficeEnd Run();
    OfficeEnd Work();
    enum class Adopted : std::uint8_t {
        Yes,
        Shared,  // a program that runs already serves the call
        Unclear, // several have started at the same time
        Refused, // it can't be put into the job
    };
    Adopted Adopt(const std::vector<DWORD>& before);
    void Finish(OfficeSession& session) noexcept;
    void EndProgram() noexcept;

    DocumentKind kind_;
    InstalledOffice office_;
    std::wstring source_;
    std::wstring target_;
    ObLib::UniqueKernelHandle job_;
    ObLib::UniqueKernelHandle process_; // of the thread; empty unless it is in the job
    std::atomic<DWORD> processId_ = 0;  // valid before the process is in the job
    OfficeEnd end_ = OfficeEnd::Failed;
    std::atomic<bool> isAbandoned_ = false;
};

} // namespace providers
