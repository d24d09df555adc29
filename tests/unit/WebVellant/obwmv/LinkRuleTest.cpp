#include <gtest/gtest.h>

#include <string>

#include "obwmv/SiteHosts.h"
#include "obwmv/SiteRules.h"

namespace {

using obwmv::IsLinkForbidden;

const std::wstring kGmail = obwmv::kGmailHost;

class LinkRule : public testing::Test {};

TEST_F(LinkRule, ForbidsLinksInTheBasicViewOfGmail) {
    EXPECT_TRUE(IsLinkForbidden((L"https://" + kGmail + L"/mail/h/1?view=amf").c_str(), nullptr));
}

TEST_F(LinkRule, WantsAllThreeMarks) {
    EXPECT_FALSE(IsLinkForbidden((L"https://" + kGmail + L"/mail/h/1").c_str(), nullptr));
    EXPECT_FALSE(IsLinkForbidden((L"https://" + kGmail + L"?view=amf").c_str(), nullptr));
    EXPECT_FALSE(IsLinkForbidden(L"https://other.example/h?view=amf", nullptr));
}

TEST_F(LinkRule, LooksAtTheWholeUrlNotOnlyAtTheHost) {
    const std::wstring url = L"https://other.example/h?view=amf&from=" + kGmail;
    EXPECT_TRUE(IsLinkForbidden(url.c_str(), nullptr));
    EXPECT_TRUE(obwmv::UsesBrowserDialog(url.c_str()));
    EXPECT_TRUE(IsLinkForbidden((kGmail + L"/hview=amf").c_str(), nullptr));
}

TEST_F(LinkRule, IsExactInCase) {
    EXPECT_FALSE(IsLinkForbidden((L"https://" + kGmail + L"/H?view=amf").c_str(), nullptr));
    EXPECT_FALSE(IsLinkForbidden((L"https://" + kGmail + L"/h?View=amf").c_str(), nullptr));
    EXPECT_FALSE(IsLinkForbidden(L"x", L"yousendit supported files\0*.*\0"));
}

TEST_F(LinkRule, ForbidsLinksWhenADescriptionNamesUploadFiles) {
    EXPECT_TRUE(IsLinkForbidden(L"https://x/", L"YouSendIt Supported Files\0*.*\0"));
    EXPECT_TRUE(IsLinkForbidden(L"https://x/", L"All YouSendIt Supported Files (*.*)\0*.*\0"));
}

TEST_F(LinkRule, LooksAtPatternsAsAtDescriptions) {
    EXPECT_TRUE(IsLinkForbidden(L"https://x/", L"All\0YouSendIt Supported Files\0"));
    EXPECT_TRUE(IsLinkForbidden(L"https://x/", L"A\0*.a\0B\0*.b;YouSendIt Supported Files\0"));
}

TEST_F(LinkRule, EndsWithTheEmptyStringThatClosesTheFilter) {
    EXPECT_FALSE(IsLinkForbidden(L"https://x/", L"All\0*.*\0\0YouSendIt Supported Files\0"));
}

TEST_F(LinkRule, TakesNoFilterAndAnEmptyOneAsNothing) {
    EXPECT_FALSE(IsLinkForbidden(L"https://x/", nullptr));
    EXPECT_FALSE(IsLinkForbidden(L"https://x/", L""));
    EXPECT_FALSE(IsLinkForbidden(L"https://x/", L"\0YouSendIt Supported Files\0"));
    EXPECT_FALSE(IsLinkForbidden(L"", nullptr));
}

TEST_F(LinkRule, StaysForbiddenByTheUrlWhateverTheFilter) {
    const std::wstring url = L"https://" + kGmail + L"/h?view=amf";
    EXPECT_TRUE(IsLinkForbidden(url.c_str(), L"All\0*.*\0"));
    EXPECT_TRUE(IsLinkForbidden(url.c_str(), L""));
}

} // namespace
