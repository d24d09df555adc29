#include "tests/unit/WebVellant/OBCore/options/OptionsFields.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::OBOptions;

class OptionsDefaults : public OptionsFixture {};

TEST_F(OptionsDefaults, SwitchesOfTheUserAreOffButForThree) {
    const OBOptions options;
    EXPECT_TRUE(options.SendItem);
    EXPECT_TRUE(options.SingleAttachFileName);
    EXPECT_TRUE(options.UpdateCheckEnabled);
    EXPECT_FALSE(options.AutoEncrypt);
    EXPECT_FALSE(options.SendItemLocked);
    EXPECT_FALSE(options.UseAltExt);
    EXPECT_FALSE(options.DuplicateReferences);
    EXPECT_FALSE(options.SingleAttachConversion);
    EXPECT_FALSE(options.ExpireFilesAvailable);
    EXPECT_FALSE(options.ExpireFiles);
}

TEST_F(OptionsDefaults, TransformsAreOff) {
    const OBOptions options;
    EXPECT_FALSE(options.AutoConvertPDF);
    EXPECT_FALSE(options.AutoCombinePDFs);
    EXPECT_FALSE(options.AutoWatermark);
    EXPECT_FALSE(options.AutoResizeImages);
    EXPECT_FALSE(options.AutoConvertPhotos);
    EXPECT_FALSE(options.AutoRemoveInfo);
    EXPECT_FALSE(options.AutoSignPDFs);
    EXPECT_FALSE(options.AutoConvertFromPDF);
}

TEST_F(OptionsDefaults, PoliciesAreOff) {
    const OBOptions options;
    EXPECT_FALSE(options.AlwaysEncrypt);
    EXPECT_FALSE(options.DisableMsgEditZipOption);
    EXPECT_FALSE(options.DisableCloudServices);
    EXPECT_FALSE(options.NoEncryption);
    EXPECT_FALSE(options.NoUpdateChecking);
    EXPECT_FALSE(options.DisableWebVellant);
    EXPECT_EQ(obcore::AdminSendItemKind::None, options.AdminSendItem);
    EXPECT_FALSE(options.HasEntCertificate);
    EXPECT_EQ(0u, options.PublicKeyResult);
    EXPECT_EQ(L"", options.PublicKeyText);
}

TEST_F(OptionsDefaults, NumbersAndTextsHaveTheirValues) {
    const OBOptions options;
    EXPECT_EQ(4u, options.EncryptionMethod);
    EXPECT_EQ(L"Ombrix Compressed Attachments", options.DefaultZipName);
    EXPECT_EQ(L"", options.AltExt);
    EXPECT_EQ(L"", options.ExcludedExt);
    EXPECT_EQ(8u, options.CompressionMethod);
    EXPECT_EQ(0u, static_cast<std::uint32_t>(options.NameAppend));
    EXPECT_EQ(1u, options.UpdateCheckIntervalDays);
    EXPECT_EQ(L"", options.LastUpdateCheck);
    EXPECT_EQ(0u, options.AllowedEncryptMethods);
    EXPECT_EQ(2u, static_cast<std::uint32_t>(options.SendSetting));
    EXPECT_EQ(5u, options.MinimumSize);
    EXPECT_EQ(5242880u, options.MinimumSizeBytes);
    EXPECT_EQ(2u, options.ServiceId);
    EXPECT_EQ(30u, options.S4DelExpireDays);
    EXPECT_EQ(0u, options.UILanguage);
    EXPECT_EQ(nullptr, options.ProviderManager);
}

TEST_F(OptionsDefaults, ConstructionTouchesNothing) {
    const OBOptions options;
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kQuilletKey));
}

TEST_F(OptionsDefaults, HaveFortyFourFieldsOfTheirWidths) {
    OBOptions options;
    EXPECT_EQ(44u, std::tuple_size_v<decltype(FieldsOf(options))>);
    EXPECT_EQ(1u, sizeof(options.SendItem));
    EXPECT_EQ(4u, sizeof(options.EncryptionMethod));
    EXPECT_EQ(4u, sizeof(options.NameAppend));
    EXPECT_EQ(4u, sizeof(options.SendSetting));
    EXPECT_EQ(4u, sizeof(options.AdminSendItem));
    EXPECT_EQ(2u, sizeof(options.AllowedEncryptMethods));
    EXPECT_EQ(2u, sizeof(options.UILanguage));
}

TEST_F(OptionsDefaults, CopyingTakesEveryField) {
    const OBOptions changed = OptionsFarFromDefaults();
    const OBOptions copied = changed;
    OBOptions assigned;
    EXPECT_FALSE(FieldsOf(changed) == FieldsOf(std::as_const(assigned)));
    assigned = changed;
    EXPECT_TRUE(FieldsOf(changed) == FieldsOf(copied));
    EXPECT_TRUE(FieldsOf(changed) == FieldsOf(std::as_const(assigned)));
}

TEST_F(OptionsDefaults, CopiedTextsAreTheCopysOwn) {
    OBOptions original = OptionsFarFromDefaults();
    const OBOptions copied = original;
    const std::wstring before = original.AltExt;
    original.AltExt[0] = L'!';
    EXPECT_EQ(before, copied.AltExt);
}

} // namespace
