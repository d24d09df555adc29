#include "services/providers/dav/DavAddress.h"

#include <gtest/gtest.h>

#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {
namespace {

std::string Typed(const wchar_t* address) {
    const auto url = TypedAddress(address);
    return url ? HttpUrlText(*url) : "none";
}

std::vector<std::string> Tried(const std::wstring& address, std::wstring_view user) {
    std::vector<std::string> paths;
    for (const HttpUrl& url : RootCandidates(TypedAddress(address).value(), user))
        paths.push_back(url.path);
    return paths;
}

class DavAddressTest : public DavAccount {
protected:
    // The path that is found from a typed address, or why none is.
    std::string Found(std::wstring_view path, std::wstring_view user) {
        const std::string base =
            HttpUrlText(root_).substr(0, HttpUrlText(root_).size() - 5); // without "/dav/"
        const auto typed = TypedAddress(*FromUtf8(base) + std::wstring(path));
        const auto result = FindRoot(client_, RootCandidates(typed.value(), user));
        return std::holds_alternative<DavItem>(result) ? std::get<DavItem>(result).url.path
                                                       : Outcome(result);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, DavAddressTest, testing::Values("apache", "sabre"));

TEST_P(DavAddressTest, TakesWhatPeopleType) {
    EXPECT_EQ("https://cloud.example.org/", Typed(L"  cloud.example.org "));
    EXPECT_EQ("https://cloud.example.org:8443/files", Typed(L"cloud.example.org:8443/files"));
    EXPECT_EQ("https://a/", Typed(L"davs://a"));
    EXPECT_EQ("https://a/Dav/", Typed(L"DAVS://A/Dav/"));
    EXPECT_EQ("http://localhost/", Typed(L"WebDAV://localhost"));
    EXPECT_EQ("https://dav/", Typed(L"dav"));
    EXPECT_EQ("http://localhost/", Typed(L"http://localhost"));
    EXPECT_EQ("https://a/%C3%A4%20b", Typed(L"https://a/\u00E4 b"));
    for (const wchar_t* odd : {L"", L"  ", L"ftp://a", L"\\\\server\\share", L"C:\\folder", L"a b",
                               L"me@cloud.example"}) {
        EXPECT_EQ("none", Typed(odd)) << ToUtf8(odd);
    }
}

TEST_P(DavAddressTest, TriesTheUsualPlacesBelowTheAddressAndTheRoot) {
    EXPECT_EQ((std::vector<std::string>{"/sub/", "/sub/remote.php/dav/files/a%20b%2Fc/",
                                        "/sub/remote.php/webdav/", "/sub/webdav/", "/sub/dav/",
                                        "/remote.php/dav/files/a%20b%2Fc/", "/remote.php/webdav/"}),
              Tried(L"cloud.example.org/sub?x", L"a b/c"));
    EXPECT_EQ((std::vector<std::string>{"/", "/remote.php/dav/files/u/", "/remote.php/webdav/",
                                        "/webdav/", "/dav/"}),
              Tried(L"cloud.example.org", L"u"));
}

TEST_P(DavAddressTest, TriesTheUsualPlacesInFrontOfThePageThatABrowserShows) {
    EXPECT_EQ(
        (std::vector<std::string>{"/sub/index.php/apps/files/", "/sub/remote.php/dav/files/u/",
                                  "/sub/remote.php/webdav/", "/sub/webdav/", "/sub/dav/", "/sub/",
                                  "/remote.php/dav/files/u/", "/remote.php/webdav/"}),
        Tried(L"cloud.example.org/sub/index.php/apps/files/?dir=/x", L"u"));
    for (const wchar_t* page : {L"/apps/files/files/12", L"/login", L"/s/a1b2", L"/f/12",
                                L"/index.php", L"/index.php/login?redirect_url=/apps/files"}) {
        const auto tried = Tried(std::wstring(L"cloud.example.org") + page, L"u");
        ASSERT_GT(tried.size(), 5u) << ToUtf8(page);
        EXPECT_EQ("/remote.php/dav/files/u/", tried[1]) << ToUtf8(page);
        EXPECT_EQ("/", tried[5]) << ToUtf8(page);
        EXPECT_LE(tried.size(), 10u) << ToUtf8(page);
    }
}

TEST_P(DavAddressTest, FindsTheFolder) {
    EXPECT_EQ("/dav/", Found(L"/dav/", L"u"));
    EXPECT_EQ("/dav/", Found(L"/dav", L"u"));
    EXPECT_EQ("/dav/", Found(L"", L"u"));
    EXPECT_EQ("/dav/", Found(L"/index.php/apps/files/?dir=/", L"u"));
    EXPECT_EQ("/dav/", Found(L"/apps/files/files/12", L"u"));
    relay_.Begin(GetParam());
    relay_.On("PROPFIND", "status 401");
    EXPECT_EQ(Outcome(DavFault::WrongLogin, 401), Found(L"", L"u"));
    EXPECT_EQ("PROPFIND", relay_.Methods()) << "a wrong password is tried once";
}

TEST_P(DavAddressTest, ExplainsWhyThereIsNoFolder) {
    relay_.On("PROPFIND", "status 404", 0, 100);
    EXPECT_EQ(Outcome(DavFault::NotFound, 404), Found(L"", L"u"));
    relay_.Begin(GetParam());
    relay_.On("PROPFIND", "status 200|=<html></html>", 0, 100);
    EXPECT_EQ(Outcome(DavFault::NotDav, 200), Found(L"", L"u"));
}

} // namespace
} // namespace providers
