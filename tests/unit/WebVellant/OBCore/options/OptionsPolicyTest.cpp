#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

using obcore::AdminSendItemKind;
using obcore::OBOptions;
using obtest::FakeModules;
using obtest::SetMachinePolicy;
using obtest::SetUserValue;

class OptionsOfPolicy : public OptionsFixture {};

TEST_F(OptionsOfPolicy, CompelEncryptionFromEitherView) {
    for (const int view : {32, 64}) {
        obtest::ClearProductRegistry();
        SetMachinePolicy(L"AlwaysEncrypt", L"1", view);
        const OBOptions options = Loaded();
        EXPECT_TRUE(options.AlwaysEncrypt) << view;
        EXPECT_TRUE(options.AutoEncrypt) << view;
    }
}

TEST_F(OptionsOfPolicy, KeepEncryptionCompelledWhenTheOtherViewHasItOff) {
    SetMachinePolicy(L"AlwaysEncrypt", L"1", 32);
    SetMachinePolicy(L"AlwaysEncrypt", L"0", 64);
    EXPECT_TRUE(Loaded().AlwaysEncrypt);
}

TEST_F(OptionsOfPolicy, CompelEncryptionOnlyByTheExactText) {
    for (const wchar_t* text : {L" 1", L"true", L"2", L"0", L"", L"01"}) {
        SetMachinePolicy(L"AlwaysEncrypt", text);
        EXPECT_FALSE(Loaded().AlwaysEncrypt) << text;
    }
}

TEST_F(OptionsOfPolicy, DontLookAtTheTypeOfAValue) {
    const DWORD number = 1;
    obtest::SetRawValue(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, L"AlwaysEncrypt", REG_DWORD,
                        &number, sizeof(number));
    EXPECT_FALSE(Loaded().AlwaysEncrypt);
    obtest::SetRawValue(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, L"AlwaysEncrypt", REG_BINARY, L"1",
                        sizeof(wchar_t));
    EXPECT_TRUE(Loaded().AlwaysEncrypt);
}

TEST_F(OptionsOfPolicy, CompelEncryptionAgainstTheUser) {
    SetMachinePolicy(L"AlwaysEncrypt", L"1");
    SetUserValue(L"AutoEncrypt", L"0");
    EXPECT_TRUE(Loaded().AutoEncrypt);
}

TEST_F(OptionsOfPolicy, LetNoEncryptionBeatAlwaysEncrypt) {
    SetMachinePolicy(L"AlwaysEncrypt", L"1");
    SetMachinePolicy(L"NoEncryption", L"1");
    const OBOptions options = Loaded();
    EXPECT_TRUE(options.AlwaysEncrypt);
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_EQ(0u, options.EncryptionMethod);
}

TEST_F(OptionsOfPolicy, LetAnEmptyMaskBeatAlwaysEncrypt) {
    SetMachinePolicy(L"AlwaysEncrypt", L"1");
    FakeModules::Answer(L"AllowedEncryptMethods", L"0");
    const OBOptions options = Loaded();
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_EQ(0u, options.EncryptionMethod);
}

TEST_F(OptionsOfPolicy, DecideAboutZippingTogetherWithTheUser) {
    struct Row {
        const wchar_t* policy;
        const wchar_t* user; // null: absent
        bool sendItem;
        bool locked;
    };
    const Row rows[] = {
        {L"0", nullptr, true, false},  {L"0", L"0", false, false}, {L"0", L"1", true, false},
        {L"1", nullptr, true, false},  {L"1", L"0", false, false}, {L"1", L"1", true, false},
        {L"2", nullptr, false, false}, {L"2", L"0", false, false}, {L"2", L"1", true, false},
        {L"3", nullptr, true, true},   {L"3", L"0", true, true},   {L"3", L"1", true, true},
        {L"4", nullptr, false, true},  {L"4", L"0", false, true},  {L"4", L"1", false, true},
        {L"5", nullptr, true, false},  {L"5", L"0", false, false}, {L"", L"true", true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.policy) + (row.user ? " and a user value" : ""));
        obtest::ClearProductRegistry();
        SetMachinePolicy(L"AdminSendItem", row.policy);
        if (row.user) SetUserValue(L"SendItem", row.user);
        const OBOptions options = Loaded();
        EXPECT_EQ(row.sendItem, options.SendItem);
        EXPECT_EQ(row.locked, options.SendItemLocked);
        EXPECT_EQ(static_cast<std::uint32_t>(_wtoi(row.policy)),
                  static_cast<std::uint32_t>(options.AdminSendItem));
    }
}

TEST_F(OptionsOfPolicy, DecideAboutZippingInThePlainViewOnly) {
    SetMachinePolicy(L"AdminSendItem", L"4", 32);
    const OBOptions options = Loaded();
    EXPECT_EQ(AdminSendItemKind::None, options.AdminSendItem);
    EXPECT_TRUE(options.SendItem);
}

TEST_F(OptionsOfPolicy, TurnOnOnlyByTheExactText) {
    struct Row {
        const wchar_t* value;
        bool OBOptions::*field;
    };
    const Row rows[] = {
        {L"DisableMsgEditZipOption", &OBOptions::DisableMsgEditZipOption},
        {L"NoEncryption", &OBOptions::NoEncryption},
        {L"DisableWebVellant", &OBOptions::DisableWebVellant},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.value));
        SetMachinePolicy(row.value, L"1");
        EXPECT_TRUE(Loaded().*row.field);
        for (const wchar_t* off : {L"0", L"2", L"true", L" 1", L""}) {
            SetMachinePolicy(row.value, off);
            EXPECT_FALSE(Loaded().*row.field) << off;
        }
    }
}

TEST_F(OptionsOfPolicy, ReadTheFiveSwitchesInThePlainViewOnly) {
    for (const wchar_t* name :
         {L"DisableMsgEditZipOption", L"NoEncryption", L"NoUpdateChecking", L"DisableWebVellant"}) {
        SetMachinePolicy(name, L"1", 32);
    }
    SetMachinePolicy(L"DisableCloudServices", L"ALL", 32);
    const OBOptions options = Loaded();
    EXPECT_FALSE(options.DisableMsgEditZipOption);
    EXPECT_FALSE(options.DisableCloudServices);
    EXPECT_FALSE(options.NoEncryption);
    EXPECT_FALSE(options.NoUpdateChecking);
    EXPECT_FALSE(options.DisableWebVellant);
}

TEST_F(OptionsOfPolicy, LeaveTheirFieldsWhereTheMachineHasNone) {
    OBOptions options;
    options.AlwaysEncrypt = true;
    options.AdminSendItem = AdminSendItemKind::ForcedOff;
    options.DisableMsgEditZipOption = true;
    options.DisableCloudServices = true;
    options.NoEncryption = true;
    options.NoUpdateChecking = true;
    options.DisableWebVellant = true;
    options.HasEntCertificate = true;
    options.Load();
    EXPECT_TRUE(options.AlwaysEncrypt);
    EXPECT_EQ(AdminSendItemKind::ForcedOff, options.AdminSendItem);
    EXPECT_TRUE(options.DisableMsgEditZipOption);
    EXPECT_TRUE(options.DisableCloudServices);
    EXPECT_TRUE(options.NoEncryption);
    EXPECT_TRUE(options.NoUpdateChecking);
    EXPECT_TRUE(options.DisableWebVellant);
    EXPECT_TRUE(options.HasEntCertificate);
}

TEST_F(OptionsOfPolicy, SwitchUpdateChecksOffOnceTheyExistUnlessTheyAllowThem) {
    EXPECT_FALSE(Loaded().NoUpdateChecking);
    EXPECT_TRUE(Loaded().UpdateCheckEnabled);

    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kPolicyKey);
    EXPECT_TRUE(Loaded().NoUpdateChecking);
    EXPECT_FALSE(Loaded().UpdateCheckEnabled);

    const std::pair<const wchar_t*, bool> rows[] = {
        {L"1", true}, {L"", true}, {L"0", false}, {L"2", false}, {L"no", false},
    };
    for (const auto& [text, off] : rows) {
        SetMachinePolicy(L"NoUpdateChecking", text);
        EXPECT_EQ(off, Loaded().NoUpdateChecking) << text;
        EXPECT_EQ(!off, Loaded().UpdateCheckEnabled) << text;
    }
}

TEST_F(OptionsOfPolicy, DisableTheCloudByAnItemOfAList) {
    const std::pair<const wchar_t*, bool> rows[] = {
        {L"ALL", true},     {L"all", true},      {L"7, all", true},
        {L" ALL ,7", true}, {L"ALLOWED", false}, {L"7,ALLx", false},
        {L"1", false},      {L"", false},        {L"A LL,7;ALL", false},
    };
    for (const auto& [text, disabled] : rows) {
        SetMachinePolicy(L"DisableCloudServices", text);
        EXPECT_EQ(disabled, Loaded().DisableCloudServices) << text;
    }
}

TEST_F(OptionsOfPolicy, TakeTheCertificateFromThe64BitViewFirst) {
    struct Row {
        const wchar_t* low; // null: the key isn't there
        const wchar_t* high;
        bool expected;
    };
    const Row rows[] = {
        {nullptr, nullptr, false}, {L"cert", nullptr, true}, {nullptr, L"cert", true},
        {L"cert", L"", false},     {L"", L"cert", true},     {L"cert", L"0", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.low) + " " + testing::PrintToString(row.high));
        obtest::ClearProductRegistry();
        if (row.low) SetMachinePolicy(L"EntX509Certificate", row.low, 32);
        if (row.high) SetMachinePolicy(L"EntX509Certificate", row.high, 64);
        EXPECT_EQ(row.expected, Loaded().HasEntCertificate);
    }
}

TEST_F(OptionsOfPolicy, LoseTheCertificateToASixtyFourBitKeyWithoutIt) {
    SetMachinePolicy(L"EntX509Certificate", L"cert", 32);
    obtest::MakeKey(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, 64);
    EXPECT_FALSE(Loaded().HasEntCertificate);
    EXPECT_TRUE(FakeModules::CallsOf({L"GetPublicKeyResult"}).empty());
}

std::vector<UINT> widenedCodePages;
decltype(&MultiByteToWideChar) realWiden;

int WINAPI RecordWidening(UINT codePage, DWORD flags, LPCCH text, int size, LPWSTR wide,
                          int capacity) {
    widenedCodePages.push_back(codePage);
    return realWiden(codePage, flags, text, size, wide, capacity);
}

TEST_F(OptionsOfPolicy, FetchThePublicKeyInTheSystemCodePage) {
    SetMachinePolicy(L"EntX509Certificate", L"cert");
    FakeModules::Answer(L"PublicKey", L"key of G\u00fcnther");
    const obtest::ImportPatch<decltype(MultiByteToWideChar)> patch(
        "kernel32.dll", "MultiByteToWideChar", &RecordWidening);
    ASSERT_TRUE(patch.Ok());
    realWiden = patch.Real();
    widenedCodePages.clear();
    const OBOptions options = Loaded();
    EXPECT_FALSE(widenedCodePages.empty());
    for (const UINT codePage : widenedCodePages) EXPECT_EQ(UINT{CP_ACP}, codePage);
    EXPECT_EQ(1u, options.PublicKeyResult);
    EXPECT_EQ(L"key of G\u00fcnther", options.PublicKeyText);
    EXPECT_EQ(std::vector<std::wstring>({L"GetPublicKeyResult(1024)"}),
              FakeModules::CallsOf({L"GetPublicKeyResult"}));
}

TEST_F(OptionsOfPolicy, KeepNoKeyTextWhenTheServiceDoesntSucceed) {
    SetMachinePolicy(L"EntX509Certificate", L"cert");
    FakeModules::Answer(L"PublicKey", L"half a key");
    FakeModules::Answer(L"GetPublicKeyResult", L"5");
    OBOptions options;
    options.PublicKeyText = L"old";
    options.Load();
    EXPECT_TRUE(options.HasEntCertificate);
    EXPECT_EQ(5u, options.PublicKeyResult);
    EXPECT_EQ(L"", options.PublicKeyText);
}

TEST_F(OptionsOfPolicy, AskForNoKeyWithoutACertificate) {
    FakeModules::Answer(L"PublicKey", L"key");
    const OBOptions options = Loaded();
    EXPECT_EQ(0u, options.PublicKeyResult);
    EXPECT_EQ(L"", options.PublicKeyText);
    EXPECT_TRUE(FakeModules::CallsOf({L"GetPublicKeyResult"}).empty());
}

TEST_F(OptionsOfPolicy, TakeFileExpiryAwayFromEitherView) {
    for (const int view : {32, 64}) {
        SCOPED_TRACE(view);
        obtest::ClearProductRegistry();
        SetUserValue(L"ExpireFiles", L"1");
        SetUserValue(L"S4DelExpireDays", L"7");
        SetMachinePolicy(L"DISABLEFILEEXPIRATION", L"1", view);
        SetMachinePolicy(L"DISABLEFILEEXPIRATION", L"0", 96 - view);
        const OBOptions options = Loaded();
        EXPECT_FALSE(options.ExpireFilesAvailable);
        EXPECT_FALSE(options.ExpireFiles);
        EXPECT_EQ(30u, options.S4DelExpireDays);
    }
}

TEST_F(OptionsOfPolicy, OfferFileExpiryUnlessTheTextIsExact) {
    SetUserValue(L"ExpireFiles", L"1");
    for (const wchar_t* text : {L"", L"0", L"true", L" 1"}) {
        SetMachinePolicy(L"DISABLEFILEEXPIRATION", text);
        const OBOptions options = Loaded();
        EXPECT_TRUE(options.ExpireFilesAvailable) << text;
        EXPECT_TRUE(options.ExpireFiles) << text;
    }
}

TEST_F(OptionsOfPolicy, TakeTheServicesMaskOfEncryptionMethods) {
    FakeModules::Answer(L"AllowedEncryptMethods", L"8");
    EXPECT_EQ(8u, Loaded().AllowedEncryptMethods);
}

} // namespace
