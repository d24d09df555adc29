// The choice of the encryption method.
#include "OBCore/settings/EncryptionDialog.h"

#include <atomic>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

namespace {

using obcore::TextId;
using obtest::FakeModules;
using obtest::OpenDialog;

using Ids = std::vector<int>;

constexpr int kFour = OB_ENCRYPTION_METHOD_4;
constexpr int kEight = OB_ENCRYPTION_METHOD_8;

// The numbers are fixed, whatever their names.
static_assert(OB_ENCRYPTION == 105 && kFour == 1002 && OB_ENCRYPTION_HEADLINE == 1003 &&
              kEight == 1005);

// Records what its handler of commands returned.
class WatchedDialog : public obcore::OBEncryptionDialogImp {
public:
    WatchedDialog(obcore::OBOptions& options, std::atomic<bool>& handled)
        : OBEncryptionDialogImp(nullptr, options), handled_(&handled) {}
    bool OnCommand(WPARAM wParam, LPARAM lParam) override {
        const bool handled = OBEncryptionDialogImp::OnCommand(wParam, lParam);
        *handled_ = handled;
        return handled;
    }

private:
    std::atomic<bool>* handled_;
};

class EncryptionDialog : public obtest::SettingsFixture {
protected:
    // The method that the archive service replaces a forbidden one by.
    void SetUp() override {
        SettingsFixture::SetUp();
        Answer(L"DefaultEncryptionMethod", L"8");
    }

    INT_PTR Show(const std::function<void(const OpenDialog&)>& use) {
        return Operate(
            kEight,
            [this]() -> INT_PTR {
                WatchedDialog dialog(options_, handled_);
                return dialog.DoModal();
            },
            use);
    }
    // What the dialog's handler returned for a click.
    bool Handles(const OpenDialog& dialog, int id) {
        handled_ = false;
        dialog.Notify(id, BN_CLICKED);
        return handled_.load();
    }

    std::atomic<bool> handled_ = false;
    obcore::OBOptions options_ = obtest::PlainOptions();
};

TEST_F(EncryptionDialog, ShowsTheStoredMethod) {
    const struct {
        std::uint32_t method;
        Ids checked;
    } rows[] = {{4, {kFour}}, {8, {kEight}}, {0, {}}, {12, {}}, {0x10004, {}}};
    for (const auto& row : rows) {
        options_.EncryptionMethod = row.method;
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(row.checked, dialog.Checked({kFour, kEight})) << row.method;
        });
    }
}

TEST_F(EncryptionDialog, DisablesWhatIsNotAllowed) {
    const struct {
        std::uint16_t mask;
        Ids disabled;
    } rows[] = {
        {12, {}}, {4, {kEight}}, {8, {kFour}}, {0, {kFour, kEight}}, {0xFFF3, {kFour, kEight}}};
    for (const auto& row : rows) {
        options_.AllowedEncryptMethods = row.mask;
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(row.disabled, dialog.Disabled({kFour, kEight})) << row.mask;
            EXPECT_EQ(row.disabled, dialog.Hinted({kFour, kEight})) << row.mask;
        });
    }
}

TEST_F(EncryptionDialog, NamesTheStrongMethodByTheFipsSetting) {
    const struct {
        const wchar_t* setting;
        TextId text;
    } rows[] = {{L"0", TextId::Method8},         {L"1", TextId::Method8Fips},
                {L"2", TextId::Method8Fips},     {L"3", TextId::Method8},
                {L"65537", TextId::Method8Fips}, {L"65536", TextId::Method8}};
    for (const auto& row : rows) {
        Answer(L"GetOmbrixFIPSSetting", row.setting);
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(obcore::LoadText(row.text), dialog.Text(kEight)) << row.setting;
        });
    }
}

TEST_F(EncryptionDialog, NamesTheStrongMethodAlsoWhereItIsDisabled) {
    options_.AllowedEncryptMethods = 4;
    Answer(L"GetOmbrixFIPSSetting", L"1");
    Show([](const OpenDialog& dialog) {
        EXPECT_FALSE(dialog.IsEnabled(kEight));
        EXPECT_EQ(obcore::LoadText(TextId::Method8Fips), dialog.Text(kEight));
    });
}

TEST_F(EncryptionDialog, DrawsItsHeadlineBold) {
    Show([](const OpenDialog& dialog) {
        EXPECT_TRUE(obtest::IsBold(dialog.Item(OB_ENCRYPTION_HEADLINE)));
    });
}

TEST_F(EncryptionDialog, SavesTheChosenMethodAtOnce) {
    Answer(L"AllowedEncryptMethods", L"12");
    for (const int radio : {kEight, kFour}) {
        const std::uint32_t method = radio == kFour ? 4 : 8;
        EXPECT_EQ(1, Show([radio](const OpenDialog& dialog) {
                      dialog.Press(radio);
                      dialog.Ok();
                  }));
        EXPECT_EQ(method, options_.EncryptionMethod);
        EXPECT_EQ(std::to_wstring(method), obtest::ReadUserValue(L"EncryptionMethod"));
        EXPECT_EQ(method, Loaded().EncryptionMethod);
    }
}

TEST_F(EncryptionDialog, CancelSavesNothing) {
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) { dialog.Press(kEight); }));
    EXPECT_EQ(4u, options_.EncryptionMethod);
    EXPECT_FALSE(obtest::ReadUserValue(L"EncryptionMethod"));
}

// OK sets method 4 against any policy, and the save repairs it, in the record too.
TEST_F(EncryptionDialog, TakesTheFirstMethodWithoutAChoiceAndRepairsIt) {
    const struct {
        std::uint16_t mask;
        bool noEncryption;
        std::uint32_t method;
    } rows[] = {{12, false, 4}, {8, false, 8}, {12, true, 0}, {0, false, 0}};
    for (const auto& row : rows) {
        options_ = obtest::PlainOptions();
        options_.EncryptionMethod = 0;
        options_.AllowedEncryptMethods = row.mask;
        options_.NoEncryption = row.noEncryption;
        EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
        EXPECT_EQ(row.method, options_.EncryptionMethod) << row.mask;
        EXPECT_EQ(std::to_wstring(row.method), obtest::ReadUserValue(L"EncryptionMethod"));
    }
}

TEST_F(EncryptionDialog, RefusesAClickOnAForbiddenMethod) {
    options_.AllowedEncryptMethods = 4;
    Show([this](const OpenDialog& dialog) {
        SendMessageW(dialog.Item(kFour), BM_SETCHECK, BST_UNCHECKED, 0);
        SendMessageW(dialog.Item(kEight), BM_SETCHECK, BST_CHECKED, 0);
        PostMessageW(dialog.window, WM_COMMAND, MAKEWPARAM(kEight, BN_CLICKED),
                     reinterpret_cast<LPARAM>(dialog.Item(kEight)));
        const obtest::SeenBox box = obtest::CloseBoxOf(dialog.window);
        EXPECT_EQ(obcore::LoadText(TextId::EncryptionNotAllowed), box.text);
        EXPECT_FALSE(box.hasIcon);
        EXPECT_EQ(Ids{kFour}, dialog.Checked({kFour, kEight}));
        EXPECT_TRUE(obtest::WaitUntil([this] { return handled_.load(); }));
    });
}

TEST_F(EncryptionDialog, LeavesOtherClicksAlone) {
    options_.AllowedEncryptMethods = 4;
    Show([this](const OpenDialog& dialog) {
        EXPECT_FALSE(Handles(dialog, kFour));  // allowed
        EXPECT_FALSE(Handles(dialog, kEight)); // forbidden and unchecked
        EXPECT_EQ(Ids{kFour}, dialog.Checked({kFour, kEight}));
        EXPECT_TRUE(Handles(dialog, OB_ENCRYPTION_HEADLINE)); // no radio
    });
}

} // namespace
