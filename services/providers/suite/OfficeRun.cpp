#include "services/providers/suite/OfficeRun.h"

#include <objbase.h>

#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "services/providers/suite/OfficeProcess.h"
#include "services/providers/suite/SuiteProcess.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

constexpr DWORD kQuitLimit = 10000; // milliseconds

// The arguments with the path in front.
std::vector<AutomationArgument> With(const wchar_t* name, const std::wstring& path,
                                     AutomationArguments rest) {
    std::vector<AutomationArgument> all{{name, path}};
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

// The step of a clean-up: what fails doesn't stop the next one.
template <class Step>
void Try(Step step) noexcept {
    ObLib::RanGuarded(step);
}

// Options of the user's own, which some programs keep: set to the given values for a scope.
class ChangedOptions {
public:
    ChangedOptions(const AutomationObject& application, AutomationArguments options)
        : application_(application) {
        for (const AutomationArgument& option : options) Change(option);
    }
    ~ChangedOptions() {
        for (const AutomationArgument& option : before_) {
            Try([&] { application_.Get(L"Options").Put(option.name, option.value); });
        }
    }
    ChangedOptions(const ChangedOptions&) = delete;
    ChangedOptions& operator=(const ChangedOptions&) = delete;

private:
    void Change(const AutomationArgument& option) {
        const AutomationObject options = application_.Get(L"Options");
        const bool before = options.GetNumber(option.name) != 0;
        options.Put(option.name, option.value);
        before_.push_back({option.name, before});
    }
    const AutomationObject& application_;
    std::vector<AutomationArgument> before_;
};

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
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<const wchar_t*>(&OfficeRun::Entry), &module)) {
        return {};
    }
    UniqueKernelHandle thread(CreateThread(nullptr, 0, &OfficeRun::Entry, owned.get(), 0, nullptr));
    if (!thread) {
        FreeLibrary(module);
        return thread;
    }
    static_cast<void>(owned.release()); // the thread's now
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
    EndJob(job_.Get());
}

OfficeEnd OfficeRun::Run() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return OfficeEnd::Failed;
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    return Work();
}

OfficeEnd OfficeRun::Work() {
    const std::vector<DWORD> before = ProcessesOf(office_.path);
    const AutomationObject application = Create(office_.classId);
    const Adopted adopted = Adopt(before);
    if (adopted == Adopted::Shared) return OfficeEnd::Busy;
    // Abandoned while the program was starting, so that it wasn't in the job yet.
    if (isAbandoned_) return EndJob(job_.Get()), OfficeEnd::Failed;
    const AutomationObject documents = application.Get(ProgramFor(kind_).documents);
    const ObLib::ScopeExit quit([&] { Quit(application, documents); });
    if (adopted == Adopted::No) return OfficeEnd::Busy;
    Convert(application, documents);
    return OfficeEnd::Written;
}

// Puts the process that was started into the job. Shared: a program that runs already serves the
// call. No: it isn't clear which process it is, or it can't be ended by this one.
OfficeRun::Adopted OfficeRun::Adopt(const std::vector<DWORD>& before) {
    const std::vector<DWORD> added = NewOf(before, ProcessesOf(office_.path));
    if (added.empty()) return Adopted::Shared;
    process_.Reset(
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE | SYNCHRONIZE, FALSE, added[0]));
    const bool isOurs =
        added.size() == 1 && process_ && AssignProcessToJobObject(job_.Get(), process_.Get());
    return isOurs ? Adopted::Yes : Adopted::No;
}

void OfficeRun::Convert(const AutomationObject& application,
                        const AutomationObject& documents) const {
    const OfficeProgram& program = ProgramFor(kind_);
    for (const AutomationArgument& setting : program.settings) {
        application.Put(setting.name, setting.value);
    }
    const ChangedOptions options(application, program.options);
    const AutomationObject document =
        documents.CallForObject(L"Open", With(L"FileName", source_, program.open));
    const ObLib::ScopeExit close([&] { Try([&] { document.Call(L"Close", program.close); }); });
    document.Call(program.write, With(program.writeFile, target_, program.writeRest));
}

// A document that the user opened meanwhile may have come to this process: it then goes on, visible
// and outside the job's limits.
void OfficeRun::Quit(const AutomationObject& application, const AutomationObject& documents) {
    bool isInUse = false;
    Try([&] {
        isInUse = documents.GetNumber(L"Count") > 0;
        if (!isInUse) application.Call(L"Quit", ProgramFor(kind_).quit);
    });
    if (isInUse && !isAbandoned_) {
        FreeJob(job_.Get());
        Try([&] { application.Put(L"Visible", true); });
        return;
    }
    if (process_) WaitForSingleObject(process_.Get(), kQuitLimit);
    EndJob(job_.Get());
}

} // namespace providers
