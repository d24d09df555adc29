// The attachment settings: what they show of the options and of policy, and what they save.
#include "OBCore/modules/ResourceModule.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obcore::AdminSendItemKind;
using obcore::NameAppendKind;
using obcore::OBOptions;
using obcore::TextId;
using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

using Ids = std::vector<int>;

constexpr int kZip = OB_ATTACHMENT_SEND_ZIP;
constexpr int kEncrypted = OB_ATTACHMENT_SEND_ENCRYPTED;
constexpr int kMethod = OB_ATTACHMENT_ENCRYPTION;
constexpr int kPlain = OB_ATTACHMENT_SEND_PLAIN;

// The numbers are fixed, whatever their names.
static_assert(OB_ATTACHMENT == 104 && OB_ATTACHMENT_PREVIEW == 1022);
static_assert(kZip == 1008 && kEncrypted == 1009 && kMethod == 1010 && kPlain == 1011);

struct SendCase {
    const char* name;
    void (*set)(OBOptions& options);
    Ids checked;
    Ids disabled;
};

void Nothing(OBOptions&) {}

const SendCase kSendCases[] = {
    {"as installed", &Nothing, {kZip}, {}},
    {"forced on",
     [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::ForcedOn; },
     {kZip},
     {kPlain}},
    {"forced on, and encrypted",
     [](OBOptions& o) {
         o.AdminSendItem = AdminSendItemKind::ForcedOn;
         o.AutoEncrypt = true;
     },
     {kZip},
     {kPlain}},
    {"forced on without encryption",
     [](OBOptions& o) {
         o.AdminSendItem = AdminSendItemKind::ForcedOn;
         o.NoEncryption = true;
     },
     {kZip},
     {kEncrypted, kMethod, kPlain}},
    {"forced off",
     [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::ForcedOff; },
     {kPlain},
     {kZip, kEncrypted, kMethod}},
    {"forced off, and encrypted",
     [](OBOptions& o) {
         o.AdminSendItem = AdminSendItemKind::ForcedOff;
         o.AutoEncrypt = true;
     },
     {kPlain},
     {kZip, kEncrypted, kMethod}},
    {"zipping may not be switched on, and is off",
     [](OBOptions& o) {
         o.DisableMsgEditZipOption = true;
         o.SendItem = false;
     },
     {kPlain},
     {kZip, kEncrypted, kMethod}},
    {"zipping may not be switched on, and zips are encrypted",
     [](OBOptions& o) {
         o.DisableMsgEditZipOption = true;
         o.SendItem = false;
         o.AutoEncrypt = true;
     },
     {kEncrypted},
     {}},
    {"zipping may not be switched on, and is on",
     [](OBOptions& o) { o.DisableMsgEditZipOption = true; },
     {kZip},
     {kPlain}},
    {"encrypted", [](OBOptions& o) { o.AutoEncrypt = true; }, {kEncrypted}, {}},
    {"neither", [](OBOptions& o) { o.SendItem = false; }, {kPlain}, {}},
    {"default on is no force",
     [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::DefaultOn; },
     {kZip},
     {}},
    {"encryption is off by policy",
     [](OBOptions& o) { o.NoEncryption = true; },
     {kZip},
     {kEncrypted, kMethod}},
    {"no method is allowed",
     [](OBOptions& o) { o.AllowedEncryptMethods = 0; },
     {kZip},
     {kEncrypted, kMethod}},
    {"encryption is compulsory",
     [](OBOptions& o) { o.AlwaysEncrypt = true; },
     {kEncrypted},
     {kZip, kPlain}},
    {"encryption is compulsory and forbidden",
     [](OBOptions& o) {
         o.AlwaysEncrypt = true;
         o.NoEncryption = true;
         o.AdminSendItem = AdminSendItemKind::ForcedOff;
     },
     {kEncrypted},
     {kZip, kPlain}},
};

class AttachmentDialog : public obtest::AttachmentFixture {};

TEST_F(AttachmentDialog, ShowsTheChoiceThatPolicyLeaves) {
    for (const SendCase& row : kSendCases) {
        options_ = obtest::PlainOptions();
        row.set(options_);
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(row.checked, dialog.Checked({kZip, kEncrypted, kPlain})) << row.name;
            const Ids all = {kZip, kEncrypted, kMethod, kPlain};
            EXPECT_EQ(row.disabled, dialog.Disabled(all)) << row.name;
            EXPECT_EQ(row.disabled, dialog.Hinted(all)) << row.name;
        });
    }
}

// A radio that isn't checked and gets the focus as the dialog opens would count as clicked.
TEST_F(AttachmentDialog, StopsTabAtTheCheckedRadiosOnly) {
    for (const SendCase& row : kSendCases) {
        options_ = obtest::PlainOptions();
        row.set(options_);
        options_.CompressionMethod = 0xFFFFFFFF;
        Show([&row](const OpenDialog& dialog) {
            for (const int id : {kZip, kEncrypted, kPlain}) {
                EXPECT_EQ(dialog.IsChecked(id), obtest::IsTabStop(dialog.Item(id))) << row.name;
            }
            EXPECT_FALSE(obtest::IsTabStop(dialog.Item(OB_ATTACHMENT_ZIP)));
            EXPECT_TRUE(obtest::IsTabStop(dialog.Item(OB_ATTACHMENT_ZIPX)));
        });
    }
}

TEST_F(AttachmentDialog, HasTwoGroupsOfRadios) {
    Show([](const OpenDialog& dialog) {
        const Ids all = {kZip, kEncrypted, kPlain, OB_ATTACHMENT_ZIP, OB_ATTACHMENT_ZIPX};
        dialog.Press(kPlain);
        EXPECT_EQ((Ids{kPlain, OB_ATTACHMENT_ZIP}), dialog.Checked(all));
        dialog.Press(OB_ATTACHMENT_ZIPX);
        EXPECT_EQ((Ids{kPlain, OB_ATTACHMENT_ZIPX}), dialog.Checked(all));
        dialog.Press(kEncrypted);
        EXPECT_EQ((Ids{kEncrypted, OB_ATTACHMENT_ZIPX}), dialog.Checked(all));
    });
}

TEST_F(AttachmentDialog, ShowsEachBoxAsItsOptionIs) {
    const struct {
        int id;
        bool OBOptions::*option;
    } boxes[] = {{1002, &OBOptions::UseAltExt},
                 {1006, &OBOptions::SingleAttachFileName},
                 {1007, &OBOptions::SingleAttachConversion},
                 {1023, &OBOptions::DuplicateReferences}};
    for (const auto& box : boxes) {
        for (const bool isOn : {false, true}) {
            options_.*box.option = isOn;
            Show([&](const OpenDialog& dialog) {
                EXPECT_EQ(isOn, dialog.IsChecked(box.id)) << box.id;
            });
        }
    }
}

TEST_F(AttachmentDialog, ShowsZipxForItsMethodOnly) {
    const struct {
        std::uint32_t method;
        Ids checked;
    } rows[] = {{8, {1005}}, {0, {1005}}, {0xFFFFFFFE, {1005}}, {0xFFFFFFFF, {1004}}};
    for (const auto& row : rows) {
        options_.CompressionMethod = row.method;
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(row.checked, dialog.Checked({1004, 1005})) << row.method;
        });
    }
}

TEST_F(AttachmentDialog, ShowsNameAndExtensionWholeAndTakes257Characters) {
    options_.DefaultZipName = L" a & b ";
    options_.AltExt = L"piz";
    Show([](const OpenDialog& dialog) {
        EXPECT_EQ(L" a & b ", dialog.Text(OB_ATTACHMENT_ZIP_NAME));
        EXPECT_EQ(L"piz", dialog.Text(OB_ATTACHMENT_EXTENSION));
        for (const int id : {OB_ATTACHMENT_ZIP_NAME, OB_ATTACHMENT_EXTENSION}) {
            EXPECT_EQ(257, SendMessageW(dialog.Item(id), EM_GETLIMITTEXT, 0, 0)) << id;
        }
    });
}

TEST_F(AttachmentDialog, ListsTheFiveAppendices) {
    options_.NameAppend = NameAppendKind::Time;
    Show([](const OpenDialog& dialog) {
        const HWND list = dialog.Item(OB_ATTACHMENT_APPEND);
        ASSERT_EQ(5, SendMessageW(list, CB_GETCOUNT, 0, 0));
        for (UINT row = 0; row < 5; ++row) {
            wchar_t text[300] = L"";
            SendMessageW(list, CB_GETLBTEXT, row, reinterpret_cast<LPARAM>(text));
            EXPECT_EQ(obcore::LoadText(static_cast<TextId>(1025 + row)), text);
        }
        EXPECT_EQ(3, SendMessageW(list, CB_GETCURSEL, 0, 0));
    });
}

TEST_F(AttachmentDialog, DrawsItsSixHeadlinesBold) {
    Show([](const OpenDialog& dialog) {
        for (const int id : {1012, 1013, 1014, 1015, 1016, 1020}) {
            EXPECT_TRUE(obtest::IsBold(dialog.Item(id))) << id;
        }
    });
}

TEST_F(AttachmentDialog, HasTheIconOfTheProduct) {
    Show([](const OpenDialog& dialog) {
        EXPECT_NE(0, SendMessageW(dialog.window, WM_GETICON, ICON_SMALL, 0));
    });
}

TEST_F(AttachmentDialog, SavesEveryControlAndTrimsTheTexts) {
    Answer(L"AllowedEncryptMethods", L"12"); // or loading takes encryption back
    options_.AutoEncrypt = true;
    obtest::SetUserValue(L"AutoEncrypt", L"1");
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  for (const int id : {1002, 1006, 1007, 1023, 1004}) dialog.Press(id);
                  dialog.Press(kPlain);
                  dialog.Type(OB_ATTACHMENT_ZIP_NAME, L" . My files. ");
                  dialog.Type(OB_ATTACHMENT_EXTENSION, L".piz");
                  dialog.Select(OB_ATTACHMENT_APPEND, 2);
                  dialog.Ok();
              }));
    const OBOptions loaded = Loaded();
    for (const OBOptions* options : {&std::as_const(options_), &loaded}) {
        EXPECT_FALSE(options->SendItem);
        EXPECT_FALSE(options->AutoEncrypt);
        EXPECT_TRUE(options->UseAltExt);
        EXPECT_FALSE(options->SingleAttachFileName);
        EXPECT_TRUE(options->SingleAttachConversion);
        EXPECT_TRUE(options->DuplicateReferences);
        EXPECT_EQ(0xFFFFFFFFu, options->CompressionMethod);
        EXPECT_EQ(L"My files", options->DefaultZipName);
        EXPECT_EQ(L"piz", options->AltExt);
        EXPECT_EQ(NameAppendKind::DateYyyy, options->NameAppend);
    }
}

TEST_F(AttachmentDialog, SavesWhatItShowedWhenNothingIsChanged) {
    Answer(L"AllowedEncryptMethods", L"12");
    for (const bool isOn : {false, true}) {
        options_ = obtest::PlainOptions();
        options_.SendItem = !isOn;
        options_.AutoEncrypt = isOn;
        options_.SingleAttachFileName = isOn;
        options_.SingleAttachConversion = !isOn;
        options_.DuplicateReferences = isOn;
        options_.CompressionMethod = isOn ? 8 : 0xFFFFFFFF;
        options_.DefaultZipName = isOn ? L"One" : L"Two";
        EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
        const OBOptions loaded = Loaded();
        EXPECT_EQ(!isOn, loaded.SendItem);
        EXPECT_EQ(isOn, loaded.AutoEncrypt);
        EXPECT_EQ(isOn, loaded.SingleAttachFileName);
        EXPECT_EQ(!isOn, loaded.SingleAttachConversion);
        EXPECT_EQ(isOn, loaded.DuplicateReferences);
        EXPECT_EQ(isOn ? 8u : 0xFFFFFFFFu, loaded.CompressionMethod);
        EXPECT_EQ(isOn ? L"One" : L"Two", loaded.DefaultZipName);
    }
}

TEST_F(AttachmentDialog, SavesCompulsoryEncryption) {
    options_.AlwaysEncrypt = true;
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
    EXPECT_FALSE(options_.SendItem);
    EXPECT_TRUE(options_.AutoEncrypt);
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"SendItem"));
    EXPECT_EQ(L"1", obtest::ReadUserValue(L"AutoEncrypt"));
}

TEST_F(AttachmentDialog, SavesEachAppendix) {
    for (int row = 0; row < 5; ++row) {
        EXPECT_EQ(1, Show([row](const OpenDialog& dialog) {
                      dialog.Select(OB_ATTACHMENT_APPEND, row);
                      dialog.Ok();
                  }));
        EXPECT_EQ(static_cast<NameAppendKind>(row), Loaded().NameAppend);
    }
}

TEST_F(AttachmentDialog, KeepsTheMethodWithoutAChosenExtension) {
    options_.CompressionMethod = 0xFFFFFFFF;
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  SendMessageW(dialog.Item(1004), BM_SETCHECK, BST_UNCHECKED, 0);
                  dialog.Ok();
              }));
    EXPECT_EQ(0xFFFFFFFFu, options_.CompressionMethod);
}

TEST_F(AttachmentDialog, ChecksTheTrimmedTextsInOrder) {
    Show([](const OpenDialog& dialog) {
        dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"  ..  ");
        dialog.Type(OB_ATTACHMENT_EXTENSION, L" piz ");
        FakeModules::ForgetCalls();
        Answer(L"ValidateFilespecW(\"\", 2)", L"1");
        obtest::MessageBoxWatcher boxes;
        dialog.Ok();
    });
    EXPECT_EQ((Lines{L"ValidateFilespecW(\"\", 2)", L"ValidateFilespecW(\"piz\", 2)",
                     L"ValidateFilespecW(\"piz\", 4)"}),
              FakeModules::Calls());
}

TEST_F(AttachmentDialog, SavesEmptyTextsThatTheServiceAccepts) {
    options_.AltExt = L"piz";
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
                  dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"  ..  ");
                  dialog.Type(OB_ATTACHMENT_EXTENSION, L" . ");
                  FakeModules::ForgetCalls();
                  dialog.Ok();
              }));
    Lines calls = FakeModules::CallsOf({L"ValidateFilespecW"});
    ASSERT_LE(3u, calls.size());
    calls.resize(3); // the record is checked once more as it is saved
    EXPECT_EQ((Lines{L"ValidateFilespecW(\"\", 2)", L"ValidateFilespecW(\"\", 2)",
                     L"ValidateFilespecW(\"\", 4)"}),
              calls);
    EXPECT_EQ(L"", obtest::ReadUserValue(L"DefaultZipName"));
    EXPECT_EQ(L"", obtest::ReadUserValue(L"AltExt"));
    EXPECT_EQ(L"1", obtest::ReadUserValue(L"UseAltExt"));
}

TEST_F(AttachmentDialog, RefusesAnEmptyExtensionThatIsUsed) {
    options_.UseAltExt = true;
    options_.DefaultZipName = L"n";
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) {
                  Answer(L"ValidateFilespecW(\"\", 2)", L"1");
                  FakeModules::ForgetCalls();
                  dialog.Ok();
                  EXPECT_TRUE(obtest::IsOpen(dialog.window));
                  EXPECT_EQ((Lines{L"ValidateFilespecW(\"n\", 2)", L"ValidateFilespecW(\"\", 2)"}),
                            FakeModules::CallsOf({L"ValidateFilespecW"}));
              }));
    ASSERT_EQ(1u, boxes.Seen().size());
    EXPECT_EQ(obcore::LoadText(TextId::ExtensionNotValid), boxes.Seen()[0].text);
}

// Shows the dialog, types, presses OK, which is refused, and cancels.
TEST_F(AttachmentDialog, RefusesABadNameAndStaysOpen) {
    Answer(L"ValidateFilespecW(\"a?b\", 2)", L"3");
    obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(2, Show([&boxes](const OpenDialog& dialog) {
                  dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"a?b");
                  dialog.Ok();
                  EXPECT_TRUE(obtest::IsOpen(dialog.window));
                  ASSERT_EQ(1u, boxes.Seen().size());
                  EXPECT_EQ(obcore::LoadText(TextId::NameNotValid), boxes.Seen()[0].text);
                  EXPECT_TRUE(boxes.Seen()[0].hasIcon);
                  EXPECT_EQ(dialog.window, boxes.Seen()[0].owner);
              }));
    EXPECT_EQ(L"a?b", options_.DefaultZipName); // the record keeps what was typed
    EXPECT_FALSE(obtest::ReadUserValue(L"DefaultZipName"));
}

TEST_F(AttachmentDialog, RefusesABadExtensionThatIsUsed) {
    for (const wchar_t* bad :
         {L"ValidateFilespecW(\"p z\", 2)", L"ValidateFilespecW(\"p z\", 4)"}) {
        FakeModules::Reset();
        Answer(bad, L"1");
        options_ = obtest::PlainOptions();
        obtest::MessageBoxWatcher boxes;
        EXPECT_EQ(2, Show([&boxes](const OpenDialog& dialog) {
                      dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
                      dialog.Type(OB_ATTACHMENT_EXTENSION, L"p z");
                      dialog.Ok();
                      EXPECT_TRUE(obtest::IsOpen(dialog.window));
                      ASSERT_EQ(1u, boxes.Seen().size());
                      EXPECT_EQ(obcore::LoadText(TextId::ExtensionNotValid), boxes.Seen()[0].text);
                      EXPECT_TRUE(boxes.Seen()[0].hasIcon);
                  }));
        EXPECT_EQ(L"p z", options_.AltExt);
        EXPECT_FALSE(obtest::ReadUserValue(L"AltExt"));
    }
}

TEST_F(AttachmentDialog, ReportsTheNameAloneWhenBothAreBad) {
    Answer(L"ValidateFilespecW", L"1");
    options_.UseAltExt = true;
    obtest::MessageBoxWatcher boxes;
    Show([](const OpenDialog& dialog) { dialog.Ok(); });
    ASSERT_EQ(1u, boxes.Seen().size());
    EXPECT_EQ(obcore::LoadText(TextId::NameNotValid), boxes.Seen()[0].text);
}

TEST_F(AttachmentDialog, SavesABadExtensionThatIsNotUsed) {
    Answer(L"ValidateFilespecW(\"p z\", 4)", L"1");
    const obtest::MessageBoxWatcher boxes; // closes a box that mustn't come
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Type(OB_ATTACHMENT_EXTENSION, L"p z");
                  dialog.Ok();
              }));
    EXPECT_EQ(L"p z", obtest::ReadUserValue(L"AltExt"));
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"UseAltExt"));
}

TEST_F(AttachmentDialog, GoesOnInTheRefusedField) {
    Answer(L"ValidateFilespecW", L"1");
    obtest::MessageBoxWatcher boxes;
    Show([](const OpenDialog& dialog) {
        dialog.Ok();
        GUITHREADINFO thread{};
        thread.cbSize = sizeof thread;
        GetGUIThreadInfo(GetWindowThreadProcessId(dialog.window, nullptr), &thread);
        EXPECT_EQ(dialog.Item(OB_ATTACHMENT_ZIP_NAME), thread.hwndFocus);
    });
}

TEST_F(AttachmentDialog, CancelChangesNothing) {
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) {
                  dialog.Press(kPlain);
                  dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"Other");
              }));
    EXPECT_TRUE(options_.SendItem);
    EXPECT_EQ(obcore::kDefaultZipName, options_.DefaultZipName);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
}

} // namespace
