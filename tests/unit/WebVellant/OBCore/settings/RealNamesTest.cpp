// Names and extensions in the attachment settings, judged by the real archive service, and what a
// run makes of them.
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/options/AttachmentNaming.h"
#include "OBCore/options/OBAttachJob.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obcore::OBOptions;
using obcore::TextId;
using obtest::OpenDialog;

struct Typed {
    std::wstring text;
    bool isGood;        // once it is trimmed
    bool isGoodAsTyped; // which the preview goes by
    std::wstring saved;
};

std::wstring Of(std::size_t length) { return std::wstring(length, L'n'); }

const Typed kNames[] = {
    {L"", false, false, L""},
    {L"n", true, true, L"n"},
    {Of(255), true, true, Of(255)},
    {Of(256), false, false, L""},
    {Of(257), false, false, L""},
    {Of(258), false, false, L""},
    {L" . ", false, false, L""},
    {L" .n. ", true, false, L"n"},
    {L"a b", true, true, L"a b"},
    {L"a/b", false, false, L""},
    {L"a?b", false, false, L""},
    {L"a\u0085b", false, false, L""},
    {L"con", false, false, L""},
    {L"LPT1.txt", false, false, L""},
    {L"CON file", true, true, L"CON file"},
    {L"\U0001F4E6 \u00FCber & \u65E5\u672C", true, true, L"\U0001F4E6 \u00FCber & \u65E5\u672C"},
};

const Typed kExtensions[] = {
    {L"", false, false, L""},           {L"piz", true, true, L"piz"},
    {L"tar.gz", true, true, L"tar.gz"}, {L".piz", true, false, L"piz"},
    {L" piz ", true, false, L"piz"},    {L"p z", false, false, L""},
    {L"p*z", false, false, L""},        {L"nul", false, false, L""},
    {Of(256), false, false, L""},       {L"\U0001F4E6", true, true, L"\U0001F4E6"},
};

class RealNames : public obtest::AttachmentFixture {
protected:
    void SetUp() override {
        AttachmentFixture::SetUp();
        ASSERT_TRUE(obcore::LoadProviderManager());
    }

    // Types a text and presses OK, which must be refused for `reason` if the text is bad.
    void Try(const Typed& typed, int field, TextId reason) {
        const obtest::MessageBoxWatcher boxes;
        const INT_PTR result = Show([&](const OpenDialog& dialog) {
            if (field == OB_ATTACHMENT_EXTENSION) dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
            dialog.Type(field, typed.text);
            const bool isShown = Preview(dialog) != obcore::LoadText(TextId::PreviewNotValid);
            EXPECT_EQ(typed.isGoodAsTyped, isShown) << typed.text;
            dialog.Ok();
        });
        EXPECT_EQ(typed.isGood ? 1 : 2, result) << typed.text;
        ASSERT_EQ(typed.isGood ? 0u : 1u, boxes.Seen().size()) << typed.text;
        if (!typed.isGood) {
            EXPECT_EQ(obcore::LoadText(reason), boxes.Seen()[0].text) << typed.text;
        }
    }
    // The name that a run with the saved options gives a zip of two files.
    static std::wstring NameOfRun() {
        obcore::OBAttachJob job(Loaded(), nullptr);
        job.Files = {L"C:\\a.txt", L"C:\\b.txt"};
        std::wstring name;
        EXPECT_TRUE(obcore::CompressUtils::BuildAttachmentName(job, name));
        return name;
    }
};

TEST_F(RealNames, AreSavedWholeOrNotAtAll) {
    for (const Typed& typed : kNames) {
        obtest::ClearProductRegistry();
        options_ = obtest::PlainOptions();
        Try(typed, OB_ATTACHMENT_ZIP_NAME, TextId::NameNotValid);
        if (typed.isGood) {
            EXPECT_EQ(typed.saved, obtest::ReadUserValue(L"DefaultZipName"));
            EXPECT_EQ(typed.saved, Loaded().DefaultZipName);
        } else {
            EXPECT_FALSE(obtest::ReadUserValue(L"DefaultZipName")) << typed.text;
        }
    }
}

TEST_F(RealNames, OfExtensionsAreSavedWholeOrNotAtAll) {
    for (const Typed& typed : kExtensions) {
        obtest::ClearProductRegistry();
        options_ = obtest::PlainOptions();
        Try(typed, OB_ATTACHMENT_EXTENSION, TextId::ExtensionNotValid);
        if (typed.isGood) {
            EXPECT_EQ(typed.saved, obtest::ReadUserValue(L"AltExt"));
            EXPECT_TRUE(Loaded().UseAltExt);
        } else {
            EXPECT_FALSE(obtest::ReadUserValue(L"AltExt")) << typed.text;
        }
    }
}

// A record may have a longer name than the field takes from the keyboard.
TEST_F(RealNames, OfTheRecordAreNeverCut) {
    for (const std::size_t length : {257u, 258u, 1000u}) {
        options_.DefaultZipName = Of(length);
        const obtest::MessageBoxWatcher boxes;
        EXPECT_EQ(2, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
        EXPECT_EQ(1u, boxes.Seen().size());
        EXPECT_EQ(Of(length), options_.DefaultZipName);
        EXPECT_FALSE(obtest::ReadUserValue(L"DefaultZipName"));
    }
}

TEST_F(RealNames, InThePreviewAreThoseOfARun) {
    const struct {
        const wchar_t* name;
        const wchar_t* extension; // null: none is used
        int ending;
        int append;
    } rows[] = {{L"Files", nullptr, OB_ATTACHMENT_ZIP, 0},
                {L"Files", nullptr, OB_ATTACHMENT_ZIPX, 2},
                {L"My & files", L"piz", OB_ATTACHMENT_ZIP, 1},
                {L"\U0001F4E6", L"tar.gz", OB_ATTACHMENT_ZIPX, 0}};
    for (const auto& row : rows) {
        obtest::ClearProductRegistry();
        options_ = obtest::PlainOptions();
        std::wstring preview;
        EXPECT_EQ(1, Show([&](const OpenDialog& dialog) {
                      dialog.Type(OB_ATTACHMENT_ZIP_NAME, row.name);
                      dialog.Press(row.ending);
                      dialog.Select(OB_ATTACHMENT_APPEND, row.append);
                      if (row.extension) {
                          dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
                          dialog.Type(OB_ATTACHMENT_EXTENSION, row.extension);
                      }
                      preview = Preview(dialog);
                      dialog.Ok();
                  }));
        EXPECT_EQ(preview, NameOfRun());
    }
}

// Opened again, the dialog shows what it saved.
TEST_F(RealNames, AreThereWhenTheDialogOpensAgain) {
    Show([](const OpenDialog& dialog) {
        dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"Mine");
        dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
        dialog.Type(OB_ATTACHMENT_EXTENSION, L"piz");
        dialog.Press(OB_ATTACHMENT_SEND_PLAIN);
        dialog.Press(OB_ATTACHMENT_ZIPX);
        dialog.Ok();
    });
    options_ = Loaded();
    Show([](const OpenDialog& dialog) {
        EXPECT_EQ(L"Mine", dialog.Text(OB_ATTACHMENT_ZIP_NAME));
        EXPECT_EQ(L"piz", dialog.Text(OB_ATTACHMENT_EXTENSION));
        EXPECT_TRUE(dialog.IsChecked(OB_ATTACHMENT_USE_EXTENSION));
        EXPECT_TRUE(dialog.IsChecked(OB_ATTACHMENT_SEND_PLAIN));
        EXPECT_TRUE(dialog.IsChecked(OB_ATTACHMENT_ZIPX));
        EXPECT_EQ(L"Mine.piz", Preview(dialog));
    });
}

} // namespace
