#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kPolicies = "SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies";
const std::string kUser = "SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix";
const std::string kQuillet = "Software\\Tavi Ren Computing\\Common\\Quillet";
const std::string kLangs = "SOFTWARE\\Tavi Ren Computing\\Ombrix\\Langs";

Lines Gets(const std::string& key, const Lines& names) {
    Lines lines;
    for (const std::string& name : names) lines.push_back("get " + key + "!" + name + " 510");
    return lines;
}

Lines Joined(const std::vector<Lines>& groups) {
    Lines lines;
    for (const Lines& group : groups) lines.insert(lines.end(), group.begin(), group.end());
    return lines;
}

class OptionsOrder : public OptionsFixture {
protected:
    static Lines RecordedLoading() {
        RegistryRecorder recorder;
        EXPECT_TRUE(recorder.Ok());
        Loaded();
        return recorder.Lines();
    }
};

TEST_F(OptionsOrder, GoesThroughAllKeysAndValuesOnce) {
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, 32);
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, 64);
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kLangsKey);
    const Lines expected = Joined({
        {"trace load options: " + kPolicies},
        {"open machine " + kPolicies + " 32"},
        Gets(kPolicies, {"AlwaysEncrypt"}),
        {"open machine " + kPolicies + " 64"},
        Gets(kPolicies, {"AlwaysEncrypt"}),
        {"open machine " + kPolicies},
        Gets(kPolicies, {"AdminSendItem"}),
        {"create user " + kUser, "trace load options: " + kUser},
        Gets(kUser, {"SendItem", "AutoEncrypt"}),
        Gets(kUser, {"AutoConvertPDF", "AutoCombinePDFs", "AutoResizeImages", "AutoWatermark",
                     "AutoConvertPhotos", "AutoRemoveInfo", "AutoSignPDFs", "AutoConvertFromPDF"}),
        Gets(kUser, {"UseAltExt", "SingleAttachFileName", "SingleAttachConversion",
                     "EncryptionMethod", "CompressionMethod", "DuplicateReferences", "NameAppend",
                     "DefaultZipName", "AltExt", "ExcludedExt"}),
        {"open machine " + kPolicies, "trace load options: " + kPolicies},
        Gets(kPolicies, {"DisableMsgEditZipOption", "DisableCloudServices", "NoEncryption",
                         "NoUpdateChecking", "DisableWebVellant"}),
        {"create user " + kQuillet, "trace load options: " + kQuillet},
        Gets(kQuillet, {"SendSetting", "MinimumSize", "ServiceId"}),
        {"open machine " + kPolicies + " 32"},
        Gets(kPolicies, {"EntX509Certificate"}),
        {"open machine " + kPolicies + " 64"},
        Gets(kPolicies, {"EntX509Certificate"}),
        {"open machine " + kPolicies + " 32"},
        Gets(kPolicies, {"DISABLEFILEEXPIRATION"}),
        {"open machine " + kPolicies + " 64"},
        Gets(kPolicies, {"DISABLEFILEEXPIRATION"}),
        {"create user " + kUser},
        Gets(kUser, {"ExpireFiles", "S4DelExpireDays"}),
        {"open machine " + kLangs, "trace load options: " + kLangs},
        Gets(kLangs, {"InstalledUILangID"}),
    });
    EXPECT_EQ(expected, RecordedLoading());
}

TEST_F(OptionsOrder, TracesOnlyTheKeysThatOpen) {
    const Lines all = RecordedLoading();
    Lines traces;
    for (const std::string& line : all) {
        if (line.starts_with("trace ")) traces.push_back(line);
    }
    EXPECT_EQ(Lines({"trace load options: " + kPolicies, "trace load options: " + kUser,
                     "trace load options: " + kQuillet}),
              traces);
}

TEST_F(OptionsOrder, WritesNothingWhileLoading) {
    RegistryRecorder recorder;
    ASSERT_TRUE(recorder.Ok());
    Loaded();
    EXPECT_TRUE(recorder.LinesThatBeginWith("set ").empty());
}

TEST_F(OptionsOrder, SkipsTheExpiryValuesWhenPolicyTakesExpiryAway) {
    obtest::SetMachinePolicy(L"DISABLEFILEEXPIRATION", L"1");
    const Lines lines = RecordedLoading();
    for (const std::string& line : lines) {
        EXPECT_EQ(std::string::npos, line.find("!ExpireFiles")) << line;
        EXPECT_EQ(std::string::npos, line.find("S4DelExpireDays")) << line;
    }
}

} // namespace
