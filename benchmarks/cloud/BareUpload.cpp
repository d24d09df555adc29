// The least that puts a file on a server with the system's HTTP client: one PUT, blocks of 1 MB.
//
//   bare_upload URL FILE NAME
//
// User and password come from OB_SERVER_USER and OB_SERVER_PASSWORD. Prints the seconds.
#include <windows.h>

#include <winhttp.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"
#include "services/providers/http/InternetHandle.h"

namespace {

using providers::UniqueInternetHandle;

constexpr std::size_t kBlock = 1u << 20; // bytes

struct Target {
    std::wstring host = std::wstring(256, L'\0');
    std::wstring path = std::wstring(1024, L'\0');
    INTERNET_PORT port = 0;
    bool isSecure = false;
};

Target TargetOf(const std::wstring& url) {
    Target target;
    URL_COMPONENTS parts{sizeof parts};
    parts.lpszHostName = target.host.data();
    parts.dwHostNameLength = static_cast<DWORD>(target.host.size());
    parts.lpszUrlPath = target.path.data();
    parts.dwUrlPathLength = static_cast<DWORD>(target.path.size());
    WinHttpCrackUrl(url.c_str(), 0, 0, &parts);
    target.port = parts.nPort;
    target.isSecure = parts.nScheme == INTERNET_SCHEME_HTTPS;
    return target;
}

bool SendFile(HINTERNET request, HANDLE file) {
    std::vector<char> block(kBlock);
    for (;;) {
        DWORD size = 0, sent = 0;
        if (!ReadFile(file, block.data(), static_cast<DWORD>(block.size()), &size, nullptr))
            return false;
        if (size == 0) return true;
        if (!WinHttpWriteData(request, block.data(), size, &sent) || sent != size) return false;
    }
}

bool Put(const std::wstring& url, HANDLE file, DWORD size) {
    const Target target = TargetOf(url);
    const UniqueInternetHandle session(
        WinHttpOpen(L"bare", WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0));
    const UniqueInternetHandle connection(
        WinHttpConnect(session.Get(), target.host.c_str(), target.port, 0));
    const UniqueInternetHandle request(
        WinHttpOpenRequest(connection.Get(), L"PUT", target.path.c_str(), nullptr, nullptr, nullptr,
                           target.isSecure ? WINHTTP_FLAG_SECURE : 0));
    WinHttpSetCredentials(request.Get(), WINHTTP_AUTH_TARGET_SERVER, WINHTTP_AUTH_SCHEME_BASIC,
                          _wgetenv(L"OB_SERVER_USER"), _wgetenv(L"OB_SERVER_PASSWORD"), nullptr);
    DWORD status = 0, length = sizeof status;
    return WinHttpSendRequest(request.Get(), nullptr, 0, nullptr, 0, size, 0) &&
           SendFile(request.Get(), file) && WinHttpReceiveResponse(request.Get(), nullptr) &&
           WinHttpQueryHeaders(request.Get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                               nullptr, &status, &length, nullptr) &&
           status == HTTP_STATUS_CREATED;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count != 4) return bench::Fail("three arguments");
    const ObLib::UniqueKernelHandle file(
        CreateFileW(words[2], GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.Get(), &size)) return bench::Fail("the file");
    const bench::Stopwatch watch;
    if (!Put(std::wstring(words[1]) + words[3], file.Get(), static_cast<DWORD>(size.QuadPart)))
        return bench::Fail("the bare upload");
    bench::PrintSeries("seconds", {watch.Milliseconds() / 1000});
    return 0;
}
