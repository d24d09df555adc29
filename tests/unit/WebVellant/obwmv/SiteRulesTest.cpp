#include "obwmv/SiteRules.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "OBCore/modules/ServiceLibrary.h"
#include "obwmv/SiteHosts.h"

namespace {

using obwmv::UsesBrowserDialog;

const std::wstring kGmail = obwmv::kGmailHost;

// The archive service is in the program's folder.
class SiteRules : public testing::Test {
protected:
    void TearDown() override { obcore::FreeArchiveService(); }
    static bool Picker(const std::wstring& url) { return !UsesBrowserDialog(url.c_str()); }
};

TEST_F(SiteRules, LetThePickerAnswerOnEachWebMail) {
    for (const wchar_t* host :
         {obwmv::kGmailHost, obwmv::kYahooMailHost, obwmv::kOldOutlookHost, obwmv::kOutlookHost,
          obwmv::kOfficeMailHost, obwmv::kOffice365MailHost, obwmv::kZohoMailHost})
        EXPECT_TRUE(Picker(std::wstring(L"https://") + host + L"/mail/u/0/#inbox")) << host;
}

TEST_F(SiteRules, LeaveAnyOtherPageToTheBrowser) {
    EXPECT_FALSE(Picker(L"https://www.example.com/mail"));
    EXPECT_FALSE(Picker(L"file:///C:/page.html"));
}

TEST_F(SiteRules, WantTwoSlashes) {
    EXPECT_FALSE(Picker(L""));
    EXPECT_FALSE(Picker(L"h"));
    EXPECT_FALSE(Picker(L"/"));
    EXPECT_FALSE(Picker(kGmail));
    EXPECT_FALSE(Picker(L"https:/" + kGmail + L"/"));
    EXPECT_TRUE(Picker(L"//" + kGmail));
}

TEST_F(SiteRules, FindNoHostInAUrlThatEndsAfterItsSlashes) { EXPECT_FALSE(Picker(L"https://")); }

TEST_F(SiteRules, TakeTheHostUpToTheNextSlashOrTheEnd) {
    EXPECT_TRUE(Picker(L"https://" + kGmail));
    EXPECT_TRUE(Picker(L"https://" + kGmail + L":443/mail"));
    EXPECT_TRUE(Picker(L"https://user@" + kGmail + L"/mail"));
    EXPECT_TRUE(Picker(L"https://www.example.com?from=" + kGmail));
}

TEST_F(SiteRules, DontLookForAHostInPathOrQuery) {
    EXPECT_FALSE(Picker(L"https://www.example.com/" + kGmail));
    EXPECT_FALSE(Picker(L"https://www.example.com/?q=//" + kGmail + L"/"));
    EXPECT_FALSE(Picker(std::wstring(L"https://x.example/") + obwmv::kZohoMailHost));
}

TEST_F(SiteRules, TakeTheFirstTwoSlashesAsTheHostsBegin) {
    EXPECT_FALSE(Picker(L"https:////" + kGmail + L"/"));
}

TEST_F(SiteRules, DontLookAtTheScheme) { EXPECT_TRUE(Picker(L"gopher://" + kGmail + L"/")); }

TEST_F(SiteRules, MatchAHostThatContainsAListedOne) {
    EXPECT_TRUE(Picker(L"https://beta." + kGmail + L"/"));
    EXPECT_TRUE(Picker(L"https://" + kGmail + L".example.com/"));
    EXPECT_TRUE(Picker(std::wstring(L"https://xx") + obwmv::kYahooMailHost + L"yy/"));
}

TEST_F(SiteRules, AreExactInCase) {
    std::wstring shouted = kGmail;
    CharUpperW(shouted.data());
    EXPECT_FALSE(Picker(L"https://" + shouted + L"/"));
}

TEST_F(SiteRules, LeaveTheSettingsOfGmailToTheBrowser) {
    EXPECT_FALSE(Picker(L"https://" + kGmail + L"/mail/#settings/general"));
    EXPECT_FALSE(Picker(L"https://" + kGmail + L"/mail/?ui=1#settings"));
    EXPECT_TRUE(Picker(L"https://" + kGmail + L"/mail/#Settings"));
    EXPECT_TRUE(Picker(std::wstring(L"https://") + obwmv::kOutlookHost + L"/#settings"));
}

TEST_F(SiteRules, LeaveThePrintViewOfGmailToTheBrowser) {
    EXPECT_FALSE(Picker(L"https://" + kGmail + L"/mail/?ui=1&view=ap&ov=pr"));
    EXPECT_FALSE(Picker(L"https://" + kGmail + L"/mail/?ov=pr&x=1&view=ap&ui=1"));
    EXPECT_TRUE(
        Picker(std::wstring(L"https://") + obwmv::kYahooMailHost + L"/?ui=1&view=ap&ov=pr"));
}

TEST_F(SiteRules, WantAllThreeKeysOfThePrintView) {
    EXPECT_TRUE(Picker(L"https://" + kGmail + L"/mail/?ui=1&view=ap"));
    EXPECT_TRUE(Picker(L"https://" + kGmail + L"/mail/?ui=1&ov=pr"));
    EXPECT_TRUE(Picker(L"https://" + kGmail + L"/mail/?view=ap&ov=pr"));
}

TEST_F(SiteRules, TakeTheFirstRowThatMatches) {
    const std::wstring both = kGmail + L"." + obwmv::kZohoMailHost;
    EXPECT_FALSE(Picker(L"https://" + both + L"/#settings"));
    EXPECT_TRUE(Picker(L"https://" + both + L"/"));
}

TEST_F(SiteRules, LoadTheArchiveServiceOnlyWhereThePickerApplies) {
    EXPECT_FALSE(Picker(L"https://www.example.com/"));
    EXPECT_FALSE(Picker(L"https://" + kGmail + L"/#settings"));
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
    EXPECT_TRUE(Picker(L"https://" + kGmail + L"/"));
    EXPECT_NE(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
}

} // namespace
