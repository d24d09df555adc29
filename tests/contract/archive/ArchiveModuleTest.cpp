// The real archive service through its own file.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>

#include "services/archive/password/PasswordPromptIds.h"
#include "services/archive/zip/ZipResults.h"
#include "tests/contract/archive/LoadedService.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/archive/password/PromptDriver.h"

using obcontract::ZipContext;

namespace {

using obarchive::ZipResult;

using Tree = std::vector<std::wstring>;

class ArchiveModule : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(service_.IsComplete()); }

    // A context that would succeed as it is.
    ZipContext Ready() {
        const ZipContext context = service_->CreateZipContext();
        service_->AddFileW(context, in_.File(L"source.txt").c_str());
        service_->SetZipNameW(context, (out_ / L"result.zip").c_str());
        return context;
    }

    void ExpectFailure(ZipContext context, ZipResult expected) {
        const std::size_t told = boxes_.Seen().size();
        EXPECT_EQ(service_->Zip(nullptr, context), static_cast<std::uint32_t>(expected));
        EXPECT_EQ(boxes_.Seen().size(), told + 1);
        EXPECT_NE(static_cast<std::uint32_t>(expected), 0U);
        EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
    }

    obtest::LoadedService service_;
    obtest::TestFolder in_;
    obtest::TestFolder out_;
    // Answers the box of each failure. Created after the module is loaded: enumerating windows for
    // the first time during a load can deadlock in the test system's loader.
    obtest::MessageBoxWatcher boxes_;
};

TEST_F(ArchiveModule, ABadOrDestroyedContextFailsCleanly) {
    const ZipContext destroyed = Ready();
    service_->DestroyZipContext(destroyed);
    service_->DestroyZipContext(destroyed);
    for (const ZipContext context : {destroyed, ZipContext{0}, ~ZipContext{0}, destroyed + 1}) {
        service_->AddFileW(context, L"C:\\x");
        service_->SetZipNameW(context, L"C:\\x.zip");
        service_->SetTempFolderW(context, L"C:\\");
        service_->SetEncrypt(context, 8);
        service_->SetPassword(context, "x");
        service_->SetCompression(context, 8);
        service_->SetDuplicateReferences(context, 1);
        service_->SetPublicKeyResult(context, 1);
        service_->SetPublicKeyW(context, L"x");
        ExpectFailure(context, ZipResult::BadContext);
        service_->DestroyZipContext(context);
    }
}

TEST_F(ArchiveModule, NullTextsAndContradictingCallsAreFailuresOfTheRunAndNotOfTheProcess) {
    ZipContext context = Ready();
    service_->SetZipNameW(context, nullptr);
    ExpectFailure(context, ZipResult::NoTarget);
    context = Ready();
    service_->AddFileW(context, nullptr);
    ExpectFailure(context, ZipResult::PathTooLong);
    context = Ready();
    service_->SetEncrypt(context, 8);
    service_->SetPassword(context, nullptr);
    ExpectFailure(context, ZipResult::PasswordMissing);
    context = Ready();
    service_->SetPassword(context, "secret");
    service_->SetEncrypt(context, 0);
    ExpectFailure(context, ZipResult::EncryptionMissing);
    context = service_->CreateZipContext();
    service_->SetZipNameW(context, (out_ / L"x.zip").c_str());
    ExpectFailure(context, ZipResult::NoFiles);
    context = Ready();
    service_->SetTempFolderW(context, nullptr);
    EXPECT_EQ(service_->Zip(nullptr, context), 0U);
}

TEST_F(ArchiveModule, RecoveryIsRefusedWithoutACertificate) {
    char buffer[1024];
    std::memset(buffer, 0x55, sizeof buffer);
    EXPECT_NE(service_->GetPublicKeyResult(buffer, sizeof buffer), 1U);
    EXPECT_STREQ(buffer, "");
    EXPECT_NE(service_->GetPublicKeyResult(nullptr, 0), 1U);

    const ZipContext byResult = Ready();
    service_->SetPublicKeyResult(byResult, 1);
    ExpectFailure(byResult, ZipResult::RecoveryNotThere);
    const ZipContext byKey = Ready();
    service_->SetPublicKeyW(byKey, L"key");
    ExpectFailure(byKey, ZipResult::RecoveryNotThere);
    const ZipContext noKey = Ready();
    service_->SetPublicKeyResult(noKey, 0);
    EXPECT_EQ(service_->Zip(nullptr, noKey), 0U);
}

TEST_F(ArchiveModule, ASecondZipOfOneContextOverwritesNothing) {
    const ZipContext context = Ready();
    EXPECT_EQ(service_->Zip(nullptr, context), 0U);
    EXPECT_EQ(service_->Zip(nullptr, context), static_cast<std::uint32_t>(ZipResult::TargetExists));
}

TEST_F(ArchiveModule, ReturnsTheEncryptionRules) {
    EXPECT_EQ(service_->AllowedEncryptMethods(), 12);
    EXPECT_EQ(service_->DefaultEncryptionMethod(), 8);
    EXPECT_EQ(service_->GetOmbrixFIPSSetting(), 0U);
    EXPECT_EQ(service_->TryToShowWarningOrErrorMessage(nullptr, 0, 1), 0U);
}

TEST_F(ArchiveModule, BadNamesAreRejected) {
    EXPECT_NE(service_->ValidateFilespecW(L"", 2), 0U);
    EXPECT_NE(service_->ValidateFilespecW(L"a:b", 2), 0U);
    EXPECT_NE(service_->ValidateFilespecW(L"nul", 2), 0U);
    EXPECT_NE(service_->ValidateFilespecW(L"", 4), 0U);
    EXPECT_NE(service_->ValidateFilespecW(L"z ip", 4), 0U);
    EXPECT_NE(service_->ValidateFilespecW(L"zip", 3), 0U);
    EXPECT_NE(service_->ValidateFilespecW(nullptr, 2), 0U);
}

TEST_F(ArchiveModule, ThePromptIsFoundInTheModuleAndKeepsTheMethod) {
    const obtest::PromptDriver driver([](const obtest::PromptOnScreen& prompt) {
        prompt.Type(OB_PASSWORD_FIRST, L"tW4!mQz9#");
        prompt.Type(OB_PASSWORD_REPEAT, L"other");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"The two passwords are not the same.");
        prompt.Type(OB_PASSWORD_REPEAT, L"tW4!mQz9#");
        prompt.Press(IDOK);
    });
    std::uint32_t method = 4;
    char password[260] = {};
    EXPECT_EQ(service_->PasswordNewDlg_C(nullptr, &method, password, sizeof password), 1U);
    EXPECT_STREQ(password, "tW4!mQz9#");
    EXPECT_EQ(method, 4U);
}

TEST_F(ArchiveModule, ACancelledPromptDoesNotReturn1) {
    const obtest::PromptDriver driver(
        [](const obtest::PromptOnScreen& prompt) { prompt.Press(IDCANCEL); });
    char password[260] = {};
    EXPECT_EQ(service_->PasswordNewDlg_C(nullptr, nullptr, password, sizeof password), 2U);
}

TEST_F(ArchiveModule, ManyContextsAndRunsLeakNoHandle) {
    service_->Zip(nullptr, Ready());
    DeleteFileW((out_ / L"result.zip").c_str());
    DWORD before = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int run = 0; run < 50; ++run) {
        const ZipContext context = Ready();
        if (run % 2) service_->AddFileW(context, (in_ / L"missing").c_str());
        EXPECT_EQ(service_->Zip(nullptr, context) == 0, run % 2 == 0);
        service_->DestroyZipContext(context);
        DeleteFileW((out_ / L"result.zip").c_str());
    }
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(after, before);
}

} // namespace
