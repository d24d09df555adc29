#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

using obcore::OBOptions;

LANGID languageOfThread = 0;

LANGID WINAPI AnswerThreadLanguage() { return languageOfThread; }

class OptionsLanguage : public OptionsFixture {
protected:
    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(thread_.Ok());
        languageOfThread = 1031;
    }

    static void Install(const std::wstring& text, int view = 64) {
        obtest::SetValue(HKEY_LOCAL_MACHINE, obtest::kLangsKey, L"InstalledUILangID", text, view);
    }

    static LANGID LoadedLanguage() {
        OBOptions options;
        options.LoadLanguage();
        return options.UILanguage;
    }

private:
    obtest::ImportPatch<decltype(GetThreadUILanguage)> thread_{
        "kernel32.dll", "GetThreadUILanguage", &AnswerThreadLanguage};
};

TEST_F(OptionsLanguage, IsTheInstalledOne) {
    Install(L"1036");
    EXPECT_EQ(1036, LoadedLanguage());
}

TEST_F(OptionsLanguage, IsTheInstalledOneAlsoWhenTheThreadsWouldBeMapped) {
    Install(L"3076");
    EXPECT_EQ(3076, LoadedLanguage());
}

TEST_F(OptionsLanguage, IsTheThreadsWhenNoneIsInstalled) {
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kLangsKey);
    EXPECT_EQ(1031, LoadedLanguage());
    for (const wchar_t* text : {L"", L"0", L"German"}) {
        Install(text);
        EXPECT_EQ(1031, LoadedLanguage()) << text;
    }
}

TEST_F(OptionsLanguage, IsTaiwanForAThreadOfHongKong) {
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kLangsKey);
    languageOfThread = 3076;
    EXPECT_EQ(1028, LoadedLanguage());
    for (const LANGID other : {1028, 2052, 4100, 3075, 3077}) {
        languageOfThread = other;
        EXPECT_EQ(other, LoadedLanguage());
    }
}

TEST_F(OptionsLanguage, StaysWhenTheKeyDoesntOpenAndNothingIsTraced) {
    obtest::ForgetTrace();
    OBOptions options;
    options.UILanguage = 1040;
    options.LoadLanguage();
    EXPECT_EQ(1040, options.UILanguage);
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST_F(OptionsLanguage, IsReadInThePlainView) {
    Install(L"1036", 32);
    EXPECT_EQ(0, LoadedLanguage());
}

TEST_F(OptionsLanguage, NeedsNothingElse) {
    Install(L"1036");
    obtest::ForgetTrace();
    RegistryRecorder recorder;
    ASSERT_TRUE(recorder.Ok());
    EXPECT_EQ(1036, LoadedLanguage());
    const std::string key = "SOFTWARE\\Tavi Ren Computing\\Ombrix\\Langs";
    EXPECT_EQ(std::vector<std::string>({"open machine " + key, "trace load options: " + key,
                                        "get " + key + "!InstalledUILangID 510"}),
              recorder.Lines());
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

TEST_F(OptionsLanguage, ComesWithLoading) {
    Install(L"1036");
    EXPECT_EQ(1036, Loaded().UILanguage);
}

} // namespace
