// The threads of a run that compress and encrypt, beside the one that reads and writes.
#pragma once

#include <deque>
#include <memory>
#include <thread>
#include <vector>

#include "services/archive/compress/BlockCompressor.h"
#include "services/archive/compress/Monitor.h"

namespace obarchive {

// Something that a worker does once. Owned by who submits it and by the pool.
class Task {
public:
    virtual ~Task() = default;

    // On a worker, with the worker's own compressor. What it throws counts as a failure.
    virtual void Do(BlockCompressor& compressor) = 0;
};

enum class TaskState { Waiting, Done, Failed, NoMemory };

class WorkerPool {
public:
    // One worker for each processor, four at most. Throws when not even one thread can be
    // made.
    WorkerPool();
    // Drops what no worker has begun and waits for what one has.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    std::size_t Size() const noexcept { return workers_.size(); }

    // One handle for a task, which is done in the order of submitting, side by side with others.
    // The task's results may be read once Wait has returned Done. To wake a sleeping worker takes
    // longer than a small task: with `isSmall`, a worker may sleep until some tasks are there or
    // until somebody waits.
    class Ticket;
    std::shared_ptr<Ticket> Submit(std::shared_ptr<Task> task, bool isSmall = false);

    // The ticket's state, after `milliseconds` at most. One thread waits.
    TaskState Wait(const Ticket& ticket, DWORD milliseconds);

private:
    void Work() noexcept;
    std::shared_ptr<Ticket> Next();
    void Finish(Ticket& ticket, TaskState state);

    Lock lock_;
    Condition work_;
    Condition finished_;
    std::deque<std::shared_ptr<Ticket>> queue_;
    std::size_t idle_ = 0;
    const Ticket* awaited_ = nullptr;
    bool ending_ = false;
    std::vector<std::jthread> workers_;
};

} // namespace obarchive
