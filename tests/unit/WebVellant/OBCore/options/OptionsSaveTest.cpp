#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

using obcore::NameAppendKind;
using obcore::OBOptions;
using obtest::FakeModules;

using Lines = std::vector<std::string>;

const std::string kUser = "SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix";
const std::string kQuillet = "Software\\Tavi Ren Computing\\Common\\Quillet";
const std::string kDefaultExt = "SOFTWARE\\Tavi Ren Computing\\Common\\DefaultExt";

Lines SetsIn(const std::string& key, const Lines& values) {
    Lines lines;
    for (const std::string& value : values) lines.push_back("set " + key + "!" + value + "|");
    return lines;
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class OptionsSaving : public OptionsFixture {
protected:
    static OBOptions Sound() {
        OBOptions options;
        options.AllowedEncryptMethods = 12;
        return options;
    }

    // What the registry is asked for by one of the saves.
    template <class Save>
    static Lines Recorded(OBOptions& options, Save save, const wchar_t* failing = L"") {
        RegistryRecorder recorder;
        EXPECT_TRUE(recorder.Ok());
        recorder.Fail(failing);
        (options.*save)();
        return recorder.Lines();
    }
};

TEST_F(OptionsSaving, WritesAttachmentSettingsInTheirOrder) {
    OBOptions options = Sound();
    options.SingleAttachConversion = true;
    options.NameAppend = NameAppendKind::DateYyyy;
    EXPECT_EQ(
        Lines({"create user " + kUser}) +
            SetsIn(kUser, {"SendItem=1", "AutoEncrypt=0", "UseAltExt=0", "SingleAttachFileName=1",
                           "SingleAttachConversion=1", "CompressionMethod=8",
                           "DuplicateReferences=0", "DefaultZipName=Ombrix Compressed Attachments",
                           "AltExt=", "ExcludedExt=", "NameAppend=dateyyyy"}) +
            Lines({"create user " + kDefaultExt}) + SetsIn(kDefaultExt, {"ZipFiles=zip"}),
        Recorded(options, &OBOptions::SaveAttachmentSettings));
}

TEST_F(OptionsSaving, WritesTheOtherTextsOfAttachmentSettings) {
    OBOptions options = Sound();
    options.SendItem = false;
    options.AutoEncrypt = true;
    options.UseAltExt = true;
    options.AltExt = L"piz";
    options.ExcludedExt = L"abc";
    options.SingleAttachFileName = false;
    options.CompressionMethod = 0xFFFFFFFF;
    options.DuplicateReferences = true;
    options.DefaultZipName = L"Files";
    EXPECT_EQ(
        Lines({"create user " + kUser}) +
            SetsIn(kUser, {"SendItem=0", "AutoEncrypt=1", "UseAltExt=1", "SingleAttachFileName=0",
                           "SingleAttachConversion=0", "CompressionMethod=-1",
                           "DuplicateReferences=1", "DefaultZipName=Files", "AltExt=piz",
                           "ExcludedExt=abc;piz", "NameAppend=none"}) +
            Lines({"create user " + kDefaultExt}) + SetsIn(kDefaultExt, {"ZipFiles=piz"}),
        Recorded(options, &OBOptions::SaveAttachmentSettings));
    EXPECT_EQ(L"abc;piz", options.ExcludedExt);
}

TEST_F(OptionsSaving, ReadsBackWhatItWrote) {
    OBOptions options = Sound();
    options.SendItem = false;
    options.CompressionMethod = 0xFFFFFFFF;
    options.DefaultZipName = L"\u0160koda \u20ac";
    options.NameAppend = NameAppendKind::DateTime;
    options.SaveAttachmentSettings();
    const OBOptions loaded = Loaded();
    EXPECT_FALSE(loaded.SendItem);
    EXPECT_FALSE(loaded.SingleAttachConversion);
    EXPECT_EQ(0xFFFFFFFFu, loaded.CompressionMethod);
    EXPECT_EQ(L"\u0160koda \u20ac", loaded.DefaultZipName);
    EXPECT_EQ(NameAppendKind::DateTime, loaded.NameAppend);
}

TEST_F(OptionsSaving, ExcludesTheAlternativeExtensionOnce) {
    struct Row {
        bool used;
        const wchar_t* extension;
        const wchar_t* before;
        const wchar_t* after;
    };
    const Row rows[] = {
        {true, L"piz", L"", L";piz"},
        {true, L"piz", L"a;b", L"a;b;piz"},
        {true, L"piz", L"a; PIZ ;b", L"a; PIZ ;b"},
        {true, L"piz", L"pizza", L"pizza;piz"},
        {true, L"", L"a", L"a"},
        {false, L"piz", L"a", L"a"},
    };
    for (const Row& row : rows) {
        OBOptions options = Sound();
        options.UseAltExt = row.used;
        options.AltExt = row.extension;
        options.ExcludedExt = row.before;
        options.SaveAttachmentSettings();
        EXPECT_EQ(row.after, options.ExcludedExt);
        EXPECT_EQ(row.after, obtest::ReadUserValue(L"ExcludedExt"));
    }
}

TEST_F(OptionsSaving, WritesTheFiveAppendicesAndNothingElse) {
    const wchar_t* texts[] = {L"none", L"dateyy", L"dateyyyy", L"time", L"datetime"};
    for (std::uint32_t kind = 0; kind < 5; ++kind) {
        OBOptions options = Sound();
        options.NameAppend = static_cast<NameAppendKind>(kind);
        options.SaveAttachmentSettings();
        EXPECT_EQ(texts[kind], obtest::ReadUserValue(L"NameAppend"));
    }
    OBOptions options = Sound();
    options.NameAppend = static_cast<NameAppendKind>(5);
    options.SaveAttachmentSettings();
    EXPECT_EQ(L"datetime", obtest::ReadUserValue(L"NameAppend"));
}

TEST_F(OptionsSaving, StoresTheExtensionForOtherPrograms) {
    struct Row {
        bool used;
        std::uint32_t method;
        const wchar_t* text;
    };
    const Row rows[] = {
        {false, 8, L"zip"},
        {false, 0xFFFFFFFF, L"zipx"},
        {true, 8, L"piz"},
        {true, 0xFFFFFFFF, L"piz"},
    };
    for (const Row& row : rows) {
        OBOptions options = Sound();
        options.UseAltExt = row.used;
        options.AltExt = L"piz";
        options.CompressionMethod = row.method;
        options.SaveAttachmentSettings();
        EXPECT_EQ(row.text,
                  obtest::ReadValue(HKEY_CURRENT_USER, obtest::kDefaultExtKey, L"ZipFiles"));
    }
}

TEST_F(OptionsSaving, RepairsBeforeItWritesAttachmentSettings) {
    FakeModules::Answer(L"ValidateFilespecW(\"p?z\", 4)", L"1");
    OBOptions options = Sound();
    options.UseAltExt = true;
    options.AltExt = L"p?z";
    options.CompressionMethod = 12;
    options.SaveAttachmentSettings();
    EXPECT_EQ(L"0", obtest::ReadUserValue(L"UseAltExt"));
    EXPECT_EQ(L"p?z", obtest::ReadUserValue(L"AltExt"));
    EXPECT_EQ(L"", obtest::ReadUserValue(L"ExcludedExt"));
    EXPECT_EQ(L"8", obtest::ReadUserValue(L"CompressionMethod"));
    EXPECT_EQ(L"zip", obtest::ReadValue(HKEY_CURRENT_USER, obtest::kDefaultExtKey, L"ZipFiles"));
}

TEST_F(OptionsSaving, WritesTransformsInTheirOrder) {
    OBOptions options = Sound();
    options.AutoCombinePDFs = true;
    options.AutoRemoveInfo = true;
    EXPECT_EQ(Lines({"create user " + kUser}) +
                  SetsIn(kUser, {"AutoConvertPDF=0", "AutoCombinePDFs=1", "AutoResizeImages=0",
                                 "AutoWatermark=0", "AutoConvertPhotos=0", "AutoRemoveInfo=1",
                                 "AutoSignPDFs=0", "AutoConvertFromPDF=0"}),
              Recorded(options, &OBOptions::SaveAutoTransforms));
    EXPECT_EQ(1u, FakeModules::CallsOf({L"ValidateFilespecW"}).size());
}

TEST_F(OptionsSaving, WritesCloudSettingsWithExpiryWhereItIsOffered) {
    OBOptions options;
    options.ExpireFilesAvailable = true;
    options.ExpireFiles = true;
    options.S4DelExpireDays = 14;
    options.SendSetting = obcore::SendSettingKind::Always;
    options.MinimumSize = 4096;
    EXPECT_EQ(Lines({"create user " + kUser}) +
                  SetsIn(kUser, {"ExpireFiles=1", "S4DelExpireDays=14"}) +
                  Lines({"create user " + kQuillet}) +
                  SetsIn(kQuillet, {"SendSetting=1", "MinimumSize=4096", "ServiceId=2"}),
              Recorded(options, &OBOptions::SaveCloudSettings));
}

TEST_F(OptionsSaving, WritesCloudSettingsWithoutExpiryWhereItIsTakenAway) {
    OBOptions options;
    options.ExpireFiles = true;
    EXPECT_EQ(Lines({"create user " + kQuillet}) +
                  SetsIn(kQuillet, {"SendSetting=2", "MinimumSize=5", "ServiceId=2"}),
              Recorded(options, &OBOptions::SaveCloudSettings));
}

TEST_F(OptionsSaving, WritesCloudSettingsWithoutRepair) {
    OBOptions options;
    options.SaveCloudSettings();
    EXPECT_TRUE(FakeModules::Calls().empty());
}

TEST_F(OptionsSaving, WritesTheEncryptionMethodAfterARepair) {
    OBOptions options = Sound();
    options.EncryptionMethod = 8;
    EXPECT_EQ(Lines({"create user " + kUser}) + SetsIn(kUser, {"EncryptionMethod=8"}),
              Recorded(options, &OBOptions::SaveEncryptionMethod));
    options.EncryptionMethod = 1;
    options.SaveEncryptionMethod();
    EXPECT_EQ(L"4", obtest::ReadUserValue(L"EncryptionMethod"));
}

TEST_F(OptionsSaving, SkipsAGroupWhoseKeyDoesntOpen) {
    OBOptions options = Sound();
    options.ExpireFilesAvailable = true;
    EXPECT_EQ(Lines({"create user " + kUser + " fails", "create user " + kDefaultExt}) +
                  SetsIn(kDefaultExt, {"ZipFiles=zip"}),
              Recorded(options, &OBOptions::SaveAttachmentSettings, obtest::kUserKey));
    EXPECT_EQ(Lines({"create user " + kUser + " fails"}),
              Recorded(options, &OBOptions::SaveAutoTransforms, obtest::kUserKey));
    EXPECT_EQ(Lines({"create user " + kUser + " fails"}),
              Recorded(options, &OBOptions::SaveEncryptionMethod, obtest::kUserKey));
    EXPECT_EQ(Lines({"create user " + kUser}) +
                  SetsIn(kUser, {"ExpireFiles=0", "S4DelExpireDays=30"}) +
                  Lines({"create user " + kQuillet + " fails"}),
              Recorded(options, &OBOptions::SaveCloudSettings, obtest::kQuilletKey));
}

TEST_F(OptionsSaving, NeverWritesUpdateChecksOrPolicies) {
    OBOptions options = Sound();
    options.UpdateCheckIntervalDays = 7;
    options.AlwaysEncrypt = true;
    options.SaveAttachmentSettings();
    options.SaveAutoTransforms();
    options.SaveCloudSettings();
    options.SaveEncryptionMethod();
    for (const wchar_t* name : {L"UpdateCheckEnabled", L"UpdateCheckIntervalDays",
                                L"LastUpdateCheck", L"AlwaysEncrypt"}) {
        EXPECT_FALSE(obtest::ReadUserValue(name)) << name;
    }
    EXPECT_FALSE(obtest::KeyExists(HKEY_LOCAL_MACHINE, obtest::kPolicyKey));
}

} // namespace
