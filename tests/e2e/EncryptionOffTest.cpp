// Whole requests of a user who has chosen encryption, on a machine whose administrator has switched
// encryption off.
#include "tests/e2e/RealRequest.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

class EncryptionOff : public RealRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        SetUserValue(L"AutoEncrypt", L"1");
        SetUserValue(L"SendItem", L"0");
    }
    void TearDown() override {
        ClearProductRegistry();
        RealRequest::TearDown();
    }

    // Picks a file without changing the choice; the page must get the file as it is. Returns the
    // texts of the message boxes.
    Texts AskAndPick(const std::function<void(OpenPicker&)>& look) {
        const std::wstring file = files_.File(L"letter.txt", "Dear all");
        const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
        PickerUiDriver driver([&](OpenPicker& picker) {
            look(picker);
            EXPECT_TRUE(picker.TypeNames(file));
            picker.PressOk();
        });
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        EXPECT_EQ(answer.result, TRUE);
        EXPECT_EQ(answer.given, Texts{file});
        EXPECT_EQ(LeftInTemp(), Texts{});
        Texts texts;
        for (const SeenBox& box : boxes.Seen()) texts.push_back(box.text);
        return texts;
    }
};

TEST_F(EncryptionOff, IsReportedByAMessageWhenOnlyTheServiceReadsThePolicy) {
    SetMachinePolicy(L"NoEncryption", L"1", 32);
    const Texts messages = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsChecked(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(messages, Texts{L"The Ombrix encryption feature has been disabled by your "
                              L"administrator."});
}

TEST_F(EncryptionOff, DisablesTheChoiceWhenTheProductReadsThePolicy) {
    SetMachinePolicy(L"NoEncryption", L"1", 64);
    const Texts messages = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsEnabled(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(messages, Texts{});
}

TEST_F(EncryptionOff, DisablesTheChoiceWhenNoMethodIsAllowed) {
    SetMachinePolicy(L"AllowedEncryptionMethods", L"0");
    const Texts messages = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsEnabled(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(messages, Texts{});
}

} // namespace
} // namespace obtest
