// Answers real message boxes on a second thread, which records their texts.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace obtest {

struct SeenBox {
    std::wstring caption;
    std::wstring text;
    bool hasIcon = false; // any icon; a plain box has none
    HWND owner = nullptr;
    int defaultButton = 0; // has the focus from the start, so Enter presses it
};

// Watches for the length of a scope. Only windows with a text and a button and without an edit
// field count as message boxes.
class MessageBoxWatcher {
public:
    enum class Scope { ThisProcess, AllProcesses };

    explicit MessageBoxWatcher(Scope scope = Scope::ThisProcess);
    ~MessageBoxWatcher();
    MessageBoxWatcher(const MessageBoxWatcher&) = delete;
    MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

    // The button that is pressed from now on; IDOK at first.
    void AnswerWith(int button) { button_ = button; }

    std::vector<SeenBox> Seen() const;

    // Waits until that many boxes were seen; false after `limit` milliseconds.
    bool WaitFor(std::size_t count, DWORD limit = 10000) const;

private:
    void Watch();
    void Answer(HWND box);

    Scope scope_;
    std::atomic<int> button_ = IDOK;
    std::atomic<bool> stop_ = false;
    mutable std::mutex lock_;
    std::vector<SeenBox> seen_;
    HWND last_ = nullptr;
    std::thread thread_;
};

} // namespace obtest
