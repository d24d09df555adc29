// Which providers a run selects, and what happens when none is.
#include "OBCore/options/TransformTable.h"
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obcore::OBOptions;
using obcore::TransformRow;
using obtest::FakeModules;
using obtest::Lines;

struct Provider {
    bool OBOptions::*option;
    int id;
};

constexpr Provider kProviders[] = {
    {&OBOptions::AutoConvertPDF, 3},     {&OBOptions::AutoCombinePDFs, 65},
    {&OBOptions::AutoResizeImages, 2},   {&OBOptions::AutoWatermark, 5},
    {&OBOptions::AutoConvertPhotos, 50}, {&OBOptions::AutoRemoveInfo, 51},
    {&OBOptions::AutoSignPDFs, 66},      {&OBOptions::AutoConvertFromPDF, 70},
};

std::wstring Selection(int id) {
    return L"SelectProviders(manager, 2, " + std::to_wstring(id) + L", 4) [dialog]";
}

constexpr wchar_t kAnySelected[] = L"IsProviderTypeSelected(manager, 4) [dialog]";

class TransformSelection : public obtest::TransformsFixture {
protected:
    void ExpectNoDialog() { EXPECT_EQ(LastDialog(), nullptr); }
};

TEST_F(TransformSelection, RunsNothingWhenNoOptionIsOn) {
    files_ = {L"C:\\t\\a.doc"};
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written(), Lines{kAnySelected}); // no thread, no report
    ExpectNoDialog();
    EXPECT_EQ(files_, Lines{L"C:\\t\\a.doc"});
}

TEST_F(TransformSelection, SelectsTheProviderOfEachOptionThatIsOn) {
    for (const Provider& provider : kProviders) {
        FakeModules::ForgetCalls();
        job_.*provider.option = true;
        EXPECT_TRUE(Run());
        EXPECT_EQ(Written({L"SelectProviders"}), Lines{Selection(provider.id)});
        job_.*provider.option = false;
    }
}

TEST_F(TransformSelection, SelectsInTheOrderOfTheTable) {
    Lines expected;
    for (const Provider& provider : kProviders) {
        job_.*provider.option = true;
        expected.push_back(Selection(provider.id));
    }
    expected.push_back(kAnySelected);
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"SelectProviders", L"IsProvider"}), expected);
}

TEST_F(TransformSelection, LetsTheFilesThroughAndReportsWhenTheManagerRefusesAll) {
    job_.AutoWatermark = true;
    files_ = {L"C:\\t\\a.doc"};
    EXPECT_TRUE(Run());
    ExpectNoDialog();
    EXPECT_EQ(files_, Lines{L"C:\\t\\a.doc"});
    EXPECT_EQ(Written(), (Lines{Selection(5), kAnySelected,
                                L"LogAppletFeature(\"feature.file-conversion\", "
                                L"\"file-conversion.type=WATERMARK\")"}));
}

TEST_F(TransformSelection, KeepsTheSelectionOfATick) {
    FakeModules::Answer(L"IsProviderSupport.5.4", L"1");
    obcore::ProviderManager().SelectProviders(job_.OwnedProviderManager, 2, 5,
                                              obcontract::ProviderKind::Transform);
    FakeModules::ForgetCalls();
    EXPECT_TRUE(Run());
    EXPECT_NE(LastDialog(), nullptr);
    EXPECT_TRUE(Written({L"SelectProviders", L"LogAppletFeature"}).empty());
}

TEST_F(TransformSelection, AreTheEightProvidersInTheOrderOfTheTable) {
    ASSERT_EQ(std::size(obcore::kTransforms), std::size(kProviders));
    for (std::size_t index = 0; index < std::size(kProviders); ++index) {
        const TransformRow& row = obcore::kTransforms[index];
        EXPECT_EQ(static_cast<int>(row.id), kProviders[index].id);
        EXPECT_EQ(row.option, kProviders[index].option);
        EXPECT_EQ(&obcore::RowOf(row.id), &row);
    }
}

TEST(TransformTable, AsksForTransformsByAnyOption) {
    EXPECT_FALSE(obcore::WantsTransforms({}));
    EXPECT_FALSE(obcore::WantsTransformsOfOneFile({}));
    for (const TransformRow& row : obcore::kTransforms) {
        OBOptions options;
        options.*row.option = true;
        EXPECT_TRUE(obcore::WantsTransforms(options)) << row.usageWord;
        // Combining means nothing for one file.
        EXPECT_EQ(row.id != obcontract::TransformId::CombinePdfs,
                  obcore::WantsTransformsOfOneFile(options))
            << row.usageWord;
    }
}

} // namespace
