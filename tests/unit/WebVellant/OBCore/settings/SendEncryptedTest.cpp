// The choice of encryption in the attachment settings, which counts at once.
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obcore::TextId;
using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

constexpr int kEncrypted = OB_ATTACHMENT_SEND_ENCRYPTED;

class SendEncrypted : public obtest::AttachmentFixture {
protected:
    // Chooses encryption although it is disabled, as a click that arrives all the same.
    static void Choose(const OpenDialog& dialog) {
        SendMessageW(dialog.Item(kEncrypted), BM_SETCHECK, BST_CHECKED, 0);
        dialog.Notify(kEncrypted, BN_CLICKED);
    }
};

TEST_F(SendEncrypted, CountsAtOnceAndAfterACancel) {
    EXPECT_EQ(2, Show([this](const OpenDialog& dialog) {
                  FakeModules::ForgetCalls();
                  dialog.Press(kEncrypted);
                  EXPECT_TRUE(options_.AutoEncrypt);
                  EXPECT_TRUE(dialog.IsChecked(kEncrypted));
                  const auto owner = reinterpret_cast<std::uint64_t>(dialog.window);
                  EXPECT_EQ(Lines{L"TryToShowWarningOrErrorMessage(" + std::to_wstring(owner) +
                                  L", 0, 1)"},
                            FakeModules::Calls());
              }));
    EXPECT_TRUE(options_.AutoEncrypt);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
}

TEST_F(SendEncrypted, IsTakenBackForAnAnswerOf2InTheLow16Bits) {
    for (const wchar_t* answer : {L"2", L"65538"}) {
        options_.AutoEncrypt = false;
        Answer(L"TryToShowWarningOrErrorMessage", answer);
        Show([this](const OpenDialog& dialog) {
            dialog.Press(kEncrypted);
            EXPECT_FALSE(options_.AutoEncrypt);
            EXPECT_FALSE(dialog.IsChecked(kEncrypted));
        });
    }
}

TEST_F(SendEncrypted, StaysForEveryOtherAnswer) {
    for (const wchar_t* answer : {L"0", L"1", L"3", L"131072"}) {
        options_.AutoEncrypt = false;
        Answer(L"TryToShowWarningOrErrorMessage", answer);
        Show([this, answer](const OpenDialog& dialog) {
            dialog.Press(kEncrypted);
            EXPECT_TRUE(options_.AutoEncrypt) << answer;
            EXPECT_TRUE(dialog.IsChecked(kEncrypted)) << answer;
        });
    }
}

TEST_F(SendEncrypted, UncheckedAsksNobody) {
    options_.AutoEncrypt = true;
    Show([this](const OpenDialog& dialog) {
        FakeModules::ForgetCalls();
        SendMessageW(dialog.Item(kEncrypted), BM_SETCHECK, BST_UNCHECKED, 0);
        dialog.Notify(kEncrypted, BN_CLICKED);
        EXPECT_FALSE(options_.AutoEncrypt);
        EXPECT_EQ(Lines(), FakeModules::Calls());
    });
}

TEST_F(SendEncrypted, IsTakenBackWithAMessageWhereItIsForbidden) {
    for (const bool isPolicy : {false, true}) {
        options_ = obtest::PlainOptions();
        options_.NoEncryption = isPolicy;
        options_.AllowedEncryptMethods = isPolicy ? 12 : 0;
        obtest::MessageBoxWatcher boxes;
        Show([&](const OpenDialog& dialog) {
            FakeModules::ForgetCalls();
            Choose(dialog);
            EXPECT_FALSE(options_.AutoEncrypt);
            EXPECT_FALSE(dialog.IsChecked(kEncrypted));
            EXPECT_EQ(Lines(), FakeModules::Calls());
        });
        ASSERT_EQ(1u, boxes.Seen().size());
        EXPECT_EQ(obcore::LoadText(TextId::EncryptionNotAllowed), boxes.Seen()[0].text);
        EXPECT_FALSE(boxes.Seen()[0].hasIcon);
    }
}

TEST_F(SendEncrypted, HasItsMethodChosenInADialogOfItsOwn) {
    options_.EncryptionMethod = 4;
    EXPECT_EQ(
        2, Show([](const OpenDialog& dialog) {
            obtest::Click(dialog.Item(OB_ATTACHMENT_ENCRYPTION));
            ASSERT_TRUE(obtest::WaitUntil([] {
                return obtest::FindDialogWith(OB_ENCRYPTION_METHOD_8) != nullptr &&
                       !IsWindowEnabled(obtest::FindDialogWith(OB_ATTACHMENT_PREVIEW));
            }));
            HWND inner = nullptr;
            obtest::WaitUntil([&inner] {
                inner = obtest::FindTopWindow(
                    [](HWND window) { return obtest::IsDialog(window) && IsWindowEnabled(window); },
                    GetCurrentProcessId());
                return inner != nullptr;
            });
            const OpenDialog encryption{inner};
            EXPECT_EQ(dialog.window, GetWindow(inner, GW_OWNER));
            encryption.Press(OB_ENCRYPTION_METHOD_8);
            encryption.Ok();
            EXPECT_TRUE(obtest::WaitUntilClosed(inner));
        }));
    EXPECT_EQ(8u, options_.EncryptionMethod);
    EXPECT_EQ(L"8", obtest::ReadUserValue(L"EncryptionMethod")); // whatever happens around it
}

} // namespace
