#include <algorithm>

#include "OBCore/modules/OwnModule.h"
#include "OBCore/options/TransformTable.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::OBOptions;
using obtest::FakeModules;
using obtest::SetUserValue;

struct Row {
    const wchar_t* value;
    bool OBOptions::*field;
    std::uint32_t provider;
    const wchar_t* extraFile;
};

constexpr Row kRows[] = {
    {L"AutoConvertPDF", &OBOptions::AutoConvertPDF, 3, nullptr},
    {L"AutoCombinePDFs", &OBOptions::AutoCombinePDFs, 65, nullptr},
    {L"AutoResizeImages", &OBOptions::AutoResizeImages, 2, nullptr},
    {L"AutoWatermark", &OBOptions::AutoWatermark, 5, nullptr},
    {L"AutoConvertPhotos", &OBOptions::AutoConvertPhotos, 50, L"Aspose.Imaging.dll"},
    {L"AutoRemoveInfo", &OBOptions::AutoRemoveInfo, 51, L"GroupDocs.Metadata.dll"},
    {L"AutoSignPDFs", &OBOptions::AutoSignPDFs, 66, nullptr},
    {L"AutoConvertFromPDF", &OBOptions::AutoConvertFromPDF, 70, nullptr},
};

std::wstring ExtraFilePath(const wchar_t* name) {
    return obcore::PathBesideOwnModule(name).value_or(L"");
}

class OptionsOfTransforms : public OptionsFixture {
protected:
    void SetUp() override {
        OptionsFixture::SetUp();
        for (const Row& row : kRows) {
            FakeModules::Answer(L"IsProviderSupport." + std::to_wstring(row.provider) + L".4",
                                L"1");
            if (row.extraFile) {
                ASSERT_TRUE(obtest::WriteFileContent(ExtraFilePath(row.extraFile), "any"));
            }
        }
    }
    void TearDown() override {
        for (const Row& row : kRows) {
            if (row.extraFile) DeleteFileW(ExtraFilePath(row.extraFile).c_str());
        }
    }

    static void SetAll(const wchar_t* text) {
        for (const Row& row : kRows) SetUserValue(row.value, text);
    }
};

TEST_F(OptionsOfTransforms, AreInTheTableInTheirOrder) {
    ASSERT_EQ(std::size(kRows), obcore::kTransforms.size());
    for (std::size_t index = 0; index < std::size(kRows); ++index) {
        const obcore::TransformRow& option = obcore::kTransforms[index];
        EXPECT_STREQ(kRows[index].value, option.value);
        EXPECT_TRUE(kRows[index].field == option.option);
        EXPECT_EQ(kRows[index].provider, static_cast<std::uint32_t>(option.id));
        EXPECT_STREQ(kRows[index].extraFile, option.extraFile);
    }
}

TEST_F(OptionsOfTransforms, AreOnWhenWantedAndSupported) {
    const TestManager manager;
    SetAll(L"yes");
    FakeModules::ForgetCalls();
    const OBOptions options = Loaded(manager.Get());
    std::vector<std::wstring> calls;
    for (const Row& row : kRows) {
        EXPECT_TRUE(options.*row.field) << testing::PrintToString(row.value);
        calls.push_back(L"IsProviderSupport(manager, " + std::to_wstring(row.provider) + L", 4)");
    }
    EXPECT_EQ(calls, FakeModules::CallsOf({L"IsProviderSupport"}));
}

TEST_F(OptionsOfTransforms, KeepToTheirOwnFields) {
    const TestManager manager;
    for (const Row& row : kRows) {
        SetAll(L"0");
        SetUserValue(row.value, L"1");
        const OBOptions options = Loaded(manager.Get());
        for (const Row& other : kRows) {
            EXPECT_EQ(other.value == row.value, options.*other.field)
                << testing::PrintToString(row.value) << testing::PrintToString(other.value);
        }
    }
}

TEST_F(OptionsOfTransforms, AreOffWithoutSupport) {
    const TestManager manager;
    SetAll(L"1");
    for (const Row& row : kRows) {
        FakeModules::Answer(L"IsProviderSupport." + std::to_wstring(row.provider) + L".4", L"0");
        EXPECT_FALSE(Loaded(manager.Get()).*row.field) << testing::PrintToString(row.value);
    }
}

TEST_F(OptionsOfTransforms, AreOffWithoutAManagerWhateverTheRegistryHas) {
    SetAll(L"1");
    const OBOptions options = Loaded();
    for (const Row& row : kRows) {
        EXPECT_FALSE(options.*row.field) << testing::PrintToString(row.value);
    }
    EXPECT_TRUE(FakeModules::CallsOf({L"IsProviderSupport"}).empty());
}

TEST_F(OptionsOfTransforms, AreOffWithoutTheirExtraFile) {
    const TestManager manager;
    SetAll(L"1");
    for (const Row& row : kRows) {
        if (!row.extraFile) continue;
        SCOPED_TRACE(testing::PrintToString(row.value));
        EXPECT_TRUE(Loaded(manager.Get()).*row.field);
        ASSERT_TRUE(DeleteFileW(ExtraFilePath(row.extraFile).c_str()));
        FakeModules::ForgetCalls();
        EXPECT_FALSE(Loaded(manager.Get()).*row.field);
        const auto calls = FakeModules::CallsOf({L"IsProviderSupport"});
        const std::wstring call =
            L"IsProviderSupport(manager, " + std::to_wstring(row.provider) + L", 4)";
        EXPECT_EQ(0, std::ranges::count(calls, call));
    }
}

DWORD WINAPI AnswerNoPath(HMODULE, LPWSTR, DWORD) { return 0; }

TEST_F(OptionsOfTransforms, AreOffWhenTheFolderOfTheirExtraFileIsUnknown) {
    const TestManager manager;
    SetAll(L"1");
    const obtest::ImportPatch<decltype(GetModuleFileNameW)> patch(
        "kernel32.dll", "GetModuleFileNameW", &AnswerNoPath);
    ASSERT_TRUE(patch.Ok());
    const OBOptions options = Loaded(manager.Get());
    for (const Row& row : kRows) {
        EXPECT_EQ(row.extraFile == nullptr, options.*row.field)
            << testing::PrintToString(row.value);
    }
}

TEST_F(OptionsOfTransforms, TurnAFieldOffByAZeroAndKeepItWhenAbsent) {
    const TestManager manager;
    for (const Row& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.value));
        OBOptions options;
        options.ProviderManager = manager.Get();
        options.*row.field = true;
        options.Load();
        EXPECT_TRUE(options.*row.field);
        SetUserValue(row.value, L"0");
        options.Load();
        EXPECT_FALSE(options.*row.field);
    }
}

TEST_F(OptionsOfTransforms, AreOutOfReachOfPolicies) {
    const TestManager manager;
    for (const Row& row : kRows) obtest::SetMachinePolicy(row.value, L"1");
    const OBOptions options = Loaded(manager.Get());
    for (const Row& row : kRows) {
        EXPECT_FALSE(options.*row.field) << testing::PrintToString(row.value);
    }
}

} // namespace
