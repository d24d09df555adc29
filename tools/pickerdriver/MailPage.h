// The program that asked for the files: a mail page that notes what it was given.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// One started program. It is ended when this object goes while it still runs.
class MailPage {
public:
    // Throws Failure when it can't be started.
    explicit MailPage(const std::wstring& commandLine);
    ~MailPage();
    MailPage(const MailPage&) = delete;
    MailPage& operator=(const MailPage&) = delete;

    HANDLE Process() const { return process_.Get(); }

    // Waits until the page has its answer, takes the copies that the task asks for, and closes the
    // page's window. What was temporary is gone once the page is closed.
    void LookAtAnswer(const Task& task) const;

    // The program's exit code.
    int AwaitEnd(DWORD limit) const;

private:
    ObLib::UniqueKernelHandle process_;
    DWORD processId_ = 0;
};

} // namespace pickerdriver
