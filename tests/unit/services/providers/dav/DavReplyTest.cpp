#include "services/providers/dav/DavReply.h"

#include <gtest/gtest.h>

namespace providers {
namespace {

std::string Multistatus(const std::string& responses) {
    return "<?xml version=\"1.0\"?><x:multistatus xmlns:x=\"DAV:\">" + responses +
           "</x:multistatus>";
}

std::string Response(const std::string& href, const std::string& props,
                     const std::string& status = "HTTP/1.1 200 OK") {
    return "<x:response><x:href>" + href + "</x:href><x:propstat><x:prop>" + props +
           "</x:prop><x:status>" + status + "</x:status></x:propstat></x:response>";
}

TEST(DavReplyTest, ReadsFilesAndFolders) {
    const auto entries = ReadMultistatus(Multistatus(
        Response("/dav/",
                 "<x:resourcetype><x:collection/></x:resourcetype><x:quota-available-bytes>70"
                 "</x:quota-available-bytes><x:quota-used-bytes> 30 </x:quota-used-bytes>") +
        Response(" /dav/a%20b&amp;c ",
                 "<x:resourcetype/><x:getcontentlength>4294967297</x:getcontentlength>"
                 "<x:getetag>&quot;e&quot;</x:getetag>")));
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(2u, entries->size());
    EXPECT_EQ((DavEntry{"/dav/", true, std::nullopt, "", 70, 30}), entries->at(0));
    EXPECT_EQ((DavEntry{"/dav/a%20b&c", false, 4294967297, "\"e\"", std::nullopt, std::nullopt}),
              entries->at(1));
}

TEST(DavReplyTest, LeavesOutWhatTheServerHasFailedWith) {
    const auto entries = ReadMultistatus(Multistatus(
        "<x:response><x:href>/gone</x:href><x:status>HTTP/1.1 404 Not Found</x:status></x:response>"
        "<x:response><x:href>/a</x:href>"
        "<x:propstat><x:prop><x:getcontentlength>5</x:getcontentlength></x:prop><x:status>HTTP/1.1 "
        "200 OK</x:status></x:propstat>"
        "<x:propstat><x:prop><x:getetag>no</x:getetag></x:prop><x:status>HTTP/1.1 404 Not "
        "Found</x:status></x:propstat>"
        "</x:response>" +
        Response("", "<x:getcontentlength>1</x:getcontentlength>")));
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(1u, entries->size());
    EXPECT_EQ((DavEntry{"/a", false, 5, "", std::nullopt, std::nullopt}), entries->at(0));
}

TEST(DavReplyTest, TakesNumbersThatAreOnesOnly) {
    for (const char* number : {"", "-3", "x", "9223372036854775808", "99999999999999999999"}) {
        const auto entries = ReadMultistatus(Multistatus(Response(
            "/a", "<x:getcontentlength>" + std::string(number) + "</x:getcontentlength>")));
        ASSERT_TRUE(entries.has_value());
        EXPECT_EQ(std::nullopt, entries->at(0).size) << number;
    }
}

// A version gets into the headers of a deletion.
TEST(DavReplyTest, TakesVersionsThatAHeaderMayHaveOnly) {
    for (const char* version : {"&quot;a&#13;&#10;X: y&quot;", "&quot;a b&quot;",
                                "&#9;&quot;a&#9;b", "&quot;\xC3\xA4&quot;", "a&#127;"}) {
        const auto entries = ReadMultistatus(
            Multistatus(Response("/a", "<x:getetag>" + std::string(version) + "</x:getetag>")));
        ASSERT_TRUE(entries.has_value()) << version;
        EXPECT_EQ("", entries->at(0).etag) << version;
    }
    const auto entries =
        ReadMultistatus(Multistatus(Response("/a", "<x:getetag> W/&quot;a!~&quot; </x:getetag>")));
    EXPECT_EQ("W/\"a!~\"", entries.value().at(0).etag);
}

TEST(DavReplyTest, IgnoresPropertiesOfOthers) {
    const auto entries = ReadMultistatus(Multistatus(Response(
        "/a", "<y:getcontentlength "
              "xmlns:y='other'>7</y:getcontentlength><x:other><x:getetag>t</x:getetag></x:other>"
              "<x:resourcetype><y:collection "
              "xmlns:y='other'/></x:resourcetype><x:other><x:collection/></x:other>")));
    ASSERT_TRUE(entries.has_value());
    EXPECT_EQ((DavEntry{"/a", false, std::nullopt, "", std::nullopt, std::nullopt}),
              entries->at(0));
}

TEST(DavReplyTest, IsNothingForOtherTexts) {
    for (const char* body : {"", "<html/>", "<multistatus/>", "<a xmlns='DAV:'/>", "not xml",
                             "<x:multistatus xmlns:x='DAV:'>"}) {
        EXPECT_EQ(std::nullopt, ReadMultistatus(body)) << body;
    }
    EXPECT_EQ(std::nullopt, ReadMultistatus(Multistatus(Response(std::string(20'000, 'x'), ""))));
    std::string many;
    for (std::size_t i = 0; i <= kMostDavEntries; ++i)
        many += "<x:response><x:href>a</x:href></x:response>";
    EXPECT_EQ(std::nullopt, ReadMultistatus(Multistatus(many)));
}

TEST(DavReplyTest, FindsAnElementOfOtherReplies) {
    EXPECT_EQ("https://a/b?c&d",
              TextOfElement("<ocs><data><url>https://a/b?c&amp;d</url></data></ocs>", "url"));
    EXPECT_EQ("", TextOfElement("<ocs><url/></ocs>", "url"));
    EXPECT_EQ(std::nullopt, TextOfElement("<ocs><other>x</other></ocs>", "url"));
    EXPECT_EQ(std::nullopt, TextOfElement("<ocs><url>x</url>", "url"));
}

} // namespace
} // namespace providers
