// Converts each file of the folder "documents" beside it, with the real work process and whatever
// suite is installed, into the folder "out" beside it, and writes the outcomes to "out\report.txt";
// then each once more, into the folder "again".
#include <windows.h>

#include <fstream>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/suite/DocumentToPdf.h"

using namespace providers;
using ObLib::UniqueKernelHandle;

namespace {

const char* NameOf(SuiteOutcome outcome) {
    constexpr const char* kNames[] = {"converted", "not-a-document", "no-suite",   "protected",
                                      "failed",    "no-answer",      "unwritable", "cancelled"};
    return kNames[static_cast<int>(outcome)];
}

std::string Utf8(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

SuiteOutcome Convert(const std::wstring& folder, const std::wstring& name, const wchar_t* results,
                     WorkProcess& process) {
    const UniqueKernelHandle source(CreateFileW((folder + L"documents\\" + name).c_str(),
                                                GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                OPEN_EXISTING, 0, nullptr));
    const UniqueKernelHandle target(CreateFileW((folder + results + L'\\' + name + L".pdf").c_str(),
                                                GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                                nullptr, CREATE_NEW, 0, nullptr));
    const UniqueKernelHandle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    CallWait wait(never.Get(), nullptr);
    return ConvertDocument({source.Get(), name, folder + L"run"}, target.Get(), process, wait);
}

std::vector<std::wstring> NamesIn(const std::wstring& folder) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found;
    ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    for (bool more = static_cast<bool>(search); more;
         more = FindNextFileW(search.Get(), &found) != FALSE) {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            names.emplace_back(found.cFileName);
    }
    return names;
}

} // namespace

int wmain() {
    const std::wstring folder = *ObLib::ModuleFolder(nullptr);
    for (const wchar_t* name : {L"out", L"again", L"run"}) {
        CreateDirectoryW((folder + name).c_str(), nullptr);
    }
    std::ofstream report((folder + L"out\\report.txt").c_str(), std::ios::binary);
    WorkProcess process({folder + obcontract::kTransformWorkFileName});
    const auto names = NamesIn(folder + L"documents");
    for (const std::wstring& name : names) {
        report << Utf8(name) << '\t' << NameOf(Convert(folder, name, L"out", process)) << std::endl;
    }
    for (const std::wstring& name : names) Convert(folder, name, L"again", process);
    return RemoveDirectoryW((folder + L"run").c_str()) ? 0 : 1; // empty again
}
