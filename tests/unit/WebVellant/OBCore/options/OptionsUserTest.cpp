#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

using obcore::NameAppendKind;
using obcore::OBOptions;
using obtest::SetUserValue;

class OptionsOfUser : public OptionsFixture {
protected:
    static void SetQuilletValue(const wchar_t* name, const wchar_t* value) {
        obtest::SetValue(HKEY_CURRENT_USER, obtest::kQuilletKey, name, value);
    }
};

TEST_F(OptionsOfUser, AreTheDefaultsForAUserWithoutKeys) {
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.SendItem);
    EXPECT_FALSE(options.SendItemLocked);
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_TRUE(options.SingleAttachFileName);
    EXPECT_TRUE(options.SingleAttachConversion);
    EXPECT_FALSE(options.UseAltExt);
    EXPECT_FALSE(options.DuplicateReferences);
    EXPECT_EQ(4u, options.EncryptionMethod);
    EXPECT_EQ(8u, options.CompressionMethod);
    EXPECT_EQ(NameAppendKind::None, options.NameAppend);
    EXPECT_EQ(L"", options.AltExt);
    EXPECT_EQ(L"", options.ExcludedExt);
    EXPECT_TRUE(options.UpdateCheckEnabled);
    EXPECT_FALSE(options.NoUpdateChecking);
    EXPECT_FALSE(options.DisableCloudServices);
    EXPECT_EQ(obcore::SendSettingKind::WhenLarger, options.SendSetting);
    EXPECT_EQ(5u, options.MinimumSize);
    EXPECT_EQ(5242880u, options.MinimumSizeBytes);
    EXPECT_EQ(2u, options.ServiceId);
    EXPECT_FALSE(options.HasEntCertificate);
    EXPECT_TRUE(options.ExpireFilesAvailable);
    EXPECT_FALSE(options.ExpireFiles);
    EXPECT_EQ(30u, options.S4DelExpireDays);
    EXPECT_EQ(12u, options.AllowedEncryptMethods);
}

TEST_F(OptionsOfUser, LoseAnAbsentZipNameToTheRepairWhenTheServiceRejectsTheEmptyText) {
    obtest::FakeModules::Answer(L"ValidateFilespecW(\"\", 2)", L"1");
    EXPECT_EQ(L"Ombrix Compressed Attachments", Loaded().DefaultZipName);
}

TEST_F(OptionsOfUser, HaveAnEmptyZipNameWhenTheServiceAcceptsTheEmptyText) {
    EXPECT_EQ(L"", Loaded().DefaultZipName);
}

TEST_F(OptionsOfUser, MakeTheUsersKeysEmptyByLoading) {
    Loaded();
    EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
    EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kQuilletKey));
    EXPECT_TRUE(obtest::ValueNames(HKEY_CURRENT_USER, obtest::kUserKey).empty());
    EXPECT_TRUE(obtest::ValueNames(HKEY_CURRENT_USER, obtest::kQuilletKey).empty());
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kDefaultExtKey));
    for (const int view : {32, 64}) {
        EXPECT_FALSE(obtest::KeyExists(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, view));
        EXPECT_FALSE(obtest::KeyExists(HKEY_LOCAL_MACHINE, obtest::kLangsKey, view));
    }
}

TEST_F(OptionsOfUser, TakeEverySwitchInTheUsersSense) {
    struct Row {
        const wchar_t* value;
        bool OBOptions::*field;
    };
    const Row rows[] = {
        {L"SendItem", &OBOptions::SendItem},
        {L"AutoEncrypt", &OBOptions::AutoEncrypt},
        {L"UseAltExt", &OBOptions::UseAltExt},
        {L"SingleAttachFileName", &OBOptions::SingleAttachFileName},
        {L"SingleAttachConversion", &OBOptions::SingleAttachConversion},
        {L"DuplicateReferences", &OBOptions::DuplicateReferences},
        {L"ExpireFiles", &OBOptions::ExpireFiles},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.value));
        SetUserValue(row.value, L"0");
        EXPECT_FALSE(Loaded().*row.field);
        for (const wchar_t* on : {L"1", L"2", L"true", L" 0"}) {
            SetUserValue(row.value, on);
            EXPECT_TRUE(Loaded().*row.field) << on;
        }
    }
}

TEST_F(OptionsOfUser, TakeAnEmptySwitchForAnAbsentOne) {
    for (const wchar_t* name : {L"SendItem", L"AutoEncrypt", L"SingleAttachConversion"}) {
        SetUserValue(name, L"");
    }
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.SendItem);
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_TRUE(options.SingleAttachConversion);
}

TEST_F(OptionsOfUser, DontLookAtTheTypeOfAValue) {
    const DWORD one = 1; // the text of the character 1, which isn't the digit
    const DWORD digitZero = L'0';
    obtest::SetRawValue(HKEY_CURRENT_USER, obtest::kUserKey, L"AutoEncrypt", REG_DWORD, &one, 4);
    obtest::SetRawValue(HKEY_CURRENT_USER, obtest::kUserKey, L"SendItem", REG_DWORD, &digitZero, 4);
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.AutoEncrypt);
    EXPECT_FALSE(options.SendItem);
}

TEST_F(OptionsOfUser, KeepAnEncryptionMethodThatIsAllowed) {
    SetUserValue(L"EncryptionMethod", L"8");
    EXPECT_EQ(8u, Loaded().EncryptionMethod);
    obtest::FakeModules::Answer(L"AllowedEncryptMethods", L"4");
    EXPECT_EQ(4u, Loaded().EncryptionMethod);
}

TEST_F(OptionsOfUser, FallBackToTheStandardEncryptionMethodWhenTheValueIsAbsent) {
    OBOptions options;
    options.EncryptionMethod = 8;
    options.Load();
    EXPECT_EQ(4u, options.EncryptionMethod);
}

TEST_F(OptionsOfUser, KnowTwoCompressionMethods) {
    const std::pair<const wchar_t*, std::uint32_t> rows[] = {
        {L"8", 8}, {L"-1", 0xFFFFFFFF}, {L"12", 8}, {L"0", 8}, {L"", 8}, {L"zipx", 8},
    };
    for (const auto& [text, method] : rows) {
        SetUserValue(L"CompressionMethod", text);
        EXPECT_EQ(method, Loaded().CompressionMethod) << text;
    }
}

TEST_F(OptionsOfUser, KnowFiveAppendicesByTheirExactTexts) {
    const std::pair<const wchar_t*, std::uint32_t> rows[] = {
        {L"none", 0},     {L"dateyy", 1}, {L"dateyyyy", 2}, {L"time", 3},
        {L"datetime", 4}, {L"Time", 0},   {L"time ", 0},    {L"3", 0},
    };
    for (const auto& [text, kind] : rows) {
        SetUserValue(L"NameAppend", text);
        EXPECT_EQ(kind, static_cast<std::uint32_t>(Loaded().NameAppend)) << text;
    }
}

TEST_F(OptionsOfUser, KeepTheAppendixWhenTheTextIsUnknown) {
    OBOptions options;
    options.NameAppend = NameAppendKind::Time;
    SetUserValue(L"NameAppend", L"whenever");
    options.Load();
    EXPECT_EQ(NameAppendKind::Time, options.NameAppend);
    SetUserValue(L"NameAppend", L"none");
    options.Load();
    EXPECT_EQ(NameAppendKind::None, options.NameAppend);
}

TEST_F(OptionsOfUser, ReadThreeTextsStraightIntoTheirFields) {
    SetUserValue(L"DefaultZipName", L"My files");
    SetUserValue(L"AltExt", L"piz");
    SetUserValue(L"ExcludedExt", L"a;b");
    const OBOptions options = Loaded();
    EXPECT_EQ(L"My files", options.DefaultZipName);
    EXPECT_EQ(L"piz", options.AltExt);
    EXPECT_EQ(L"a;b", options.ExcludedExt);
}

TEST_F(OptionsOfUser, EmptyATextFieldWhoseValueIsAbsent) {
    OBOptions options;
    options.AltExt = L"old";
    options.ExcludedExt = L"old";
    options.Load();
    EXPECT_EQ(L"", options.AltExt);
    EXPECT_EQ(L"", options.ExcludedExt);
}

TEST_F(OptionsOfUser, TakeTheCloudNumbers) {
    SetQuilletValue(L"SendSetting", L"1");
    SetQuilletValue(L"MinimumSize", L"25");
    SetQuilletValue(L"ServiceId", L"77");
    const OBOptions options = Loaded();
    EXPECT_EQ(obcore::SendSettingKind::Always, options.SendSetting);
    EXPECT_EQ(25u, options.MinimumSize);
    EXPECT_EQ(25u << 20, options.MinimumSizeBytes);
    EXPECT_EQ(77u, options.ServiceId);
}

TEST_F(OptionsOfUser, WrapTheMinimumSizeInThirtyTwoBits) {
    const std::pair<const wchar_t*, std::uint32_t> rows[] = {
        {L"4096", 0}, {L"2048", 0x80000000}, {L"4097", 0x100000}, {L"0", 0}, {L"-1", 0xFFF00000},
    };
    for (const auto& [text, bytes] : rows) {
        SetQuilletValue(L"MinimumSize", text);
        EXPECT_EQ(bytes, Loaded().MinimumSizeBytes) << text;
    }
}

TEST_F(OptionsOfUser, ComputeTheBytesAlsoWhenNothingWasRead) {
    OBOptions options;
    options.MinimumSize = 9;
    options.Load();
    EXPECT_EQ(9u << 20, options.MinimumSizeBytes);
}

TEST_F(OptionsOfUser, LeaveTheCloudNumbersWhenTheirKeyDoesntOpen) {
    SetQuilletValue(L"MinimumSize", L"25");
    RegistryRecorder recorder;
    ASSERT_TRUE(recorder.Ok());
    recorder.Fail(obtest::kQuilletKey);
    OBOptions options;
    options.MinimumSize = 9;
    options.Load();
    EXPECT_EQ(9u, options.MinimumSize);
    EXPECT_EQ(0x500000u, options.MinimumSizeBytes);
}

TEST_F(OptionsOfUser, LeaveTheirGroupWhenTheKeyDoesntOpen) {
    obtest::SetMachinePolicy(L"AlwaysEncrypt", L"1");
    obtest::SetMachinePolicy(L"AdminSendItem", L"4");
    SetUserValue(L"SendItem", L"0");
    SetUserValue(L"ExpireFiles", L"1");
    SetUserValue(L"S4DelExpireDays", L"7");
    RegistryRecorder recorder;
    ASSERT_TRUE(recorder.Ok());
    recorder.Fail(obtest::kUserKey);
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.SendItem);
    EXPECT_FALSE(options.SendItemLocked);
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_FALSE(options.SingleAttachConversion);
    EXPECT_EQ(L"Ombrix Compressed Attachments", options.DefaultZipName);
    EXPECT_TRUE(options.AlwaysEncrypt);
    EXPECT_TRUE(options.ExpireFilesAvailable);
    EXPECT_FALSE(options.ExpireFiles);
    EXPECT_EQ(30u, options.S4DelExpireDays);
}

TEST_F(OptionsOfUser, TakeTheDaysUntilExpiry) {
    SetUserValue(L"S4DelExpireDays", L"7");
    EXPECT_EQ(7u, Loaded().S4DelExpireDays);
}

TEST_F(OptionsOfUser, NeverTakeUpdateChecksFromTheRegistry) {
    SetUserValue(L"UpdateCheckEnabled", L"0");
    SetUserValue(L"UpdateCheckIntervalDays", L"7");
    SetUserValue(L"LastUpdateCheck", L"1/2/2026");
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.UpdateCheckEnabled);
    EXPECT_EQ(1u, options.UpdateCheckIntervalDays);
    EXPECT_EQ(L"", options.LastUpdateCheck);
}

} // namespace
