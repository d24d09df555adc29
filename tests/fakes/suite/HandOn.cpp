#include "tests/fakes/suite/HandOn.h"

#include <winsock2.h>

#include <windows.h>

#include <cstdlib>

#include "tests/fakes/Recording.h"

namespace obtest {
namespace {

constexpr int kNotStarted = 90;
constexpr long kStartLimit = 60; // seconds

// Wine's own: the Linux path of a Windows one.
using UnixName = char*(CDECL*)(const wchar_t*);

std::wstring ScriptPath() {
    const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    const char* const name = unixName ? unixName(BesideProgram(L"hand_on.py").c_str()) : nullptr;
    if (!name) return {};
    std::wstring path(32768, L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, name, -1, path.data(), 32768);
    path.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
    return path;
}

// A process of Linux has no handle here, so that its end is seen by the end of a connection.
SOCKET Listen(unsigned short& port) {
    const SOCKET server = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    if (bind(server, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(server, 1) != 0 ||
        getsockname(server, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return INVALID_SOCKET;
    }
    port = ntohs(address.sin_port);
    return server;
}

bool Start(unsigned short port, const std::vector<std::wstring>& arguments) {
    std::wstring commandLine = L"python3 \"" + ScriptPath() + L"\" " + std::to_wstring(port);
    for (const std::wstring& argument : arguments) commandLine += L" \"" + argument + L'"';
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION made{};
    return CreateProcessW(L"\\\\?\\unix\\usr\\bin\\python3", commandLine.data(), nullptr, nullptr,
                          FALSE, 0, nullptr, nullptr, &startup, &made) != FALSE;
}

SOCKET Accept(SOCKET server) {
    fd_set waiting;
    FD_ZERO(&waiting);
    FD_SET(server, &waiting);
    timeval limit{kStartLimit, 0};
    return select(0, &waiting, nullptr, nullptr, &limit) == 1 ? accept(server, nullptr, nullptr)
                                                              : INVALID_SOCKET;
}

std::string ReadToEnd(SOCKET connection) {
    std::string text;
    char part[64];
    for (int got; (got = recv(connection, part, sizeof part, 0)) > 0;) {
        text.append(part, static_cast<std::size_t>(got));
    }
    return text;
}

} // namespace

int HandOn(const std::vector<std::wstring>& arguments) {
    WSADATA data;
    unsigned short port = 0;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return kNotStarted;
    const SOCKET server = Listen(port);
    if (server == INVALID_SOCKET || !Start(port, arguments)) return kNotStarted;
    const SOCKET connection = Accept(server);
    if (connection == INVALID_SOCKET) return kNotStarted;
    const std::string code = ReadToEnd(connection);
    return code.empty() ? kNotStarted : std::atoi(code.c_str());
}

} // namespace obtest
