// The settings of attachments, encryption, updates and the about box at one scale of the display:
// no text is cut off. In the folder OB_PICTURES, where that is set, the tests leave pictures to be
// judged by eye.
#include <algorithm>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/AboutDialog.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/EncryptionDialog.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "OBCore/settings/UpdateCheckDialog.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obtest::OpenDialog;

// What a box or a button has beside its text, at 96 dpi.
constexpr int kMargin = 16;

bool IsButton(HWND control) { return obtest::ClassOf(control) == L"Button"; }

// The preview is as long as the name is.
void ExpectWholeTexts(const OpenDialog& dialog) {
    for (const HWND control : obtest::Descendants(dialog.window)) {
        const bool isText = IsButton(control) || obtest::ClassOf(control) == L"Static";
        if (!isText || GetDlgCtrlID(control) == OB_ATTACHMENT_PREVIEW) continue;
        obtest::ExpectWholeText(control, IsButton(control) ? obtest::AtScale(kMargin) : 0);
    }
}

void Look(const OpenDialog& dialog, const std::wstring& name) {
    ExpectWholeTexts(dialog);
    obtest::LookAt(dialog.window, L"settings-" + name, 240, 100);
}

// How many pixels of a control aren't those of the dialog.
std::ptrdiff_t InkOf(const OpenDialog& dialog, int id) {
    const auto picture = obtest::TakeSettledPicture(dialog.window);
    RECT window{};
    RECT area{};
    GetWindowRect(dialog.window, &window);
    GetWindowRect(dialog.Item(id), &area);
    std::ptrdiff_t ink = 0;
    for (LONG y = area.top - window.top; picture && y < area.bottom - window.top; ++y) {
        const auto row = picture->pixels.begin() + y * picture->width - window.left;
        ink += std::count_if(row + area.left, row + area.right,
                             [](std::uint32_t pixel) { return pixel != 0xFFFFFF; });
    }
    return ink;
}

class AttachmentPictures : public obtest::AttachmentFixture {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    void LookAtAttachments(const std::wstring& name,
                           const std::function<void(const OpenDialog&)>& set = {}) {
        Show([&](const OpenDialog& dialog) {
            if (set) set(dialog);
            Look(dialog, L"attachments-" + name);
        });
    }
    void LookAtEncryption(const std::wstring& name) {
        Operate(
            OB_ENCRYPTION_METHOD_8,
            [this]() -> INT_PTR {
                return obcore::OBEncryptionDialogImp(nullptr, options_).DoModal();
            },
            [&](const OpenDialog& dialog) { Look(dialog, L"encryption-" + name); });
    }
    void LookAtUpdates(const std::wstring& name) {
        Operate(
            OB_UPDATE_CHECK_NOW,
            [this] { return obcore::ShowUpdateCheckDialog(nullptr, options_); },
            [&](const OpenDialog& dialog) { Look(dialog, L"updates-" + name); });
    }
};

TEST_F(AttachmentPictures, OfAttachments) { LookAtAttachments(L"open"); }

TEST_F(AttachmentPictures, OfAttachmentsThatPolicyTookAway) {
    options_.NoEncryption = true;
    options_.AdminSendItem = obcore::AdminSendItemKind::ForcedOff;
    LookAtAttachments(L"policy");
}

TEST_F(AttachmentPictures, OfALongName) {
    options_.DefaultZipName =
        L"A name of a zip & its files that is far longer than the field and the "
        L"preview of it have room for in one line";
    options_.NameAppend = obcore::NameAppendKind::DateTime;
    options_.UseAltExt = true;
    options_.AltExt = L"archive";
    LookAtAttachments(L"long");
}

TEST_F(AttachmentPictures, OfARefusedName) {
    Answer(L"ValidateFilespecW(\"a?b\", 2)", L"3");
    LookAtAttachments(
        L"refused", [](const OpenDialog& dialog) { dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"a?b"); });
}

TEST_F(AttachmentPictures, OfEncryption) {
    LookAtEncryption(L"open");
    options_.AllowedEncryptMethods = 8;
    options_.EncryptionMethod = 8;
    Answer(L"GetOmbrixFIPSSetting", L"1");
    LookAtEncryption(L"policy");
}

// With blanks after it a text is measured wider than it is drawn.
TEST_F(AttachmentPictures, HaveTheEndOfATextOfARadio) {
    Operate(
        OB_ENCRYPTION_METHOD_8,
        [this]() -> INT_PTR { return obcore::OBEncryptionDialogImp(nullptr, options_).DoModal(); },
        [](const OpenDialog& dialog) {
            const std::wstring text = obcore::LoadText(obcore::TextId::Method8Fips);
            obtest::SetText(dialog.Item(OB_ENCRYPTION_METHOD_8), text + L"     ");
            const auto whole = InkOf(dialog, OB_ENCRYPTION_METHOD_8);
            obtest::SetText(dialog.Item(OB_ENCRYPTION_METHOD_8), text);
            EXPECT_EQ(whole, InkOf(dialog, OB_ENCRYPTION_METHOD_8));
            EXPECT_LT(100, whole);
        });
}

TEST_F(AttachmentPictures, OfUpdates) {
    LookAtUpdates(L"open");
    options_.NoUpdateChecking = true;
    options_.UpdateCheckEnabled = false;
    LookAtUpdates(L"policy");
}

TEST_F(AttachmentPictures, OfTheAboutBox) {
    Operate(
        OB_ABOUT_VERSION, [this] { return obcore::ShowAboutDialog(nullptr, options_); },
        [](const OpenDialog& dialog) { Look(dialog, L"about"); });
}

} // namespace
