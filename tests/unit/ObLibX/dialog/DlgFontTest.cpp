// The fonts of dialogs: the base font, the cache, and what a template gets.
#include "ObLibX/src/dialog/DlgFont.h"

#include <algorithm>
#include <string>

#include "ObLibX/src/dialog/DescribedControls.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;
using ObLib::ObString;

LOGFONTW Described(HFONT font) {
    LOGFONTW described{};
    GetObjectW(font, sizeof described, &described);
    return described;
}

LOGFONTW FontOf(HWND window) {
    return Described(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
}

class DlgFontTest : public DialogTest {};

TEST_F(DlgFontTest, IsSegoeUi9WithoutADescription) {
    std::int32_t size = 0;
    EXPECT_STREQ(L"Segoe UI", GetBaseFont(size).CStr());
    EXPECT_EQ(9, size);
}

TEST_F(DlgFontTest, IsThatOfTheDescription) {
    UseDescription();
    LoadDialogDefaults();
    std::int32_t size = 0;
    EXPECT_STREQ(L"Arial", GetBaseFont(size).CStr());
    EXPECT_EQ(10, size);
    EXPECT_STREQ(L"Times New Roman", Described(GetFont(8, L"Tahoma", 400, 0)).lfFaceName);
}

TEST_F(DlgFontTest, HasSizeWeightAndStyle) {
    const LOGFONTW plain = Described(GetFont(12, L"Arial", 400, 0));
    EXPECT_STREQ(L"Arial", plain.lfFaceName);
    EXPECT_EQ(-16, plain.lfHeight);
    EXPECT_EQ(400, plain.lfWeight);
    EXPECT_FALSE(plain.lfItalic || plain.lfUnderline || plain.lfStrikeOut);
    const LOGFONTW styled = Described(GetFont(12, L"Arial", 700, 1 | 2 | 4));
    EXPECT_EQ(700, styled.lfWeight);
    EXPECT_TRUE(styled.lfItalic && styled.lfUnderline && styled.lfStrikeOut);
}

TEST_F(DlgFontTest, IsTheBaseFontForNoNameAndNoSize) {
    const LOGFONTW font = Described(GetFont(0, ObString(), 400, 0));
    EXPECT_STREQ(L"Segoe UI", font.lfFaceName);
    EXPECT_EQ(-12, font.lfHeight);
}

TEST_F(DlgFontTest, HasTheBaseSizeWithoutASizeWhateverItsName) {
    ProcessDialogSettings().font = {L"Segoe UI", 18};
    const LOGFONTW font = Described(GetFont(0, L"Arial", 400, 0));
    EXPECT_STREQ(L"Arial", font.lfFaceName);
    EXPECT_EQ(-24, font.lfHeight);
}

TEST_F(DlgFontTest, IsOneHandleForOneFont) {
    const HFONT font = GetFont(12, L"Arial", 400, 0);
    EXPECT_EQ(font, GetFont(12, L"ARIAL", 400, 0));
    EXPECT_NE(font, GetFont(13, L"Arial", 400, 0));
    EXPECT_NE(font, GetFont(12, L"Arial", 400, 1));
    const FontEntry* const entry = FindFontEntry(font);
    ASSERT_NE(nullptr, entry);
    EXPECT_STREQ(L"arial/12/400/0", entry->key.CStr());
    EXPECT_EQ(font, entry->handle);
    EXPECT_STREQ(L"Arial", entry->name.CStr());
    EXPECT_EQ(12, entry->size);
    EXPECT_EQ(400, entry->weight);
    EXPECT_EQ(0, entry->style);
    EXPECT_EQ(nullptr, FindFontEntry(static_cast<HFONT>(GetStockObject(SYSTEM_FONT))));
}

TEST_F(DlgFontTest, IsSubstituted) {
    AddFontSubstitution(L"MS Shell Dlg", 8, L"Arial", 9);
    EXPECT_EQ(GetFont(9, L"Arial", 400, 0), GetFont(8, L"MS Shell Dlg", 400, 0));
}

TEST_F(DlgFontTest, IsSubstitutedForTheBaseFontToo) {
    AddFontSubstitution(L"Segoe UI", 9, L"Arial", 11);
    EXPECT_EQ(GetFont(11, L"Arial", 400, 0), GetFont(0, ObString(), 400, 0));
    EXPECT_EQ(GetFont(11, L"Arial", 700, 0), GetFont(9, L"Segoe UI", 700, 0));
    std::int32_t size = 0;
    EXPECT_STREQ(L"Segoe UI", GetBaseFont(size).CStr());
    EXPECT_EQ(9, size);
}

TEST_F(DlgFontTest, CutsALongFaceAt31Characters) {
    const std::wstring face(40, L'F');
    EXPECT_EQ(31u, std::wstring(Described(GetFont(9, face.c_str(), 400, 0)).lfFaceName).size());
}

TEST_F(DlgFontTest, IsGivenToATemplate) {
    wchar_t face[32] = {};
    std::int32_t size = 0;
    EXPECT_TRUE(FindDialogFont(nullptr, face, 32, size));
    EXPECT_STREQ(L"Segoe UI", face);
    EXPECT_EQ(9, size);
    EXPECT_TRUE(FindDialogFont(nullptr, face, 6, size));
    EXPECT_STREQ(L"Segoe", face);
    EXPECT_FALSE(FindDialogFont(nullptr, face, 0, size));
}

TEST_F(DlgFontTest, IsThatOfEachDialogAndItsControls) {
    for (const std::int32_t dialogTemplate : {OB_TEST_PLAIN, OB_TEST_EXTENDED}) {
        RecordingDialog dialog(dialogTemplate);
        dialog.Open();
        EXPECT_STREQ(L"Segoe UI", FontOf(dialog.GetItem(1001, true)).lfFaceName) << dialogTemplate;
    }
    RecordingDialog extended(OB_TEST_EXTENDED);
    EXPECT_EQ(700, FontOf(extended.Open().GetItem(1001, true)).lfWeight);
}

// ---- a base font that can't be made

constexpr wchar_t kMissingFont[] = L"A face that is missing";

HFONT WINAPI MakeAllButTheMissing(const LOGFONTW* font) {
    static const auto real =
        reinterpret_cast<decltype(&CreateFontIndirectW)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"gdi32.dll"), "CreateFontIndirectW")));
    return std::wstring(font->lfFaceName) == kMissingFont ? nullptr : real(font);
}

BOOL WINAPI MessageFontOf20Pixels(UINT action, UINT size, PVOID data, UINT flags) {
    if (action != SPI_GETNONCLIENTMETRICS) return FALSE;
    LOGFONTW& font = static_cast<NONCLIENTMETRICSW*>(data)->lfMessageFont;
    font = {};
    font.lfHeight = -20;
    wcscpy(font.lfFaceName, L"Tahoma");
    return size == sizeof(NONCLIENTMETRICSW) && flags == 0;
}

BOOL WINAPI NoParameters(UINT, UINT, PVOID, UINT) { return FALSE; }

class MissingBaseFont : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(fonts_.Ok());
        ProcessDialogSettings().font = {kMissingFont, 9};
    }
    // What a template gets, as "face size"; empty: nothing.
    static std::wstring TemplateFont() {
        wchar_t face[LF_FACESIZE] = {};
        std::int32_t size = 0;
        if (!FindDialogFont(nullptr, face, LF_FACESIZE, size)) return L"";
        return std::wstring(face) + L" " + std::to_wstring(size);
    }
    const obtest::ImportPatch<decltype(&CreateFontIndirectW)> fonts_{
        "gdi32.dll", "CreateFontIndirectW", &MakeAllButTheMissing};
};

TEST_F(MissingBaseFont, GivesTemplatesTheSystemsFontForMessages) {
    const obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch(
        "user32.dll", "SystemParametersInfoW", &MessageFontOf20Pixels);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(nullptr, GetFont(0, ObString(), 400, 0));
    EXPECT_EQ(L"Tahoma 15", TemplateFont()) << "20 pixels at 96 dpi";
    RecordingDialog dialog(OB_TEST_PLAIN);
    const LOGFONTW font = FontOf(dialog.Open().GetItem(1001, true));
    EXPECT_STREQ(L"Tahoma", font.lfFaceName);
    EXPECT_EQ(-20, font.lfHeight);
    ProcessDialogSettings().font = {L"Arial", 10};
    EXPECT_EQ(L"Arial 10", TemplateFont()) << "one that can be made";
}

TEST_F(MissingBaseFont, GivesTemplatesSegoeUi9WhereTheSystemHasNone) {
    const obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch(
        "user32.dll", "SystemParametersInfoW", &NoParameters);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(L"Segoe UI 9", TemplateFont());
}

// The fonts are those of the process: this suite has one test.
class SharedBoldFont : public DialogTest {
protected:
    // A label in a font of its own.
    static HWND InFont(RecordingDialog& dialog, const wchar_t* face, std::int32_t size) {
        const HWND label = dialog.Open().GetItem(1001, true);
        SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(GetFont(size, face, 400, 1)), 0);
        return label;
    }
};

bool isBoldAlone = false; // that can't be made
HFONT WINAPI MakeNoFont(const LOGFONTW* font) {
    static const auto real =
        reinterpret_cast<decltype(&CreateFontIndirectW)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"gdi32.dll"), "CreateFontIndirectW")));
    return isBoldAlone && font->lfWeight != 700 ? real(font) : nullptr;
}

TEST_F(SharedBoldFont, IsThatOfTheFirstWindowAsSoonAsItCanBeMade) {
    RecordingDialog plain(OB_TEST_PLAIN);
    RecordingDialog extended(OB_TEST_EXTENDED);
    const HWND first = InFont(plain, L"Arial", 14);
    const HWND second = InFont(extended, L"Times New Roman", 20);
    {
        const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch(
            "gdi32.dll", "CreateFontIndirectW", &MakeNoFont);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(nullptr, InitSharedBoldFont(second).normal);
        isBoldAlone = true;
        EXPECT_NE(nullptr, InitSharedBoldFont(first).normal);
        EXPECT_EQ(nullptr, InitSharedBoldFont(first).bold);
    }
    const SharedFonts fonts = InitSharedBoldFont(second);
    const LOGFONTW normal = Described(fonts.normal);
    const LOGFONTW bold = Described(fonts.bold);
    EXPECT_EQ(400, normal.lfWeight);
    EXPECT_EQ(700, bold.lfWeight);
    for (const LOGFONTW& font : {normal, bold}) {
        EXPECT_STREQ(L"Arial", font.lfFaceName);
        EXPECT_EQ(Described(GetFont(14, L"Arial", 400, 1)).lfHeight, font.lfHeight);
        EXPECT_TRUE(font.lfItalic);
    }
    EXPECT_EQ(fonts.bold, InitSharedBoldFont(first).bold);
}

class DescriptionResource : public DialogTest {};

TEST_F(DescriptionResource, IsReadInTheSystemsCodePageWhateverItDeclares) {
    UseDescription();
    std::vector<ControlDescription> controls;
    EXPECT_TRUE(ReadDialogDescription(OB_TEST_DRESSED, controls));
    ASSERT_EQ(3u, controls.size());
    EXPECT_STREQ(L"A tooltip from the string table", controls[0].tooltip.CStr());
    EXPECT_STREQ(L"A1", controls[1].tooltip.CStr());
    EXPECT_FALSE(ReadDialogDescription(OB_TEST_PLAIN, controls));
}

TEST_F(DescriptionResource, HasSegoeUi9ForAControlWithoutAFontWhateverTheBaseFont) {
    UseDescription();
    std::vector<ControlDescription> controls;
    EXPECT_TRUE(ReadDialogDescription(OB_TEST_DRESSED, controls));
    std::int32_t size = 0;
    EXPECT_STREQ(L"Arial", GetBaseFont(size).CStr());
    for (const ControlDescription& control : controls) {
        EXPECT_STREQ(L"Segoe UI", control.fontName.CStr());
        EXPECT_EQ(9, control.fontSize);
    }
}

// A resource of the test, in a code page with characters of two bytes.
std::string givenBytes;
LPVOID WINAPI GiveBytes(HGLOBAL) { return givenBytes.data(); }
DWORD WINAPI GiveSize(HMODULE, HRSRC) { return static_cast<DWORD>(givenBytes.size()); }
int WINAPI ConvertAsJapanese(UINT page, DWORD flags, LPCCH bytes, int length, LPWSTR out,
                             int capacity) {
    static const auto real =
        reinterpret_cast<decltype(&MultiByteToWideChar)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "MultiByteToWideChar")));
    return real(page == CP_ACP ? 932 : page, flags, bytes, length, out, capacity);
}

TEST_F(DescriptionResource, MayEndInTheMiddleOfACharacter) {
    const obtest::ImportPatch<decltype(&LockResource)> lock("kernel32.dll", "LockResource",
                                                            &GiveBytes);
    const obtest::ImportPatch<decltype(&SizeofResource)> size("kernel32.dll", "SizeofResource",
                                                              &GiveSize);
    const obtest::ImportPatch<decltype(&MultiByteToWideChar)> convert(
        "kernel32.dll", "MultiByteToWideChar", &ConvertAsJapanese);
    ASSERT_TRUE(lock.Ok() && size.Ok() && convert.Ok());
    const std::string whole = "<r><dialog id='7'><control id='3'><cue>\x93\xFA\x96\x7B</cue>"
                              "</control></dialog></r>";
    const std::wstring cue = L"\x65E5\x672C";
    std::size_t described = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        givenBytes = whole.substr(0, length);
        ProcessDialogSettings() = DialogSettings();
        std::vector<ControlDescription> controls;
        ReadDialogDescription(7, controls);
        if (controls.empty()) continue;
        ++described;
        const std::wstring text = controls[0].cue.CStr();
        EXPECT_EQ(cue.substr(0, text.size()), text.substr(0, cue.size())) << length;
    }
    EXPECT_LT(0u, described);
    std::vector<ControlDescription> controls;
    ASSERT_TRUE(ReadDialogDescription(7, controls));
    EXPECT_EQ(cue, controls.at(0).cue.CStr()) << "the whole text, which was the last one";
}

TEST_F(DescriptionResource, IsLookedForInTheLanguageModuleFirstAndThenInTheProgram) {
    ObLib::AppGlobals().SetModules(GetModuleHandleW(nullptr), GetModuleHandleW(L"kernel32.dll"),
                                   L"", L"");
    UseDescription();
    std::vector<ControlDescription> controls;
    EXPECT_TRUE(ReadDialogDescription(OB_TEST_DRESSED, controls));
}

TEST_F(DescriptionResource, IsNotLookedForASecondTime) {
    const HMODULE other = GetModuleHandleW(L"kernel32.dll");
    ObLib::AppGlobals().SetModules(other, other, L"", L"");
    UseDescription();
    std::vector<ControlDescription> controls;
    EXPECT_FALSE(ReadDialogDescription(OB_TEST_DRESSED, controls));
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    EXPECT_FALSE(ReadDialogDescription(OB_TEST_DRESSED, controls));
}

TEST_F(DescriptionResource, HasAnErrorTextWhenItIsEmpty) {
    ObXML tree;
    EXPECT_FALSE(tree.LoadText(L""));
    EXPECT_STREQ(L"Empty document", tree.Error().CStr());
    EXPECT_TRUE(tree.LoadText(L"<r/>"));
    EXPECT_FALSE(tree.Error().HasText());
}

} // namespace
