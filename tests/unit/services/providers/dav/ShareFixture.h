// What the suites of the share interface share: an account on the tests' own server with the relay
// before it, and one file.
#pragma once

#include "services/providers/dav/ShareApi.h"
#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {

inline ShareDate LocalToday() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {std::chrono::year(now.wYear), std::chrono::month(now.wMonth),
            std::chrono::day(now.wDay)};
}

inline ShareDate InDays(int days) {
    return {std::chrono::sys_days(LocalToday()) + std::chrono::days(days)};
}

inline std::string Outcome(const ShareError& error) {
    return error.fault == ShareFault::Dav
               ? Outcome(std::optional(error.dav))
               : "share " + std::to_string(static_cast<int>(error.fault));
}
inline std::string Outcome(ShareFault fault) { return Outcome(ShareError{fault, {}, {}}); }
template <class Value>
std::string Outcome(const ShareOutcome<Value>& result) {
    const auto* error = std::get_if<ShareError>(&result);
    return error ? Outcome(*error) : "done";
}

class ShareAccount : public testing::Test {
protected:
    ShareAccount() {
        const HttpUrl server = ServerUrl(L"OCS_URL");
        root_.path = server.path;
        EXPECT_TRUE(PutFile("a b.txt", "content"));
    }

    bool PutFile(std::string_view name, std::string content) const {
        HttpRequest request;
        request.method = "PUT";
        request.url = UrlBelow(root_, name);
        request.body = std::move(content);
        return Outcome(client_.Send(request)) == "done";
    }

    // The interface, with what the server's settings are by now.
    ShareApi Api() const {
        auto found = ShareApi::Find(client_, root_);
        EXPECT_EQ("done", Outcome(found));
        return std::get<0>(found).value();
    }
    ShareWish Wish(const char* label = "ours 1") const {
        return {UrlBelow(root_, "a b.txt"), nullptr, std::nullopt, label};
    }
    ShareOutcome<LinkShare> Make(const ShareWish& wish) const { return Api().Make(client_, wish); }

    // What somebody gets by a link with this password.
    std::string Download(const std::wstring& link, const char* password = "") const {
        HttpRequest request;
        request.url = ParseHttpUrl(ToUtf8(link)).value_or(HttpUrl{});
        const HttpLogin login{request.url.origin, L"anybody", ObLib::Secret(password)};
        const DavClient others(session_, login, nullptr, kNoPauses);
        const auto reply = others.Send(request);
        return Outcome(reply) == "done" ? std::get<HttpReply>(reply).body : Outcome(reply);
    }

    // The words of each share from its path on, without its number.
    std::vector<std::string> Shares() const {
        auto shares = server_.Shares();
        for (std::string& share : shares) share.erase(0, share.find(' ') + 1);
        return shares;
    }

    obtest::ShareServer server_;
    obtest::Relay relay_{"ocs"};
    HttpUrl root_ = ServerUrl(L"RELAY_URL");
    HttpLogin login_{root_.origin, obtest::ServerValue(L"SERVER_USER"),
                     ObLib::Secret(ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str())};
    ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    HttpSession session_;
    DavClient client_{session_, login_, cancelled_.Get(), kNoPauses};
};

} // namespace providers
