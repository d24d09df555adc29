// Runs without a zip: the files as they were picked, or one converted copy.
#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obcore::OBOptions;
using obtest::FakeModules;
using obtest::Lines;

// The transforms that count for a single file.
constexpr bool OBOptions::*kSingleFileTransforms[] = {
    &OBOptions::AutoConvertPDF,    &OBOptions::AutoResizeImages, &OBOptions::AutoWatermark,
    &OBOptions::AutoConvertPhotos, &OBOptions::AutoRemoveInfo,   &OBOptions::AutoSignPDFs,
    &OBOptions::AutoConvertFromPDF};

class NoZip : public obtest::PlanningFixture {
protected:
    void SetUp() override {
        PlanningFixture::SetUp();
        job_.SendItem = false;
        job_.SingleAttachConversion = true;
    }
    void TurnAllTransformsOn() {
        for (const auto transform : kSingleFileTransforms) job_.*transform = true;
        job_.AutoCombinePDFs = true;
    }
    // The files went through as picked, with nothing but the report.
    void ExpectAttachedAsPicked(const Lines& picked) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(Process(picked), 1);
        EXPECT_EQ(FakeModules::Calls(), PlainReport());
        EXPECT_EQ(job_.Files, picked);
        EXPECT_FALSE(job_.ResultIsArchive);
        EXPECT_TRUE(Left().empty());
    }

    std::wstring one_ = sources_.File(L"one.docx");
    std::wstring two_ = sources_.File(L"two.docx");
};

TEST_F(NoZip, AttachesAsPicked) {
    ExpectAttachedAsPicked({one_});
    ExpectAttachedAsPicked({two_, one_});
}

TEST_F(NoZip, AttachesAnEmptyListAsItIs) { ExpectAttachedAsPicked({}); }

TEST_F(NoZip, AttachesAnArchiveAsItIs) { ExpectAttachedAsPicked({sources_.File(L"a.zip")}); }

TEST_F(NoZip, ForgetsTheUsageFlagsOfAnEarlierRun) {
    job_.Usage = {true, true, true, true, true};
    ExpectAttachedAsPicked({one_});
    EXPECT_FALSE(job_.Usage.UsageZipped);
    EXPECT_FALSE(job_.Usage.UsageZipx);
    EXPECT_FALSE(job_.Usage.UsageExpiry);
    EXPECT_FALSE(job_.Usage.UsageEncrypted);
    EXPECT_FALSE(job_.Usage.UsageLink);
}

TEST_F(NoZip, ReportsTheBrowser) {
    job_.BrowserImagePath = L"\\Device\\Volume1\\Browser\\browser.exe";
    EXPECT_EQ(Process({one_}), 1);
    Lines reports = PlainReport();
    reports.push_back(L"LogAppletFeature(\"feature.email-share\", \"email-share.source=browser\")");
    EXPECT_EQ(UsageReports(), reports);
}

TEST_F(NoZip, NeverTransformsSeveralFiles) {
    TurnAllTransformsOn();
    ExpectAttachedAsPicked({one_, two_});
}

TEST_F(NoZip, NeverSendsToTheCloud) {
    job_.SendSetting = obcore::SendSettingKind::Always;
    job_.SelectedStorageProvider.providerId = 7;
    ExpectAttachedAsPicked({one_});
}

TEST_F(NoZip, ConvertsASingleFileForEachOfItsTransforms) {
    for (const auto transform : kSingleFileTransforms) {
        FakeModules::ForgetCalls();
        job_.*transform = true;
        EXPECT_EQ(Process({one_}), 1);
        EXPECT_EQ(FakeModules::Calls(), Lines{L"TransformSingleFile([" + Quote(one_) + L"])"});
        job_.*transform = false;
    }
}

TEST_F(NoZip, AnswersWhatTheConversionAnswers) {
    job_.AutoWatermark = true;
    obtest::TheFakePipeline().transformSingleFile = [](auto&) { return false; };
    EXPECT_EQ(Process({one_}), 0);
    EXPECT_TRUE(UsageReports().empty());
    EXPECT_TRUE(job_.Files.empty());
}

TEST_F(NoZip, DoesNotCombineASingleFile) {
    job_.AutoCombinePDFs = true;
    ExpectAttachedAsPicked({one_});
}

TEST_F(NoZip, ConvertsASingleFileOnlyWhenTheOptionIsOn) {
    TurnAllTransformsOn();
    job_.SingleAttachConversion = false;
    ExpectAttachedAsPicked({one_});
}

TEST_F(NoZip, LeavesTheTransformsOfAZipToTheZipRoute) {
    TurnAllTransformsOn();
    for (bool OBOptions::*reason : {&OBOptions::SendItem, &OBOptions::AutoEncrypt}) {
        FakeModules::ForgetCalls();
        job_.*reason = true;
        EXPECT_EQ(Process({one_}), 1);
        EXPECT_TRUE(FakeModules::CallsOf({L"TransformSingleFile"}).empty());
        EXPECT_EQ(FakeModules::CallsOf({L"RunTransforms"}).size(), 1u);
        job_.*reason = false;
    }
}

} // namespace
