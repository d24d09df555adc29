// The dialogs at one scale of the display: in proportion, and no text cut off. In the folder
// OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "services/providers/storage/LinkPasswordDialog.h"
#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "services/providers/ui/PdfDialog.h"
#include "services/providers/ui/PdfDialogIds.h"
#include "services/providers/ui/PdfPasswordDialog.h"
#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "services/providers/ui/PersonalDataDialog.h"
#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/PhotoDialog.h"
#include "services/providers/ui/PhotoDialogIds.h"
#include "services/providers/ui/ReceiptDialog.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/providers/ui/ResizeDialog.h"
#include "services/providers/ui/ResizeDialogIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/ui/WatermarkDialog.h"
#include "services/providers/ui/WatermarkDialogIds.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;

namespace {

class ProviderDialogPictures : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    static void Look(HWND dialog, const std::wstring& name, std::initializer_list<int> texts) {
        for (const int id : texts) obtest::ExpectWholeText(GetDlgItem(dialog, id));
        obtest::LookAt(dialog, name, 380);
    }
};

TEST_F(ProviderDialogPictures, OfTheSettings) {
    DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT, [](HWND dialog) {
        Look(dialog, L"settings-personal-data",
             {OB_PERSONAL_DATA_INTRO, OB_PERSONAL_DATA_RECEIPT, OB_PERSONAL_DATA_ASK,
              OB_PERSONAL_DATA_STOP, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    PersonalDataSettings settings;
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

// The system's own box: its text isn't ours to measure.
TEST_F(ProviderDialogPictures, OfTheQuestionWhetherToTryALinkAgain) {
    constexpr int kMessageText = 0xFFFF;
    DialogUiDriver user(kMessageText, [](HWND box) {
        EXPECT_TRUE(GetDlgItem(box, IDRETRY));
        EXPECT_NE(obtest::ItemText(box, kMessageText).find(L"Report.zip"), std::wstring::npos);
        obtest::LookAt(box, L"link-again", 300);
        DialogUiDriver::Press(box, IDCANCEL);
    });
    EXPECT_FALSE(
        AskToTryAgain(nullptr, FormatOwnText(OB_TEXT_SHARE_FAILED,
                                             {L"Report.zip", OwnText(OB_TEXT_SHARE_NO_LINK)})));
}

TEST_F(ProviderDialogPictures, OfTheSettingsOfPdfs) {
    DialogUiDriver user(OB_PDF_PICTURES, [](HWND dialog) {
        Look(dialog, L"settings-pdf",
             {OB_PDF_INTRO, OB_PDF_PICTURES, OB_PDF_DOCUMENTS, OB_PDF_AS_PICTURE, OB_PDF_A4,
              OB_PDF_LETTER, OB_PDF_NOTE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    PdfSettings settings;
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

TEST_F(ProviderDialogPictures, OfTheSettingsOfPhotos) {
    DialogUiDriver user(OB_PHOTO_WEBP, [](HWND dialog) {
        Look(dialog, L"settings-photos",
             {OB_PHOTO_INTRO, OB_PHOTO_WEBP, OB_PHOTO_TIFF, OB_PHOTO_BMP, OB_PHOTO_HIGH,
              OB_PHOTO_MEDIUM, OB_PHOTO_LOW, OB_PHOTO_NOTE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    PhotoSettings settings;
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

TEST_F(ProviderDialogPictures, OfTheSettingsOfPictures) {
    DialogUiDriver user(OB_RESIZE_EDGE, [](HWND dialog) {
        Look(dialog, L"settings-resize",
             {OB_RESIZE_INTRO, OB_RESIZE_EDGE, OB_RESIZE_PERCENT, OB_RESIZE_BYTES, OB_RESIZE_FIT,
              OB_RESIZE_EDGE_UNIT, OB_RESIZE_PERCENT_UNIT, OB_RESIZE_BYTES_UNIT, OB_RESIZE_FIT_UNIT,
              OB_RESIZE_EDGE_NUMBER, OB_RESIZE_PERCENT_NUMBER, OB_RESIZE_BYTES_NUMBER,
              OB_RESIZE_FIT_NUMBER, OB_RESIZE_NOTE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    ResizeSettings settings{ResizeAim::FitMail, {50'000, 50, 999'999, 20}};
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

TEST_F(ProviderDialogPictures, OfTheSettingsOfWatermarks) {
    DialogUiDriver user(OB_WATERMARK_TEXT, [](HWND dialog) {
        Look(dialog, L"settings-watermark",
             {OB_WATERMARK_INTRO, OB_WATERMARK_TEXT_LABEL, OB_WATERMARK_TEXT,
              OB_WATERMARK_USE_PICTURE, OB_WATERMARK_BROWSE, OB_WATERMARK_PLACE_LABEL,
              OB_WATERMARK_OPACITY_LABEL, OB_WATERMARK_OPACITY, OB_WATERMARK_OPACITY_UNIT, IDOK,
              IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    WatermarkSettings settings{L"\u00A9 Ann Example 2026", WatermarkPlace::BottomRight, 100};
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

// The introduction names what is worked on, whichever choice is made.
TEST_F(ProviderDialogPictures, OfTheSettingsOfWatermarksWithAPicture) {
    DialogUiDriver user(OB_WATERMARK_TEXT, [](HWND dialog) {
        const std::wstring intro = obtest::TextOf(GetDlgItem(dialog, OB_WATERMARK_INTRO));
        for (const wchar_t* named : {L"text or a picture", L"TIFF", L"pages of PDFs"}) {
            EXPECT_NE(intro.find(named), std::wstring::npos);
        }
        Look(dialog, L"settings-watermark-picture", {OB_WATERMARK_INTRO, OB_WATERMARK_BROWSE});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    WatermarkSettings settings{L"Draft", WatermarkPlace::Centre, 60, true,
                               L"C:\\Users\\Ann\\Pictures\\Logo of the company.png"};
    EXPECT_FALSE(AskForSettings(nullptr, settings));
}

// The longest sentence with a long name.
TEST_F(ProviderDialogPictures, OfTheQuestionForAPassword) {
    DialogUiDriver user(OB_PDF_PASSWORD_TEXT, [](HWND dialog) {
        SetWindowTextW(GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT), L"secret");
        Look(dialog, L"pdf-password",
             {OB_PDF_PASSWORD_SENTENCE, OB_PDF_PASSWORD_LABEL, OB_PDF_PASSWORD_SHOW,
              OB_PDF_PASSWORD_NOTE, OB_PDF_PASSWORD_LEAVE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    const auto sentence =
        FormatOwnText(OB_TEXT_PDF_PASSWORD_WRONG, {L"Statement of account, third quarter of 2026, "
                                                   L"for Ann Example and Bob Example.pdf"});
    ObLib::Secret password;
    EXPECT_EQ(AskForPdfPassword(nullptr, sentence, password), PasswordAnswer::Cancelled);
}

TEST_F(ProviderDialogPictures, OfTheReceipt) {
    DialogUiDriver user(OB_RECEIPT_LIST, [](HWND dialog) {
        Look(dialog, L"receipt", {OB_RECEIPT_HEADLINE, OB_RECEIPT_SAVE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDOK);
    });
    EXPECT_TRUE(ShowReceipt(nullptr,
                            {{L"IMG_2041.jpg",
                              WorkResult::Changed,
                              {{"position", 1}, {"camera", 5}, {"maker-notes", 1}, {"time", 3}}},
                             {L"IMG_2042.jpg", WorkResult::Changed, {{"xmp", 1}, {"thumbnail", 1}}},
                             {L"Scan.png", WorkResult::Unchanged, {}}},
                            false));
}

TEST_F(ProviderDialogPictures, OfTheQuestion) {
    DialogUiDriver user(OB_RECEIPT_LIST, [](HWND dialog) {
        Look(dialog, L"receipt-question", {OB_RECEIPT_HEADLINE, OB_RECEIPT_SAVE, IDOK, IDCANCEL});
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    EXPECT_FALSE(
        ShowReceipt(nullptr,
                    {{L"Meeting notes.docx", WorkResult::NotSupported, {}},
                     {L"Broken.jpg", WorkResult::Damaged, {}},
                     {L"IMG_2041.jpg", WorkResult::Changed, {{"position", 1}, {"camera", 5}}}},
                    false));
}

TEST_F(ProviderDialogPictures, OfALinksPassword) {
    DialogUiDriver user(OB_LINK_PASSWORD_TEXT, [](HWND dialog) {
        SetDlgItemTextW(dialog, OB_LINK_PASSWORD_STATE,
                        OwnText(OB_TEXT_LINK_PASSWORD_COPIED).c_str());
        Look(dialog, L"link-password",
             {OB_LINK_PASSWORD_SENTENCE, OB_LINK_PASSWORD_LABEL, OB_LINK_PASSWORD_STATE,
              OB_LINK_PASSWORD_COPY, IDOK});
        DialogUiDriver::Press(dialog, IDOK);
    });
    EXPECT_TRUE(ShowLinkPassword(nullptr, L"Statement of account, third quarter of 2026.zip",
                                 L"Tr4ve-Moss-Quill-9"));
}

} // namespace
