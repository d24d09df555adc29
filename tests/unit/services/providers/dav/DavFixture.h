// What the suites of the WebDAV client share: an account on a server with the relay before it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <winioctl.h>

#include <memory>

#include "services/providers/dav/DavClient.h"
#include "services/providers/dav/DavTransfer.h"
#include "services/providers/http/Utf8.h"
#include "tests/support/CloudServers.h"
#include "tests/support/TestFolder.h"

namespace providers {

inline HttpUrl ServerUrl(const wchar_t* name) {
    const auto url = ParseHttpUrl(ToUtf8(obtest::ServerValue(name)));
    EXPECT_TRUE(url.has_value());
    return url.value_or(HttpUrl{});
}

// The folder of a server's files, in Windows form.
inline std::wstring FilesOf(const std::string& server) {
    return obtest::ServerValue(server == "apache" ? L"APACHE_FILES" : L"SABRE_FILES");
}

// Gives a file this size, with zeros in what is new and no room on the disk for them.
inline ObLib::UniqueKernelHandle MakeSparse(const std::wstring& path, std::uint64_t size) {
    ObLib::UniqueKernelHandle file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                               OPEN_ALWAYS, 0, nullptr));
    DWORD done = 0;
    DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &done, nullptr);
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size);
    EXPECT_TRUE(SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) && SetEndOfFile(file.Get()));
    return file;
}

// A text for a result: its fault and status, or "done".
inline std::string Outcome(const std::optional<DavError>& error) {
    if (!error) return "done";
    if (error->fault == DavFault::Http)
        return "http " + std::to_string(static_cast<int>(error->http.fault));
    return "fault " + std::to_string(static_cast<int>(error->fault)) + " status " +
           std::to_string(error->status);
}
template <class Value>
std::string Outcome(const DavResult<Value>& result) {
    const auto* error = std::get_if<DavError>(&result);
    return error ? Outcome(std::optional(*error)) : "done";
}
inline std::string Outcome(DavFault fault, int status) {
    return Outcome(std::optional(DavError{fault, status, {}, std::nullopt}));
}
inline std::string Outcome(HttpFault fault) {
    return Outcome(std::optional(DavErrorOf(HttpError{fault})));
}

// No test waits for a pause.
inline constexpr DavPatience kNoPauses{3, 0, 3, 60'000};

// One run of a test for each server.
class DavAccount : public testing::TestWithParam<const char*> {
protected:
    ~DavAccount() override {
        for (const std::wstring& name : obtest::ListTree(FilesOf(Server())))
            DeleteFileW((FilesOf(Server()) + L"\\" + name).c_str());
    }

    std::string Server() const { return GetParam(); }
    bool IsApache() const { return Server() == "apache"; }
    HttpUrl Url(std::string_view name) const { return UrlBelow(root_, name); }

    std::string Stored(const std::wstring& name) const {
        return obtest::ReadFileContent(FilesOf(Server()) + L"\\" + name).value_or("none");
    }
    std::string Put(std::string_view name, std::string content) const {
        HttpRequest request;
        request.method = "PUT";
        request.url = Url(name);
        request.body = std::move(content);
        return Outcome(client_.Send(request));
    }
    std::string Version(std::string_view name) const {
        const auto there = client_.Look(Url(name));
        return std::holds_alternative<DavItem>(there) ? std::get<DavItem>(there).version : "none";
    }

    obtest::Relay relay_{GetParam()};
    HttpUrl root_ = ServerUrl(L"RELAY_URL");
    HttpLogin login_{root_.origin, obtest::ServerValue(L"SERVER_USER"),
                     ObLib::Secret(ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str())};
    ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    HttpSession session_;
    DavClient client_{session_, login_, cancelled_.Get(), kNoPauses};
};

} // namespace providers
