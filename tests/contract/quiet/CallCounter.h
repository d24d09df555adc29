// Counts the calls that go through import tables, without changing what they do.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>

namespace obtest {

// While it lives, every import that is watched counts its calls, on all threads, and goes on to
// what stood there. It may not end while a watched call is under way.
class CallCounter {
public:
    // Tells by library ("ntdll.dll", any case as the table has it) and name whether to watch. Asked
    // for functions only if the caller tells data apart: a watched variable would be called.
    using Filter = std::function<bool(const std::string& library, const std::string& name)>;

    CallCounter() = default;
    ~CallCounter();
    CallCounter(const CallCounter&) = delete;
    CallCounter& operator=(const CallCounter&) = delete;

    // Watches the imports of one loaded module. What it imports by number stays unwatched.
    void Watch(HMODULE module, const Filter& filter);

    // The same for every module of this process, as they are now.
    void WatchProcess(const Filter& filter);

    // How many imports are watched.
    [[nodiscard]] std::size_t Watched() const noexcept { return watched_.size(); }

    // Name and number of calls since Clear, without those that weren't called.
    [[nodiscard]] std::map<std::string, std::uint64_t> Calls() const;
    void Clear() noexcept;

private:
    struct Counted {
        std::string name;
        void** slot;
        void* real;
        volatile std::uint64_t* calls;
    };

    void WatchSlot(void** slot, const std::string& name);
    std::uint8_t* NewThunk(void* real);

    std::deque<Counted> watched_;
    std::uint8_t* page_ = nullptr; // where the next thunk goes, on memory that is never freed
    std::size_t room_ = 0;         // bytes
};

} // namespace obtest
