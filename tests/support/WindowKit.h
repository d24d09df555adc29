// What UI drivers of real windows share: finding windows and controls, waiting with a limit,
// reading, typing, clicking, and a thread that operates a window while the test's thread shows it.
// Every window may belong to another process.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace obtest {

inline constexpr DWORD kUiLimit = 20000; // milliseconds

// Waits until `condition` is true; false after `limit` milliseconds.
bool WaitUntil(const std::function<bool()>& condition, DWORD limit = kUiLimit);

using WindowTest = std::function<bool(HWND)>;

// The visible top-level windows of a process, or of all processes for 0, from front to back.
std::vector<HWND> TopWindows(DWORD processId = 0);

// The first of them that passes the test; null when there is none. The second form waits.
HWND FindTopWindow(const WindowTest& fits, DWORD processId = 0);
HWND WaitForTopWindow(const WindowTest& fits, DWORD processId = 0, DWORD limit = kUiLimit);

// The controls of a window at every depth, and the first that passes the test; null when there is
// none.
std::vector<HWND> Descendants(HWND window);
HWND FindDescendant(HWND window, const WindowTest& fits);

std::wstring ClassOf(HWND window);
bool IsDialog(HWND window); // by the system's class of dialogs

// A window's whole text; empty when its thread doesn't reply within two seconds.
std::wstring TextOf(HWND window);
std::wstring ItemText(HWND dialog, int id);

// Sets an edit field's text at once.
void SetText(HWND field, const std::wstring& text);
// Replaces the text as a paste does: the dialog is notified.
void ReplaceText(HWND field, const std::wstring& text);
// Types character by character. Returns before the characters have arrived.
void TypeCharacters(HWND field, const std::wstring& text);

// Clicks a button, or gives a dialog a command such as IDOK. Posted, as a message box that it shows
// would block the caller.
bool Click(HWND button);
bool PressCommand(HWND dialog, int id);

bool IsOpen(HWND window); // exists and is visible
bool WaitUntilClosed(HWND window, DWORD limit = kUiLimit);

// Waits for a window on a thread of its own and operates it there, while the test's thread shows
// it.
class WindowDriver {
public:
    // `act` runs when `find` returns a window within the limit. If `act` leaves that window open,
    // the driver gives it `grace` milliseconds to close and then cancels it, so that no test waits
    // for ever. kLeaveOpen: the window is left as it is.
    static constexpr DWORD kLeaveOpen = INFINITE;
    WindowDriver(std::function<HWND()> find, std::function<void(HWND)> act, DWORD grace,
                 DWORD limit = kUiLimit);
    ~WindowDriver() { Join(); }
    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    // Wait for the end of `act`: whether a window came, and whether the driver need not cancel it.
    bool SawWindow();
    bool Done();

private:
    void Join();

    bool saw_ = false; // both are read after the join
    bool cancelled_ = false;
    std::thread thread_;
};

} // namespace obtest
