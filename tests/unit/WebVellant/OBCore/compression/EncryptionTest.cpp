// A run that encrypts: password, public key, and the ways in which it stops.
#include <algorithm>

#include "OBCore/compression/CompressFiles.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace {

using obcore::CompressUtils::CompressFiles;
using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;

constexpr wchar_t kZipName[] = L"Ombrix Compressed Attachments.zip";

decltype(&RemoveDirectoryW) realRemoveDirectory = nullptr;

// Written down among the calls of the service, so that the order shows.
BOOL WINAPI NotedRemoval(LPCWSTR path) {
    obtest::RecordCall(L"RemoveDirectoryW(" + obtest::Quoted(path) + L")");
    return realRemoveDirectory(path);
}

class Encryption : public obtest::RunFixture {
protected:
    void SetUp() override {
        RunFixture::SetUp();
        job_.Files = {sources_.File(L"first.txt"), sources_.File(L"second.txt")};
        job_.SendItem = false;
        job_.AutoEncrypt = true;
        job_.EncryptionMethod = 8;
    }

    // The calls from the one that ends the naming of the zip on.
    static Lines CallsAfterNaming() {
        Lines calls = FakeModules::Calls();
        const auto naming = std::find_if(calls.begin(), calls.end(), [](const std::wstring& call) {
            return call.starts_with(L"SetTempFolderW");
        });
        EXPECT_NE(naming, calls.end());
        if (naming != calls.end()) calls.erase(calls.begin(), naming + 1);
        return calls;
    }
    std::wstring PasswordCall(const std::wstring& method) const {
        return L"PasswordNewDlg_C(" + Owner() + L", " + method + L", 260)";
    }
    Lines Engine() const {
        return {L"SetCompression(context5, 8)", L"SetDuplicateReferences(context5, 0)",
                L"Zip(" + Owner() + L", context5)", L"DestroyZipContext(context5)"};
    }
    static Lines Joined(Lines calls, const Lines& more) {
        calls.insert(calls.end(), more.begin(), more.end());
        return calls;
    }
    void UsePublicKey(std::uint32_t result) {
        job_.HasEntCertificate = true;
        job_.PublicKeyResult = result;
        job_.PublicKeyText = L"the key";
    }
};

TEST_F(Encryption, SetsTheMethodAndHandsThePasswordOver) {
    FakeModules::Answer(L"Password", L"open sesame");
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(CallsAfterNaming(), Joined({L"SetEncrypt(context5, 8)", PasswordCall(L"8"),
                                          L"SetPassword(context5, \"open sesame\")"},
                                         Engine()));
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_EQ(job_.ResultPath, RunFolder() + kZipName);
    EXPECT_TRUE(job_.Usage.UsageZipped);
    EXPECT_TRUE(job_.Usage.UsageEncrypted);
}

TEST_F(Encryption, KeepsThePasswordOutOfTheTrace) {
    FakeModules::Answer(L"Password", L"open sesame");
    obtest::ForgetTrace();
    EXPECT_TRUE(CompressFiles(job_));
    ASSERT_EQ(obtest::TraceLines().size(), 3u);
    for (const std::string& line : obtest::TraceLines()) {
        EXPECT_EQ(line.find("sesame"), std::string::npos) << line;
    }
}

TEST_F(Encryption, WorksBesideSendItemToo) {
    job_.SendItem = true;
    job_.EncryptionMethod = 4;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::CallsOf({L"SetEncrypt"}), Lines{L"SetEncrypt(context5, 4)"});
}

TEST_F(Encryption, LendsThePasswordDialogACopyOfTheMethodOnly) {
    FakeModules::Answer(L"PasswordMethod", L"4");
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(job_.EncryptionMethod, 8u);
    EXPECT_EQ(FakeModules::CallsOf({L"SetEncrypt"}), Lines{L"SetEncrypt(context5, 8)"});
}

TEST_F(Encryption, TakesAPasswordOf259Bytes) {
    const std::wstring longest(259, L'p');
    FakeModules::Answer(L"Password", longest);
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::CallsOf({L"SetPassword"}),
              Lines{L"SetPassword(context5, " + Quote(longest) + L")"});
}

TEST_F(Encryption, AsksForAPasswordAlsoWithMethodZero) {
    job_.EncryptionMethod = 0;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(CallsAfterNaming(), Joined({L"SetEncrypt(context5, 0)", PasswordCall(L"0"),
                                          L"SetPassword(context5, \"secret\")"},
                                         Engine()));
    EXPECT_FALSE(job_.Usage.UsageEncrypted);
}

TEST_F(Encryption, GivesTheServiceThePublicKeyAndAsksForAPasswordAllTheSame) {
    UsePublicKey(1);
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(CallsAfterNaming(),
              Joined({L"SetPublicKeyResult(context5, 1)", L"SetPublicKeyW(context5, \"the key\")",
                      L"SetEncrypt(context5, 8)", PasswordCall(L"8"),
                      L"SetPassword(context5, \"secret\")"},
                     Engine()));
}

TEST_F(Encryption, LeavesThePublicKeyOutOfAPlainZip) {
    UsePublicKey(0);
    job_.SendItem = true;
    job_.AutoEncrypt = false;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(CallsAfterNaming(), Joined({L"SetEncrypt(context5, 0)"}, Engine()));
}

TEST_F(Encryption, ReportsAnUnusablePublicKeyWithTheWarningIcon) {
    UsePublicKey(0);
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    ExpectOneBox(boxes, obcore::TextId::PublicKeyUnusable, true);
}

TEST_F(Encryption, LeavesContextAndFolderAfterAnUnusablePublicKey) {
    for (const std::uint32_t result : {0u, 2u, 257u, 0xFFFFFFFFu}) {
        FakeModules::ForgetCalls();
        UsePublicKey(result);
        const MessageBoxWatcher boxes;
        EXPECT_FALSE(CompressFiles(job_));
        EXPECT_EQ(CallsAfterNaming(),
                  Lines{L"SetPublicKeyResult(context5, " + std::to_wstring(result) + L")"});
        EXPECT_EQ(boxes.Seen().size(), 1u);
    }
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1001\\", L"1002\\", L"1003\\"}));
    EXPECT_FALSE(job_.Usage.UsageEncrypted);
    EXPECT_FALSE(job_.ResultIsArchive);
    EXPECT_EQ(job_.CleanupFolder, L"");
}

TEST_F(Encryption, RemovesTheFolderAndThenEndsTheContextWhenTheUserGivesNoPassword) {
    FakeModules::Answer(L"PasswordNewDlg_C", L"2");
    obtest::ImportPatch<decltype(&RemoveDirectoryW)> removal("kernel32.dll", "RemoveDirectoryW",
                                                             &NotedRemoval);
    ASSERT_TRUE(removal.Ok());
    realRemoveDirectory = removal.Real();
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    EXPECT_EQ(CallsAfterNaming(), (Lines{L"SetEncrypt(context5, 8)", PasswordCall(L"8"),
                                         L"RemoveDirectoryW(" + Quote(RunFolder()) + L")",
                                         L"DestroyZipContext(context5)"}));
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_TRUE(Left().empty());
    EXPECT_FALSE(job_.ResultIsArchive);
    EXPECT_EQ(job_.CleanupFile, L"");
    EXPECT_EQ(job_.CleanupFolder, L"");
    EXPECT_TRUE(job_.Usage.UsageEncrypted); // noted when the method is set, before the prompt
}

TEST_F(Encryption, TakesEveryOtherAnswerThanOneForNoPassword) {
    for (const wchar_t* answer : {L"0", L"257", L"4294967295"}) {
        FakeModules::ForgetCalls();
        FakeModules::Answer(L"PasswordNewDlg_C", answer);
        EXPECT_FALSE(CompressFiles(job_)) << "answer " << _wtoi64(answer);
        EXPECT_TRUE(FakeModules::CallsOf({L"SetPassword", L"Zip"}).empty());
        EXPECT_EQ(FakeModules::CallsOf({L"DestroyZipContext"}).size(), 1u);
    }
    EXPECT_TRUE(Left().empty());
}

} // namespace
