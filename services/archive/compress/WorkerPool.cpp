#include "services/archive/compress/WorkerPool.h"

#include <algorithm>
#include <exception>
#include <new>

namespace obarchive {
namespace {

// A worker needs up to 13 MB with the pieces that are read ahead for it, and the whole run is to
// stay below 64 MB. Four of them compress more than most disks deliver.
constexpr std::size_t kMostWorkers = 4;

// Small tasks that are worth waking a worker for.
constexpr std::size_t kWorthWaking = 8;

std::size_t Processors() {
    return std::clamp<std::size_t>(GetActiveProcessorCount(ALL_PROCESSOR_GROUPS), 1, kMostWorkers);
}

TaskState Try(Task& task, BlockCompressor& compressor) noexcept {
    try {
        task.Do(compressor);
        return TaskState::Done;
    } catch (const std::bad_alloc&) {
        return TaskState::NoMemory;
    } catch (...) {
        return TaskState::Failed;
    }
}

} // namespace

class WorkerPool::Ticket {
public:
    explicit Ticket(std::shared_ptr<Task> work) : task(std::move(work)) {}

    std::shared_ptr<Task> task;
    TaskState state = TaskState::Waiting; // under the pool's lock
};

WorkerPool::WorkerPool() {
    const std::size_t count = Processors();
    workers_.reserve(count);
    try {
        while (workers_.size() < count) workers_.emplace_back([this] { Work(); });
    } catch (const std::exception&) {
        // No thread or no memory for one more: fewer are enough. If the exception left the
        // constructor, its clean-up would wait for ever for the threads that were made.
        if (workers_.empty()) throw std::bad_alloc();
    }
}

WorkerPool::~WorkerPool() {
    {
        const Locked locked(lock_);
        ending_ = true;
        queue_.clear();
    }
    work_.WakeAll();
    workers_.clear();
}

std::shared_ptr<WorkerPool::Ticket> WorkerPool::Submit(std::shared_ptr<Task> task, bool isSmall) {
    auto ticket = std::make_shared<Ticket>(std::move(task));
    const Locked locked(lock_);
    queue_.push_back(ticket);
    if (idle_ != 0 && (!isSmall || queue_.size() >= kWorthWaking)) work_.WakeOne();
    return ticket;
}

std::shared_ptr<WorkerPool::Ticket> WorkerPool::Next() {
    const Locked locked(lock_);
    ++idle_;
    while (queue_.empty() && !ending_) work_.Wait(lock_);
    --idle_;
    if (ending_) return nullptr;
    auto ticket = std::move(queue_.front());
    queue_.pop_front();
    return ticket;
}

void WorkerPool::Finish(Ticket& ticket, TaskState state) {
    const Locked locked(lock_);
    ticket.state = state;
    if (awaited_ == &ticket) finished_.WakeOne();
}

void WorkerPool::Work() noexcept {
    BlockCompressor compressor;
    while (const std::shared_ptr<Ticket> ticket = Next()) {
        Finish(*ticket, Try(*ticket->task, compressor));
    }
}

TaskState WorkerPool::Wait(const Ticket& ticket, DWORD milliseconds) {
    const Locked locked(lock_);
    if (ticket.state != TaskState::Waiting) return ticket.state;
    if (idle_ != 0 && !queue_.empty()) work_.WakeAll();
    awaited_ = &ticket;
    finished_.Wait(lock_, milliseconds);
    awaited_ = nullptr;
    return ticket.state;
}

} // namespace obarchive
