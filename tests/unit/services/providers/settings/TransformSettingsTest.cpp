#include "services/providers/settings/TransformSettings.h"

#include <gtest/gtest.h>

#include <string>

#include "services/providers/settings/PdfSettings.h"
#include "services/providers/settings/PersonalDataSettings.h"
#include "services/providers/settings/PhotoSettings.h"
#include "services/providers/settings/ResizeSettings.h"
#include "services/providers/settings/WatermarkSettings.h"
#include "tests/support/ProductRegistry.h"

using providers::PdfPage;
using providers::PdfSettings;
using providers::PersonalDataSettings;
using providers::PhotoQuality;
using providers::PhotoSettings;
using providers::ResizeAim;
using providers::ResizeSettings;
using providers::TransformSettings;
using providers::WatermarkPlace;
using providers::WatermarkSettings;

namespace {

const std::wstring kKey = obcontract::kProviderManagerKey;
const std::wstring kOwnKey = kKey + L"\\Transforms\\51";

class TransformSettingsTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }

    TransformSettings settings_{HKEY_CURRENT_USER, kKey};
};

TEST_F(TransformSettingsTest, AreTheDefaultsUntilTheyAreStored) {
    EXPECT_FALSE(PersonalDataSettings::AreStored(settings_));
    EXPECT_EQ(PersonalDataSettings::Load(settings_), (PersonalDataSettings{true, true}));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey));
}

TEST_F(TransformSettingsTest, AreReadBackAsStored) {
    for (const PersonalDataSettings stored :
         {PersonalDataSettings{true, false}, {false, true}, {false, false}, {true, true}}) {
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_EQ(PersonalDataSettings::Load(settings_), stored);
        EXPECT_EQ(PersonalDataSettings::Load({HKEY_CURRENT_USER, kKey}), stored);
    }
    EXPECT_TRUE(PersonalDataSettings::AreStored(settings_));
    EXPECT_FALSE(ResizeSettings::AreStored(settings_));
}

TEST_F(TransformSettingsTest, AreTextsBelowTheManagersKey) {
    ASSERT_TRUE((PersonalDataSettings{false, true}.Save(settings_)));
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt"), L"0");
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kOwnKey, L"AskAboutOtherFiles"), L"1");
}

TEST_F(TransformSettingsTest, AreTheDefaultsForValuesOfOthers) {
    const DWORD number = 0;
    obtest::SetRawValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt", REG_DWORD, &number, 4);
    EXPECT_FALSE(PersonalDataSettings::AreStored(settings_));
    for (const wchar_t* text : {L"", L"2", L"yes", L"00"}) {
        obtest::SetValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt", text);
        obtest::SetValue(HKEY_CURRENT_USER, kOwnKey, L"AskAboutOtherFiles", text);
        EXPECT_FALSE(PersonalDataSettings::AreStored(settings_));
        EXPECT_EQ(PersonalDataSettings::Load(settings_), (PersonalDataSettings{true, true}));
    }
}

TEST_F(TransformSettingsTest, ReportThatTheyCantBeStored) {
    // The name of a key has at most 255 characters.
    const TransformSettings nowhere(HKEY_CURRENT_USER, std::wstring(300, L'k'));
    EXPECT_FALSE(PersonalDataSettings().Save(nowhere));
    EXPECT_FALSE(ResizeSettings().Save(nowhere));
}

const std::wstring kPdfKey = kKey + L"\\Transforms\\3";

class PdfSettingsTest : public TransformSettingsTest {
protected:
    static void Store(const wchar_t* name, const wchar_t* text) {
        obtest::SetValue(HKEY_CURRENT_USER, kPdfKey, name, text);
    }
};

TEST_F(PdfSettingsTest, AreTheDefaultsUntilTheyAreStored) {
    EXPECT_FALSE(PdfSettings::AreStored(settings_));
    EXPECT_EQ(PdfSettings::Load(settings_), PdfSettings());
}

TEST_F(PdfSettingsTest, AreReadBackAsStored) {
    for (const auto page : {PdfPage::Letter, PdfPage::AsPicture, PdfPage::A4}) {
        const PdfSettings stored{false, true, page};
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_TRUE(PdfSettings::AreStored(settings_));
        EXPECT_EQ(PdfSettings::Load(settings_), stored);
    }
}

TEST_F(PdfSettingsTest, AreTheDefaultsWhereAnotherTextIsStored) {
    Store(L"Page", L"A5");
    Store(L"Pictures", L"no");
    Store(L"Documents", L"0");
    EXPECT_FALSE(PdfSettings::AreStored(settings_));
    EXPECT_EQ(PdfSettings::Load(settings_), (PdfSettings{true, false, PdfPage::AsPicture}));
}

TEST_F(PdfSettingsTest, AskForThePageThatIsWanted) {
    EXPECT_EQ(PdfSettings().Order().page, obcontract::WorkPage::AsPicture);
    EXPECT_EQ((PdfSettings{true, true, PdfPage::A4}.Order().page), obcontract::WorkPage::A4);
    EXPECT_EQ((PdfSettings{true, true, PdfPage::Letter}.Order().page),
              obcontract::WorkPage::Letter);
}

const std::wstring kPhotoKey = kKey + L"\\Transforms\\50";

class PhotoSettingsTest : public TransformSettingsTest {
protected:
    static void Store(const wchar_t* name, const wchar_t* text) {
        obtest::SetValue(HKEY_CURRENT_USER, kPhotoKey, name, text);
    }
};

TEST_F(PhotoSettingsTest, AreTheDefaultsUntilTheyAreStored) {
    EXPECT_FALSE(PhotoSettings::AreStored(settings_));
    EXPECT_EQ(PhotoSettings::Load(settings_), PhotoSettings());
}

TEST_F(PhotoSettingsTest, AreReadBackAsStored) {
    for (const auto quality : {PhotoQuality::Low, PhotoQuality::High, PhotoQuality::Medium}) {
        const PhotoSettings stored{quality, false, true, false};
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_TRUE(PhotoSettings::AreStored(settings_));
        EXPECT_EQ(PhotoSettings::Load(settings_), stored);
    }
}

TEST_F(PhotoSettingsTest, AreTheDefaultsWhereAnotherTextIsStored) {
    Store(L"Quality", L"Excellent");
    Store(L"Tiff", L"no");
    Store(L"Bmp", L"0");
    EXPECT_FALSE(PhotoSettings::AreStored(settings_));
    EXPECT_EQ(PhotoSettings::Load(settings_),
              (PhotoSettings{PhotoQuality::High, true, true, false}));
}

TEST_F(PhotoSettingsTest, AskForTheKindsThatAreWanted) {
    EXPECT_EQ(PhotoSettings().Order().kinds, obcontract::WorkPhotoKinds::All);
    EXPECT_EQ(PhotoSettings().Order().quality, 92u);
    const auto order = PhotoSettings{PhotoQuality::Low, false, false, false}.Order();
    EXPECT_EQ(static_cast<unsigned>(order.kinds), 1u + 2 + 32 + 64);
    EXPECT_EQ(order.quality, 70u);
}

const std::wstring kResizeKey = kKey + L"\\Transforms\\2";

class ResizeSettingsTest : public TransformSettingsTest {
protected:
    void Set(const wchar_t* name, const wchar_t* text) {
        obtest::SetValue(HKEY_CURRENT_USER, kResizeKey, name, text);
    }
};

TEST_F(ResizeSettingsTest, AreTheDefaultsUntilTheyAreStored) {
    EXPECT_FALSE(ResizeSettings::AreStored(settings_));
    const auto settings = ResizeSettings::Load(settings_);
    EXPECT_EQ(settings.aim, ResizeAim::LongestEdge);
    EXPECT_EQ(settings.Number(), 2048u);
    EXPECT_FALSE(settings.FitsMail());
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey));
}

TEST_F(ResizeSettingsTest, AreReadBackAsStored) {
    for (const auto aim :
         {ResizeAim::Percent, ResizeAim::FitMail, ResizeAim::BytesEach, ResizeAim::LongestEdge}) {
        const ResizeSettings stored{aim, {1600, 75, 250, 25}};
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_TRUE(ResizeSettings::AreStored(settings_));
        EXPECT_EQ(ResizeSettings::Load(settings_), stored);
    }
    EXPECT_FALSE(PersonalDataSettings::AreStored(settings_));
}

TEST_F(ResizeSettingsTest, AreTextsBelowTheManagersKey) {
    ASSERT_TRUE((ResizeSettings{ResizeAim::FitMail, {1600, 75, 250, 25}}.Save(settings_)));
    const auto value = [](const wchar_t* name) {
        return obtest::ReadValue(HKEY_CURRENT_USER, kResizeKey, name);
    };
    EXPECT_EQ(value(L"Aim"), L"FitMail");
    EXPECT_EQ(value(L"Pixels"), L"1600");
    EXPECT_EQ(value(L"Percent"), L"75");
    EXPECT_EQ(value(L"Kilobytes"), L"250");
    EXPECT_EQ(value(L"Megabytes"), L"25");
}

TEST_F(ResizeSettingsTest, AreTheDefaultsForValuesOfOthers) {
    for (const wchar_t* aim : {L"", L"fitmail", L"FitMail2", L"an aim that is far too long"}) {
        Set(L"Aim", aim);
        EXPECT_FALSE(ResizeSettings::AreStored(settings_));
    }
    Set(L"Aim", L"Percent");
    for (const wchar_t* number : {L"", L"0", L"100", L"-5", L"05", L"5 ", L"1e1", L"99999999999"}) {
        Set(L"Percent", number);
        EXPECT_EQ(ResizeSettings::Load(settings_).Number(), 50u) << number;
    }
    Set(L"Percent", L"99");
    EXPECT_EQ(ResizeSettings::Load(settings_).Number(), 99u);
}

const std::wstring kWatermarkKey = kKey + L"\\Transforms\\5";

class WatermarkSettingsTest : public TransformSettingsTest {
protected:
    void Set(const wchar_t* name, const std::wstring& text) {
        obtest::SetValue(HKEY_CURRENT_USER, kWatermarkKey, name, text);
    }
};

TEST_F(WatermarkSettingsTest, AreNotThereUntilATextIsStored) {
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
    EXPECT_EQ(WatermarkSettings::Load(settings_), WatermarkSettings());
    Set(L"Place", L"TopLeft");
    Set(L"Text", L"");
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey + L"\\Transforms\\2"));
}

TEST_F(WatermarkSettingsTest, AreReadBackAsStored) {
    const std::wstring longest(providers::kLongestWatermark, L'\u6F22');
    for (const auto place :
         {WatermarkPlace::TopLeft, WatermarkPlace::TopRight, WatermarkPlace::BottomLeft,
          WatermarkPlace::BottomRight, WatermarkPlace::Centre}) {
        const WatermarkSettings stored{longest, place, 35};
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_TRUE(WatermarkSettings::AreStored(settings_));
        EXPECT_EQ(WatermarkSettings::Load(settings_), stored);
    }
}

TEST_F(WatermarkSettingsTest, HaveATextOrAPicture) {
    WatermarkSettings stored{L"Ann", WatermarkPlace::Centre, 35, true, L"C:\\Pictures\\logo.png"};
    ASSERT_TRUE(stored.Save(settings_));
    EXPECT_TRUE(WatermarkSettings::AreStored(settings_));
    EXPECT_EQ(WatermarkSettings::Load(settings_), stored);
    stored.usesPicture = false; // the picture stays for the next time
    ASSERT_TRUE(stored.Save(settings_));
    EXPECT_EQ(WatermarkSettings::Load(settings_), stored);
}

TEST_F(WatermarkSettingsTest, KeepAPathOfAnyLengthThatCanBeEntered) {
    for (const std::size_t length : {127u, 128u, 999u, 1000u}) {
        const WatermarkSettings stored{L"Ann", WatermarkPlace::Centre, 35, true,
                                       std::wstring(length, L'a')};
        ASSERT_TRUE(stored.Save(settings_));
        EXPECT_TRUE(WatermarkSettings::AreStored(settings_)) << length;
        EXPECT_EQ(WatermarkSettings::Load(settings_), stored) << length;
    }
}

// The text never takes the place of a picture that the user chose.
TEST_F(WatermarkSettingsTest, KeepTheKindPictureWhenItsPathIsMissing) {
    Set(L"Text", L"Ann");
    Set(L"Kind", L"Picture");
    for (const std::wstring& path : {std::wstring(), std::wstring(1001, L'a')}) {
        Set(L"Picture", path);
        EXPECT_TRUE(WatermarkSettings::Load(settings_).usesPicture);
        EXPECT_EQ(WatermarkSettings::Load(settings_).picture, L"");
        EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
    }
    Set(L"Text", L"");
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
    Set(L"Picture", L"C:\\logo.png");
    EXPECT_TRUE(WatermarkSettings::AreStored(settings_));
    Set(L"Kind", L"Drawing");
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
}

TEST_F(WatermarkSettingsTest, AreTextsBelowTheManagersKey) {
    ASSERT_TRUE((WatermarkSettings{L"\u00A9 Ann", WatermarkPlace::Centre, 100}.Save(settings_)));
    const auto value = [](const wchar_t* name) {
        return obtest::ReadValue(HKEY_CURRENT_USER, kWatermarkKey, name);
    };
    EXPECT_EQ(value(L"Text"), L"\u00A9 Ann");
    EXPECT_EQ(value(L"Place"), L"Centre");
    EXPECT_EQ(value(L"Opacity"), L"100");
}

TEST_F(WatermarkSettingsTest, AreTheDefaultsForValuesOfOthers) {
    Set(L"Text", L"Ann");
    for (const wchar_t* value : {L"", L"centre", L"4", L"101", L"060"}) {
        Set(L"Place", value);
        Set(L"Opacity", value);
        const auto settings = WatermarkSettings::Load(settings_);
        EXPECT_EQ(settings.place, WatermarkPlace::BottomRight) << value;
        EXPECT_EQ(settings.opacity, 60u) << value;
    }
    Set(L"Text", std::wstring(providers::kLongestWatermark + 1, L'a'));
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
    Set(L"Text", std::wstring(5000, L'a'));
    EXPECT_FALSE(WatermarkSettings::AreStored(settings_));
}

} // namespace
