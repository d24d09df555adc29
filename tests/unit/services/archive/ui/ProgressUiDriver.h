// The UI driver of the progress window: a second thread that reads it and presses buttons.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace obtest {

// The visible progress window of this process, or null.
HWND FindProgressWindow();

// Waits until the condition is true; returns false after ten seconds.
bool WaitUntil(const std::function<bool()>& condition);

// The text of one of the window's controls.
std::wstring ProgressText(HWND window, int id);

// Waits for the window, then runs `act` on a second thread; joined at the end.
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
