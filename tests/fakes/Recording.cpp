#include "tests/fakes/Recording.h"

#include <cwchar>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {
namespace {

std::string ReadBytes(const std::wstring& path) {
    const ObLib::UniqueKernelHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                     OPEN_EXISTING, 0, nullptr));
    std::string bytes;
    if (!file) return bytes;
    char chunk[4096];
    DWORD count = 0;
    while (ReadFile(file.Get(), chunk, sizeof(chunk), &count, nullptr) && count > 0) {
        bytes.append(chunk, count);
    }
    return bytes;
}

// A call that the script names under "Hold" stays inside until a test has let it go.
void HoldIfAsked(const std::wstring& line) {
    constexpr DWORD longest = 60000; // milliseconds
    const auto held = ScriptedAnswer(L"Hold");
    if (!held || !line.starts_with(*held + L"(")) return;
    const std::wstring sign = BesideProgram(kHeldFileName);
    AppendUtf8File(sign, line);
    const ULONGLONG begin = GetTickCount64();
    while (GetFileAttributesW(sign.c_str()) != INVALID_FILE_ATTRIBUTES) {
        if (GetTickCount64() - begin > longest) return;
        Sleep(1);
    }
}

} // namespace

std::wstring BesideProgram(const wchar_t* fileName) {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring beside(path, length);
    beside.resize(beside.find_last_of(L'\\') + 1);
    return beside + fileName;
}

std::wstring ReadUtf8File(const std::wstring& path) {
    const std::string bytes = ReadBytes(path);
    const int size = static_cast<int>(bytes.size());
    const int units = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), units);
    return text;
}

void AppendUtf8File(const std::wstring& path, const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
    const ObLib::UniqueKernelHandle file(CreateFileW(path.c_str(), FILE_APPEND_DATA,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                     OPEN_ALWAYS, 0, nullptr));
    DWORD written = 0;
    if (file) WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(size), &written, nullptr);
}

void RecordCall(const std::wstring& line) {
    const DWORD error = GetLastError();
    AppendUtf8File(BesideProgram(kCallsFileName), line + L"\n");
    HoldIfAsked(line);
    SetLastError(error);
}

std::optional<std::wstring> ScriptedAnswer(const wchar_t* call) {
    const std::wstring script = ReadUtf8File(BesideProgram(kScriptFileName));
    const std::wstring key = std::wstring(call) + L"=";
    std::optional<std::wstring> answer;
    for (std::size_t start = 0; start < script.size();) {
        std::size_t end = script.find(L'\n', start);
        if (end == std::wstring::npos) end = script.size();
        if (script.compare(start, key.size(), key) == 0) {
            answer = script.substr(start + key.size(), end - start - key.size());
        }
        start = end + 1;
    }
    return answer;
}

std::uint64_t ScriptedNumber(const wchar_t* call, std::uint64_t otherwise) {
    const auto answer = ScriptedAnswer(call);
    if (!answer) return otherwise;
    if (answer->starts_with(L'-')) {
        return static_cast<std::uint64_t>(std::wcstoll(answer->c_str(), nullptr, 10));
    }
    return std::wcstoull(answer->c_str(), nullptr, 10);
}

std::wstring Quoted(const wchar_t* text) {
    return text ? L"\"" + std::wstring(text) + L"\"" : std::wstring(L"null");
}

std::wstring WindowText(HWND window) {
    return std::to_wstring(reinterpret_cast<std::uint64_t>(window));
}

} // namespace obtest
