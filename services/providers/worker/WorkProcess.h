// The provider manager's side of the work process: starts it, sends requests and ends it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/TransformWork.h"
#include "services/providers/worker/CallWait.h"
#include "services/providers/worker/LimitedProcess.h"
#include "services/providers/worker/ReplyReader.h"
#include "services/providers/worker/WorkOrder.h"

namespace providers {

struct WorkSettings {
    std::wstring program;  // full path of the work process's file
    DWORD silence = 60000; // milliseconds without a record after which it counts as hung
    ProcessLimits limits{};
};

// The process of one run. It is started at the first request and, after one that failed with it, at
// the next one, and replaced after 64 requests or when their bytes could fill its pipe. One thread
// at a time calls it; a thread of its own reads the replies. The process ends with this object.
class WorkProcess {
public:
    static constexpr DWORD kPipeRoom = 256 * 1024; // bytes of requests that nobody reads

    explicit WorkProcess(WorkSettings settings) : settings_(std::move(settings)) {}
    ~WorkProcess() { Stop(); }
    WorkProcess(const WorkProcess&) = delete;
    WorkProcess& operator=(const WorkProcess&) = delete;

    // Sends one request and waits for its last record. The handles stay the caller's; null: the
    // request has no such file. A process that crashes, hangs or sends what isn't
    // valid is ended, and so is one whose call is to end. A process that worked on files before and
    // fails on this one is replaced, and the request is sent once more: what an earlier file did to
    // it isn't this file's fault. After a request with a password the process is ended: its memory
    // has copies that nobody can wipe. Throws std::bad_alloc, after which the object can still be
    // used.
    WorkReport Run(const WorkOrder& order, HANDLE source, HANDLE target, CallWait& wait);

    // Ends the process and waits until it has ended, so that it has no file open any more.
    void Stop() noexcept;

    // For another process of the same kind.
    const WorkSettings& Settings() const noexcept { return settings_; }

private:
    friend class WorkSeries;
    WorkReport RunOnce(const WorkOrder& order, HANDLE source, HANDLE target, CallWait& wait);
    bool Start();
    bool HasRoomFor(const WorkOrder& order) const noexcept;
    bool Send(const WorkOrder& order, HANDLE source, HANDLE target);
    bool Duplicate(HANDLE file, DWORD access, std::uint64_t& theirs) const;
    WorkReport Await(CallWait& wait);
    bool TakeReport(WorkReport& report);
    WorkReport Failed();
    static DWORD WINAPI ReaderEntry(void* self) noexcept;
    void ReadReplies() noexcept;
    bool ReadReply();

    WorkSettings settings_;
    LimitedProcess process_;
    std::size_t sent_ = 0;      // requests to this process
    std::size_t sentBytes_ = 0; // of these
    ObLib::UniqueKernelHandle requests_;
    ObLib::UniqueKernelHandle replies_;
    ObLib::UniqueKernelHandle arrived_; // an event; set after each record
    ObLib::UniqueKernelHandle reader_;  // the thread

    std::mutex lock_; // of the two below, which the reader's thread changes
    ReplyReader reply_;
    bool broken_ = false; // the pipe has ended or a record wasn't valid
};

// Requests that belong together: what the work process has of one of them counts for the next. They
// get a process of their own, which ends with this object. One that fails isn't replaced.
class WorkSeries {
public:
    // Two requests for each of so many files, a watermark and one more fit into the pipe.
    static constexpr std::size_t kMostFiles = 3000;

    explicit WorkSeries(WorkProcess& process) noexcept : process_(process) { process_.Stop(); }
    ~WorkSeries() { process_.Stop(); }
    WorkSeries(const WorkSeries&) = delete;
    WorkSeries& operator=(const WorkSeries&) = delete;

    // As WorkProcess::Run, but for the second attempt, and the process lives on after a password:
    // it ends with this object. ProcessFailed also for every request after one that ended the
    // process.
    WorkReport Run(const WorkOrder& order, HANDLE source, HANDLE target, CallWait& wait);

    // The same in a process of its own that ends at once: for an attempt that may fail and takes no
    // room in the series. Nothing of it counts for the next request.
    WorkReport Try(const WorkOrder& order, HANDLE source, CallWait& wait);

private:
    WorkProcess& process_;
    bool hasBegun_ = false;
};

} // namespace providers
