// winsock2.h comes before windows.h.
#include <winsock2.h>

#include "tests/support/CloudServers.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

struct SocketPolicy {
    using Handle = SOCKET;
    static Handle Empty() noexcept { return INVALID_SOCKET; }
    static Handle Normalized(Handle handle) noexcept { return handle; }
    static void Close(Handle handle) noexcept { closesocket(handle); }
};
using UniqueSocket = ObLib::UniqueResource<SocketPolicy>;

bool StartSockets() {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

UniqueSocket ConnectToControl() {
    static const bool started = StartSockets();
    EXPECT_TRUE(started);
    UniqueSocket control(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<u_short>(std::stoi(ServerValue(L"RELAY_CONTROL"))));
    const auto* to = reinterpret_cast<const sockaddr*>(&address);
    EXPECT_EQ(0, connect(control.Get(), to, sizeof address));
    return control;
}

std::vector<std::string> Command(std::string line) {
    const UniqueSocket control = ConnectToControl();
    line += "\n";
    send(control.Get(), line.data(), static_cast<int>(line.size()), 0);
    std::string reply;
    char block[4096];
    for (int got; (got = recv(control.Get(), block, sizeof block, 0)) > 0;)
        reply.append(block, static_cast<std::size_t>(got));
    std::vector<std::string> lines;
    for (std::size_t end; (end = reply.find('\n')) != std::string::npos; reply.erase(0, end + 1))
        if (end > 0) lines.push_back(reply.substr(0, end));
    return lines;
}

void Done(const std::string& line) {
    EXPECT_EQ(std::vector<std::string>{"done"}, Command(line)) << line;
}

} // namespace

std::wstring ServerValue(const wchar_t* name) {
    const wchar_t* value = _wgetenv((std::wstring(L"OB_") + name).c_str());
    EXPECT_NE(nullptr, value) << "the program isn't run with this server";
    return value ? value : L"";
}

void Relay::Begin(const char* server) const { Done(std::string("begin ") + server); }

void Relay::On(const char* method, const char* action, int skip, int times) const {
    Done(std::string("on ") + method + " " + std::to_string(skip) + " " + std::to_string(times) +
         " " + action);
}

void Relay::WaitUntilHeld(int requests) const {
    const std::vector<std::string> wanted{std::to_string(requests)};
    EXPECT_TRUE(WaitUntil([&] { return Command("waiting") == wanted; }));
}

void Relay::Release() const { Done("release"); }

std::vector<std::string> Relay::Requests() const { return Command("requests"); }

int Relay::Logins() const { return std::stoi(Command("logins").at(0)); }

std::string Relay::Methods() const {
    std::string methods;
    for (const std::string& request : Requests())
        methods += (methods.empty() ? "" : " ") + request.substr(0, request.find(' '));
    return methods;
}

} // namespace obtest
