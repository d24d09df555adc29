#include "services/providers/suite/DocumentToPdf.h"

#include <string_view>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "services/providers/suite/DocumentKind.h"
#include "services/providers/suite/FileContent.h"
#include "services/providers/suite/InstalledSuite.h"
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

bool WriteSettings(const SuiteFolder& folder) {
    const UniqueKernelHandle file(folder.MakeFile(kSettings));
    const std::string text = SuiteProfile();
    return file && ObLib::WriteWhole(file.Get(), text.data(), text.size());
}

// Converted: all that the suite needs is in the folder.
SuiteOutcome Fill(const SuiteFolder& folder, HANDLE source, const std::wstring& name,
                  CallWait& wait) {
    for (const wchar_t* part : {kResultFolder, kTemporary, kProfile, L"profile\\user"}) {
        if (!folder.MakeFolder(part)) return SuiteOutcome::Unwritable;
    }
    const UniqueKernelHandle copy(folder.MakeFile(name.c_str()));
    if (!copy || !WriteSettings(folder)) return SuiteOutcome::Unwritable;
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

// Converted: the suite has ended and reported success. An exit code is its word; the file counts.
SuiteOutcome Await(HANDLE process, HANDLE job, CallWait& wait, const SuiteLimits& limits) {
    constexpr DWORD kStep = 250; // milliseconds between two looks at its work
    SuiteWatch watch(limits, GetTickCount64());
    for (;;) {
        switch (wait.Until(process, kStep)) {
        case Waited::Ended:
            return SuiteOutcome::Cancelled;
        case Waited::TimedOut:
            if (watch.IsHung(TimeOfJob(job), GetTickCount64())) return SuiteOutcome::NoAnswer;
            break;
        case Waited::Signalled: {
            DWORD code = 1;
            GetExitCodeProcess(process, &code);
            return code == 0 ? SuiteOutcome::Converted : SuiteOutcome::Failed;
        }
        }
    }
}

SuiteOutcome RunSuite(const std::wstring& program, const SuiteFolder& folder,
                      const std::wstring& name, CallWait& wait, const SuiteLimits& limits) {
    const UniqueKernelHandle job = MakeSuiteJob();
    if (!job) return SuiteOutcome::Failed;
    const UniqueKernelHandle process =
        StartSuite({program, Arguments(folder, name), folder / kTemporary}, job.Get());
    if (!process) return SuiteOutcome::Failed;
    const SuiteOutcome outcome = Await(process.Get(), job.Get(), wait, limits);
    EndJob(job.Get());
    WaitForSingleObject(process.Get(), INFINITE);
    return outcome;
}

// The handle's position counts from the start again.
void Empty(HANDLE target) {
    const LARGE_INTEGER start{};
    SetFilePointerEx(target, start, nullptr, FILE_BEGIN);
    SetEndOfFile(target);
}

SuiteOutcome TakeResult(const SuiteFolder& folder, HANDLE target) {
    switch (TakeWholePdf(folder / kResult, target)) {
    case TakenPdf::Taken:
        return SuiteOutcome::Converted;
    case TakenPdf::Unwritable:
        Empty(target);
        return SuiteOutcome::Unwritable;
    default:
        Empty(target);
        return SuiteOutcome::Failed;
    }
}

// Looks at the document in the work process, so that no suite is started that would ask for a
// password. Everything else that the work process can't read is left to the suite.
bool NeedsPassword(HANDLE source, WorkProcess& process, CallWait& wait) {
    return process.Run(CheckCleanOrder(), source, nullptr, wait).result == WorkResult::Encrypted;
}

} // namespace

bool IsSuiteThere() { return !InstalledSuite().empty(); }

bool IsDocument(HANDLE source, const std::wstring& name) {
    return DocumentOf(source, name).has_value();
}

SuiteOutcome ConvertDocument(const SuiteDocument& document, HANDLE target, WorkProcess& process,
                             CallWait& wait, const SuiteLimits& limits) {
    const auto form = DocumentOf(document.source, document.name);
    if (!form) return SuiteOutcome::NotADocument;
    const std::wstring program = InstalledSuite();
    if (program.empty()) return SuiteOutcome::NoSuite;
    if (NeedsPassword(document.source, process, wait)) return SuiteOutcome::Protected;
    if (wait.IsEnded()) return SuiteOutcome::Cancelled;
    const auto folder = SuiteFolder::MakeBelow(document.folder);
    if (!folder) return SuiteOutcome::Unwritable;
    const std::wstring name = CopyName(*form);
    SuiteOutcome outcome = Fill(*folder, document.source, name, wait);
    if (outcome != SuiteOutcome::Converted) return outcome;
    outcome = RunSuite(program, *folder, name, wait, limits);
    return outcome == SuiteOutcome::Converted ? TakeResult(*folder, target) : outcome;
}

} // namespace providers
