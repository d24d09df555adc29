// How the settings are opened: manager, options, language, template, and what is saved.
#include "OBCore/settings/ConfigurationEntry.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;
using testing::ElementsAre;

constexpr int kOk = 8;
constexpr int kWatermarkBox = 1018;

// The languages that the thread was given, in order.
Lines languages;
std::wstring threadLanguage;

BOOL WINAPI RecordLanguage(DWORD flags, const wchar_t* list, ULONG*) {
    EXPECT_EQ(DWORD{MUI_LANGUAGE_ID}, flags);
    threadLanguage = list;
    languages.push_back(threadLanguage);
    return TRUE;
}

BOOL WINAPI ReportLanguage(DWORD, ULONG* count, wchar_t* list, ULONG* size) {
    *count = 1;
    std::wcscpy(list, threadLanguage.c_str());
    *size = static_cast<ULONG>(threadLanguage.size() + 2);
    return TRUE;
}

class ConfigurationEntry : public obtest::OptionsFixture {
protected:
    ConfigurationEntry()
        : set_("kernel32.dll", "SetThreadPreferredUILanguages", &RecordLanguage),
          get_("kernel32.dll", "GetThreadPreferredUILanguages", &ReportLanguage) {}

    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(set_.Ok() && get_.Ok());
        languages.clear();
        threadLanguage = L"040a";
        obtest::ForgetTrace();
    }
    static void Configure(const std::function<void(const OpenDialog&)>& use,
                          HWND parent = nullptr) {
        Operate(
            OB_OPTIONS_CONVERT_FROM_PDF,
            [parent]() -> INT_PTR {
                obcore::ShowConfiguration(parent);
                return 0;
            },
            use);
    }
    static void Cancel(const OpenDialog& dialog) { dialog.Press(IDCANCEL); }
    // The lines of the trace about a dialog that wasn't ended by OK.
    static std::vector<std::string> EndLines() {
        std::vector<std::string> lines = obtest::TraceLines();
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("DialogBoxParam return: ");
        });
        return lines;
    }
    static Lines ManagersLife() {
        return FakeModules::CallsOf(
            {L"CreateObExtensionsManager", L"Init", L"Deinit", L"DeleteObExtensionsManager"});
    }
    static void ExpectWholeLife() {
        EXPECT_THAT(ManagersLife(),
                    ElementsAre(L"CreateObExtensionsManager()", InitCall(), L"Deinit(manager)",
                                L"DeleteObExtensionsManager(manager)"));
    }
    static std::wstring QuestionOf(HWND parent) {
        return L"TryToShowWarningOrErrorMessage(" +
               std::to_wstring(reinterpret_cast<INT_PTR>(parent)) + L", 0, 1)";
    }
    static ObLib::UniqueWindow MakeParent() {
        return ObLib::UniqueWindow(CreateWindowExW(0, L"Static", L"", WS_OVERLAPPEDWINDOW, 0, 0,
                                                   200, 200, nullptr, nullptr, nullptr, nullptr));
    }
    static std::wstring InitCall() {
        return L"Init(manager, " +
               std::to_wstring(reinterpret_cast<std::int64_t>(HKEY_CURRENT_USER)) +
               L", \"Software\\Tavi Ren Computing\\Ombrix\\PVX\")";
    }

    obtest::ImportPatch<decltype(&SetThreadPreferredUILanguages)> set_;
    obtest::ImportPatch<decltype(&GetThreadPreferredUILanguages)> get_;
};

TEST_F(ConfigurationEntry, HasAManagerFromTheLoadToTheEnd) {
    obtest::SetUserValue(L"AutoWatermark", L"1");
    Configure([](const OpenDialog& dialog) {
        // The load asks what the manager supports, so that it is initialised by then.
        EXPECT_TRUE(dialog.IsChecked(kWatermarkBox));
        EXPECT_THAT(ManagersLife(), ElementsAre(L"CreateObExtensionsManager()", InitCall()));
        Cancel(dialog);
    });
    ExpectWholeLife();
}

TEST_F(ConfigurationEntry, ShowsTheSettingsWithoutAManagerToo) {
    Answer(L"CreateObExtensionsManager", L"0");
    Configure([](const OpenDialog& dialog) {
        EXPECT_FALSE(dialog.IsEnabled(kWatermarkBox));
        Cancel(dialog);
    });
    EXPECT_THAT(ManagersLife(), ElementsAre(L"CreateObExtensionsManager()"));
}

TEST_F(ConfigurationEntry, SavesTheTransformsAfterOkAndNothingElse) {
    obtest::SetUserValue(L"SendItem", L"0");
    Configure([](const OpenDialog& dialog) {
        dialog.Press(kWatermarkBox);
        dialog.Press(kOk);
    });
    EXPECT_EQ(L"1", obtest::ReadUserValue(L"AutoWatermark"));
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"AutoConvertPDF"));
    constexpr std::size_t kSaved = 8; // one for each transform
    EXPECT_EQ(kSaved + 1, obtest::ValueNames(HKEY_CURRENT_USER, obtest::kUserKey).size())
        << "what was there before is the only other one";
    EXPECT_EQ(Lines(), obtest::ValueNames(HKEY_CURRENT_USER, obtest::kQuilletKey));
    EXPECT_EQ(std::vector<std::string>(), EndLines());
    ExpectWholeLife();
}

TEST_F(ConfigurationEntry, SavesNothingAfterACancelAndTracesTheLastError) {
    const std::function<void(const OpenDialog&)> ways[] = {
        &Cancel, [](const OpenDialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); }};
    for (const auto& way : ways) {
        obtest::ForgetTrace();
        Configure([&](const OpenDialog& dialog) {
            dialog.Press(kWatermarkBox);
            way(dialog);
            EXPECT_TRUE(obtest::WaitUntilClosed(dialog.window));
        });
        EXPECT_EQ(Lines(), obtest::ValueNames(HKEY_CURRENT_USER, obtest::kUserKey));
        EXPECT_EQ(1u, EndLines().size());
    }
}

TEST_F(ConfigurationEntry, GivesTheThreadTheLanguageOfTheOptionsAndItsOwnBack) {
    obtest::SetValue(HKEY_LOCAL_MACHINE, obtest::kLangsKey, L"InstalledUILangID", L"1031");
    ASSERT_EQ(1031, Loaded().UILanguage);
    const std::wstring chosen = L"0407";
    for (const int end : {kOk, IDCANCEL}) {
        languages.clear();
        Configure([&](const OpenDialog& dialog) {
            EXPECT_EQ(Lines{chosen}, languages);
            dialog.Press(end);
        });
        EXPECT_EQ((Lines{chosen, L"040a"}), languages) << end;
    }
}

TEST_F(ConfigurationEntry, ClearsTheThreadsLanguageForOptionsWithoutOne) {
    ASSERT_EQ(0, Loaded().UILanguage);
    Configure(&Cancel);
    EXPECT_EQ((Lines{L"", L"040a"}), languages);
}

decltype(&RegSetValueExW) realSave = nullptr;
Lines languagesOfSaves;
Lines endsBeforeSaves; // what the manager had been told of its end by then

LSTATUS WINAPI RecordSave(HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                          const BYTE* data, DWORD bytes) {
    languagesOfSaves.push_back(threadLanguage);
    for (const std::wstring& call : FakeModules::CallsOf({L"Deinit"})) {
        endsBeforeSaves.push_back(call);
    }
    return realSave(key, name, reserved, type, data, bytes);
}

TEST_F(ConfigurationEntry, PutsTheLanguageBackBeforeItSavesAndSavesBeforeTheManagerEnds) {
    const obtest::ImportPatch<decltype(&RegSetValueExW)> save("advapi32.dll", "RegSetValueExW",
                                                              &RecordSave);
    ASSERT_TRUE(save.Ok());
    realSave = save.Real();
    languagesOfSaves.clear();
    endsBeforeSaves.clear();
    Configure([](const OpenDialog& dialog) {
        EXPECT_EQ(L"", threadLanguage);
        dialog.Press(kOk);
    });
    EXPECT_EQ(Lines(8, L"040a"), languagesOfSaves);
    EXPECT_EQ(Lines(), endsBeforeSaves);
    ExpectWholeLife();
}

HRSRC WINAPI FailToFind(HMODULE, const wchar_t*, const wchar_t*) {
    throw std::runtime_error("no memory");
}

TEST_F(ConfigurationEntry, PutsTheLanguageBackAndEndsTheManagerAfterAnException) {
    const obtest::ImportPatch<decltype(&FindResourceW)> find("kernel32.dll", "FindResourceW",
                                                             &FailToFind);
    ASSERT_TRUE(find.Ok());
    EXPECT_THROW(obcore::ShowConfiguration(nullptr), std::runtime_error);
    EXPECT_EQ((Lines{L"", L"040a"}), languages);
    ExpectWholeLife();
    EXPECT_EQ(Lines(), obtest::ValueNames(HKEY_CURRENT_USER, obtest::kUserKey));
}

TEST_F(ConfigurationEntry, HasTheToolkitFindItsResourcesInTheTexts) {
    ObLib::AppGlobals().languageModule = nullptr;
    Configure([](const OpenDialog& dialog) {
        EXPECT_EQ(obcore::ResourceModule(), ObLib::AppGlobals().languageModule);
        Cancel(dialog);
    });
}

Lines EncryptionQuestions() { return FakeModules::CallsOf({L"TryToShowWarningOrErrorMessage"}); }

TEST_F(ConfigurationEntry, AsksAboutEncryptionOnlyWhereItIsOnAndPossible) {
    const struct {
        const wchar_t* autoEncrypt;
        const wchar_t* methods;
        const wchar_t* noEncryption;
        bool isAsked;
    } cases[] = {{L"1", L"12", L"0", true},
                 {L"0", L"12", L"0", false},
                 {L"1", L"0", L"0", false},
                 {L"1", L"12", L"1", false}};
    for (const auto& one : cases) {
        obtest::SetUserValue(L"AutoEncrypt", one.autoEncrypt);
        Answer(L"AllowedEncryptMethods", one.methods);
        obtest::SetMachinePolicy(L"NoEncryption", one.noEncryption);
        FakeModules::ForgetCalls();
        Configure(&Cancel);
        const Lines asked = one.isAsked ? Lines{QuestionOf(nullptr)} : Lines();
        EXPECT_EQ(asked, EncryptionQuestions()) << one.autoEncrypt << one.methods;
    }
}

TEST_F(ConfigurationEntry, AsksAboutEncryptionOverItsParent) {
    obtest::SetUserValue(L"AutoEncrypt", L"1");
    Answer(L"AllowedEncryptMethods", L"12");
    const ObLib::UniqueWindow parent = MakeParent();
    Configure(&Cancel, parent.Get());
    EXPECT_EQ(Lines{QuestionOf(parent.Get())}, EncryptionQuestions());
}

// Whether the page of attachments, which is opened for it, has encryption on.
bool IsEncryptionOn(const OpenDialog& dialog) {
    PostMessageW(dialog.window, WM_COMMAND, OB_OPTIONS_ATTACHMENT, 0);
    const auto isPage = [&](HWND window) {
        return GetWindow(window, GW_OWNER) == dialog.window && GetDlgItem(window, 1009) != nullptr;
    };
    const OpenDialog page{obtest::WaitForTopWindow(isPage, GetCurrentProcessId())};
    EXPECT_NE(nullptr, page.window);
    EXPECT_EQ(1u, page.Checked({1008, 1009, 1010}).size());
    const bool isOn = page.IsChecked(1009);
    page.Cancel();
    EXPECT_TRUE(obtest::WaitUntilClosed(page.window));
    return isOn;
}

TEST_F(ConfigurationEntry, SwitchesEncryptionOffForTheRunAfterARefusalAndSavesItNot) {
    obtest::SetUserValue(L"AutoEncrypt", L"1");
    Answer(L"AllowedEncryptMethods", L"12");
    for (const auto& [answer, isOn] :
         {std::pair(L"1", true), {L"2", false}, {L"65538", false}, {L"131073", true}}) {
        Answer(L"TryToShowWarningOrErrorMessage", answer);
        Configure([&](const OpenDialog& dialog) {
            EXPECT_EQ(isOn, IsEncryptionOn(dialog)) << testing::PrintToString(answer);
            dialog.Press(kOk);
        });
        EXPECT_EQ(L"1", obtest::ReadUserValue(L"AutoEncrypt"));
    }
}

int screenDpi = 96;
decltype(&GetDeviceCaps) realCaps = nullptr;

int WINAPI ReportDpi(HDC dc, int index) {
    return index == LOGPIXELSX || index == LOGPIXELSY ? screenDpi : realCaps(dc, index);
}

// Ids of the templates that were looked for.
std::vector<int> templates;
decltype(&FindResourceW) realFind = nullptr;

HRSRC WINAPI RecordTemplate(HMODULE module, const wchar_t* name, const wchar_t* type) {
    if (type == RT_DIALOG) templates.push_back(static_cast<int>(reinterpret_cast<INT_PTR>(name)));
    return realFind(module, name, type);
}

TEST_F(ConfigurationEntry, TakesTheLargeTemplateFrom144DotsPerInchOn) {
    const obtest::ImportPatch<decltype(&GetDeviceCaps)> caps("gdi32.dll", "GetDeviceCaps",
                                                             &ReportDpi);
    const obtest::ImportPatch<decltype(&FindResourceW)> find("kernel32.dll", "FindResourceW",
                                                             &RecordTemplate);
    ASSERT_TRUE(caps.Ok() && find.Ok());
    realCaps = caps.Real();
    realFind = find.Real();
    for (const auto& [dpi, id] : {std::pair(96, 102), {143, 102}, {144, 103}, {192, 103}}) {
        screenDpi = dpi;
        templates.clear();
        Configure(&Cancel);
        ASSERT_FALSE(templates.empty());
        EXPECT_EQ(id, templates.front()) << dpi;
    }
}

HRSRC WINAPI FindNothing(HMODULE, const wchar_t*, const wchar_t*) { return nullptr; }

TEST_F(ConfigurationEntry, EndsTheProcessWithoutItsTemplate) {
    const obtest::ImportPatch<decltype(&FindResourceW)> find("kernel32.dll", "FindResourceW",
                                                             &FindNothing);
    const auto noDialog = [](HINSTANCE, const wchar_t*, HWND, DLGPROC, LPARAM) -> INT_PTR {
        return -1;
    };
    const obtest::ImportPatch<decltype(&DialogBoxParamW)> box("user32.dll", "DialogBoxParamW",
                                                              +noDialog);
    ASSERT_TRUE(find.Ok() && box.Ok());
    EXPECT_FATAL(obcore::ShowConfiguration(nullptr), "ObXDlg.cpp");
}

TEST_F(ConfigurationEntry, BelongsToAParentThatIsShown) {
    const ObLib::UniqueWindow parent = MakeParent();
    Configure(
        [](const OpenDialog& dialog) {
            EXPECT_EQ(nullptr, GetWindow(dialog.window, GW_OWNER));
            Cancel(dialog);
        },
        parent.Get());
    ShowWindow(parent.Get(), SW_SHOW);
    Configure(
        [&](const OpenDialog& dialog) {
            EXPECT_EQ(parent.Get(), GetWindow(dialog.window, GW_OWNER));
            EXPECT_FALSE(IsWindowEnabled(parent.Get()));
            Cancel(dialog);
        },
        parent.Get());
    EXPECT_TRUE(IsWindowEnabled(parent.Get()));
}

INT_PTR endsWith = 0;

INT_PTR WINAPI EndAtOnce(HINSTANCE, const wchar_t*, HWND, DLGPROC, LPARAM) { return endsWith; }
INT_PTR WINAPI EndTemplateAtOnce(HINSTANCE, const DLGTEMPLATE*, HWND, DLGPROC, LPARAM) {
    return endsWith;
}

TEST_F(ConfigurationEntry, SavesNothingForAnyOtherEndThanOk) {
    const obtest::ImportPatch<decltype(&DialogBoxParamW)> box("user32.dll", "DialogBoxParamW",
                                                              &EndAtOnce);
    const obtest::ImportPatch<decltype(&DialogBoxIndirectParamW)> indirect(
        "user32.dll", "DialogBoxIndirectParamW", &EndTemplateAtOnce);
    ASSERT_TRUE(box.Ok() && indirect.Ok());
    for (const INT_PTR end : {0, 3, 8}) { // 0 is that of a window whose owner goes
        endsWith = end;
        obtest::ForgetTrace();
        FakeModules::ForgetCalls();
        obcore::ShowConfiguration(nullptr);
        EXPECT_EQ(Lines(), obtest::ValueNames(HKEY_CURRENT_USER, obtest::kUserKey)) << end;
        EXPECT_EQ(1u, EndLines().size()) << end;
        ExpectWholeLife();
    }
}

TEST_F(ConfigurationEntry, OpensAlsoOverAParentThatHasGone) {
    Configure(&Cancel, reinterpret_cast<HWND>(INT_PTR{0x7FFE}));
    ExpectWholeLife();
}

} // namespace
