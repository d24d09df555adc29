#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::OBOptions;
using obtest::FakeModules;

using Calls = std::vector<std::wstring>;

class OptionsRepair : public OptionsFixture {
protected:
    // A record that needs no repair.
    static OBOptions Sound() {
        OBOptions options;
        options.AllowedEncryptMethods = 12;
        return options;
    }
};

TEST_F(OptionsRepair, LeavesASoundRecordAlone) {
    OBOptions options = Sound();
    options.Normalize();
    EXPECT_EQ(L"Ombrix Compressed Attachments", options.DefaultZipName);
    EXPECT_EQ(4u, options.EncryptionMethod);
    EXPECT_EQ(8u, options.CompressionMethod);
    EXPECT_TRUE(options.UpdateCheckEnabled);
    EXPECT_EQ(Calls({L"ValidateFilespecW(\"Ombrix Compressed Attachments\", 2)"}),
              FakeModules::Calls());
}

TEST_F(OptionsRepair, PutsTheDefaultInPlaceOfARejectedZipName) {
    OBOptions options = Sound();
    options.DefaultZipName = L"a:b";
    FakeModules::Answer(L"ValidateFilespecW(\"a:b\", 2)", L"7");
    options.Normalize();
    EXPECT_EQ(L"Ombrix Compressed Attachments", options.DefaultZipName);
}

TEST_F(OptionsRepair, AsksForBothRulesOfAnExtension) {
    OBOptions options = Sound();
    options.UseAltExt = true;
    options.AltExt = L"piz";
    options.Normalize();
    EXPECT_TRUE(options.UseAltExt);
    EXPECT_EQ(Calls({L"ValidateFilespecW(\"Ombrix Compressed Attachments\", 2)",
                     L"ValidateFilespecW(\"piz\", 4)", L"ValidateFilespecW(\"piz\", 2)"}),
              FakeModules::Calls());
}

TEST_F(OptionsRepair, GivesUpAnExtensionThatEitherRuleRejects) {
    for (const wchar_t* call :
         {L"ValidateFilespecW(\"p?z\", 4)", L"ValidateFilespecW(\"p?z\", 2)"}) {
        SCOPED_TRACE(testing::PrintToString(call));
        FakeModules::Reset();
        FakeModules::Answer(call, L"1");
        OBOptions options = Sound();
        options.UseAltExt = true;
        options.AltExt = L"p?z";
        options.Normalize();
        EXPECT_FALSE(options.UseAltExt);
        EXPECT_EQ(L"p?z", options.AltExt);
    }
}

TEST_F(OptionsRepair, GivesUpAnEmptyExtensionThatTheServiceRejects) {
    FakeModules::Answer(L"ValidateFilespecW(\"\", 4)", L"1");
    OBOptions options = Sound();
    options.UseAltExt = true;
    options.Normalize();
    EXPECT_FALSE(options.UseAltExt);
}

TEST_F(OptionsRepair, DoesntAskForAnExtensionThatIsntUsed) {
    OBOptions options = Sound();
    options.AltExt = L"piz";
    options.Normalize();
    EXPECT_EQ(1u, FakeModules::CallsOf({L"ValidateFilespecW"}).size());
}

TEST_F(OptionsRepair, KnowsTwoCompressionMethods) {
    const std::pair<std::uint32_t, std::uint32_t> rows[] = {
        {8, 8}, {0xFFFFFFFF, 0xFFFFFFFF}, {0, 8}, {12, 8}, {0xFFFFFFFE, 8}, {9, 8},
    };
    for (const auto& [before, after] : rows) {
        OBOptions options = Sound();
        options.CompressionMethod = before;
        options.Normalize();
        EXPECT_EQ(after, options.CompressionMethod);
    }
}

TEST_F(OptionsRepair, KnowsTwoUpdateIntervals) {
    const std::pair<std::uint32_t, std::uint32_t> rows[] = {
        {1, 1}, {7, 7}, {0, 1}, {2, 1}, {8, 1}, {0xFFFFFFFF, 1},
    };
    for (const auto& [before, after] : rows) {
        OBOptions options = Sound();
        options.UpdateCheckIntervalDays = before;
        options.Normalize();
        EXPECT_EQ(after, options.UpdateCheckIntervalDays);
    }
}

TEST_F(OptionsRepair, StopsUpdateChecksByPolicy) {
    OBOptions options = Sound();
    options.NoUpdateChecking = true;
    options.Normalize();
    EXPECT_FALSE(options.UpdateCheckEnabled);
}

TEST_F(OptionsRepair, SwitchesEncryptionOffWhenNoMethodIsAllowed) {
    OBOptions options = Sound();
    options.AllowedEncryptMethods = 0;
    options.AutoEncrypt = true;
    options.Normalize();
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_EQ(0u, options.EncryptionMethod);
    EXPECT_TRUE(FakeModules::CallsOf({L"DefaultEncryptionMethod"}).empty());
}

TEST_F(OptionsRepair, AsksForTheDefaultMethodWhenTheUsersIsntAllowed) {
    FakeModules::Answer(L"DefaultEncryptionMethod", L"8");
    for (const std::uint32_t method : {0u, 1u, 3u, 0x10000u, 0x40000u}) {
        OBOptions options = Sound();
        options.EncryptionMethod = method;
        options.AutoEncrypt = true;
        options.Normalize();
        EXPECT_EQ(8u, options.EncryptionMethod) << method;
        EXPECT_TRUE(options.AutoEncrypt);
    }
}

TEST_F(OptionsRepair, TakesTheLowSixteenBitsOfTheDefaultMethod) {
    FakeModules::Answer(L"DefaultEncryptionMethod", L"4294901768"); // 0xFFFF0008
    OBOptions options = Sound();
    options.EncryptionMethod = 1;
    options.Normalize();
    EXPECT_EQ(8u, options.EncryptionMethod);
}

TEST_F(OptionsRepair, KeepsAMethodThatSharesABitWithTheMask) {
    OBOptions options = Sound();
    options.EncryptionMethod = 5;
    options.Normalize();
    EXPECT_EQ(5u, options.EncryptionMethod);
    EXPECT_TRUE(FakeModules::CallsOf({L"DefaultEncryptionMethod"}).empty());
}

TEST_F(OptionsRepair, LetsThePolicyAgainstEncryptionHaveTheLastWord) {
    OBOptions options = Sound();
    options.NoEncryption = true;
    options.AutoEncrypt = true;
    options.EncryptionMethod = 1;
    options.Normalize();
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_EQ(0u, options.EncryptionMethod);
    EXPECT_EQ(1u, FakeModules::CallsOf({L"DefaultEncryptionMethod"}).size());
}

TEST_F(OptionsRepair, RunsAtTheEndOfLoading) {
    obtest::SetUserValue(L"EncryptionMethod", L"1");
    Loaded();
    EXPECT_EQ(Calls({L"AllowedEncryptMethods()", L"ValidateFilespecW(\"\", 2)",
                     L"DefaultEncryptionMethod()"}),
              FakeModules::Calls());
}

} // namespace
