// Dialogs of the settings with values that aren't valid, with keys that don't open, without their
// owner, and many times.
#include "OBCore/settings/AboutDialog.h"
#include "OBCore/settings/EncryptionDialog.h"
#include "OBCore/settings/UpdateCheckDialog.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
#include "tests/support/Openings.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obcore::NameAppendKind;
using obcore::OBOptions;
using obtest::OpenDialog;

constexpr ULONGLONG kLimit = 2000; // milliseconds for each dialog

// The dialogs, each opened in one call.
struct Kind {
    const char* name;
    INT_PTR (*show)(HWND owner, OBOptions& options);
};

const Kind kKinds[] = {
    {"attachments",
     [](HWND owner, OBOptions& options) -> INT_PTR {
         return obcore::OBAttachmentDialogImp(owner, options).DoModal();
     }},
    {"encryption",
     [](HWND owner, OBOptions& options) -> INT_PTR {
         return obcore::OBEncryptionDialogImp(owner, options).DoModal();
     }},
    {"updates", &obcore::ShowUpdateCheckDialog},
    {"about",
     [](HWND owner, OBOptions& options) { return obcore::ShowAboutDialog(owner, options); }},
};

HWND FindOwnDialog() { return obtest::FindTopWindow(&obtest::IsDialog, GetCurrentProcessId()); }

// Cancels each dialog of the thread that comes up, on the thread itself.
class Canceller {
public:
    Canceller() : timer_(SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &Cancel)) {}
    Canceller(const Canceller&) = delete;
    Canceller& operator=(const Canceller&) = delete;
    ~Canceller() { KillTimer(nullptr, timer_); }

private:
    static void CALLBACK Cancel(HWND, UINT, UINT_PTR, DWORD) {
        const HWND dialog = FindOwnDialog();
        if (dialog != nullptr) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }

    UINT_PTR timer_;
};

class OddRecords : public obtest::AttachmentFixture {};

// An appendix that the list doesn't have leaves the stored one.
TEST_F(OddRecords, AnAppendixOutsideTheListIsNotSaved) {
    obtest::SetUserValue(L"NameAppend", L"time");
    options_.NameAppend = static_cast<NameAppendKind>(9);
    options_.DefaultZipName = L"n";
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  EXPECT_EQ(CB_ERR,
                            SendMessageW(dialog.Item(OB_ATTACHMENT_APPEND), CB_GETCURSEL, 0, 0));
                  EXPECT_EQ(L"n.zip", Preview(dialog));
                  dialog.Notify(OB_ATTACHMENT_ZIP, BN_CLICKED);
                  EXPECT_EQ(L"n.zip", Preview(dialog));
                  dialog.Ok();
              }));
    EXPECT_EQ(L"time", obtest::ReadUserValue(L"NameAppend"));
}

TEST_F(OddRecords, AMethodOutsideTheListIsSavedAsZip) {
    options_.CompressionMethod = 12;
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
    EXPECT_EQ(L"8", obtest::ReadUserValue(L"CompressionMethod"));
}

// No radio is left checked where the archive service takes encryption back.
TEST_F(OddRecords, WithoutAChoiceFilesStayAsTheyAre) {
    Answer(L"TryToShowWarningOrErrorMessage", L"2");
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Press(OB_ATTACHMENT_SEND_ENCRYPTED);
                  EXPECT_TRUE(dialog.Checked({1008, 1009, 1011}).empty());
                  dialog.Ok();
              }));
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"SendItem"));
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"AutoEncrypt"));
}

TEST_F(OddRecords, OkEndsTheDialogAlthoughNoKeyOpens) {
    RegistryRecorder registry;
    ASSERT_TRUE(registry.Ok());
    registry.Fail(obtest::kUserKey);
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"Other");
                  dialog.Ok();
              }));
    EXPECT_EQ(L"Other", options_.DefaultZipName);
}

// The dialogs end with their owner, and what was typed isn't saved.
TEST_F(OddRecords, AnOwnerThatGoesTakesTheDialogAlong) {
    for (const Kind& kind : kKinds) {
        const HWND owner = CreateWindowExW(0, L"Static", L"owner", WS_POPUP | WS_VISIBLE, 0, 0, 100,
                                           100, nullptr, nullptr, nullptr, nullptr);
        obtest::WindowDriver driver(
            &FindOwnDialog, [owner](HWND) { PostMessageW(owner, WM_CLOSE, 0, 0); },
            obtest::kUiLimit);
        EXPECT_NE(1, kind.show(owner, options_)) << kind.name;
        EXPECT_TRUE(driver.Done()) << kind.name;
        EXPECT_FALSE(IsWindow(owner)) << kind.name;
    }
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
}

TEST_F(OddRecords, ManyOpeningsLeaveNoObject) {
    const Canceller canceller;
    for (const Kind& kind : kKinds) {
        printf("%s: ", kind.name);
        for (int round = 0; round < 5; ++round) kind.show(nullptr, options_);
        const auto before = obtest::ProcessResources::Now();
        obtest::Openings openings(kLimit);
        while (openings.More()) {
            EXPECT_EQ(2, kind.show(nullptr, options_));
            openings.Made();
        }
        openings.Print();
        obtest::ExpectNoMoreThan(before);
    }
}

} // namespace
