#include "services/providers/http/HttpUrl.h"

#include <gtest/gtest.h>

namespace providers {
namespace {

std::string Parsed(std::string_view address) {
    const auto url = ParseHttpUrl(address);
    return url ? HttpUrlText(*url) : "none";
}

std::string Resolved(std::string_view base, std::string_view reference) {
    const auto url = ResolveHttpUrl(*ParseHttpUrl(base), reference);
    return url ? HttpUrlText(*url) : "none";
}

TEST(HttpUrlTest, IsWrittenInItsUsualForm) {
    EXPECT_EQ("https://cloud.example.org/", Parsed("HTTPS://Cloud.Example.ORG"));
    EXPECT_EQ("https://cloud.example.org/", Parsed("https://cloud.example.org:443#top"));
    EXPECT_EQ("http://127.0.0.1:8080/a/?b=c", Parsed("http://127.0.0.1:8080/a/?b=c"));
    EXPECT_EQ("http://[::1]:81/", Parsed("http://[::1]:81"));
    EXPECT_EQ("https://a/b/d", Parsed("https://a/b/./c/../d"));
    EXPECT_EQ("https://a/", Parsed("https://a/../.."));
    EXPECT_EQ("https://a/b//c", Parsed("https://a/b//c"));
}

TEST(HttpUrlTest, EncodesWhatMayNotBeInAnAddressAndKeepsWhatIsEncoded) {
    EXPECT_EQ("https://a/%C3%A4%20b%25", Parsed("https://a/\xC3\xA4 b%25"));
    EXPECT_EQ("https://a/50%25", Parsed("https://a/50%"));
    EXPECT_EQ("https://a/%22%3C%3E%5E%60%7B%7D%7C", Parsed("https://a/\"<>^`{}|"));
}

TEST(HttpUrlTest, RefusesWhatIsNoAddressOfAServer) {
    for (const char* address :
         {"", "a", "ftp://a", "https://", "https:///a", "https://user@a", "https://u:p@a/",
          "https://a:0/", "https://a:65536", "https://a:x", "https://a:", "https://a b",
          "https://a\\b", "https://.a", "https://[1:2", "https://a\r\nb/", "javascript:x"}) {
        EXPECT_EQ("none", Parsed(address)) << address;
    }
    EXPECT_EQ("none", Parsed("https://a/" + std::string(kLongestUrl, 'x')));
    EXPECT_EQ("none", Parsed("https://a/" + std::string(kLongestUrl / 2, ' ')));
    EXPECT_EQ("none", Parsed("https://" + std::string(256, 'x')));
}

TEST(HttpUrlTest, ResolvesWhatAServerWrites) {
    EXPECT_EQ("https://a/c", Resolved("https://a/b/", "/c"));
    EXPECT_EQ("https://a/b/c", Resolved("https://a/b/x", "c"));
    EXPECT_EQ("https://a/c", Resolved("https://a/b/x", "../c"));
    EXPECT_EQ("https://a/b/x?y", Resolved("https://a/b/x?z", "?y"));
    EXPECT_EQ("http://d/", Resolved("https://a/b", "http://d"));
    EXPECT_EQ("https://d/e", Resolved("https://a/b", "//d/e"));
    EXPECT_EQ("none", Resolved("https://a/b", "mailto:x"));
    EXPECT_EQ("https://a/b:c", Resolved("https://a/x", "/b:c"));
}

TEST(HttpUrlTest, KnowsThisMachine) {
    for (const char* here : {"http://localhost", "http://LOCALHOST:8080", "http://127.0.0.1",
                             "http://127.8.9.1", "http://[::1]/"}) {
        EXPECT_TRUE(IsLoopback(ParseHttpUrl(here)->origin)) << here;
    }
    for (const char* other :
         {"http://127.0.0.example", "http://localhost.example", "http://128.0.0.1", "http://127.1",
          "http://[::2]", "http://1.127.0.0.1"}) {
        EXPECT_FALSE(IsLoopback(ParseHttpUrl(other)->origin)) << other;
    }
}

TEST(HttpUrlTest, AppendsNamesAsTheyAre) {
    const HttpUrl folder = *ParseHttpUrl("https://a/dav");
    EXPECT_EQ("/dav/100%25%20%26%20more%3F%23.zip", UrlBelow(folder, "100% & more?#.zip").path);
    EXPECT_EQ("/dav/%C3%A4%2F..", UrlBelow(folder, "\xC3\xA4/..").path);
    EXPECT_EQ("100% & more?#.zip", DecodePercent(EncodePathPart("100% & more?#.zip")));
    EXPECT_EQ(std::nullopt, DecodePercent("a%2"));
    EXPECT_EQ(std::nullopt, DecodePercent("a%00"));
}

} // namespace
} // namespace providers
