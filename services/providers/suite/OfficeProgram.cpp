#include "services/providers/suite/OfficeProgram.h"

#include <objbase.h>

#include <cwchar>

#include "services/providers/suite/RegistryText.h"
#include "services/providers/suite/TrustedProgram.h"

namespace providers {
namespace {

constexpr int kMacrosOff = 3; // msoAutomationSecurityForceDisable
constexpr int kTrue = -1;     // msoTrue
constexpr int kFalse = 0;     // msoFalse

// A password that no document has: one that needs another fails instead of asking.
const std::wstring kNoPassword = L"-";

const AutomationArgument kTextSettings[] = {{L"AutomationSecurity", kMacrosOff},
                                            {L"DisplayAlerts", 0}};
const AutomationArgument kTextOptions[] = {{L"UpdateLinksAtOpen", false}};
const AutomationArgument kTextOpen[] = {
    {L"ConfirmConversions", false},     {L"ReadOnly", true}, {L"AddToRecentFiles", false},
    {L"PasswordDocument", kNoPassword}, {L"Visible", false}, {L"OpenAndRepair", false},
    {L"NoEncodingDialog", true}};
const AutomationArgument kTextWrite[] = {{L"ExportFormat", 17}, {L"OpenAfterExport", false}};
const AutomationArgument kTextClose[] = {{L"SaveChanges", 0}};

const AutomationArgument kTableSettings[] = {
    {L"AutomationSecurity", kMacrosOff}, {L"DisplayAlerts", false}, {L"EnableEvents", false}};
// Documents that the user opens meanwhile then get a process of their own.
const AutomationArgument kTableOptions[] = {{L"IgnoreRemoteRequests", true}};
const AutomationArgument kTableOpen[] = {
    {L"UpdateLinks", 0},        {L"ReadOnly", true},
    {L"Password", kNoPassword}, {L"IgnoreReadOnlyRecommended", true},
    {L"Notify", false},         {L"AddToMru", false}};
const AutomationArgument kTableWrite[] = {{L"Type", 0}, {L"OpenAfterPublish", false}};
const AutomationArgument kTableClose[] = {{L"SaveChanges", false}};

// Without a window for the document this one shows nothing.
const AutomationArgument kSlidesSettings[] = {{L"AutomationSecurity", kMacrosOff},
                                              {L"DisplayAlerts", 1}}; // ppAlertsNone
const AutomationArgument kSlidesOpen[] = {
    {L"ReadOnly", kTrue}, {L"Untitled", kFalse}, {L"WithWindow", kFalse}};
const AutomationArgument kSlidesWrite[] = {{L"FileFormat", 32}}; // ppSaveAsPDF

// In the order of DocumentKind.
const OfficeProgram kPrograms[] = {
    {L"Word.Application", L"Documents", kTextSettings, L"Options", kTextOptions, kTextOpen,
     L"ExportAsFixedFormat", L"OutputFileName", kTextWrite, kTextClose, kTextClose},
    {L"Excel.Application",
     L"Workbooks",
     kTableSettings,
     L"Application",
     kTableOptions,
     kTableOpen,
     L"ExportAsFixedFormat",
     L"Filename",
     kTableWrite,
     kTableClose,
     {}},
    {L"PowerPoint.Application",
     L"Presentations",
     kSlidesSettings,
     L"Application",
     {},
     kSlidesOpen,
     L"SaveAs",
     L"FileName",
     kSlidesWrite,
     {},
     {}},
};

// The program of a command line, which may be without quotes although its path has blanks.
std::wstring ProgramOf(const std::wstring& commandLine) {
    constexpr std::wstring_view kEnd = L".exe";
    if (commandLine.starts_with(L'"')) return commandLine.substr(1, commandLine.find(L'"', 1) - 1);
    for (std::size_t at = 0; at + kEnd.size() <= commandLine.size(); ++at) {
        if (_wcsnicmp(commandLine.c_str() + at, kEnd.data(), kEnd.size()) == 0) {
            return commandLine.substr(0, at + kEnd.size());
        }
    }
    return {};
}

// A value of a class, in the order in which the system looks: the user's own registration comes
// before that of the machine.
std::wstring ClassText(const std::wstring& key, const wchar_t* name, ObLib::RegistryView view) {
    const std::wstring path = L"Software\\Classes\\" + key;
    const std::wstring own = RegistryText(HKEY_CURRENT_USER, path.c_str(), name, view);
    return own.empty() ? RegistryText(HKEY_LOCAL_MACHINE, path.c_str(), name, view) : own;
}

// The system starts the second value's program where there is one.
std::wstring ServerOf(const std::wstring& classId, ObLib::RegistryView view) {
    const std::wstring key = L"CLSID\\" + classId + L"\\LocalServer32";
    const auto value = [&](const wchar_t* name) { return ClassText(key, name, view); };
    const std::wstring program = TrustedProgram(ProgramOf(value(nullptr)));
    const std::wstring other = value(L"ServerExecutable");
    if (program.empty() || other.empty()) return program;
    return TrustedProgram(other);
}

} // namespace

const OfficeProgram& ProgramFor(DocumentKind kind) {
    return kPrograms[static_cast<std::size_t>(kind)];
}

std::optional<InstalledOffice> OfficeFor(DocumentKind kind) {
    const std::wstring id = ClassText(std::wstring(ProgramFor(kind).name) + L"\\CLSID", nullptr,
                                      ObLib::RegistryView::Plain);
    InstalledOffice office{};
    if (id.empty() || FAILED(CLSIDFromString(id.c_str(), &office.classId))) return {};
    for (const auto view : {ObLib::RegistryView::Bits64, ObLib::RegistryView::Bits32}) {
        office.path = ServerOf(id, view);
        if (!office.path.empty()) return office;
    }
    return {};
}

} // namespace providers
