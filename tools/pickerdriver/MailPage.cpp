#include "tools/pickerdriver/MailPage.h"

#include <shlwapi.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowPicture.h"
#include "tools/pickerdriver/Output.h"

namespace pickerdriver {
namespace {

constexpr std::wstring_view kPath = L"path=";

// The lines of the page's list, once it is complete.
std::optional<std::vector<std::wstring>> ReadNote(const std::wstring& path) {
    const auto content = obtest::ReadFileContent(path);
    if (!content || content->empty() || content->back() != '\n') return std::nullopt;
    std::vector<std::wstring> lines;
    for (std::size_t begin = 0; begin < content->size();) {
        const std::size_t end = content->find('\n', begin);
        std::string line = content->substr(begin, end - begin);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(FromUtf8(line));
        begin = end + 1;
    }
    return lines;
}

std::vector<std::wstring> AwaitNote(const std::wstring& path, HANDLE process, DWORD limit) {
    std::optional<std::vector<std::wstring>> lines;
    const bool came = obtest::WaitUntil(
        [&] {
            lines = ReadNote(path);
            return lines || WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
        },
        limit);
    if (!lines) lines = ReadNote(path);
    if (lines) return *lines;
    throw Failure{came ? L"the page ended without a list of what it got"
                       : L"time is up: the page hasn't listed what it got"};
}

void KeepCopies(const std::vector<std::wstring>& note, const std::wstring& folder) {
    for (const std::wstring& line : note) {
        if (!line.starts_with(kPath)) continue;
        const std::wstring path = line.substr(kPath.size());
        const std::wstring copy = folder + L"\\" + PathFindFileNameW(path.c_str());
        if (!CopyFileW(path.c_str(), copy.c_str(), FALSE)) {
            throw Failure{L"the page got " + path + L", which can't be copied to " + copy};
        }
    }
}

} // namespace

bool HasAnswer(const Task& task) { return ReadNote(task.pageResult).has_value(); }

bool HasFiles(const Task& task) {
    const auto lines = ReadNote(task.pageResult);
    return lines && std::ranges::any_of(
                        *lines, [](const std::wstring& line) { return line.starts_with(kPath); });
}

MailPage::MailPage(const std::wstring& commandLine) {
    std::wstring own = commandLine; // the call writes into it
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, own.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        throw Failure{L"error " + std::to_wstring(GetLastError()) + L": can't start " +
                      commandLine};
    }
    CloseHandle(process.hThread);
    process_.Reset(process.hProcess);
    processId_ = process.dwProcessId;
}

MailPage::~MailPage() {
    if (WaitForSingleObject(process_.Get(), 0) != WAIT_OBJECT_0) {
        TerminateProcess(process_.Get(), 1);
    }
}

void MailPage::LookAtAnswer(const Task& task) const {
    const std::vector<std::wstring> note = AwaitNote(task.pageResult, Process(), task.limit);
    for (const std::wstring& line : note) Say(L"page: " + line);
    if (!task.keepFolder.empty()) KeepCopies(note, task.keepFolder);
}

HWND MailPage::Window() const { return obtest::FindMainWindow(processId_); }

void MailPage::Close() const {
    if (const HWND window = Window()) PostMessageW(window, WM_CLOSE, 0, 0);
}

int MailPage::AwaitEnd(DWORD limit) const {
    if (WaitForSingleObject(Process(), limit) != WAIT_OBJECT_0) {
        throw Failure{L"time is up: the page doesn't end"};
    }
    DWORD code = 1;
    GetExitCodeProcess(Process(), &code);
    return static_cast<int>(code);
}

} // namespace pickerdriver
