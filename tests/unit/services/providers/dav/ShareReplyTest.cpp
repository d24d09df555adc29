#include "services/providers/dav/ShareReply.h"

#include <gtest/gtest.h>

namespace providers {
namespace {

using namespace std::chrono_literals;

std::string Reply(const std::string& data, const std::string& code = "200",
                  const std::string& message = "OK") {
    return "<?xml version=\"1.0\"?>\n<ocs><meta><status>ok</status><statuscode>" + code +
           "</statuscode><message>" + message + "</message></meta><data>" + data + "</data></ocs>";
}

std::string Capabilities(const std::string& sharing, const std::string& policy = "") {
    return Reply("<version><major>1</major></version><capabilities><core/><files_sharing>" +
                 sharing + "</files_sharing>" +
                 (policy.empty() ? "" : "<password_policy>" + policy + "</password_policy>") +
                 "</capabilities>");
}

TEST(ShareReplyTest, ReadsTheServersRules) {
    const auto rules = ReadShareRules(Capabilities(
        "<api_enabled>1</api_enabled><public><enabled>1</enabled>"
        "<password><enforced>1</enforced></password>"
        "<expire_date><enabled>1</enabled><days>7</days><enforced>1</enforced></expire_date>"
        "</public>",
        "<minLength>10</minLength><enforceUpperLowerCase>1</enforceUpperLowerCase>"
        "<enforceNumericCharacters>1</enforceNumericCharacters>"
        "<enforceSpecialCharacters></enforceSpecialCharacters>"));
    ShareRules wanted;
    wanted.canShareByLink = wanted.needsPassword = wanted.needsExpiry = true;
    wanted.needsUpperAndLower = wanted.needsDigit = true;
    wanted.shortestPassword = 10;
    wanted.expiryDays = 7;
    EXPECT_EQ(wanted, rules);
}

TEST(ShareReplyTest, ReadsRulesInTheOtherFormOfServers) {
    const auto rules = ReadShareRules(Capabilities(
        "<api_enabled>true</api_enabled><public><enabled>true</enabled><password>"
        "<enforced>false</enforced><enforced_for><read_only>true</read_only></enforced_for>"
        "</password></public>",
        "<min_characters>8</min_characters><max_characters>72</max_characters>"
        "<min_lowercase_characters>1</min_lowercase_characters><min_digits>2</min_digits>"
        "<min_special_characters>0</min_special_characters>"));
    ShareRules wanted;
    wanted.canShareByLink = wanted.needsPassword = wanted.needsUpperAndLower = wanted.needsDigit =
        true;
    wanted.shortestPassword = 8;
    wanted.longestPassword = 72;
    EXPECT_EQ(wanted, rules);
}

TEST(ShareReplyTest, KnowsServersWithoutLinks) {
    const auto off = ReadShareRules(
        Capabilities("<api_enabled>1</api_enabled><public><enabled></enabled></public>"));
    ASSERT_TRUE(off.has_value());
    EXPECT_FALSE(off->canShareByLink);
    EXPECT_FALSE(ReadShareRules(Capabilities("<api_enabled/>"))->canShareByLink);
    EXPECT_FALSE(ReadShareRules(Reply("<capabilities><core/></capabilities>")).has_value());
    EXPECT_FALSE(ReadShareRules("<html><body>Nothing</body></html>").has_value());
    EXPECT_FALSE(ReadShareRules("{\"ocs\":{}}").has_value());
    EXPECT_FALSE(ReadShareRules("").has_value());
}

TEST(ShareReplyTest, TakesNoAbsurdNumbers) {
    const auto rules = ReadShareRules(
        Capabilities("<api_enabled>1</api_enabled><public><enabled>1</enabled>"
                     "<expire_date><days>99999999999999999999</days></expire_date></public>",
                     "<minLength>-5</minLength><max_characters>123456</max_characters>"));
    ShareRules wanted;
    wanted.canShareByLink = true;
    EXPECT_EQ(wanted, rules);
}

TEST(ShareReplyTest, ReadsOneShareAndAList) {
    const std::string fields = "<id>12</id><share_type>3</share_type><permissions>1</permissions>"
                               "<expiration>2026-11-30 00:00:00</expiration><token>t</token>"
                               "<share_with>***</share_with><label>a &amp; b</label>"
                               "<url> https://example.org/s/t </url><attributes/>";
    ShareEntry wanted{"12", true, "https://example.org/s/t", "a & b", true, 2026y / 11 / 30};
    EXPECT_EQ((std::vector{wanted}), ReadShares(Reply(fields)));
    const ShareEntry other{"x-7", false, "", "", false, std::nullopt};
    EXPECT_EQ((std::vector{wanted, other}),
              ReadShares(Reply("<element>" + fields +
                               "</element><element><id>x-7</id>"
                               "<share_type>0</share_type></element><element>no id</element>")));
    EXPECT_EQ(std::vector<ShareEntry>{}, ReadShares(Reply("")));
}

TEST(ShareReplyTest, TakesANameWhereThereIsNoLabel) {
    EXPECT_EQ("n", ReadShares(Reply("<id>1</id><name>n</name>"))->at(0).label);
    EXPECT_EQ("l", ReadShares(Reply("<id>1</id><name>n</name><label>l</label>"))->at(0).label);
    EXPECT_EQ("l", ReadShares(Reply("<id>1</id><label>l</label><name>n</name>"))->at(0).label);
}

TEST(ShareReplyTest, TakesNoIdThatIsMoreThanAPartOfAnAddress) {
    for (const char* id : {"..", ".", "1/2", "1?x", "1#", "%2e", "a b", "a\\b", ""})
        EXPECT_TRUE(ReadShares(Reply(std::string("<id>") + id + "</id>"))->empty()) << id;
    EXPECT_TRUE(ReadShares(Reply("<id>" + std::string(201, '1') + "</id>"))->empty());
}

TEST(ShareReplyTest, ReadsTheStatus) {
    EXPECT_EQ((ShareStatus{200, "OK"}), ReadShareStatus(Reply("")));
    EXPECT_EQ((ShareStatus{404, "Wrong path"}), ReadShareStatus(Reply("", "404", " Wrong path ")));
    EXPECT_FALSE(ReadShareStatus(Reply("", "")).has_value());
    EXPECT_FALSE(ReadShareStatus(Reply("", "-1")).has_value());
    EXPECT_FALSE(ReadShareStatus("<ocs><data/></ocs>").has_value());
}

TEST(ShareReplyTest, RefusesWhatIsNoReply) {
    const std::string many = [] {
        std::string list;
        for (std::size_t i = 0; i <= kMostShares; ++i) list += "<element><id>1</id></element>";
        return Reply(list);
    }();
    for (const std::string& body :
         {std::string(), std::string("<ocs>"), std::string("<other><data/></other>"),
          Reply("<id>1</id><url>&undefined;</url>"), Reply("<id>1"),
          "<!DOCTYPE ocs []>" + Reply("<id>1</id>"),
          Reply("<id>1</id><url>" + std::string(20'000, 'x') + "</url>"), many,
          Reply(std::string(kLongestShareReply, ' ')),
          "<x:ocs xmlns:x=\"other\"><data/></x:ocs>" + std::string()})
        EXPECT_FALSE(ReadShares(body).has_value()) << body.substr(0, 100);
}

TEST(ShareReplyTest, ReadsAndWritesDates) {
    EXPECT_EQ(2026y / 2 / 28, ReadShareDate("2026-02-28"));
    EXPECT_EQ(2026y / 2 / 28, ReadShareDate("2026-02-28T23:59:59+00:00"));
    EXPECT_EQ("2026-02-08", ShareDateText(2026y / 2 / 8));
    for (const char* text : {"", "2026-02-30", "2026-2-3", "26-02-03xx", "2026/02/03",
                             "2026-02-031", "2026-1a-01", "-026-01-01", "2026-00-01"})
        EXPECT_FALSE(ReadShareDate(text).has_value()) << text;
}

} // namespace
} // namespace providers
