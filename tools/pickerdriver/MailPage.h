// The program that asks for the files: a mail page that lists what it got in a file.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// Whether the page has written its whole list, and whether there is a file in it. The task has a
// page.
bool HasAnswer(const Task& task);
bool HasFiles(const Task& task);

// One started program. The destructor ends it if it still runs.
class MailPage {
public:
    // Throws Failure when it can't be started.
    explicit MailPage(const std::wstring& commandLine);
    ~MailPage();
    MailPage(const MailPage&) = delete;
    MailPage& operator=(const MailPage&) = delete;

    HANDLE Process() const { return process_.Get(); }

    // Its window; null while it has none.
    HWND Window() const;

    // Waits until the page has its answer, and copies the files as the task asks.
    void LookAtAnswer(const Task& task) const;

    // Closes the page's window, after which its temporary files are gone.
    void Close() const;

    // The program's exit code.
    int AwaitEnd(DWORD limit) const;

private:
    ObLib::UniqueKernelHandle process_;
    DWORD processId_ = 0;
};

} // namespace pickerdriver
