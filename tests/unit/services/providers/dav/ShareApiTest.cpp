#include "services/providers/dav/ShareApi.h"

#include <gtest/gtest.h>

#include "tests/unit/services/providers/dav/ShareFixture.h"

namespace providers {
namespace {

using Lines = std::vector<std::string>;

class ShareApiTest : public ShareAccount {};

TEST_F(ShareApiTest, IsFoundBesideTheWebDavRoot) {
    EXPECT_TRUE(Api().Rules().canShareByLink);
    HttpUrl below = root_;
    below.path += "folder/";
    EXPECT_EQ("done", Outcome(ShareApi::Find(client_, below)));
    server_.Set("interface", "0");
    const auto none = ShareApi::Find(client_, root_);
    ASSERT_EQ("done", Outcome(none));
    EXPECT_FALSE(std::get<0>(none).has_value());
}

TEST_F(ShareApiTest, IsFoundAtTheServersRoot) {
    relay_.On("GET", "status 404|=<html/>");
    relay_.On("GET",
              "status 200|=<ocs><meta><statuscode>200</statuscode></meta><data><capabilities>"
              "<files_sharing><api_enabled>1</api_enabled></files_sharing></capabilities>"
              "</data></ocs>");
    const auto found = ShareApi::Find(client_, root_);
    ASSERT_EQ("done", Outcome(found));
    EXPECT_TRUE(std::get<0>(found).has_value());
    const auto requests = relay_.Requests();
    ASSERT_EQ(4u, requests.size());
    EXPECT_TRUE(requests[2].starts_with("GET /cloud/ocs/v2.php/cloud/capabilities"));
    EXPECT_TRUE(requests[3].starts_with("GET /ocs/v2.php/cloud/capabilities"));
}

TEST_F(ShareApiTest, IsntFoundOnAServerWithoutIt) {
    const HttpUrl root = ServerUrl(L"SABRE_URL");
    const HttpLogin login{root.origin, login_.user, login_.password};
    const auto none = ShareApi::Find(DavClient(session_, login, nullptr, kNoPauses), root);
    ASSERT_EQ("done", Outcome(none));
    EXPECT_FALSE(std::get<0>(none).has_value());
}

// What is at the server's root may be another application's, with other files.
TEST_F(ShareApiTest, IsntLookedForBesideAnyFolder) {
    relay_.Begin("ocs");
    relay_.On("GET",
              "status 200|=<ocs><meta><statuscode>200</statuscode></meta><data><capabilities>"
              "<files_sharing><api_enabled>1</api_enabled></files_sharing></capabilities>"
              "</data></ocs>",
              0, 100);
    const auto isFound = [&](const char* path) {
        HttpUrl root = root_;
        root.path = path;
        const auto found = ShareApi::Find(client_, root);
        return std::holds_alternative<std::optional<ShareApi>>(found) &&
               std::get<0>(found).has_value();
    };
    for (const char* path : {"/", "/dav/", "/files/", "/folder/webdav/"})
        EXPECT_FALSE(isFound(path)) << path;
    EXPECT_EQ("", relay_.Methods());
    for (const char* path : {"/webdav/", "/dav/files/ann/", "/remote.php/webdav/"})
        EXPECT_TRUE(isFound(path)) << path;
}

TEST_F(ShareApiTest, MakesALinkThatDownloadsTheFile) {
    const auto made = Make(Wish());
    ASSERT_EQ("done", Outcome(made));
    EXPECT_EQ("content", Download(std::get<LinkShare>(made).link));
    EXPECT_EQ(Lines{"/a b.txt - - ours 1"}, Shares());
    EXPECT_FALSE(std::get<LinkShare>(made).ends.has_value());
}

TEST_F(ShareApiTest, NamesFilesWithOddNames) {
    const char* const kNames[] = {"100% & more #1;a=b@c+d,e!$'()[]{}^`~.zip",
                                  "\xC3\xA4 \xE2\x82\xAC", "%41%2F.zip"};
    for (const char* name : kNames) {
        ASSERT_TRUE(PutFile(name, name));
        ShareWish wish = Wish();
        wish.file = UrlBelow(root_, name);
        const auto made = Make(wish);
        ASSERT_EQ("done", Outcome(made)) << name;
        EXPECT_EQ(name, Download(std::get<LinkShare>(made).link));
    }
}

TEST_F(ShareApiTest, NamesFilesBelowAnAccountsFolderFromTheTop) {
    ASSERT_EQ("done", Outcome(client_.MakeFolders(root_, {"sub"})));
    HttpUrl below = root_;
    below.path += "sub/";
    HttpRequest put;
    put.method = "PUT";
    put.url = UrlBelow(below, "f");
    put.body = std::string("deep");
    ASSERT_EQ("done", Outcome(client_.Send(put)));
    const auto found = ShareApi::Find(client_, below);
    ASSERT_EQ("done", Outcome(found));
    ShareWish wish = Wish();
    wish.file = put.url;
    ASSERT_EQ("done", Outcome(std::get<0>(found)->Make(client_, wish)));
    EXPECT_EQ(Lines{"/sub/f - - ours 1"}, Shares());
}

TEST_F(ShareApiTest, MakesLinksWithPasswordAndLastDay) {
    const ObLib::Secret password("k\xC3\xA4se & 100%=+");
    ShareWish wish = Wish();
    wish.password = &password;
    wish.expires = InDays(5);
    const auto made = Make(wish);
    ASSERT_EQ("done", Outcome(made));
    const auto& share = std::get<LinkShare>(made);
    EXPECT_EQ("content", Download(share.link, password.Text()));
    EXPECT_EQ(Outcome(DavFault::WrongLogin, 401), Download(share.link, "wrong"));
    EXPECT_EQ(InDays(5), share.ends);
    EXPECT_EQ(Lines{"/a b.txt password " + ShareDateText(InDays(5)) + " ours 1"}, Shares());
    server_.Set("clock", "6");
    EXPECT_EQ(Outcome(DavFault::NotFound, 404), Download(share.link, password.Text()));
}

// A server may not know the field, or an administrator may have switched passwords off.
TEST_F(ShareApiTest, HandsOutNoLinkWithoutThePasswordThatItIsToHave) {
    const ObLib::Secret password("a password");
    ShareWish wish = Wish();
    wish.password = &password;
    server_.Set("forget", "all");
    EXPECT_EQ(Outcome(ShareFault::NoPassword), Outcome(Make(wish)));
    EXPECT_EQ(Lines{}, Shares());
    server_.Set("forget", "new");
    const auto made = Make(wish);
    ASSERT_EQ("done", Outcome(made));
    EXPECT_EQ(Lines{"/a b.txt password - ours 1"}, Shares());
    EXPECT_EQ("content", Download(std::get<LinkShare>(made).link, "a password"));
}

TEST_F(ShareApiTest, EndsALinkWhosePasswordTheServerRefuses) {
    const ObLib::Secret password("a password");
    ShareWish wish = Wish();
    wish.password = &password;
    server_.Set("forget", "all");
    relay_.On("PUT", "status 403");
    EXPECT_EQ(Outcome(DavFault::Forbidden, 403), Outcome(Make(wish)));
    EXPECT_EQ(Lines{}, Shares());
}

TEST_F(ShareApiTest, KeepsToTheServersRules) {
    server_.Set("password", "1");
    server_.Set("shortest", "10");
    server_.Set("digit", "1");
    server_.Set("expiry", "1");
    server_.Set("days", "7");
    const ShareApi api = Api();
    EXPECT_TRUE(api.Rules().needsPassword && api.Rules().needsExpiry && api.Rules().needsDigit);
    EXPECT_EQ(10, api.Rules().shortestPassword);
    EXPECT_EQ(7, api.Rules().expiryDays);
    EXPECT_EQ(Outcome(ShareFault::NeedsPassword), Outcome(api.Make(client_, Wish())));
    EXPECT_EQ(Lines{}, Shares());
    const ObLib::Secret password("0123456789");
    ShareWish wish = Wish();
    wish.password = &password;
    for (const auto& expires : {std::optional<ShareDate>(), std::optional(InDays(30))}) {
        wish.expires = expires;
        const auto made = api.Make(client_, wish);
        ASSERT_EQ("done", Outcome(made));
        EXPECT_EQ(InDays(7), std::get<LinkShare>(made).ends) << "the server's limit comes first";
    }
    EXPECT_EQ(1u, Shares().size());
}

TEST_F(ShareApiTest, ShowsWhyTheServerRefusesAPassword) {
    server_.Set("shortest", "10");
    const ObLib::Secret password("short");
    ShareWish wish = Wish();
    wish.password = &password;
    for (const char* status : {"", "200"}) { // that of HTTP
        server_.Set("status", status);
        const auto refused = Make(wish);
        ASSERT_EQ(Outcome(ShareFault::Refused), Outcome(refused));
        EXPECT_EQ(L"Password needs to be at least 10 characters long.",
                  std::get<ShareError>(refused).message);
    }
    EXPECT_EQ(Lines{}, Shares());
}

TEST_F(ShareApiTest, MakesNoLinkWhereLinksAreOff) {
    const ShareApi before = Api();
    server_.Set("public", "0");
    EXPECT_EQ(Outcome(ShareFault::Off), Outcome(Make(Wish())));
    const auto refused = before.Make(client_, Wish());
    ASSERT_EQ(Outcome(ShareFault::Refused), Outcome(refused));
    EXPECT_EQ(403, std::get<ShareError>(refused).dav.status);
}

TEST_F(ShareApiTest, UsesTheShareOfAnEarlierTryWithTheNewPassword) {
    const ObLib::Secret lost("lost one");
    ShareWish wish = Wish();
    wish.password = &lost;
    ASSERT_EQ("done", Outcome(Make(wish)));
    const ObLib::Secret known("known one");
    wish.password = &known;
    wish.expires = InDays(3);
    const auto again = Make(wish);
    ASSERT_EQ("done", Outcome(again));
    EXPECT_EQ("content", Download(std::get<LinkShare>(again).link, "known one"));
    EXPECT_EQ(Lines{"/a b.txt password " + ShareDateText(InDays(3)) + " ours 1"}, Shares());
    // Without a password now: that of the earlier try is taken away.
    wish.password = nullptr;
    const auto open = Make(wish);
    ASSERT_EQ("done", Outcome(open));
    EXPECT_EQ("content", Download(std::get<LinkShare>(open).link));
    EXPECT_EQ(1u, Shares().size());
}

TEST_F(ShareApiTest, LeavesOtherLinksToTheFileAlone) {
    ASSERT_EQ("done", Outcome(Make(Wish("somebody's"))));
    ASSERT_EQ("done", Outcome(Make(Wish())));
    EXPECT_EQ((Lines{"/a b.txt - - somebody's", "/a b.txt - - ours 1"}), Shares());
    server_.Set("labels", "0");
    ASSERT_EQ("done", Outcome(Make(Wish("ours 2"))));
    ASSERT_EQ("done", Outcome(Make(Wish("ours 3"))));
    EXPECT_EQ(4u, Shares().size());
}

TEST_F(ShareApiTest, UsesAShareWithoutALabelForAFileOfThisRun) {
    server_.Set("labels", "0");
    ASSERT_EQ("done", Outcome(Make(Wish())));
    ShareWish wish = Wish();
    wish.isOwnFile = true;
    ASSERT_EQ("done", Outcome(Make(wish)));
    EXPECT_EQ(Lines{"/a b.txt - - -"}, Shares());
}

TEST_F(ShareApiTest, SetsTheLastDay) {
    const auto made = Make(Wish());
    ASSERT_EQ("done", Outcome(made));
    const auto& id = std::get<LinkShare>(made).id;
    const auto set = Api().SetExpiry(client_, id, InDays(9));
    ASSERT_EQ("done", Outcome(set));
    EXPECT_EQ(InDays(9), std::get<ShareDate>(set));
    EXPECT_EQ(Lines{"/a b.txt - " + ShareDateText(InDays(9)) + " ours 1"}, Shares());
    // A limit that came later: the earlier end stays, and is reported.
    server_.Set("expiry", "1");
    server_.Set("days", "10");
    const auto limited = Api().SetExpiry(client_, id, InDays(100));
    ASSERT_EQ("done", Outcome(limited));
    EXPECT_EQ(InDays(9), std::get<ShareDate>(limited));
    EXPECT_EQ(Outcome(ShareFault::Refused), Outcome(Api().SetExpiry(client_, "99", InDays(1))));
}

TEST_F(ShareApiTest, CountsDaysByTheServersClock) {
    for (const char* days : {"-400", "400"}) {
        server_.Begin();
        server_.Set("clock", days);
        server_.Set("expiry", "1");
        server_.Set("days", "7");
        ShareWish wish = Wish();
        wish.expires = InDays(5);
        const auto made = Make(wish);
        ASSERT_EQ("done", Outcome(made)) << days;
        EXPECT_EQ(InDays(5), std::get<LinkShare>(made).ends) << days;
        EXPECT_EQ(Lines{"/a b.txt - " + ShareDateText(InDays(5 + std::stoi(days))) + " ours 1"},
                  Shares());
    }
}

TEST_F(ShareApiTest, EndsALink) {
    const auto made = Make(Wish());
    ASSERT_EQ("done", Outcome(made));
    const auto& share = std::get<LinkShare>(made);
    for (int times = 0; times < 2; ++times)
        EXPECT_FALSE(Api().Remove(client_, share.id).has_value());
    EXPECT_EQ(Lines{}, Shares());
    EXPECT_EQ(Outcome(DavFault::NotFound, 404), Download(share.link));
}

TEST_F(ShareApiTest, HandsOutNoOddLinkAndKeepsNoneOnTheServer) {
    for (const char* link :
         {"javascript:alert(1)", "file:///etc/passwd", "http://user@example.org/s/1",
          "https://example.org/a b", "https://example.org/|x", "https://example.org/\"",
          "/s/relative", "https://example.org/<b>",
          "https://example.org/\xE2\x80\xAE"
          "gpj"}) {
        server_.Set("link", link);
        EXPECT_EQ(Outcome(ShareFault::OddLink), Outcome(Make(Wish()))) << link;
        EXPECT_EQ(Lines{}, Shares()) << link;
    }
    server_.Set("link", "https://example.org/" + std::string(2388, 'x'));
    ASSERT_EQ("done", Outcome(Make(Wish())));
    server_.Begin();
    server_.Set("link", "https://example.org/" + std::string(2389, 'x'));
    EXPECT_EQ(Outcome(ShareFault::OddLink), Outcome(Make(Wish())));
}

TEST_F(ShareApiTest, TakesNoPlainLinkFromASecureServer) {
    const HttpOrigin secure{true, "cloud.example.org", 443};
    EXPECT_TRUE(IsUsableLink("https://cloud.example.org/s/1", secure));
    EXPECT_TRUE(IsUsableLink("https://files.example.com:8443/s/1?a=b", secure));
    EXPECT_FALSE(IsUsableLink("http://cloud.example.org/s/1", secure));
    EXPECT_TRUE(IsUsableLink("http://cloud.example.org/s/1", {false, "cloud.example.org", 80}));
    EXPECT_FALSE(IsUsableLink("", secure));
}

} // namespace
} // namespace providers
