#include "services/providers/suite/DocumentToPdf.h"

#include <memory>
#include <optional>
#include <utility>

#include "services/providers/suite/DocumentKind.h"
#include "services/providers/suite/FileContent.h"
#include "services/providers/suite/InstalledSuite.h"
#include "services/providers/suite/OfficeRun.h"
#include "services/providers/suite/SuiteFolder.h"
#include "services/providers/suite/SuiteProcess.h"
#include "services/providers/suite/SuiteProfile.h"
#include "services/providers/suite/WholePdf.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

constexpr wchar_t kResultFolder[] = L"result";
constexpr wchar_t kResult[] = L"result\\document.pdf"; // the document's name with its extension
constexpr wchar_t kProfile[] = L"profile";
constexpr wchar_t kTemporary[] = L"temporary";
constexpr wchar_t kSettings[] = L"profile\\user\\registrymodifications.xcu";

// The copy that the suite gets: a name of its own, as the user's could be read as an option.
std::wstring CopyName(const OfficeDocument& document) {
    return std::wstring(L"document.") + document.extension;
}

bool MakeProfile(const SuiteFolder& folder) {
    for (const wchar_t* part : {kTemporary, kProfile, L"profile\\user"}) {
        if (!folder.MakeFolder(part)) return false;
    }
    const UniqueKernelHandle file = folder.MakeFile(kSettings);
    const std::string text = SuiteProfile();
    return file && ObLib::WriteWhole(file.Get(), text.data(), text.size());
}

// Converted: the document and an empty folder for the result are in the folder.
SuiteOutcome Fill(const SuiteFolder& folder, HANDLE source, const std::wstring& name,
                  CallWait& wait) {
    if (!folder.MakeFolder(kResultFolder)) return SuiteOutcome::Unwritable;
    const UniqueKernelHandle copy = folder.MakeFile(name.c_str());
    if (!copy) return SuiteOutcome::Unwritable;
    switch (CopyContent(source, copy.Get(), [&] { return wait.IsEnded(); })) {
    case CopiedContent::Whole:
        return SuiteOutcome::Converted;
    case CopiedContent::Unwritable:
        return SuiteOutcome::Unwritable;
    case CopiedContent::Ended:
        return SuiteOutcome::Cancelled;
    default:
        return SuiteOutcome::Failed;
    }
}

std::wstring Arguments(const SuiteFolder& folder, const std::wstring& name) {
    const std::string url = FileUrl(folder / kProfile); // ASCII
    return L"--headless --norestore --nolockcheck --nologo --nodefault \"-env:UserInstallation=" +
           std::wstring(url.begin(), url.end()) + L"\" --convert-to pdf --outdir \"" +
           folder / kResultFolder + L"\" \"" + folder / name + L'"';
}

// Converted: the process or thread that works has ended. `look` is called in each step.
template <class Look>
SuiteOutcome Await(HANDLE working, HANDLE job, CallWait& wait, const SuiteLimits& limits,
                   Look look) {
    constexpr DWORD kStep = 250; // milliseconds between two looks at its work
    SuiteWatch watch(limits, GetTickCount64());
    for (;;) {
        switch (wait.Until(working, kStep)) {
        case Waited::Ended:
            return SuiteOutcome::Cancelled;
        case Waited::TimedOut:
            look();
            if (watch.IsHung(TimeOfJob(job), GetTickCount64())) return SuiteOutcome::NoAnswer;
            break;
        case Waited::Signalled:
            return SuiteOutcome::Converted;
        }
    }
}

bool HasSucceeded(HANDLE process) {
    DWORD code = 1;
    return GetExitCodeProcess(process, &code) && code == 0;
}

SuiteOutcome RunSuite(const std::wstring& program, const SuiteFolder& folder,
                      const std::wstring& name, CallWait& wait, const SuiteLimits& limits) {
    if (!MakeProfile(folder)) return SuiteOutcome::Unwritable;
    const UniqueKernelHandle job = MakeSuiteJob();
    if (!job) return SuiteOutcome::Failed;
    const UniqueKernelHandle process =
        StartSuite({program, Arguments(folder, name), folder / kTemporary}, job.Get());
    if (!process) return SuiteOutcome::Failed;
    const SuiteOutcome outcome = Await(process.Get(), job.Get(), wait, limits, [] {});
    const bool succeeded = HasSucceeded(process.Get());
    EndJob(job.Get());
    WaitForSingleObject(process.Get(), INFINITE);
    return outcome == SuiteOutcome::Converted && !succeeded ? SuiteOutcome::Failed : outcome;
}

SuiteOutcome OutcomeOf(OfficeEnd end) {
    if (end == OfficeEnd::Busy) return SuiteOutcome::Busy;
    return end == OfficeEnd::Written ? SuiteOutcome::Converted : SuiteOutcome::Failed;
}

// A program that doesn't even start keeps the thread waiting; it isn't waited for then.
SuiteOutcome RunOffice(DocumentKind kind, const InstalledOffice& office, const SuiteFolder& folder,
                       const std::wstring& name, CallWait& wait, const SuiteLimits& limits) {
    constexpr DWORD kEndLimit = 5000; // milliseconds
    UniqueKernelHandle job = MakeSuiteJob();
    if (!job) return SuiteOutcome::Failed;
    const auto run =
        std::make_shared<OfficeRun>(kind, office, folder / name, folder / kResult, std::move(job));
    const UniqueKernelHandle thread = OfficeRun::Start(run);
    if (!thread) return SuiteOutcome::Failed;
    const SuiteOutcome outcome =
        Await(thread.Get(), run->Job(), wait, limits, [&] { run->FreeIfInUse(); });
    if (outcome == SuiteOutcome::Converted) return OutcomeOf(run->End());
    run->Abandon();
    WaitForSingleObject(thread.Get(), kEndLimit);
    return outcome;
}

// The programs that can convert a document of this kind.
struct SuiteFound {
    std::wstring suite;
    std::optional<InstalledOffice> office; // only looked for without a suite
};

std::optional<SuiteFound> SuiteFor(DocumentKind kind) {
    SuiteFound found{InstalledSuite(), {}};
    if (found.suite.empty()) found.office = OfficeFor(kind);
    if (found.suite.empty() && !found.office) return {};
    return found;
}

// The handle's position counts from the start again.
void Empty(HANDLE target) {
    const LARGE_INTEGER start{};
    SetFilePointerEx(target, start, nullptr, FILE_BEGIN);
    SetEndOfFile(target);
}

// Has the work process write the suite's PDF without its dates into the target, so that equal
// documents give equal PDFs. False, with an empty target, when that can't be done: a PDF that the
// work process doesn't understand goes out as the suite wrote it.
bool TakeWithoutDates(HANDLE made, HANDLE target, WorkProcess& process, CallWait& wait) {
    const WorkOrder order(obcontract::WorkKind::RemoveDates, obcontract::WorkPlain{});
    const WorkReport report = process.Run(order, made, target, wait);
    LARGE_INTEGER size;
    const bool isWhole = report.result == WorkResult::Changed && IsWholePdf(target) &&
                         GetFileSizeEx(target, &size) &&
                         report.size == static_cast<std::uint64_t>(size.QuadPart);
    if (!isWhole) Empty(target);
    return isWhole;
}

SuiteOutcome TakeResult(const SuiteFolder& folder, HANDLE target, WorkProcess& process,
                        CallWait& wait) {
    const UniqueKernelHandle made = OpenWholePdf(folder / kResult);
    if (!made) return SuiteOutcome::Failed;
    if (TakeWithoutDates(made.Get(), target, process, wait)) return SuiteOutcome::Converted;
    if (wait.IsEnded()) return SuiteOutcome::Cancelled;
    const TakenPdf taken = TakePdf(made.Get(), target, wait);
    if (taken == TakenPdf::Taken) return SuiteOutcome::Converted;
    Empty(target);
    if (taken == TakenPdf::Ended) return SuiteOutcome::Cancelled;
    return taken == TakenPdf::Unwritable ? SuiteOutcome::Unwritable : SuiteOutcome::Failed;
}

// Looks at the document in the work process, so that no suite is started that would ask for a
// password. Everything else that the work process can't read is left to the suite.
bool NeedsPassword(HANDLE source, WorkProcess& process, CallWait& wait) {
    const WorkResult result = process.Run(CheckCleanOrder(), source, nullptr, wait).result;
    return result == WorkResult::Encrypted || result == WorkResult::OtherCipher;
}

} // namespace

bool IsSuiteThere() {
    return SuiteFor(DocumentKind::Text) || OfficeFor(DocumentKind::Table) ||
           OfficeFor(DocumentKind::Slides);
}

bool IsDocument(HANDLE source, const std::wstring& name) {
    return DocumentOf(source, name).has_value();
}

SuiteOutcome ConvertDocument(const SuiteDocument& document, HANDLE target, WorkProcess& process,
                             CallWait& wait, const SuiteLimits& limits) {
    const auto form = DocumentOf(document.source, document.name);
    if (!form) return SuiteOutcome::NotADocument;
    const auto found = SuiteFor(form->kind);
    if (!found) return SuiteOutcome::NoSuite;
    if (NeedsPassword(document.source, process, wait)) return SuiteOutcome::Protected;
    if (wait.IsEnded()) return SuiteOutcome::Cancelled;
    const auto folder = SuiteFolder::MakeFor(document.folder);
    if (!folder) return SuiteOutcome::Unwritable;
    const std::wstring name = CopyName(*form);
    SuiteOutcome outcome = Fill(*folder, document.source, name, wait);
    if (outcome != SuiteOutcome::Converted) return outcome;
    outcome = found->office ? RunOffice(form->kind, *found->office, *folder, name, wait, limits)
                            : RunSuite(found->suite, *folder, name, wait, limits);
    return outcome == SuiteOutcome::Converted ? TakeResult(*folder, target, process, wait)
                                              : outcome;
}

} // namespace providers
