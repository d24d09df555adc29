#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "OBCore/transforms/FileConversionReport.h"
#include "tests/support/FakeModules.h"

namespace {

using namespace obcore;
using Lines = std::vector<std::wstring>;

struct Word {
    bool OBOptions::*option;
    const wchar_t* text;
};

constexpr Word kWords[] = {
    {&OBOptions::AutoConvertPDF, L"DOCTOPDF"},
    {&OBOptions::AutoCombinePDFs, L"COMBINEPDFFILES"},
    {&OBOptions::AutoResizeImages, L"IMAGERESIZE"},
    {&OBOptions::AutoWatermark, L"WATERMARK"},
    {&OBOptions::AutoConvertPhotos, L"CONVPHOTOS"},
    {&OBOptions::AutoRemoveInfo, L"REMOVEPERSDATA"},
    {&OBOptions::AutoSignPDFs, L"SIGNPDFFILES"},
    {&OBOptions::AutoConvertFromPDF, L"PDFTODOC"},
};

std::wstring Event(const std::wstring& words) {
    return L"LogAppletFeature(\"feature.file-conversion\", \"file-conversion.type=" + words +
           L"\")";
}

class FileConversionReport : public testing::Test {
protected:
    void SetUp() override { obtest::FakeModules::Reset(); }

    OBOptions options_;
};

TEST_F(FileConversionReport, SendsNothingWhenNoTransformIsWanted) {
    ReportFileConversion(options_);
    EXPECT_TRUE(obtest::FakeModules::CallsOf({L"LogAppletFeature"}).empty());
}

TEST_F(FileConversionReport, SendsTheWordOfEachTransform) {
    for (const Word& word : kWords) {
        options_.*word.option = true;
        obtest::FakeModules::ForgetCalls();
        ReportFileConversion(options_);
        EXPECT_EQ(obtest::FakeModules::Calls(), Lines{Event(word.text)});
        options_.*word.option = false;
    }
}

TEST_F(FileConversionReport, SendsAllWordsInOrderWithoutTheLastComma) {
    for (const Word& word : kWords) options_.*word.option = true;
    ReportFileConversion(options_);
    EXPECT_EQ(obtest::FakeModules::Calls(),
              Lines{Event(L"DOCTOPDF,COMBINEPDFFILES,IMAGERESIZE,WATERMARK,CONVPHOTOS,"
                          L"REMOVEPERSDATA,SIGNPDFFILES,PDFTODOC")});
}

TEST_F(FileConversionReport, LeavesOutWhatIsOff) {
    options_.AutoConvertFromPDF = true;
    options_.AutoResizeImages = true;
    ReportFileConversion(options_);
    EXPECT_EQ(obtest::FakeModules::Calls(), Lines{Event(L"IMAGERESIZE,PDFTODOC")});
}

} // namespace
