// Login, limits and the choice of another account, up to the upload.
#include "OBCore/cloud/CloudSend.h"

#include <algorithm>
#include <cstring>

#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"

namespace {

using obcontract::ProviderProfile;
using obcore::RunCloudSend;
using obtest::chooserAnswers;
using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;
using obtest::Profile;

constexpr wchar_t kUploadBegins[] = L"CreateUploadList";

class CloudSend : public obtest::CloudFixture {
protected:
    void SetUp() override {
        CloudFixture::SetUp();
        MakeOwnResult();
    }
    bool Send(std::int64_t size = 5) { return RunCloudSend(job_, linkText_, size, profile_); }

    // Every call up to the first one of the upload, and whether there was an upload.
    static Lines CallsBeforeUpload() {
        Lines calls = FakeModules::Calls();
        const auto upload = std::ranges::find_if(
            calls, [](const std::wstring& call) { return call.starts_with(kUploadBegins); });
        calls.erase(upload, calls.end());
        return calls;
    }
    static Lines Uploads() { return CallsOf({kUploadBegins}); }
    static bool SameBytes(const ProviderProfile& left, const ProviderProfile& right) {
        return std::memcmp(&left, &right, sizeof(left)) == 0;
    }
    static std::wstring InstanceAsked(const std::wstring& id) {
        return L"GetProviderInstance(manager, " + id + L", 1)";
    }
    std::wstring LoginShown(const std::wstring& key, const std::wstring& label) const {
        return L"Login2(manager, provider7, " + Quote(key) + L", " + Quote(label) + L", " +
               Owner() + L")";
    }
    std::wstring ErrorAsked(const std::wstring& provider, const std::wstring& key) const {
        return L"GetLastErrorOfProvider(" + provider + L", " + Quote(key) +
               L", \"files.zip\", 2048)";
    }

    ProviderProfile profile_ = Profile(7, L"Ann", L"ann");
    std::wstring linkText_ = L"left over";
};

TEST_F(CloudSend, IsRefusedWhenLinksAreForbidden) {
    job_.UploadBlocked = true;
    EXPECT_FALSE(Send());
    EXPECT_EQ(linkText_, L"left over");
    EXPECT_TRUE(FakeModules::Calls().empty());
}

TEST_F(CloudSend, GivesNoLinkWithoutAProvider) {
    profile_ = {};
    EXPECT_TRUE(Send());
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(FakeModules::Calls().empty());
}

TEST_F(CloudSend, GivesTheLinkOfALoggedInAccountWithRoom) {
    EXPECT_TRUE(Send());
    EXPECT_EQ(
        CallsBeforeUpload(),
        (Lines{InstanceAsked(L"7"), L"IsAccountLoggedIn(provider7, \"ann\")", InstanceAsked(L"7"),
               L"GetMaxFileSize(provider7, \"ann\")", L"HasCapability(provider7, 1, 2)"}));
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider7, \"ann\")"});
    EXPECT_TRUE(linkText_.starts_with(L"0| |files.zip|https://7.example/files.zip|"));
    EXPECT_TRUE(SameBytes(profile_, Profile(7, L"Ann", L"ann")));
}

TEST_F(CloudSend, LogsTheAccountInWithTheProfilesTexts) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"Login2", L"1");
    EXPECT_TRUE(Send());
    const Lines calls = CallsBeforeUpload();
    ASSERT_GT(calls.size(), 2u);
    EXPECT_EQ(calls[2], LoginShown(L"ann", L"Ann"));
    EXPECT_TRUE(CallsOf({L"GetAccountProfiles", L"SetDefaultStorageProvider",
                         L"ShowSelectDefaultCloudDialog"})
                    .empty());
    EXPECT_EQ(Uploads().size(), 1u);
}

TEST_F(CloudSend, TakesWhatTheLoginPutsIntoTheProfile) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"Login2", L"1");
    Answer(L"Login2.accountKey", L"new");
    Answer(L"Login2.accountLabel", L"New");
    profile_ = Profile(7, L"", L"");
    EXPECT_TRUE(Send());
    EXPECT_TRUE(SameBytes(profile_, Profile(7, L"New", L"new")));
    EXPECT_TRUE(CallsOf({L"GetAccountProfiles", L"SetDefaultStorageProvider"}).empty());
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider7, \"new\")"});
}

TEST_F(CloudSend, TakesTheNewestAccountAfterALoginThatNamesNone) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"Login2", L"1");
    Answer(L"provider7.GetAccountProfiles", L"Old|old;Mid|mid;Newest|newest");
    profile_ = Profile(7, L"", L"");
    EXPECT_TRUE(Send());
    EXPECT_EQ(CallsOf({L"GetAccountProfiles", L"SetDefaultStorageProvider"}),
              (Lines{L"GetAccountProfiles(provider7, 16)",
                     L"SetDefaultStorageProvider(manager, profile(7, \"Newest\", \"newest\"))"}));
    EXPECT_TRUE(SameBytes(profile_, Profile(7, L"Newest", L"newest")));
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider7, \"newest\")"});
}

TEST_F(CloudSend, TakesTheLastOfSixteenAccountsAtMost) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"Login2", L"1");
    std::wstring accounts;
    for (int number = 1; number <= 17; ++number) {
        accounts += (number > 1 ? L";L|key" : L"L|key") + std::to_wstring(number);
    }
    Answer(L"provider7.GetAccountProfiles", accounts.c_str());
    profile_ = Profile(7, L"", L"");
    EXPECT_TRUE(Send());
    EXPECT_STREQ(profile_.accountKey, L"key16");
    Answer(L"provider7.GetAccountProfiles", L"40"); // a count that no array has
    profile_ = Profile(7, L"", L"");
    EXPECT_TRUE(Send());
    EXPECT_STREQ(profile_.accountKey, L"");
}

TEST_F(CloudSend, KeepsTheProfileWhenALoginLeavesNoAccount) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"Login2", L"1");
    for (const wchar_t* count : {L"0", L"-1"}) {
        Answer(L"provider7.GetAccountProfiles", count);
        profile_ = Profile(7, L"", L"");
        EXPECT_TRUE(Send());
        EXPECT_TRUE(SameBytes(profile_, Profile(7, L"", L"")));
    }
    EXPECT_TRUE(CallsOf({L"SetDefaultStorageProvider"}).empty());
    EXPECT_EQ(Uploads().size(), 2u);
}

TEST_F(CloudSend, AsksForAnotherAccountAfterAFailedLoginAndStopsWithoutOne) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    EXPECT_TRUE(Send());
    EXPECT_EQ(FakeModules::Calls(),
              (Lines{InstanceAsked(L"7"), L"IsAccountLoggedIn(provider7, \"ann\")",
                     LoginShown(L"ann", L"Ann"), ChooserShown()}));
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(obtest::FileExists(job_.ResultPath));
}

// What an earlier chooser left in the record isn't a choice of this one.
TEST_F(CloudSend, StopsAfterACancelWhateverWasChosenBefore) {
    job_.SelectedStorageProvider = Profile(8, L"Bob", L"bob");
    const MessageBoxWatcher boxes;
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    EXPECT_TRUE(Send());
    Answer(L"provider7.IsAccountLoggedIn", L"1");
    Answer(L"provider7.GetMaxFileSize", L"4");
    EXPECT_TRUE(Send(5));
    EXPECT_EQ(CallsOf({L"ShowSelectDefaultCloudDialog", L"SetLastProviderError"}),
              (Lines{ChooserShown(), L"SetLastProviderError(provider7, 7)", ChooserShown()}));
    EXPECT_TRUE(Uploads().empty());
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(SameBytes(profile_, Profile(7, L"Ann", L"ann")));
}

// The limits are those of the choice; the upload goes through the instance of the first profile.
TEST_F(CloudSend, ChecksTheChoiceAfterAFailedLoginAndUploadsThroughTheFirstInstance) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    chooserAnswers = {Profile(8, L"Bob", L"bob")};
    EXPECT_TRUE(Send());
    EXPECT_EQ(CallsBeforeUpload(),
              (Lines{InstanceAsked(L"7"), L"IsAccountLoggedIn(provider7, \"ann\")",
                     LoginShown(L"ann", L"Ann"), ChooserShown(), InstanceAsked(L"8"),
                     L"GetMaxFileSize(provider8, \"bob\")", L"HasCapability(provider8, 1, 2)"}));
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider7, \"bob\")"});
    EXPECT_TRUE(SameBytes(profile_, Profile(8, L"Bob", L"bob")));
}

TEST_F(CloudSend, RefusesAFileAboveTheProvidersMaximum) {
    Answer(L"provider7.GetMaxFileSize", L"100");
    Answer(L"provider7.HasCapability", L"2");
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(101));
    EXPECT_EQ(
        FakeModules::Calls(),
        (Lines{InstanceAsked(L"7"), L"IsAccountLoggedIn(provider7, \"ann\")", InstanceAsked(L"7"),
               L"GetMaxFileSize(provider7, \"ann\")", L"SetLastProviderError(provider7, 7)",
               ErrorAsked(L"provider7", L"ann"), ChooserShown()}));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectPlainBox(boxes.Seen()[0], L"error 7");
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(obtest::FileExists(job_.ResultPath));
    EXPECT_TRUE(Send(100));
    EXPECT_EQ(Uploads().size(), 1u);
}

TEST_F(CloudSend, ComparesTheMaximumWithAllBitsOfTheSize) {
    Answer(L"provider7.GetMaxFileSize", L"4294967296");
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(4294967297));
    EXPECT_TRUE(Uploads().empty());
    EXPECT_TRUE(Send(4294967296));
    EXPECT_EQ(Uploads().size(), 1u);
}

class CloudSpace : public CloudSend {
protected:
    void SetUp() override {
        CloudSend::SetUp();
        Answer(L"provider7.HasCapability", L"2");
    }
    // Whether a file of this size is uploaded to an account that reports this space.
    bool Passes(std::int64_t size, const wchar_t* space) {
        Answer(L"provider7.GetAccountSpace", space);
        FakeModules::ForgetCalls();
        const MessageBoxWatcher boxes;
        EXPECT_TRUE(Send(size));
        const bool refused = !CallsOf({L"SetLastProviderError"}).empty();
        EXPECT_EQ(boxes.Seen().size(), refused ? 1u : 0u);
        EXPECT_EQ(Uploads().empty(), refused);
        return !refused;
    }
};

TEST_F(CloudSpace, IsAskedOnlyOfAProviderThatReportsIt) {
    EXPECT_TRUE(Passes(5, L"5,10"));
    EXPECT_EQ(CallsOf({L"GetAccountSpace"}), Lines{L"GetAccountSpace(provider7, \"ann\")"});
    Answer(L"provider7.HasCapability", L"1025");
    EXPECT_TRUE(Passes(6, L"5,10"));
    EXPECT_TRUE(CallsOf({L"GetAccountSpace"}).empty());
}

TEST_F(CloudSpace, RefusesAFileThatIsLargerWithTheProvidersText) {
    Answer(L"provider7.GetAccountSpace", L"4,10");
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(5));
    EXPECT_EQ(
        FakeModules::Calls(),
        (Lines{InstanceAsked(L"7"), L"IsAccountLoggedIn(provider7, \"ann\")", InstanceAsked(L"7"),
               L"GetMaxFileSize(provider7, \"ann\")", L"HasCapability(provider7, 1, 2)",
               L"GetAccountSpace(provider7, \"ann\")", L"SetLastProviderError(provider7, 9)",
               ErrorAsked(L"provider7", L"ann"), ChooserShown()}));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectPlainBox(boxes.Seen()[0], L"error 9");
    EXPECT_EQ(linkText_, L"");
}

TEST_F(CloudSpace, NeverBlocksWhenItIsUnknownWhateverTheCallReturns) {
    EXPECT_TRUE(Passes(5, L"-2,-2"));
    EXPECT_TRUE(Passes(5, L"-2,-2,0"));
}

TEST_F(CloudSpace, BlocksWhenTheFreeValueIsNegative) {
    EXPECT_FALSE(Passes(0, L"-2,10"));
    EXPECT_FALSE(Passes(0, L"-1,-2"));
    EXPECT_FALSE(Passes(5, L"-9223372036854775808,10"));
}

TEST_F(CloudSpace, NeverBlocksWhenTheCallFails) {
    EXPECT_TRUE(Passes(5, L""));
    EXPECT_TRUE(Passes(5, L"4,10,0"));
    EXPECT_TRUE(Passes(5, L"-1,10,0"));
}

TEST_F(CloudSpace, IsComparedWithTheLow32BitsOfTheSize) {
    EXPECT_TRUE(Passes(0x100000000, L"0,10")); // exactly 4 GiB
    EXPECT_TRUE(Passes(0x100000005, L"5,10"));
    EXPECT_FALSE(Passes(0x100000006, L"5,10"));
    EXPECT_FALSE(Passes(0xFFFFFFFF, L"4294967294,9999999999")); // unsigned
    EXPECT_TRUE(Passes(0xFFFFFFFF, L"4294967295,9999999999"));
}

TEST_F(CloudSpace, SendsToTheAccountThatIsChosenInItsPlace) {
    Answer(L"provider7.GetAccountSpace", L"4,10");
    chooserAnswers = {Profile(8, L"Bob", L"bob")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(5));
    const Lines calls = CallsBeforeUpload();
    const auto chosen = std::ranges::find(calls, ChooserShown());
    ASSERT_NE(chosen, calls.end());
    EXPECT_EQ(Lines(chosen, calls.end()),
              (Lines{ChooserShown(), InstanceAsked(L"8"), InstanceAsked(L"8"),
                     L"GetMaxFileSize(provider8, \"bob\")", L"HasCapability(provider8, 1, 2)"}));
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider8, \"bob\")"});
    EXPECT_TRUE(SameBytes(profile_, Profile(8, L"Bob", L"bob")));
    EXPECT_TRUE(linkText_.starts_with(L"0| |files.zip|https://8.example/files.zip|"));
}

TEST_F(CloudSpace, IsAskedOfEachChoiceUntilOneHasRoom) {
    Answer(L"provider7.GetAccountSpace", L"4,10");
    Answer(L"provider8.GetMaxFileSize", L"4");
    chooserAnswers = {Profile(8, L"Bob", L"bob"), Profile(7, L"Al", L"al"),
                      Profile(21, L"Cy", L"cy")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(5));
    EXPECT_EQ(CallsOf({L"SetLastProviderError", L"GetLastErrorOfProvider"}),
              (Lines{L"SetLastProviderError(provider7, 9)", ErrorAsked(L"provider7", L"ann"),
                     L"SetLastProviderError(provider8, 7)", ErrorAsked(L"provider8", L"bob"),
                     L"SetLastProviderError(provider7, 9)", ErrorAsked(L"provider7", L"al")}));
    EXPECT_EQ(boxes.Seen().size(), 3u);
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider21, \"cy\")"});
}

// After a failed login the limits are checked on the choice, while the text of the error is that of
// the first instance, until another choice replaces it.
TEST_F(CloudSpace, IsReportedByTheFirstInstanceAfterAFailedLogin) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    Answer(L"provider8.GetMaxFileSize", L"4");
    chooserAnswers = {Profile(8, L"Bob", L"bob"), Profile(21, L"Cy", L"cy")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(5));
    EXPECT_EQ(CallsOf({L"SetLastProviderError", L"GetLastErrorOfProvider"}),
              (Lines{L"SetLastProviderError(provider8, 7)", ErrorAsked(L"provider7", L"bob")}));
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider21, \"cy\")"});
}

// A manager that supports a provider and has no instance of it.
TEST_F(CloudSend, AssertsAMissingInstanceAndTakesThatOfTheChoice) {
    profile_ = Profile(99, L"Zed", L"zed");
    chooserAnswers = {Profile(8, L"Bob", L"bob")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
    EXPECT_TRUE(CallsOf({L"Login2"}).empty());
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider8, \"bob\")"});
}

TEST_F(CloudSend, FailsWithoutAnInstanceOfTheChoice) {
    Answer(L"provider7.GetMaxFileSize", L"4");
    chooserAnswers = {Profile(99, L"Zed", L"zed")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send(5));
    ASSERT_EQ(boxes.Seen().size(), 2u); // the limit, then the missing instance
    ExpectAssertion(boxes.Seen()[1], L"cloud_svc != NULL");
    EXPECT_TRUE(Uploads().empty());
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(Left().empty());
}

// The upload goes through the first instance; only the limits of the choice can't be checked.
TEST_F(CloudSend, AssertsOnceThatTheLimitsOfAChoiceCannotBeChecked) {
    Answer(L"provider7.IsAccountLoggedIn", L"0");
    chooserAnswers = {Profile(99, L"Zed", L"zed")};
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Send());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
    EXPECT_EQ(Uploads(), Lines{L"CreateUploadList(provider7, \"zed\")"});
}

} // namespace
