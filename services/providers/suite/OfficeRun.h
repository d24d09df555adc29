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

namespace providers {

enum class OfficeEnd : std::uint8_t {
    Written, // the program reported success
    Failed,
    Busy, // the user has the program open, and it would work in that same process
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

    // Nobody waits for the result any more. Ends the program, also one that is only starting.
    void Abandon() noexcept;

private:
    static DWORD WINAPI Entry(void* run) noexcept;
    OfficeEnd Run();
    OfficeEnd Work();
    enum class Adopted : std::uint8_t { Yes, Shared, No };
    Adopted Adopt(const std::vector<DWORD>& before);
    void Convert(const AutomationObject& application, const AutomationObject& documents) const;
    void Quit(const AutomationObject& application, const AutomationObject& documents);

    DocumentKind kind_;
    InstalledOffice office_;
    std::wstring source_;
    std::wstring target_;
    ObLib::UniqueKernelHandle job_;
    ObLib::UniqueKernelHandle process_; // of the thread
    OfficeEnd end_ = OfficeEnd::Failed;
    std::atomic<bool> isAbandoned_ = false;
};

} // namespace providers
