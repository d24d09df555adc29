// Whole requests of people who encrypt, on a machine whose administrator has switched that off.
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

    // Picks the file with whatever choice stands, and the page must get it as it is.
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
        Texts told;
        for (const SeenBox& box : boxes.Seen()) told.push_back(box.text);
        return told;
    }
};

TEST_F(EncryptionOff, IsToldWhereTheServiceAloneKnowsOfIt) {
    SetMachinePolicy(L"NoEncryption", L"1", 32);
    const Texts told = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsChecked(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(told, Texts{L"The Ombrix encryption feature has been disabled by your "
                          L"administrator."});
}

TEST_F(EncryptionOff, TakesTheChoiceAwayWhereTheProductKnowsOfIt) {
    SetMachinePolicy(L"NoEncryption", L"1", 64);
    const Texts told = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsEnabled(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(told, Texts{});
}

TEST_F(EncryptionOff, TakesTheChoiceAwayWhereNoMethodIsAllowed) {
    SetMachinePolicy(L"AllowedEncryptionMethods", L"0");
    const Texts told = AskAndPick([this](OpenPicker& picker) {
        EXPECT_FALSE(picker.IsEnabled(Text(static_cast<UINT>(Choice::Encrypt))));
    });
    EXPECT_EQ(told, Texts{});
}

} // namespace
} // namespace obtest
