// The cloud servers that tools/wine-run starts for this program (RUN --servers
// apache,tls,sabre,ocs,relay), and the relay before them, which breaks what passes through it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace obtest {

// A value that the servers were started with: "APACHE_URL", "APACHE_FILES" (the folder that it
// serves, in Windows form), "TLS_GOOD_URL", "RELAY_URL", "SERVER_USER", "SERVER_PASSWORD"
// (tests/servers/cloud_servers.py). Fails the test when there is none.
std::wstring ServerValue(const wchar_t* name);

// The relay's script (tests/servers/relay.py has the actions). On any thread.
class Relay {
public:
    // Forgets rules and requests; what passes goes to this server from now on: "apache", "sabre",
    // "ocs".
    explicit Relay(const char* server) { Begin(server); }
    void Begin(const char* server) const;

    // A rule for requests of this method ("*": any) once `skip` of them have passed, for `times` of
    // them.
    void On(const char* method, const char* action, int skip = 0, int times = 1) const;

    // Returns when a rule "hold" or "holdreply" keeps so many requests; fails the test after a
    // limit.
    void WaitUntilHeld(int requests) const;
    void Release() const;

    // "METHOD PATH BODY-LENGTH STATUS", one each; the status is that of the server, "-" when it
    // gave none.
    std::vector<std::string> Requests() const;
    // How many bytes other than 0 came in the body that "holes" has stored last.
    std::uint64_t BytesInHoles() const;
    // How many requests had a login.
    int Logins() const;
    // The methods alone, with blanks between.
    std::string Methods() const;
};

// The tests' own server with the share interface ("OCS_URL", "OCS_FILES"): its settings and what
// was shared. On any thread.
class ShareServer {
public:
    // Forgets shares and settings.
    ShareServer() { Begin(); }
    void Begin() const;

    // A setting of tests/servers/shares.py.
    void Set(const char* name, const std::string& value) const;

    // "ID PATH password|- LAST-DAY|- LABEL|-", one each.
    std::vector<std::string> Shares() const;
};

} // namespace obtest
