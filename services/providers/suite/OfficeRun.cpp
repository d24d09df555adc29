#include "services/providers/suite/OfficeRun.h"

#include <objbase.h>

#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "services/providers/suite/OfficeProcess.h"
#include "services/providers/suite/OfficeSession.h"
#include "services/providers/suite/SuiteProcess.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

constexpr DWORD kQuitLimit = 10000; // milliseconds

AutomationObject Create(const CLSID& classId) {
    ObLib::ComPtr<IDispatch> object;
    const HRESULT made = CoCreateInstance(classId, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                          reinterpret_cast<void**>(object.Put()));
    if (FAILED(made)) throw AutomationFailure{made};
    return AutomationObject(std::move(object));
}

} // namespace

UniqueKernelHandle OfficeRun::Start(std::shared_ptr<OfficeRun> run) {
    auto owned = std::make_unique<std::shared_ptr<OfficeRun>>(std::move(run));
    ObLib::UniqueModule module = ObLib::KeepThisModule();
    if (!module) return {};
    UniqueKernelHandle thread(CreateThread(nullptr, 0, &OfficeRun::Entry, owned.get(), 0, nullptr));
    if (!thread) return thread;
    static_cast<void>(owned.release()); // the thread's now, as is the reference on the module
    static_cast<void>(module.Release());
    return thread;
}

DWORD WINAPI OfficeRun::Entry(void* run) noexcept {
    {
        const std::unique_ptr<std::shared_ptr<OfficeRun>> owned(
            static_cast<std::shared_ptr<OfficeRun>*>(run));
        OfficeRun& self = **owned;
        self.end_ = ObLib::Guarded(OfficeEnd::Failed, [&] { return self.Run(); });
    }
    FreeLibraryAndExitThread(ObLib::ThisModule(), 0);
}

void OfficeRun::Abandon() noexcept {
    isAbandoned_ = true;
    EndProgram();
}

// A document of the user's may have come to the process.
bool OfficeRun::FreeIfInUse() noexcept {
    if (!HasUsersWindow(processId_)) return false;
    FreeJob(job_.Get());
    return true;
}

void OfficeRun::EndProgram() noexcept {
    if (!FreeIfInUse()) EndJob(job_.Get());
}

OfficeEnd OfficeRun::Run() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return OfficeEnd::Failed;
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    return Work();
}

OfficeEnd OfficeRun::Work() {
    const std::vector<DWORD> before = ProcessesOf(office_.path);
    OfficeSession session(ProgramFor(kind_), Create(office_.classId));
    const Adopted adopted = Adopt(before);
    if (adopted == Adopted::Shared) return OfficeEnd::Busy;
    const ObLib::ScopeExit finish([&] { Finish(session); });
    if (adopted == Adopted::Unclear) return OfficeEnd::Busy;
    if (adopted == Adopted::Refused) return OfficeEnd::NotOurs;
    // Abandoned while the program was starting, so that it wasn't in the job yet.
    if (isAbandoned_) return EndProgram(), OfficeEnd::Failed;
    session.Open(source_);
    if (isAbandoned_) return OfficeEnd::Failed;
    session.Write(target_);
    return OfficeEnd::Written;
}

// Puts the process that was started into the job.
OfficeRun::Adopted OfficeRun::Adopt(const std::vector<DWORD>& before) {
    const std::vector<DWORD> added = NewOf(before, ProcessesOf(office_.path));
    if (added.empty()) return Adopted::Shared;
    if (added.size() > 1) return Adopted::Unclear;
    UniqueKernelHandle process(
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE | SYNCHRONIZE, FALSE, added[0]));
    if (!process) return Adopted::Refused;
    processId_ = added[0];
    if (!AssignProcessToJobObject(job_.Get(), process.Get())) return Adopted::Refused;
    process_ = std::move(process);
    return Adopted::Yes;
}

// A document that the user opened meanwhile may have come to this process: it then goes on, visible
// and outside the job's limits.
void OfficeRun::Finish(OfficeSession& session) noexcept {
    session.Close();
    if (session.IsInUse() || HasUsersWindow(processId_)) {
        FreeJob(job_.Get());
        return session.LeaveToUser();
    }
    session.Quit();
    if (process_) WaitForSingleObject(process_.Get(), kQuitLimit);
    EndProgram();
}

} // namespace providers
