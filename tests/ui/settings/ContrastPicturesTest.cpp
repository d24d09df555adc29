// The flat windows of the settings in a high contrast scheme (OB_CONTRAST: dark or light): they are
// painted, and their ground is the scheme's. In the folder OB_PICTURES, where that is set, the
// tests leave pictures to be judged by eye.
#include <algorithm>
#include <cstdlib>
#include <map>

#include "OBCore/settings/AttachmentDialog.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/EncryptionDialog.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "OBCore/settings/ObConfigureCloudServiceDialog.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ContrastScheme.h"
#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::OpenDialog;

bool IsDark() {
    const wchar_t* const chosen = _wgetenv(L"OB_CONTRAST");
    return chosen != nullptr && std::wstring(chosen) == L"dark";
}

std::uint32_t MostFrequent(const obtest::Picture& picture) {
    std::map<std::uint32_t, std::size_t> counts;
    for (const std::uint32_t pixel : picture.pixels) ++counts[pixel];
    return std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; })
        ->first;
}

// A pixel at the lower left, inside of the frame.
std::uint32_t BottomOf(const obtest::Picture& picture) {
    return picture.pixels[static_cast<std::size_t>((picture.height - 12) * picture.width + 12)];
}

class ContrastPictures : public obtest::OptionsFixture {
protected:
    static void SetUpTestSuite() {
        obtest::BeAwareOfTheScale();
        obtest::UseScheme(IsDark());
        obtest::isContrastOn = true;
    }
    static void TearDownTestSuite() { obtest::isContrastOn = false; }

    void Look(int id, const std::wstring& name, std::uint32_t ground,
              const std::function<INT_PTR()>& show) {
        Operate(id, show, [&](const OpenDialog& dialog) {
            const auto picture = obtest::TakeSettledPicture(dialog.window, 4);
            ASSERT_TRUE(picture);
            obtest::KeepPicture(*picture, L"contrast-" + name + (IsDark() ? L"-dark" : L"-light"),
                                240, 100);
            EXPECT_EQ(ground, MostFrequent(*picture));
            EXPECT_EQ(IsDark() ? 0u : 0xFFFFFFu, BottomOf(*picture)) << "the white bottom, too";
        });
    }
    static std::uint32_t Ground() { return IsDark() ? 0 : 0xFFFFFF; }

private:
    obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch_{
        "user32.dll", "SystemParametersInfoW", &obtest::ParametersWithContrast};
};

TEST_F(ContrastPictures, OfTheSettings) {
    options_.AutoConvertPDF = true;
    // The colour of the grey area is the same in every scheme.
    Look(OB_OPTIONS_CONVERT_FROM_PDF, L"options", 0xF6F6F6, [this]() -> INT_PTR {
        return obcore::OBOptionsDialogImp(OB_OPTIONS, nullptr, options_).DoModal();
    });
}

TEST_F(ContrastPictures, OfAttachments) {
    Look(OB_ATTACHMENT_ZIP_NAME, L"attachments", Ground(), [this]() -> INT_PTR {
        return obcore::OBAttachmentDialogImp(nullptr, options_).DoModal();
    });
}

TEST_F(ContrastPictures, OfEncryption) {
    Look(OB_ENCRYPTION_METHOD_8, L"encryption", Ground(), [this]() -> INT_PTR {
        return obcore::OBEncryptionDialogImp(nullptr, options_).DoModal();
    });
}

TEST_F(ContrastPictures, OfTheCloud) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetShortDescription", L"Network folder");
    Answer(L"provider7.GetAccountProfiles", L"Projects|p;Team share in Vienna|t");
    Look(OB_CLOUD_LOGIN, L"cloud", Ground(), [this]() -> INT_PTR {
        obcore::ConfigureCloudContext context{&options_};
        return obcore::OBConfigureCloudDialogImp(nullptr, context).DoModal();
    });
}

} // namespace
