#include "tests/e2e/Curl.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Utf8.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

constexpr DWORD kLimit = 60'000; // milliseconds

// Wine's own: the Linux path of a Windows one.
using UnixName = char*(CDECL*)(const wchar_t*);

std::string UnixPath(const std::wstring& path) {
    const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    const char* const name = unixName ? unixName(path.c_str()) : nullptr;
    EXPECT_NE(name, nullptr);
    return name ? name : "";
}

// In quotation marks, as curl's file of settings has it.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\"\n";
}

std::wstring Wide(const std::string& bytes) {
    std::wstring text(bytes.size(), L'\0');
    text.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                            static_cast<int>(text.size()))));
    return text;
}

// A process of Linux has no handle here, so that a file marks its end.
bool Start(const std::string& script) {
    std::wstring commandLine = L"sh \"" + Wide(script) + L"\"";
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\sh", commandLine.data(), nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &startup, &made)) {
        return false;
    }
    const ObLib::UniqueKernelHandle process(made.hProcess);
    const ObLib::UniqueKernelHandle thread(made.hThread);
    return true;
}

} // namespace

std::optional<std::string> CurlGet(const std::wstring& address, const std::wstring& user,
                                   const std::wstring& password) {
    const TestFolder folder;
    const std::string there = UnixPath(folder.Path());
    std::string settings = "silent\nfail\nnoproxy = \"*\"\nurl = " + Quoted(Utf8(address)) +
                           "output = " + Quoted(there + "/body");
    if (!user.empty()) settings += "user = " + Quoted(Utf8(user + L":" + password));
    folder.File(L"settings", settings);
    const std::wstring script = folder.File(L"get.sh", "cd '" + there +
                                                           "'\n"
                                                           "curl --config settings\n"
                                                           "echo $? > ending\n"
                                                           "mv ending ended\n");
    EXPECT_TRUE(Start(UnixPath(script))) << GetLastError();
    EXPECT_TRUE(WaitUntil([&] { return ReadFileContent(folder / L"ended").has_value(); }, kLimit));
    EXPECT_EQ(ReadFileContent(folder / L"ended"), "0\n") << Utf8(address);
    return ReadFileContent(folder / L"body");
}

} // namespace obtest
