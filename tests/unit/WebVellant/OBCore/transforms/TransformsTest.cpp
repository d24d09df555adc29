#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/TransformTable.h"
#include "OBCore/transforms/Transforms.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace obcore;
using Files = std::vector<std::wstring>;

class Transforms : public testing::Test {
protected:
    void SetUp() override {
        obtest::FakeModules::Reset();
        ASSERT_TRUE(LoadProviderManager());
        job_.emplace(OBOptions(), nullptr);
        obtest::FakeModules::ForgetCalls();
    }

    obtest::TestFolder folder_;
    std::optional<OBAttachJob> job_;
};

TEST_F(Transforms, LetTheRunGoOnWhenNoneIsWanted) {
    Files files = {folder_.File(L"a.docx")};
    const Files before = files;
    EXPECT_TRUE(CompressUtils::RunTransforms(*job_, files, folder_.Path()));
    EXPECT_EQ(files, before);
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

TEST_F(Transforms, StopTheRunForEachThatIsWantedAndCantBeDone) {
    const obtest::MessageBoxWatcher boxes;
    for (const TransformRow& row : kTransforms) {
        (*job_).*row.option = true;
        Files files = {folder_.File(L"a.docx", "content")};
        const Files before = files;
        EXPECT_FALSE(CompressUtils::RunTransforms(*job_, files, folder_.Path())) << row.usageWord;
        EXPECT_EQ(files, before);
        (*job_).*row.option = false;
    }
    EXPECT_EQ(obtest::ListTree(folder_.Path()), Files{L"a.docx"});
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"a.docx"), "content");
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(Transforms, StopTheRunOfASingleFileAndLeaveNothing) {
    wchar_t temporary[MAX_PATH];
    ASSERT_NE(GetTempPathW(MAX_PATH, temporary), 0u);
    const Files files = {folder_.File(L"a.docx", "content")};
    const Files before = obtest::ListTree(temporary);
    job_->AutoConvertPDF = true;
    job_->ResultPath = L"kept";

    EXPECT_FALSE(CompressUtils::TransformSingleFile(*job_, files));

    EXPECT_EQ(obtest::ListTree(temporary), before);
    EXPECT_EQ(obtest::ReadFileContent(files[0]), "content");
    EXPECT_EQ(job_->ResultPath, L"kept");
    EXPECT_TRUE(job_->Files.empty());
    EXPECT_TRUE(job_->CleanupFolder.empty());
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

TEST_F(Transforms, AreTheEightProvidersInTheOrderOfSelection) {
    const std::uint32_t ids[] = {3, 65, 2, 5, 50, 51, 66, 70};
    ASSERT_EQ(std::size(kTransforms), std::size(ids));
    for (std::size_t index = 0; index < std::size(ids); ++index) {
        EXPECT_EQ(static_cast<std::uint32_t>(kTransforms[index].id), ids[index]);
        EXPECT_EQ(&obcore::RowOf(kTransforms[index].id), &kTransforms[index]);
    }
}

TEST(TransformTable, AsksForTransformsByAnyOption) {
    EXPECT_FALSE(obcore::WantsTransforms({}));
    EXPECT_FALSE(obcore::WantsTransformsOfOneFile({}));
    for (const TransformRow& row : kTransforms) {
        obcore::OBOptions options;
        options.*row.option = true;
        EXPECT_TRUE(obcore::WantsTransforms(options)) << row.usageWord;
        // Combining means nothing for one file.
        EXPECT_EQ(row.id != obcontract::TransformId::CombinePdfs,
                  obcore::WantsTransformsOfOneFile(options))
            << row.usageWord;
    }
}

} // namespace
