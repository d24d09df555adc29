#include "services/providers/http/HttpPolicy.h"

#include <gtest/gtest.h>

#include "tests/support/ProductRegistry.h"

namespace providers {
namespace {

ServerRule Rule(std::string_view address) { return RuleFor(ParseHttpUrl(address)->origin); }

class HttpPolicyTest : public testing::Test {
protected:
    void TearDown() override { obtest::ClearProductRegistry(); }
};

TEST_F(HttpPolicyTest, AllowsEveryServerByHttpsAndThisMachineWithout) {
    EXPECT_EQ(ServerRule::Allowed, Rule("https://cloud.example.org"));
    EXPECT_EQ(ServerRule::Allowed, Rule("http://127.0.0.1:80"));
    EXPECT_EQ(ServerRule::NeedsHttps, Rule("http://cloud.example.org"));
    EXPECT_EQ(ServerRule::NeedsHttps, Rule("http://192.168.0.1"));
}

TEST_F(HttpPolicyTest, AllowsPlainHttpByASwitchInEitherView) {
    obtest::SetMachinePolicy(L"AllowPlainHttp", L"0");
    EXPECT_EQ(ServerRule::NeedsHttps, Rule("http://cloud.example.org"));
    obtest::SetMachinePolicy(L"AllowPlainHttp", L"1", 32);
    EXPECT_EQ(ServerRule::Allowed, Rule("http://cloud.example.org"));
}

TEST_F(HttpPolicyTest, AllowsListedServersOnly) {
    obtest::SetMachinePolicy(L"AllowedCloudServers",
                             L"cloud.Example.org, *.files.example , 127.0.0.1");
    EXPECT_EQ(ServerRule::Allowed, Rule("https://CLOUD.example.org:8443"));
    EXPECT_EQ(ServerRule::Allowed, Rule("https://a.b.files.example"));
    EXPECT_EQ(ServerRule::Allowed, Rule("http://127.0.0.1"));
    for (const char* other :
         {"https://example.org", "https://x.cloud.example.org", "https://files.example",
          "https://badfiles.example", "http://localhost"}) {
        EXPECT_EQ(ServerRule::NotListed, Rule(other)) << other;
    }
    EXPECT_EQ(ServerRule::NeedsHttps, Rule("http://cloud.example.org"));
}

TEST_F(HttpPolicyTest, AllowsNoServerByAListThatCannotBeRead) {
    obtest::SetMachinePolicyNumber(L"AllowedCloudServers", 1);
    EXPECT_EQ(ServerRule::NotListed, Rule("https://cloud.example.org"));
    obtest::SetMachinePolicy(L"AllowedCloudServers", std::wstring(9000, L'a'));
    EXPECT_EQ(ServerRule::NotListed, Rule("https://cloud.example.org"));
    obtest::SetMachinePolicy(L"AllowedCloudServers", L"");
    EXPECT_EQ(ServerRule::NotListed, Rule("https://cloud.example.org"));
}

TEST_F(HttpPolicyTest, TakesTheListOfThe32BitViewWhereTheOtherHasNone) {
    obtest::SetMachinePolicy(L"AllowedCloudServers", L"a.example", 32);
    EXPECT_EQ(ServerRule::NotListed, Rule("https://b.example"));
    obtest::SetMachinePolicy(L"AllowedCloudServers", L"b.example");
    EXPECT_EQ(ServerRule::Allowed, Rule("https://b.example"));
    EXPECT_EQ(ServerRule::NotListed, Rule("https://a.example"));
}

} // namespace
} // namespace providers
