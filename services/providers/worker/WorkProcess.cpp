#include "services/providers/worker/WorkProcess.h"

#include <cstddef>
#include <cstdint>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/WholeTransfer.h"

namespace providers {
namespace {

using namespace obcontract;
using ObLib::UniqueKernelHandle;

// A process is replaced after so many requests, and before all that it was sent would fill the
// pipe: a process that answers without reading its requests then never makes a write wait.
constexpr std::size_t kMostRequests = 64;
constexpr DWORD kPipeRoom = WorkProcess::kPipeRoom;
static_assert(2 * sizeof(WorkHeader) + kMostPasswordBytes + kLargestWorkPayload <= kPipeRoom);
constexpr std::size_t kRequest = sizeof(WorkHeader) + sizeof(WorkFiles);
static_assert(WorkSeries::kMostFiles * (2 * kRequest + sizeof(WorkFitAdd) + sizeof(WorkFitWrite)) +
                  kRequest + sizeof(WorkWatermark) + 2 * kMostWatermarkText + kRequest +
                  sizeof(WorkFitSearch) <=
              kPipeRoom);
static_assert(sizeof(WorkPictureWatermark) <= sizeof(WorkWatermark) + 2 * kMostWatermarkText);

struct Pipe {
    UniqueKernelHandle reading;
    UniqueKernelHandle writing;
};

// One end of each pipe is inherited, by the handle list alone. A process that another thread of the
// host starts meanwhile with all inheritable handles may get it too: see Stop.
bool MakePipe(Pipe& pipe, UniqueKernelHandle Pipe::*inherited) {
    return CreatePipe(pipe.reading.Put(), pipe.writing.Put(), nullptr, kPipeRoom) &&
           SetHandleInformation((pipe.*inherited).Get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
}

// The handles of a file share its position, so it is moved back too. True without a file.
bool Empty(HANDLE target) {
    const LARGE_INTEGER start{};
    return !target ||
           (SetFilePointerEx(target, start, nullptr, FILE_BEGIN) && SetEndOfFile(target));
}

WorkReport Only(WorkResult result) {
    WorkReport report;
    report.result = result;
    return report;
}

} // namespace

bool WorkProcess::HasRoomFor(const WorkOrder& order) const noexcept {
    return sent_ < kMostRequests && sentBytes_ + order.RecordSize() <= kPipeRoom;
}

WorkReport WorkProcess::Run(const WorkOrder& order, HANDLE source, HANDLE target, CallWait& wait) {
    if (!HasRoomFor(order)) Stop();
    const bool wasUsed = static_cast<bool>(process_);
    const ObLib::ScopeExit forget([&] {
        if (order.HasPassword()) Stop();
    });
    WorkReport report = RunOnce(order, source, target, wait);
    if (!wasUsed || report.result != WorkResult::ProcessFailed || !Empty(target)) return report;
    return RunOnce(order, source, target, wait);
}

WorkReport WorkProcess::RunOnce(const WorkOrder& order, HANDLE source, HANDLE target,
                                CallWait& wait) {
    if (wait.IsEnded()) return Only(WorkResult::Cancelled);
    bool kept = false;
    const ObLib::ScopeExit stop([&] {
        if (!kept) Stop();
    });
    if (!process_ && !Start()) return Only(WorkResult::NotStarted);
    {
        const std::lock_guard guard(lock_);
        reply_.Begin();
    }
    if (!Send(order, source, target)) return Only(WorkResult::ProcessFailed);
    WorkReport report = Await(wait);
    kept = report.result != WorkResult::ProcessFailed && report.result != WorkResult::Cancelled;
    return report;
}

// Without its full path the system would search for a program.
bool WorkProcess::Start() {
    if (settings_.program.empty()) return false;
    Pipe requests;
    Pipe replies;
    if (!MakePipe(requests, &Pipe::reading) || !MakePipe(replies, &Pipe::writing)) return false;
    arrived_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!arrived_) return false;
    process_ = StartLimited(settings_.program, requests.reading.Get(), replies.writing.Get(),
                            settings_.limits);
    if (!process_) return false;
    requests_ = std::move(requests.writing);
    replies_ = std::move(replies.reading);
    broken_ = false;
    reader_.Reset(CreateThread(nullptr, 0, &ReaderEntry, this, 0, nullptr));
    return static_cast<bool>(reader_);
}

// False when the file can't be handed over. Nothing to do without a file.
bool WorkProcess::Duplicate(HANDLE file, DWORD access, std::uint64_t& theirs) const {
    if (!file) return true;
    HANDLE duplicate = nullptr;
    if (!DuplicateHandle(GetCurrentProcess(), file, process_.process.Get(), &duplicate, access,
                         FALSE, 0)) {
        return false;
    }
    theirs = reinterpret_cast<std::uintptr_t>(duplicate);
    return true;
}

// The pipe has room for the record, see HasRoomFor.
bool WorkProcess::Send(const WorkOrder& order, HANDLE source, HANDLE target) {
    // Without the right to rename, delete or change attributes: that is this side's to do.
    constexpr DWORD kWriting =
        FILE_READ_DATA | FILE_WRITE_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
    WorkFiles files{};
    std::uint64_t picture = 0;
    if (!Duplicate(source, FILE_GENERIC_READ, files.source) ||
        !Duplicate(order.Picture(), FILE_GENERIC_READ, picture) ||
        !Duplicate(target, kWriting, files.target)) {
        return false;
    }
    auto record = order.Record(files, picture);
    const ObLib::ScopeExit wipe([&] { SecureZeroMemory(record.data(), record.size()); });
    ++sent_;
    sentBytes_ += record.size();
    return ObLib::WriteWhole(requests_.Get(), record.data(), record.size());
}

// Gives the report once the request has its last record or can't get one any more.
bool WorkProcess::TakeReport(WorkReport& report) {
    const std::lock_guard guard(lock_);
    ResetEvent(arrived_.Get());
    if (!reply_.IsComplete() && !broken_) return false;
    report = reply_.Report();
    if (reply_.IsComplete()) return true;
    report = Only(WorkResult::ProcessFailed);
    report.number = reply_.Report().number;
    return true;
}

// With the number of the picture that the process reported last.
WorkReport WorkProcess::Failed() {
    WorkReport report = Only(WorkResult::ProcessFailed);
    const std::lock_guard guard(lock_);
    report.number = reply_.Report().number;
    return report;
}

WorkReport WorkProcess::Await(CallWait& wait) {
    WorkReport report;
    for (;;) {
        switch (wait.Until(arrived_.Get(), settings_.silence)) {
        case Waited::Ended:
            return Only(WorkResult::Cancelled);
        case Waited::TimedOut:
            return Failed();
        case Waited::Signalled:
            if (TakeReport(report)) return report;
        }
    }
}

bool WorkProcess::ReadReply() {
    WorkHeader header;
    if (!ObLib::ReadWhole(replies_.Get(), &header, sizeof header)) return false;
    const auto size = ReplyPayload(header);
    std::byte payload[kLargestWorkPayload];
    if (!size || !ObLib::ReadWhole(replies_.Get(), payload, *size)) return false;
    const std::lock_guard guard(lock_);
    return reply_.Take(header.kind, {payload, *size});
}

DWORD WINAPI WorkProcess::ReaderEntry(void* self) noexcept {
    static_cast<WorkProcess*>(self)->ReadReplies();
    return 0;
}

void WorkProcess::ReadReplies() noexcept {
    const auto step = [this] { return ObLib::Guarded(false, [this] { return ReadReply(); }); };
    while (step()) SetEvent(arrived_.Get());
    const std::lock_guard guard(lock_);
    broken_ = true;
    SetEvent(arrived_.Get());
}

void WorkProcess::Stop() noexcept {
    if (process_) {
        TerminateProcess(process_.process.Get(), 1);
        WaitForSingleObject(process_.process.Get(), INFINITE);
    }
    // The pipe ends with the process, unless another one inherited its end.
    constexpr DWORD kStep = 50; // milliseconds between two attempts
    while (reader_ && WaitForSingleObject(reader_.Get(), kStep) == WAIT_TIMEOUT) {
        CancelSynchronousIo(reader_.Get());
    }
    reader_.Reset();
    process_ = {};
    sent_ = 0;
    sentBytes_ = 0;
    requests_.Reset();
    replies_.Reset();
}

WorkReport WorkSeries::Run(const WorkOrder& order, HANDLE source, HANDLE target, CallWait& wait) {
    const bool isLost = hasBegun_ && !process_.process_;
    if (isLost || process_.sentBytes_ + order.RecordSize() > kPipeRoom) {
        return Only(wait.IsEnded() ? WorkResult::Cancelled : WorkResult::ProcessFailed);
    }
    hasBegun_ = true;
    return process_.RunOnce(order, source, target, wait);
}

WorkReport WorkSeries::Try(const WorkOrder& order, HANDLE source, CallWait& wait) {
    return WorkProcess(process_.settings_).RunOnce(order, source, nullptr, wait);
}

} // namespace providers
