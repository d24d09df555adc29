// Plays the person in front of a progress window: a second thread that looks and presses.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace obtest {

// The visible progress window of this process, or null.
HWND FindProgressWindow();

// Waits until the condition holds; false after ten seconds.
bool WaitUntil(const std::function<bool()>& condition);

// The text of one of its controls.
std::wstring ProgressText(HWND window, int id);

// Waits for the window, plays the person and is joined at the end.
class ProgressUiDriver {
public:
    explicit ProgressUiDriver(std::function<void(HWND)> act);
    ~ProgressUiDriver() { Join(); }
    ProgressUiDriver(const ProgressUiDriver&) = delete;
    ProgressUiDriver& operator=(const ProgressUiDriver&) = delete;

    // Joins; true when the window was there.
    bool SawWindow();

private:
    void Join();

    bool saw_ = false; // read after the join
    std::thread thread_;
};

} // namespace obtest
