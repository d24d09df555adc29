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

UniqueSocket ConnectTo(const wchar_t* control) {
    static const bool started = StartSockets();
    EXPECT_TRUE(started);
    UniqueSocket connection(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<u_short>(std::stoi(ServerValue(control))));
    const auto* to = reinterpret_cast<const sockaddr*>(&address);
    EXPECT_EQ(0, connect(connection.Get(), to, sizeof address));
    return connection;
}

std::vector<std::string> Command(const wchar_t* control, std::string line) {
    const UniqueSocket connection = ConnectTo(control);
    line += "\n";
    send(connection.Get(), line.data(), static_cast<int>(line.size()), 0);
    std::string reply;
    char block[4096];
    for (int got; (got = recv(connection.Get(), block, sizeof block, 0)) > 0;)
        reply.append(block, static_cast<std::size_t>(got));
    std::vector<std::string> lines;
    for (std::size_t end; (end = reply.find('\n')) != std::string::npos; reply.erase(0, end + 1))
        if (end > 0) lines.push_back(reply.substr(0, end));
    return lines;
}

constexpr wchar_t kRelay[] = L"RELAY_CONTROL";
constexpr wchar_t kShares[] = L"OCS_CONTROL";

void Done(const wchar_t* control, const std::string& line) {
    EXPECT_EQ(std::vector<std::string>{"done"}, Command(control, line)) << line;
}

} // namespace

std::wstring ServerValue(const wchar_t* name) {
    const wchar_t* value = _wgetenv((std::wstring(L"OB_") + name).c_str());
    EXPECT_NE(nullptr, value) << "the program isn't run with this server";
    return value ? value : L"";
}

void Relay::Begin(const char* server) const { Done(kRelay, std::string("begin ") + server); }

void Relay::On(const char* method, const char* action, int skip, int times) const {
    Done(kRelay, std::string("on ") + method + " " + std::to_string(skip) + " " +
                     std::to_string(times) + " " + action);
}

void Relay::WaitUntilHeld(int requests) const {
    const std::vector<std::string> wanted{std::to_string(requests)};
    EXPECT_TRUE(WaitUntil([&] { return Command(kRelay, "waiting") == wanted; }));
}

void Relay::Release() const { Done(kRelay, "release"); }

std::vector<std::string> Relay::Requests() const { return Command(kRelay, "requests"); }

std::uint64_t Relay::BytesInHoles() const { return std::stoull(Command(kRelay, "nonzero").at(0)); }

int Relay::Logins() const { return std::stoi(Command(kRelay, "logins").at(0)); }

std::string Relay::Methods() const {
    std::string methods;
    for (const std::string& request : Requests())
        methods += (methods.empty() ? "" : " ") + request.substr(0, request.find(' '));
    return methods;
}

void ShareServer::Begin() const { Done(kShares, "begin"); }

void ShareServer::Set(const char* name, const std::string& value) const {
    Done(kShares, std::string("set ") + name + " " + value);
}

std::vector<std::string> ShareServer::Shares() const { return Command(kShares, "shares"); }

} // namespace obtest
