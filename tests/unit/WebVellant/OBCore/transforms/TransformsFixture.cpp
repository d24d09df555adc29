#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

#include <commctrl.h>

#include <atomic>
#include <mutex>
#include <new>
#include <optional>

namespace obtest {
namespace {

constexpr DWORD kLimit = 10000; // milliseconds

bool IsTransformDialog(HWND window) {
    return IsDialog(window) && GetDlgItem(window, OB_TRANSFORM_BAR) &&
           GetDlgItem(window, OB_TRANSFORM_STATUS);
}

void Note(const std::wstring& line) {
    RecordCall(line + L" @" + std::to_wstring(GetCurrentThreadId()));
}

// What one run leaves: its dialog and its worker threads. The hook and the dialog's own calls run
// on the test's thread, the patched calls of the worker on the worker's.
HWND lastDialog = nullptr;
std::mutex workersLock;
std::vector<ObLib::UniqueKernelHandle> workers;
HANDLE lastThread = nullptr;
DWORD lastThreadId = 0;
std::atomic<Fault> fault = Fault::None;

decltype(&CreateThread) realCreateThread = nullptr;
decltype(&EndDialog) realEndDialog = nullptr;
decltype(&SetThreadUILanguage) realSetThreadUILanguage = nullptr;

HANDLE WINAPI NotedCreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack,
                                LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                                LPDWORD id) {
    Note(L"CreateThread()");
    if (fault == Fault::NoThread) return nullptr;
    if (fault == Fault::MemoryForThread) throw std::bad_alloc();
    const HANDLE thread = realCreateThread(security, stack, start, parameter, flags, id);
    lastThread = thread;
    lastThreadId = GetThreadId(thread);
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &copy, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    const std::lock_guard guard(workersLock);
    workers.emplace_back(copy);
    return thread;
}

BOOL WINAPI NotedEndDialog(HWND dialog, INT_PTR result) {
    Note(L"EndDialog(" + WindowText(dialog) + L", " + std::to_wstring(result) + L")");
    const BOOL ended = realEndDialog(dialog, result);
    if (fault == Fault::EndsAtCancel && result == 2) realEndDialog(dialog, 1);
    return ended;
}

LANGID WINAPI NotedLanguage(LANGID language) {
    Note(L"SetThreadUILanguage(" + std::to_wstring(language) + L")");
    if (fault == Fault::MemoryInWorker) throw std::bad_alloc();
    return realSetThreadUILanguage(language);
}

std::wstring OneLine(const wchar_t* text) {
    std::wstring line = text;
    const std::size_t end = line.find(L"\r\n");
    if (end != std::wstring::npos) line.replace(end, 2, L"|");
    return line;
}

void NoteBar(const CWPSTRUCT& message) {
    const bool marquee = GetWindowLongW(message.hwnd, GWL_STYLE) & PBS_MARQUEE;
    const std::wstring style = marquee ? L", moving" : L", measured";
    switch (message.message) {
    case PBM_SETMARQUEE:
        return RecordCall(L"bar.SetMarquee(" + std::to_wstring(message.wParam) + style + L")");
    case PBM_SETRANGE32:
        return RecordCall(L"bar.SetRange(" + std::to_wstring(message.wParam) + L", " +
                          std::to_wstring(message.lParam) + L")");
    case PBM_SETPOS:
        return RecordCall(L"bar.SetPos(" + std::to_wstring(message.wParam) + L")");
    }
}

void NoteMessage(const CWPSTRUCT& message) {
    if (IsTransformDialog(message.hwnd)) {
        lastDialog = message.hwnd;
        if (message.message == obcore::kFinalStageMessage) {
            Note(L"dialog.FinalStage(" + std::to_wstring(message.wParam) + L")");
        }
    } else if (GetDlgCtrlID(message.hwnd) == OB_TRANSFORM_BAR) {
        NoteBar(message);
    } else if (GetDlgCtrlID(message.hwnd) == OB_TRANSFORM_STATUS && message.message == WM_SETTEXT) {
        RecordCall(L"status(\"" + OneLine(reinterpret_cast<const wchar_t*>(message.lParam)) +
                   L"\")");
    }
}

LRESULT CALLBACK OnMessage(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HC_ACTION) NoteMessage(*reinterpret_cast<const CWPSTRUCT*>(lParam));
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The patches and the hook of one test.
struct Watch {
    ImportPatch<decltype(&CreateThread)> createThread{"kernel32.dll", "CreateThread",
                                                      &NotedCreateThread};
    ImportPatch<decltype(&EndDialog)> endDialog{"user32.dll", "EndDialog", &NotedEndDialog};
    ImportPatch<decltype(&SetThreadUILanguage)> language{"kernel32.dll", "SetThreadUILanguage",
                                                         &NotedLanguage};
    ObLib::UniqueWindowHook hook{
        SetWindowsHookExW(WH_CALLWNDPROC, &OnMessage, nullptr, GetCurrentThreadId())};
};
std::optional<Watch> watch;

void ReplaceAll(std::wstring& text, const std::wstring& what, const std::wstring& with) {
    for (std::size_t at = text.find(what); at != std::wstring::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), with);
        at += with.size();
    }
}

// A thread at the end of a line: this one shows the dialog, any other is a worker.
void NameThread(std::wstring& line) {
    const std::size_t at = line.rfind(L" @");
    if (at == std::wstring::npos) return;
    const std::wstring com = L" with COM"; // windows bring it to the dialog's thread
    const bool hasCom = line.ends_with(com);
    if (hasCom) line.resize(line.size() - com.size());
    const bool own = line.substr(at) == L" @" + std::to_wstring(GetCurrentThreadId());
    line.replace(at, std::wstring::npos, own ? L" [dialog]" : L" [worker]");
    if (hasCom && !own) line += com;
}

// Takes the messages that a thread sends to windows of this one while it ends its dialog.
bool WaitForEnd(HANDLE thread) {
    const ULONGLONG end = GetTickCount64() + kLimit;
    while (GetTickCount64() < end) {
        const DWORD woken = MsgWaitForMultipleObjects(1, &thread, FALSE, kLimit, QS_SENDMESSAGE);
        if (woken == WAIT_OBJECT_0) return true;
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    }
    return false;
}

} // namespace

HWND FindTransformDialog() { return FindTopWindow(&IsTransformDialog, GetCurrentProcessId()); }

TransformUiDriver::TransformUiDriver(std::function<void(HWND)> act)
    : thread_([this, act = std::move(act)] {
          HWND dialog = nullptr;
          saw_ = WaitUntil([&] { return (dialog = FindTransformDialog()) != nullptr; });
          if (saw_) act(dialog);
      }) {}

void TransformUiDriver::Join() {
    if (thread_.joinable()) thread_.join();
}

bool TransformUiDriver::SawDialog() {
    Join();
    return saw_;
}

void TransformsFixture::SetUp() {
    RunFixture::SetUp();
    watch.emplace();
    ASSERT_TRUE(watch->createThread.Ok() && watch->endDialog.Ok() && watch->language.Ok());
    realCreateThread = watch->createThread.Real();
    realEndDialog = watch->endDialog.Real();
    realSetThreadUILanguage = watch->language.Real();
    lastDialog = nullptr;
    obcore::ProviderManager().Init(job_.OwnedProviderManager, 0, L"");
    Answer(L"Threads", L"1");
    FakeModules::ForgetCalls();
}

void TransformsFixture::TearDown() {
    HeldCall::Release();
    EXPECT_TRUE(JoinWorkers());
    watch.reset();
    RunFixture::TearDown();
}

void TransformsFixture::Want(bool obcore::OBOptions::*option, int providerId) {
    job_.*option = true;
    FakeModules::Answer(L"IsProviderSupport." + std::to_wstring(providerId) + L".4", L"1");
}

bool TransformsFixture::JoinWorkers() {
    std::vector<ObLib::UniqueKernelHandle> started;
    {
        const std::lock_guard guard(workersLock);
        started.swap(workers);
    }
    bool all = true;
    for (const auto& worker : started) {
        all = all && WaitForEnd(worker.Get());
    }
    return all;
}

Lines TransformsFixture::Written() const {
    Lines lines = FakeModules::Calls();
    for (std::wstring& line : lines) {
        NameThread(line);
        if (lastDialog) ReplaceAll(line, WindowText(lastDialog), L"dialog");
        ReplaceAll(line, Owner(), L"owner");
    }
    return lines;
}

Lines TransformsFixture::Written(const Lines& beginnings) const {
    Lines lines = Written();
    std::erase_if(lines, [&](const std::wstring& line) {
        for (const std::wstring& beginning : beginnings) {
            if (line.starts_with(beginning)) return false;
        }
        return true;
    });
    return lines;
}

HWND TransformsFixture::LastDialog() { return lastDialog; }

HANDLE TransformsFixture::LastThread() { return lastThread; }
DWORD TransformsFixture::LastThreadId() { return lastThreadId; }

FailingCall::FailingCall(Fault which) { fault = which; }
FailingCall::~FailingCall() { fault = Fault::None; }

} // namespace obtest
