// What another process is told of the windows of the settings, in the order in which they are read.
// Wine calls a stock window "client" and a field by its content: their roles are taken from class
// and style, and a field's name from the label before it, as the system does on Windows.
#include <commctrl.h>
#include <objbase.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "tests/support/AccessibleTree.h"
#include "tests/support/Utf8.h"
#include "tests/ui/settings/SettingsProgramFixture.h"

namespace obtest {
namespace {

using Lines = std::vector<std::string>;

LONG_PTR StyleOf(HWND window) { return GetWindowLongPtrW(window, GWL_STYLE); }

bool IsOf(HWND window, const wchar_t* name) {
    return CompareStringOrdinal(ClassOf(window).c_str(), -1, name, -1, TRUE) == CSTR_EQUAL;
}

std::wstring RoleOfButton(HWND button) {
    switch (StyleOf(button) & BS_TYPEMASK) {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
        return L"check button";
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
        return L"radio button";
    case BS_PUSHBUTTON:
    case BS_DEFPUSHBUTTON:
        return L"push button";
    default:
        return L"another button";
    }
}

std::wstring RoleOfStatic(HWND label) {
    const LONG_PTR type = StyleOf(label) & SS_TYPEMASK;
    return type == SS_BITMAP || type == SS_ICON ? L"graphic" : L"static text";
}

// What the system derives from a window of its own.
std::wstring StockRole(HWND window) {
    if (IsOf(window, WC_BUTTONW)) return RoleOfButton(window);
    if (IsOf(window, WC_STATICW)) return RoleOfStatic(window);
    if (IsOf(window, WC_EDITW)) return L"text";
    if (IsOf(window, WC_COMBOBOXW)) return L"combo box";
    if (IsOf(window, WC_LISTVIEWW)) return L"list";
    if (IsOf(window, UPDOWN_CLASSW)) return L"spin button";
    return ClassOf(window);
}

std::wstring WithoutAccessKey(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

// The text that the system takes for a label: the first one before, up to what takes the focus.
std::wstring LabelOf(HWND window) {
    for (HWND before = GetWindow(window, GW_HWNDPREV); before != nullptr;
         before = GetWindow(before, GW_HWNDPREV)) {
        if (!IsWindowVisible(before)) continue;
        if (IsOf(before, WC_STATICW)) return WithoutAccessKey(TextOf(before));
        if ((StyleOf(before) & WS_TABSTOP) != 0) return {};
    }
    return {};
}

bool IsNamedByLabel(HWND window) { return !IsOf(window, WC_BUTTONW) && !IsOf(window, WC_STATICW); }

std::wstring StatesOf(HWND window) {
    const bool isButton = IsOf(window, WC_BUTTONW);
    std::wstring states;
    if (!IsWindowEnabled(window)) states += L", disabled";
    if (isButton && SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED) states += L", checked";
    const bool isDefault =
        isButton && (SendMessageW(window, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) != 0;
    if (isDefault) states += L", default";
    return states;
}

// Without what has neither name nor use: the frame of a field.
bool IsFrame(HWND window) { return IsOf(window, WC_STATICW) && GetDlgCtrlID(window) == 0; }

std::wstring NameOf(HWND window, const AccessibleNode& node) {
    if (IsNamedByLabel(window)) return LabelOf(window);
    const bool isResource = !node.name.empty() && node.name[0] == 0xFFFF;
    return isResource ? std::wstring() : node.name; // Wine keeps an icon's number as its text
}

std::string LineOf(HWND window, const AccessibleNode& node) {
    const bool isStock = node.role.empty() || node.role == L"client";
    return Utf8((isStock ? StockRole(window) : node.role) + L" \"" + NameOf(window, node) + L"\"" +
                StatesOf(window));
}

Lines LinesOf(HWND dialog) {
    Lines lines;
    const std::vector<AccessibleNode> nodes = AccessibleNodes(dialog);
    auto node = nodes.begin();
    for (const HWND window : Descendants(dialog)) {
        if (!IsWindowVisible(window) || node == nodes.end()) continue;
        if (!IsFrame(window)) lines.push_back(LineOf(window, *node));
        ++node;
    }
    EXPECT_EQ(nodes.end(), node);
    return lines;
}

bool IsRadio(HWND window) {
    return IsOf(window, WC_BUTTONW) && RoleOfButton(window) == L"radio button";
}

// What the arrow keys go through, as "headline: one, two".
std::string GroupOf(HWND first) {
    std::wstring group = LabelOf(first) + L": " + WithoutAccessKey(TextOf(first));
    for (HWND next = GetWindow(first, GW_HWNDNEXT);
         next != nullptr && (StyleOf(next) & WS_GROUP) == 0; next = GetWindow(next, GW_HWNDNEXT)) {
        group +=
            (IsRadio(next) ? L", " : L", not a radio button: ") + WithoutAccessKey(TextOf(next));
    }
    return Utf8(group);
}

Lines RadioGroupsOf(HWND dialog) {
    Lines groups;
    for (const HWND window : Descendants(dialog)) {
        if (IsRadio(window) && (StyleOf(window) & WS_GROUP) != 0) {
            groups.push_back(GroupOf(window));
        }
    }
    return groups;
}

class SettingsAccessibility : public SettingsProgramFixture {
protected:
    void SetUp() override {
        SettingsProgramFixture::SetUp();
        ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        ASSERT_NO_FATAL_FAILURE(Start());
    }
    void TearDown() override {
        if (window_ != nullptr) {
            EXPECT_EQ(0u, EndWith(IDCANCEL));
        }
        CoUninitialize();
    }
    // The dialog that a press in `owner` opens is looked at and cancelled.
    void InDialogOf(HWND owner, int button, const std::function<void(HWND)>& look) {
        ASSERT_TRUE(PressCommand(owner, button));
        const HWND dialog = WaitForTopWindow(
            [&](HWND window) { return IsDialog(window) && GetWindow(window, GW_OWNER) == owner; },
            GetProcessId(process_.Get()));
        ASSERT_NE(nullptr, dialog);
        look(dialog);
        PressCommand(dialog, IDCANCEL);
        ASSERT_TRUE(WaitUntilClosed(dialog));
    }
};

TEST_F(SettingsAccessibility, NamesTheControlsOfTheSettingsWindow) {
    EXPECT_EQ((Lines{
                  R"(graphic "")",
                  R"(static text "Files in the cloud")",
                  R"(static text "Accounts, and files sent as links")",
                  R"(push button "Cloud settings")",
                  R"(graphic "")",
                  R"(static text "Attachments")",
                  R"(static text "How files are sent, and zip names")",
                  R"(push button "Attachment settings")",
                  R"(graphic "")",
                  R"(static text "Automatic changes")",
                  R"(static text "Copies are changed; your files stay as they are")",
                  R"(check button "Convert documents to PDF")",
                  R"(push button "Settings: convert documents to PDF")",
                  R"(check button "Resize images")",
                  R"(push button "Settings: resize images")",
                  R"(check button "Add a watermark")",
                  R"(push button "Settings: add a watermark")",
                  R"(check button "Convert photos")",
                  R"(push button "Settings: convert photos")",
                  R"(check button "Remove personal data")",
                  R"(push button "Settings: remove personal data")",
                  R"(check button "Combine PDF files into one")",
                  R"(check button "Sign PDF files", disabled)",
                  R"(push button "Settings: sign PDF files", disabled)",
                  R"(check button "Convert PDF to documents", disabled)",
                  R"(push button "Settings: convert PDF to documents", disabled)",
                  R"(graphic "")",
                  R"(static text "Browsers", disabled)",
                  R"(static text "Add the extension for web mail")",
                  R"(push button "Add to Chrome", disabled)",
                  R"(push button "Add to Edge", disabled)",
                  R"(push button "Add to Firefox", disabled)",
                  R"(push button "Update settings")",
                  R"(link "About Ombrix Vellant")",
                  R"(push button "OK", default)",
                  R"(push button "Cancel")",
              }),
              LinesOf(window_));
}

TEST_F(SettingsAccessibility, ReportsATickAtOnce) {
    Click(Item(OB_OPTIONS_COMBINE_PDFS));
    ASSERT_TRUE(WaitUntil([&] { return IsChecked(OB_OPTIONS_COMBINE_PDFS); }));
    const Lines lines = LinesOf(window_);
    EXPECT_NE(lines.end(), std::find(lines.begin(), lines.end(),
                                     R"(check button "Combine PDF files into one", checked)"));
}

TEST_F(SettingsAccessibility, NamesTheControlsOfTheCloudSettings) {
    InDialogOf(window_, OB_OPTIONS_CLOUD, [](HWND dialog) {
        EXPECT_EQ((Lines{
                      R"(static text "Links instead of attachments")",
                      R"(radio button "Never send a link")",
                      R"(radio button "Always send a link")",
                      R"(radio button "Send a link when the zip is large", checked)",
                      R"(static text "Larger than (MB):")",
                      R"(spin button "Larger than (MB):")",
                      R"(text "Larger than (MB):")",
                      R"(static text "Accounts")",
                      R"(list "Accounts")",
                      R"(push button "Sign in", disabled)",
                      R"(push button "Sign out", disabled)",
                      R"(push button "Set as default", disabled)",
                      R"(push button "Add account", disabled)",
                      R"(push button "Manage account", disabled)",
                      R"(static text "How long files stay in the cloud")",
                      R"(check button "Delete them after some days")",
                      R"(static text "After (days):")",
                      R"(spin button "After (days):")",
                      R"(text "After (days):")",
                      R"(push button "OK", default)",
                      R"(push button "Cancel")",
                  }),
                  LinesOf(dialog));
        EXPECT_EQ((Lines{"Links instead of attachments: Never send a link, Always send a link, "
                         "Send a link when the zip is large"}),
                  RadioGroupsOf(dialog));
    });
}

TEST_F(SettingsAccessibility, NamesTheControlsOfTheAttachmentSettings) {
    InDialogOf(window_, OB_OPTIONS_ATTACHMENT, [](HWND dialog) {
        EXPECT_EQ(
            (Lines{
                R"(static text "When you attach files")",
                R"(radio button "Zip the files", checked)",
                R"(radio button "Zip and encrypt the files")",
                R"(radio button "Attach without zipping")",
                R"(push button "Encryption method")",
                R"(static text "When you attach a single file")",
                R"(check button "Name the zip after the file", checked)",
                R"(check button "Change it even if it isn't zipped", checked)",
                R"(static text "Makes the automatic changes that are ticked in the settings.")",
                R"(static text "Identical files")",
                R"(check button "Store their content only once")",
                R"(static text "Name of the zip")",
                R"(static text "Name:")",
                R"(text "Name:")",
                R"(static text "Add:")",
                R"(combo box "Add:")",
                R"(static text "Extension of the zip")",
                R"(radio button ".zip, opens everywhere", checked)",
                R"(radio button ".zipx, smaller, for newer programs")",
                R"(check button "Use an extension of your own")",
                R"(static text "Extension:")",
                R"(text "Extension:")",
                R"(static text "Example of the name")",
                R"(static text "Ombrix Compressed Attachments.zip")",
                R"(push button "OK", default)",
                R"(push button "Cancel")",
            }),
            LinesOf(dialog));
        EXPECT_EQ((Lines{"When you attach files: Zip the files, Zip and encrypt the files, "
                         "Attach without zipping",
                         "Extension of the zip: .zip, opens everywhere, "
                         ".zipx, smaller, for newer programs"}),
                  RadioGroupsOf(dialog));
    });
}

TEST_F(SettingsAccessibility, NamesTheControlsOfTheEncryptionMethod) {
    InDialogOf(window_, OB_OPTIONS_ATTACHMENT, [&](HWND attachment) {
        InDialogOf(attachment, OB_ATTACHMENT_ENCRYPTION, [](HWND dialog) {
            EXPECT_EQ((Lines{
                          R"(static text "How zips are encrypted")",
                          R"(static text "Receivers need the password to open a zip.")",
                          R"(radio button "AES, 128 bits", checked)",
                          R"-(radio button "AES, 256 bits (stronger)")-",
                          R"(push button "OK", default)",
                          R"(push button "Cancel")",
                      }),
                      LinesOf(dialog));
            EXPECT_EQ((Lines{"Receivers need the password to open a zip.: AES, 128 bits, "
                             "AES, 256 bits (stronger)"}),
                      RadioGroupsOf(dialog));
        });
    });
}

TEST_F(SettingsAccessibility, NamesTheControlsOfTheUpdateSettings) {
    InDialogOf(window_, OB_OPTIONS_UPDATE, [](HWND dialog) {
        EXPECT_EQ((Lines{
                      R"(static text "Check for updates")",
                      R"(radio button "Never")",
                      R"(radio button "Automatically", checked)",
                      R"(static text "How often:")",
                      R"(combo box "How often:")",
                      R"(push button "Check now")",
                      R"(push button "OK", default)",
                      R"(push button "Cancel")",
                  }),
                  LinesOf(dialog));
        EXPECT_EQ((Lines{"Check for updates: Never, Automatically"}), RadioGroupsOf(dialog));
    });
}

TEST_F(SettingsAccessibility, NamesTheControlsOfTheAboutBox) {
    InDialogOf(window_, OB_OPTIONS_ABOUT, [](HWND dialog) {
        const std::string text = Utf8(ItemText(dialog, OB_ABOUT_VERSION));
        EXPECT_EQ(0u, text.find("Ombrix Vellant "));
        const Lines expected{R"(graphic "")", "static text \"" + text + '"',
                             R"(push button "OK", default)", R"(push button "Help")"};
        EXPECT_EQ(expected, LinesOf(dialog));
    });
}

} // namespace
} // namespace obtest
