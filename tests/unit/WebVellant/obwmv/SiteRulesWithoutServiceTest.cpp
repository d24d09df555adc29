#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "OBCore/modules/ServiceLibrary.h"
#include "obwmv/SiteHosts.h"
#include "obwmv/SiteRules.h"
#include "tests/fakes/Recording.h"

namespace {

// The archive service is taken away from the program's folder.
class SiteRulesWithoutService : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(MoveFileW(present.c_str(), away.c_str())); }
    void TearDown() override {
        obcore::FreeArchiveService();
        MoveFileW(away.c_str(), present.c_str());
    }
    const std::wstring present = obtest::BesideProgram(L"obofcsvc64.dll");
    const std::wstring away = obtest::BesideProgram(L"away.dll");
    const std::wstring url = std::wstring(L"https://") + obwmv::kGmailHost + L"/";
};

TEST_F(SiteRulesWithoutService, LeaveEveryPageToTheBrowser) {
    EXPECT_TRUE(obwmv::UsesBrowserDialog(url.c_str()));
    EXPECT_TRUE(obwmv::UsesBrowserDialog(L"https://www.example.com/"));
}

TEST_F(SiteRulesWithoutService, LetThePickerAnswerOnceTheServiceIsThere) {
    EXPECT_TRUE(obwmv::UsesBrowserDialog(url.c_str()));
    ASSERT_TRUE(MoveFileW(away.c_str(), present.c_str()));
    EXPECT_FALSE(obwmv::UsesBrowserDialog(url.c_str()));
}

} // namespace
