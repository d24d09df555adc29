// The preview of a zip's name, and what is cut off a name.
#include "OBCore/settings/NamePreview.h"

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/options/AttachmentNaming.h"
#include "tests/unit/WebVellant/OBCore/settings/AttachmentFixture.h"

namespace {

using obcore::NameAppendKind;
using obcore::TextId;
using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

TEST(TrimWhitespaceAndDots, CutsBlanksAndDotsOffBothEnds) {
    const struct {
        const wchar_t* text;
        const wchar_t* trimmed;
    } rows[] = {
        {L"", L""},
        {L" ", L""},
        {L"  ..  ", L""},
        {L"a", L"a"},
        {L" a", L"a"},
        {L"a.", L"a"},
        {L". a b.c .", L"a b.c"},
        {L"\ta\t", L"\ta\t"},
        {L"\u00A0a", L"\u00A0a"},
        {L".\U0001F600.", L"\U0001F600"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.trimmed, obcore::TrimWhitespaceAndDots(row.text, obcore::kWhitespaceAndDots));
    }
}

class NamePreview : public obtest::AttachmentFixture {
protected:
    // What the dialog shows as it opens.
    std::wstring Stored() {
        std::wstring shown;
        Show([&shown](const OpenDialog& dialog) { shown = Preview(dialog); });
        return shown;
    }
    static std::wstring NotValid() { return obcore::LoadText(TextId::PreviewNotValid); }
};

TEST_F(NamePreview, OfTheStoredOptionsChecksNothing) {
    Answer(L"ValidateFilespecW", L"1");
    EXPECT_EQ(L"Ombrix Compressed Attachments.zip", Stored());
    options_.CompressionMethod = 0xFFFFFFFF;
    EXPECT_EQ(L"Ombrix Compressed Attachments.zipx", Stored());
    options_.DefaultZipName = L" a?b ";
    options_.UseAltExt = true;
    options_.AltExt = L".p z";
    EXPECT_EQ(L" a?b ..p z", Stored());
    EXPECT_EQ(Lines(), FakeModules::CallsOf({L"ValidateFilespecW"}));
}

TEST_F(NamePreview, HasTheTokenOfTheAppendix) {
    options_.DefaultZipName = L"n";
    for (std::uint32_t kind = 0; kind < 5; ++kind) {
        options_.NameAppend = static_cast<NameAppendKind>(kind);
        const std::wstring before = L"n" + obcore::MakeNameToken(options_.NameAppend) + L".zip";
        const std::wstring shown = Stored();
        const std::wstring after = L"n" + obcore::MakeNameToken(options_.NameAppend) + L".zip";
        EXPECT_LE(before, shown);
        EXPECT_LE(shown, after);
        EXPECT_EQ(before.size(), shown.size());
    }
}

TEST_F(NamePreview, FollowsTheNameAndKeepsItsBlanks) {
    Show([](const OpenDialog& dialog) {
        FakeModules::ForgetCalls();
        dialog.Type(OB_ATTACHMENT_ZIP_NAME, L" my & files. ");
        EXPECT_EQ(L" my & files. .zip", Preview(dialog));
        EXPECT_EQ(Lines{L"ValidateFilespecW(\" my & files. \", 2)"}, FakeModules::Calls());
    });
}

TEST_F(NamePreview, ShowsAnAmpersandAsItIs) {
    Show([](const OpenDialog& dialog) {
        const LONG_PTR style = GetWindowLongPtrW(dialog.Item(OB_ATTACHMENT_PREVIEW), GWL_STYLE);
        EXPECT_NE(0, style & SS_NOPREFIX);
    });
}

TEST_F(NamePreview, FollowsTheExtensionTrimmed) {
    options_.DefaultZipName = L"n";
    Show([](const OpenDialog& dialog) {
        dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
        EXPECT_EQ(L"n.", Preview(dialog));
        FakeModules::ForgetCalls();
        dialog.Type(OB_ATTACHMENT_EXTENSION, L" .piz.");
        EXPECT_EQ(L"n.piz", Preview(dialog));
        EXPECT_EQ((Lines{L"ValidateFilespecW(\"n\", 2)", L"ValidateFilespecW(\" .piz.\", 2)",
                         L"ValidateFilespecW(\" .piz.\", 4)"}),
                  FakeModules::Calls());
    });
}

TEST_F(NamePreview, FollowsTheKindOfZip) {
    options_.DefaultZipName = L"n";
    Show([](const OpenDialog& dialog) {
        dialog.Press(OB_ATTACHMENT_ZIPX);
        EXPECT_EQ(L"n.zipx", Preview(dialog));
        dialog.Press(OB_ATTACHMENT_ZIP);
        EXPECT_EQ(L"n.zip", Preview(dialog));
        SendMessageW(dialog.Item(OB_ATTACHMENT_ZIP), BM_SETCHECK, BST_UNCHECKED, 0);
        dialog.Notify(OB_ATTACHMENT_ZIP, BN_CLICKED);
        EXPECT_EQ(L"n", Preview(dialog)); // neither kind is chosen
    });
}

TEST_F(NamePreview, FollowsTheAppendix) {
    options_.DefaultZipName = L"n";
    Show([](const OpenDialog& dialog) {
        for (const int row : {1, 2, 3, 4, 0}) {
            const auto kind = static_cast<NameAppendKind>(row);
            const std::wstring before = L"n" + obcore::MakeNameToken(kind) + L".zip";
            dialog.Select(OB_ATTACHMENT_APPEND, row);
            const std::wstring shown = Preview(dialog);
            const std::wstring after = L"n" + obcore::MakeNameToken(kind) + L".zip";
            EXPECT_LE(before, shown) << row;
            EXPECT_LE(shown, after) << row;
            EXPECT_EQ(before.size(), shown.size()) << row;
        }
    });
}

TEST_F(NamePreview, ReportsANameThatCantBeUsed) {
    Answer(L"ValidateFilespecW(\"a?b\", 2)", L"3");
    Show([](const OpenDialog& dialog) {
        dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"a?b");
        EXPECT_EQ(NotValid(), Preview(dialog));
        dialog.Type(OB_ATTACHMENT_ZIP_NAME, L"ab");
        EXPECT_EQ(L"ab.zip", Preview(dialog));
    });
}

TEST_F(NamePreview, ReportsAnExtensionThatCantBeUsed) {
    Answer(L"ValidateFilespecW(\"p?z\", 2)", L"3");
    Answer(L"ValidateFilespecW(\"p z\", 4)", L"4");
    Show([](const OpenDialog& dialog) {
        dialog.Press(OB_ATTACHMENT_USE_EXTENSION);
        for (const wchar_t* bad : {L"p?z", L"p z"}) {
            FakeModules::ForgetCalls();
            dialog.Type(OB_ATTACHMENT_EXTENSION, bad);
            EXPECT_EQ(NotValid(), Preview(dialog)) << bad;
            // The second rules are asked for only where the first accept.
            const std::size_t tests = std::wstring(bad) == L"p?z" ? 2 : 3;
            EXPECT_EQ(tests, FakeModules::CallsOf({L"ValidateFilespecW"}).size()) << bad;
            dialog.Type(OB_ATTACHMENT_EXTENSION, L"piz");
            EXPECT_NE(NotValid(), Preview(dialog)) << bad;
        }
    });
}

TEST_F(NamePreview, IsNotMadeAnewByOtherNotifications) {
    Show([](const OpenDialog& dialog) {
        FakeModules::ForgetCalls();
        dialog.Notify(OB_ATTACHMENT_ZIP_NAME, EN_CHANGE);
        dialog.Notify(OB_ATTACHMENT_EXTENSION, EN_KILLFOCUS);
        dialog.Notify(OB_ATTACHMENT_APPEND, CBN_SELENDOK);
        for (const int id : {1006, 1007, 1008, 1011, 1023}) dialog.Press(id);
        EXPECT_EQ(Lines(), FakeModules::Calls());
        dialog.Notify(OB_ATTACHMENT_ZIP_NAME, 1024);
        EXPECT_EQ(1u, FakeModules::Calls().size());
    });
}

} // namespace
