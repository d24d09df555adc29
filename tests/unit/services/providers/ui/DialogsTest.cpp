// The module's dialogs, operated as a user does.
#include <windows.h>

#include <commdlg.h>

#include <gtest/gtest.h>

#include <string>

#include "services/providers/ui/PdfDialog.h"
#include "services/providers/ui/PdfDialogIds.h"
#include "services/providers/ui/PersonalDataDialog.h"
#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/PhotoDialog.h"
#include "services/providers/ui/PhotoDialogIds.h"
#include "services/providers/ui/ReceiptDialog.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/providers/ui/ResizeDialog.h"
#include "services/providers/ui/ResizeDialogIds.h"
#include "services/providers/ui/SaveList.h"
#include "services/providers/ui/WatermarkDialog.h"
#include "services/providers/ui/WatermarkDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Utf8.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;

namespace {

class PersonalDataDialog : public testing::Test {
protected:
    // Shows the settings, presses these buttons, and gives what the dialog answered.
    bool Ask(std::initializer_list<int> buttons) {
        DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT, [&](HWND dialog) {
            for (const int button : buttons) DialogUiDriver::Press(dialog, button);
        });
        return AskForSettings(nullptr, settings_);
    }

    PersonalDataSettings settings_;
};

TEST_F(PersonalDataDialog, KeepsWhatItShowsAfterOk) {
    for (const PersonalDataSettings stored :
         {PersonalDataSettings{true, false}, {false, true}, {false, false}, {true, true}}) {
        settings_ = stored;
        EXPECT_TRUE(Ask({IDOK}));
        EXPECT_EQ(settings_, stored);
    }
}

TEST_F(PersonalDataDialog, TakesWhatTheUserChose) {
    EXPECT_TRUE(Ask({OB_PERSONAL_DATA_RECEIPT, OB_PERSONAL_DATA_STOP, IDOK}));
    EXPECT_EQ(settings_, (PersonalDataSettings{false, false}));
    EXPECT_TRUE(Ask({OB_PERSONAL_DATA_ASK, IDOK}));
    EXPECT_EQ(settings_, (PersonalDataSettings{false, true}));
}

TEST_F(PersonalDataDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Ask({OB_PERSONAL_DATA_RECEIPT, OB_PERSONAL_DATA_STOP, IDCANCEL}));
    EXPECT_EQ(settings_, PersonalDataSettings());
}

class PdfDialog : public testing::Test {
protected:
    // Shows the settings, uses them, and gives what the dialog answered.
    bool Ask(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_PDF_PICTURES, use);
        return AskForSettings(nullptr, settings_);
    }
    bool Ask(std::initializer_list<int> buttons) {
        return Ask([&](HWND dialog) {
            for (const int button : buttons) DialogUiDriver::Press(dialog, button);
        });
    }
    static bool IsEnabled(HWND dialog, int control) {
        return IsWindowEnabled(GetDlgItem(dialog, control)) != FALSE;
    }

    PdfSettings settings_;
};

TEST_F(PdfDialog, KeepsWhatItShowsAfterOk) {
    for (const PdfSettings stored : {PdfSettings{true, false, PdfPage::A4},
                                     PdfSettings{false, true, PdfPage::Letter}, PdfSettings()}) {
        settings_ = stored;
        EXPECT_TRUE(Ask({IDOK}));
        EXPECT_EQ(settings_, stored);
    }
}

TEST_F(PdfDialog, TakesWhatTheUserChose) {
    EXPECT_TRUE(Ask({OB_PDF_DOCUMENTS, OB_PDF_LETTER, IDOK}));
    EXPECT_EQ(settings_, (PdfSettings{true, false, PdfPage::Letter}));
}

TEST_F(PdfDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Ask({OB_PDF_A4, OB_PDF_PICTURES, IDCANCEL}));
    EXPECT_EQ(settings_, PdfSettings());
}

TEST_F(PdfDialog, OffersPagesForPicturesAndOkForAnyKind) {
    EXPECT_FALSE(Ask([](HWND dialog) {
        EXPECT_TRUE(IsEnabled(dialog, OB_PDF_A4));
        DialogUiDriver::Press(dialog, OB_PDF_PICTURES);
        EXPECT_FALSE(IsEnabled(dialog, OB_PDF_A4));
        EXPECT_TRUE(IsEnabled(dialog, IDOK));
        DialogUiDriver::Press(dialog, OB_PDF_DOCUMENTS);
        EXPECT_FALSE(IsEnabled(dialog, IDOK));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0); // the Enter key
        EXPECT_TRUE(IsWindow(dialog));
        DialogUiDriver::Press(dialog, OB_PDF_PICTURES);
        EXPECT_TRUE(IsEnabled(dialog, OB_PDF_A4));
        EXPECT_TRUE(IsEnabled(dialog, IDOK));
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
}

class PhotoDialog : public testing::Test {
protected:
    // Shows the settings, presses these buttons, and gives what the dialog answered.
    bool Ask(std::initializer_list<int> buttons) {
        DialogUiDriver user(OB_PHOTO_WEBP, [&](HWND dialog) {
            for (const int button : buttons) DialogUiDriver::Press(dialog, button);
        });
        return AskForSettings(nullptr, settings_);
    }

    PhotoSettings settings_;
};

TEST_F(PhotoDialog, KeepsWhatItShowsAfterOk) {
    for (const PhotoSettings stored :
         {PhotoSettings{PhotoQuality::Low, true, false, true},
          PhotoSettings{PhotoQuality::Medium, false, true, false}, PhotoSettings()}) {
        settings_ = stored;
        EXPECT_TRUE(Ask({IDOK}));
        EXPECT_EQ(settings_, stored);
    }
}

TEST_F(PhotoDialog, TakesWhatTheUserChose) {
    EXPECT_TRUE(Ask({OB_PHOTO_TIFF, OB_PHOTO_MEDIUM, IDOK}));
    EXPECT_EQ(settings_, (PhotoSettings{PhotoQuality::Medium, true, false, true}));
    EXPECT_TRUE(Ask({OB_PHOTO_WEBP, OB_PHOTO_BMP, OB_PHOTO_LOW, IDOK}));
    EXPECT_EQ(settings_, (PhotoSettings{PhotoQuality::Low, false, false, false}));
}

TEST_F(PhotoDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Ask({OB_PHOTO_TIFF, OB_PHOTO_LOW, IDCANCEL}));
    EXPECT_EQ(settings_, PhotoSettings());
}

class ResizeDialog : public testing::Test {
protected:
    // Shows the settings, uses them, and gives what the dialog answered.
    bool Ask(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_RESIZE_EDGE, use);
        return AskForSettings(nullptr, settings_);
    }
    static void Enter(HWND dialog, int field, const wchar_t* number) {
        SetWindowTextW(GetDlgItem(dialog, field), number);
    }
    static std::wstring Text(HWND dialog, int control) {
        return obtest::TextOf(GetDlgItem(dialog, control));
    }
    static bool IsEnabled(HWND dialog, int control) {
        return IsWindowEnabled(GetDlgItem(dialog, control)) != FALSE;
    }

    ResizeSettings settings_;
};

TEST_F(ResizeDialog, KeepsWhatItShowsAfterOk) {
    for (const auto aim :
         {ResizeAim::LongestEdge, ResizeAim::Percent, ResizeAim::BytesEach, ResizeAim::FitMail}) {
        const ResizeSettings stored{aim, {1600, 75, 250, 25}};
        settings_ = stored;
        EXPECT_TRUE(Ask([](HWND dialog) { DialogUiDriver::Press(dialog, IDOK); }));
        EXPECT_EQ(settings_, stored);
    }
}

TEST_F(ResizeDialog, BeginsInTheFieldOfTheChosenAim) {
    settings_.aim = ResizeAim::BytesEach;
    EXPECT_FALSE(Ask([](HWND dialog) {
        EXPECT_EQ(SendMessageW(dialog, DM_GETDEFID, 0, 0), MAKELONG(IDOK, DC_HASDEFID));
        EXPECT_EQ(Text(dialog, OB_RESIZE_BYTES_NUMBER), L"500");
        GUITHREADINFO info{sizeof info};
        EXPECT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
        EXPECT_EQ(GetDlgCtrlID(info.hwndFocus), OB_RESIZE_BYTES_NUMBER);
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
}

TEST_F(ResizeDialog, LetsTheNumberOfTheChosenAimBeChanged) {
    EXPECT_TRUE(Ask([](HWND dialog) {
        EXPECT_TRUE(IsEnabled(dialog, OB_RESIZE_EDGE_NUMBER));
        EXPECT_FALSE(IsEnabled(dialog, OB_RESIZE_FIT_NUMBER));
        DialogUiDriver::Press(dialog, OB_RESIZE_FIT);
        EXPECT_FALSE(IsEnabled(dialog, OB_RESIZE_EDGE_NUMBER));
        EXPECT_TRUE(IsEnabled(dialog, OB_RESIZE_FIT_NUMBER));
        Enter(dialog, OB_RESIZE_FIT_NUMBER, L"10");
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(settings_, (ResizeSettings{ResizeAim::FitMail, {2048, 50, 500, 10}}));
}

TEST_F(ResizeDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Ask([](HWND dialog) {
        DialogUiDriver::Press(dialog, OB_RESIZE_PERCENT);
        Enter(dialog, OB_RESIZE_PERCENT_NUMBER, L"10");
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
    EXPECT_EQ(settings_, ResizeSettings());
}

TEST_F(ResizeDialog, RefusesANumberOutsideTheLimitsWithASentence) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Ask([](HWND dialog) {
        for (const wchar_t* number : {L"49", L"50001", L"", L"99999999999"}) {
            Enter(dialog, OB_RESIZE_EDGE_NUMBER, number);
            DialogUiDriver::Press(dialog, IDOK);
            EXPECT_TRUE(IsWindow(dialog));
        }
        Enter(dialog, OB_RESIZE_EDGE_NUMBER, L"50000");
        DialogUiDriver::Press(dialog, IDOK);
    }));
    ASSERT_EQ(boxes.Seen().size(), 4u);
    EXPECT_EQ(boxes.Seen()[0].text, L"Please enter a whole number from 50 to 50000.");
    EXPECT_EQ(settings_.Number(), 50'000u);
}

// A number that was entered for an aim that isn't chosen in the end never keeps the dialog open.
TEST_F(ResizeDialog, ForgetsAWrongNumberOfAnotherAim) {
    EXPECT_TRUE(Ask([](HWND dialog) {
        Enter(dialog, OB_RESIZE_EDGE_NUMBER, L"1");
        DialogUiDriver::Press(dialog, OB_RESIZE_PERCENT);
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(settings_, (ResizeSettings{ResizeAim::Percent, {2048, 50, 500, 20}}));
}

TEST_F(ResizeDialog, HasAMnemonicOfItsOwnForEachAim) {
    EXPECT_FALSE(Ask([](HWND dialog) {
        std::wstring seen;
        for (int button = OB_RESIZE_EDGE; button <= OB_RESIZE_FIT; ++button) {
            const std::wstring text = Text(dialog, button);
            const std::size_t mark = text.find(L'&');
            ASSERT_LT(mark + 1, text.size());
            const auto letter = static_cast<wchar_t>(towlower(text[mark + 1]));
            EXPECT_EQ(seen.find(letter), std::wstring::npos);
            seen += letter;
        }
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
}

class WatermarkDialog : public testing::Test {
protected:
    bool Ask(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_WATERMARK_TEXT, use);
        return AskForSettings(nullptr, settings_);
    }
    static void Enter(HWND dialog, int field, const wchar_t* text) {
        SetWindowTextW(GetDlgItem(dialog, field), text);
    }

    WatermarkSettings settings_{L"Ann Example", WatermarkPlace::TopRight, 45};
};

TEST_F(WatermarkDialog, KeepsWhatItShowsAfterOk) {
    const WatermarkSettings stored = settings_;
    EXPECT_TRUE(Ask([](HWND dialog) {
        wchar_t place[40] = L"";
        GetDlgItemTextW(dialog, OB_WATERMARK_PLACE, place, 40);
        EXPECT_STREQ(place, L"Top right");
        GUITHREADINFO info{sizeof info};
        EXPECT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
        EXPECT_EQ(info.hwndFocus, GetDlgItem(dialog, OB_WATERMARK_TEXT));
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(settings_, stored);
}

TEST_F(WatermarkDialog, TakesWhatTheUserChose) {
    EXPECT_TRUE(Ask([](HWND dialog) {
        Enter(dialog, OB_WATERMARK_TEXT, L"  \u00A9 Bob \u6F22 ");
        SendDlgItemMessageW(dialog, OB_WATERMARK_PLACE, CB_SETCURSEL, 4, 0);
        Enter(dialog, OB_WATERMARK_OPACITY, L"100");
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(settings_, (WatermarkSettings{L"\u00A9 Bob \u6F22", WatermarkPlace::Centre, 100}));
}

TEST_F(WatermarkDialog, ChangesNothingWhenItIsCancelled) {
    const WatermarkSettings stored = settings_;
    EXPECT_FALSE(Ask([](HWND dialog) {
        Enter(dialog, OB_WATERMARK_TEXT, L"Bob");
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
    EXPECT_EQ(settings_, stored);
}

TEST_F(WatermarkDialog, TakesAPictureInsteadOfTheText) {
    EXPECT_TRUE(Ask([](HWND dialog) {
        const auto isEnabled = [&](int id) {
            return IsWindowEnabled(GetDlgItem(dialog, id)) != FALSE;
        };
        EXPECT_TRUE(isEnabled(OB_WATERMARK_TEXT));
        EXPECT_FALSE(isEnabled(OB_WATERMARK_PICTURE) || isEnabled(OB_WATERMARK_BROWSE));
        DialogUiDriver::Press(dialog, OB_WATERMARK_USE_PICTURE);
        EXPECT_FALSE(isEnabled(OB_WATERMARK_TEXT));
        EXPECT_TRUE(isEnabled(OB_WATERMARK_PICTURE) && isEnabled(OB_WATERMARK_BROWSE));
        Enter(dialog, OB_WATERMARK_PICTURE, L" C:\\Pictures\\logo.png ");
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(settings_, (WatermarkSettings{L"Ann Example", WatermarkPlace::TopRight, 45, true,
                                            L"C:\\Pictures\\logo.png"}));
    EXPECT_TRUE(Ask([](HWND dialog) { // as it was stored
        EXPECT_EQ(IsDlgButtonChecked(dialog, OB_WATERMARK_USE_PICTURE), BST_CHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, OB_WATERMARK_TEXT_LABEL), BST_UNCHECKED);
        DialogUiDriver::Press(dialog, OB_WATERMARK_TEXT_LABEL);
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_FALSE(settings_.usesPicture);
}

TEST_F(WatermarkDialog, AsksForAWholePathOfAPicture) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Ask([](HWND dialog) {
        DialogUiDriver::Press(dialog, OB_WATERMARK_USE_PICTURE);
        for (const wchar_t* path : {L"", L"logo.png", L"C:logo.png", L"\\logo.png"}) {
            Enter(dialog, OB_WATERMARK_PICTURE, path);
            DialogUiDriver::Press(dialog, IDOK);
            EXPECT_TRUE(IsWindow(dialog));
        }
        DialogUiDriver::Press(dialog, IDCANCEL);
    }));
    ASSERT_EQ(boxes.Seen().size(), 4u);
    EXPECT_EQ(boxes.Seen()[0].text, L"Please choose the picture of the watermark.");
}

TEST_F(WatermarkDialog, RefusesAnEmptyTextAndAWrongNumberWithASentence) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Ask([](HWND dialog) {
        Enter(dialog, OB_WATERMARK_TEXT, L" \t ");
        DialogUiDriver::Press(dialog, IDOK);
        Enter(dialog, OB_WATERMARK_TEXT, L"Bob");
        for (const wchar_t* number : {L"4", L"101", L""}) {
            Enter(dialog, OB_WATERMARK_OPACITY, number);
            DialogUiDriver::Press(dialog, IDOK);
            EXPECT_TRUE(IsWindow(dialog));
        }
        Enter(dialog, OB_WATERMARK_OPACITY, L"5");
        DialogUiDriver::Press(dialog, IDOK);
    }));
    ASSERT_EQ(boxes.Seen().size(), 4u);
    EXPECT_EQ(boxes.Seen()[0].text, L"Please enter the text of the watermark.");
    EXPECT_EQ(boxes.Seen()[1].text, L"Please enter a whole number from 5 to 100.");
    EXPECT_EQ(settings_, (WatermarkSettings{L"Bob", WatermarkPlace::TopRight, 5}));
}

// The system's dialog for a file, which a button of a dialog opens: `use` operates it and leaves it
// closed.
void InFileDialog(HWND dialog, int button, const std::function<void(obtest::OpenPicker&)>& use) {
    obtest::Click(GetDlgItem(dialog, button));
    auto picker = obtest::OpenPicker::Await(GetCurrentProcessId());
    ASSERT_NE(picker.Window(), nullptr);
    EXPECT_EQ(GetWindow(picker.Window(), GW_OWNER), dialog); // in front of it
    EXPECT_FALSE(IsWindowEnabled(dialog));
    use(picker);
    if (!picker.WaitUntilClosed()) picker.PressCancel();
    EXPECT_TRUE(obtest::WaitUntil([&] { return IsWindowEnabled(dialog) != FALSE; }));
}

std::function<void(obtest::OpenPicker&)> Choosing(const std::wstring& path) {
    return [path](obtest::OpenPicker& picker) {
        EXPECT_TRUE(picker.TypeNames(path));
        picker.PressOk();
    };
}

class WatermarkBrowse : public WatermarkDialog {
protected:
    // Opens the settings with a picture as the watermark, chooses with the button, and answers.
    bool Browse(const std::function<void(obtest::OpenPicker&)>& use,
                const std::wstring& shownAfterwards, int answer = IDOK) {
        settings_.usesPicture = true;
        settings_.picture = L"C:\\Pictures\\old.png";
        return Ask([&, answer](HWND dialog) {
            InFileDialog(dialog, OB_WATERMARK_BROWSE, use);
            const HWND field = GetDlgItem(dialog, OB_WATERMARK_PICTURE);
            EXPECT_TRUE(obtest::WaitUntil([&] { return obtest::TextOf(field) == shownAfterwards; }))
                << obtest::Utf8(obtest::TextOf(field));
            DialogUiDriver::Press(dialog, answer);
        });
    }

    const obtest::TestFolder folder_;
};

TEST_F(WatermarkBrowse, TakesThePictureThatTheUserChooses) {
    const std::wstring logo = folder_.File(L"Logo \u00FC.png");
    EXPECT_TRUE(Browse(Choosing(logo), logo));
    EXPECT_EQ(settings_.picture, logo);
    EXPECT_TRUE(settings_.usesPicture);
}

TEST_F(WatermarkBrowse, ChangesNothingWhenTheUserCancels) {
    const std::wstring old = L"C:\\Pictures\\old.png";
    EXPECT_TRUE(Browse([](obtest::OpenPicker& picker) { picker.PressCancel(); }, old));
    EXPECT_EQ(settings_.picture, old);
    const std::wstring logo = folder_.File(L"logo.png");
    EXPECT_FALSE(Browse(Choosing(logo), logo, IDCANCEL));
    EXPECT_EQ(settings_.picture, old);
}

TEST_F(WatermarkBrowse, AsksAgainForAFileThatIsNotThere) {
    const obtest::MessageBoxWatcher boxes;
    const std::wstring logo = folder_.File(L"logo.png");
    EXPECT_TRUE(Browse(
        [&](obtest::OpenPicker& picker) {
            EXPECT_TRUE(picker.TypeNames(folder_ / L"missing.png"));
            picker.PressOk();
            EXPECT_TRUE(boxes.WaitFor(1));
            EXPECT_TRUE(
                obtest::WaitUntil([&] { return IsWindowEnabled(picker.Window()) != FALSE; }));
            EXPECT_TRUE(picker.IsOpen());
            Choosing(logo)(picker);
        },
        logo));
    EXPECT_EQ(settings_.picture, logo);
}

class ReceiptDialog : public testing::Test {
protected:
    bool Show(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_RECEIPT_LIST, use);
        return ShowReceipt(nullptr, files_, false);
    }
    static DWORD DefaultButton(HWND dialog) {
        return LOWORD(SendMessageW(dialog, DM_GETDEFID, 0, 0));
    }

    std::vector<ReceiptFile> files_{{L"photo.jpg", WorkResult::Changed, {{"position", 1}}}};
};

TEST_F(ReceiptDialog, LetsTheFilesGoWithEnterWhenAllAreClean) {
    EXPECT_TRUE(Show([](HWND dialog) {
        EXPECT_EQ(DefaultButton(dialog), static_cast<DWORD>(IDOK));
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, OB_RECEIPT_ICON)));
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_HEADLINE)),
                  L"Personal data was removed from your file.");
        DialogUiDriver::Press(dialog, IDOK);
    }));
}

TEST_F(ReceiptDialog, StopsWithEnterWhenThereIsAQuestion) {
    files_.push_back({L"notes.doc", WorkResult::NotSupported, {}});
    EXPECT_FALSE(Show([](HWND dialog) {
        EXPECT_EQ(DefaultButton(dialog), static_cast<DWORD>(IDCANCEL));
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, OB_RECEIPT_ICON)));
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, IDOK)), L"&Attach anyway");
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    }));
}

TEST_F(ReceiptDialog, IsSavedWhereTheUserChooses) {
    const obtest::TestFolder folder;
    EXPECT_TRUE(Show([&](HWND dialog) {
        InFileDialog(dialog, OB_RECEIPT_SAVE,
                     [](obtest::OpenPicker& picker) { picker.PressCancel(); });
        EXPECT_TRUE(IsWindow(dialog));
        InFileDialog(dialog, OB_RECEIPT_SAVE, Choosing(folder / L"list.txt"));
        DialogUiDriver::Press(dialog, IDOK);
    }));
    const std::string list = obtest::ReadFileContent(folder / L"list.txt").value_or("");
    EXPECT_NE(list.find("Personal data was removed from your file."), std::string::npos) << list;
    EXPECT_NE(list.find("photo.jpg: removed"), std::string::npos) << list;
}

// What the system's file question returns, one after the other; an empty name is a cancel.
std::vector<std::wstring> namesToReturn;
std::size_t questions = 0;

BOOL WINAPI ReturnNextName(OPENFILENAMEW* dialog) {
    const std::wstring name = questions < namesToReturn.size() ? namesToReturn[questions] : L"";
    ++questions;
    if (name.empty() || name.size() >= dialog->nMaxFile) return FALSE;
    dialog->lpstrFile[name.copy(dialog->lpstrFile, name.size())] = L'\0';
    return TRUE;
}

TEST_F(ReceiptDialog, AsksForAnotherNameUntilOneIsFreeAndReplacesNoFile) {
    const obtest::ImportPatch<decltype(&GetSaveFileNameW)> question(
        "comdlg32.dll", "GetSaveFileNameW", &ReturnNextName);
    ASSERT_TRUE(question.Ok());
    const obtest::TestFolder folder;
    const std::wstring theirs = folder.File(L"theirs.txt", "theirs");
    const std::wstring free = folder / L"list.txt";
    questions = 0;
    std::vector<obtest::SeenBox> seen;
    EXPECT_TRUE(Show([&](HWND dialog) {
        namesToReturn = {L""};
        DialogUiDriver::Press(dialog, OB_RECEIPT_SAVE);
        EXPECT_EQ(questions, 1u);
        EXPECT_EQ(obtest::ListTree(folder.Path()), std::vector<std::wstring>{L"theirs.txt"});
        namesToReturn = {L"", theirs, theirs, free};
        {
            const obtest::MessageBoxWatcher boxes;
            DialogUiDriver::Press(dialog, OB_RECEIPT_SAVE);
            seen = boxes.Seen();
        }
        EXPECT_TRUE(IsWindow(dialog));
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(questions, 4u);
    std::erase_if(seen, [](const auto& box) {
        return box.text.find(L"a file of this name already") == std::wstring::npos;
    });
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_EQ(obtest::ReadFileContent(theirs), "theirs");
    EXPECT_NE(obtest::ReadFileContent(free).value_or("").find("photo.jpg: removed"),
              std::string::npos);
}

TEST(ReceiptFile, IsSavedAsTextUnderANameThatIsFree) {
    const obtest::TestFolder folder;
    EXPECT_TRUE(SaveListAs(folder / L"list.txt", L"Removed from K\u00f6ln.jpg.", L"a\r\nb\r\n"));
    EXPECT_EQ(obtest::ReadFileContent(folder / L"list.txt"),
              "\xef\xbb\xbfRemoved from K\xc3\xb6ln.jpg.\r\n\r\na\r\nb\r\n");
}

TEST(ReceiptFile, NeverReplacesAFile) {
    const obtest::TestFolder folder;
    const std::wstring theirs = folder.File(L"theirs.txt", "theirs");
    EXPECT_FALSE(SaveListAs(theirs, L"headline", L"list"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
    EXPECT_EQ(obtest::ReadFileContent(theirs), "theirs");
    EXPECT_FALSE(SaveListAs(folder / L"missing\\list.txt", L"headline", L"list"));
}

} // namespace
