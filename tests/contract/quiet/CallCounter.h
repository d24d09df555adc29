// Counts the calls that go through import tables, without changing what they do.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>

namespace obtest {

// During its lifetime every watched import counts its calls, on all threads, and continues in the
// original function. It must not be destroyed while a watched call runs.
class CallCounter {
public:
    // Whether to watch an import, by library ("ntdll.dll", in the table's own case) and name. Must
    // return false for variables: a watched variable would be called.
    using Filter = std::function<bool(const std::string& library, const std::string& name)>;

    CallCounter() = default;
    ~CallCounter();
    CallCounter(const CallCounter&) = delete;
    CallCounter& operator=(const CallCounter&) = delete;

    // Watches the imports of one loaded module, except those by number.
    void Watch(HMODULE module, const Filter& filter);

    // Watches the imports of every module that is loaded now.
    void WatchProcess(const Filter& filter);

    // How many imports are watched.
    [[nodiscard]] std::size_t Watched() const noexcept { return watched_.size(); }

    // Name and number of calls since Clear, of those that were called.
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
