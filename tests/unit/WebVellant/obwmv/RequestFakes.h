// Fakes of what the exports run: the site rules, the two requests, the host's entry and the
// settings. They are linked in the place of the real ones and keep one list of steps with
// everything else that a test records.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "contracts/BrowserContext.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/support/ImportPatch.h"

namespace obtest {

struct RequestFakes {
    std::vector<std::string> steps;
    std::wstring url;
    bool usesBrowserDialog = false;
    std::function<BOOL(OPENFILENAMEW*, obcontract::BrowserContext*)> openFileName;
    std::function<HRESULT(IFileDialog*, HWND, obcontract::BrowserContext*)> dialog;
    std::function<int(HWND, std::uint32_t)> host;
    std::function<void(HWND)> configuration;
};

// The one set of the process; a test begins with a new one.
RequestFakes& Fakes();
void ResetFakes();
void NoteStep(const std::string& step);

// Makes each call of the context a step under the operation's name.
void NoteCallsOf(FakeBrowserContext& context);

// What an export asks of the context before it starts the request.
inline constexpr BrowserCall kCallsBeforeTheRun[] = {
    BrowserCall::GetPageUrl,
    BrowserCall::IsPickerWanted,
    BrowserCall::GetBrowserWindowClassCount,
    BrowserCall::GetBrowserWindowClasses,
};

// Records each activation and deactivation and, unless `fails` is set, performs it.
class ActivationRecorder {
public:
    explicit ActivationRecorder(bool fails = false);
    ~ActivationRecorder();
    bool Ok() const { return activate_.Ok() && deactivate_.Ok(); }

    // Called before a deactivation is noted.
    std::function<void()> onDeactivate;

private:
    static BOOL WINAPI Activate(HANDLE context, ULONG_PTR* cookie);
    static BOOL WINAPI Deactivate(DWORD flags, ULONG_PTR cookie);

    ImportPatch<decltype(&ActivateActCtx)> activate_;
    ImportPatch<decltype(&DeactivateActCtx)> deactivate_;
    bool fails_;
};

} // namespace obtest
