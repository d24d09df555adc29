// The report with no archive service beside the program.
#include <gtest/gtest.h>

#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/transforms/FileConversionReport.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"

namespace {

TEST(FileConversionReportAlone, IsSilentlyNotSentWithoutTheArchiveService) {
    obtest::FakeModules::Reset();
    const obtest::MessageBoxWatcher boxes;
    obcore::OBOptions options;
    options.AutoConvertPDF = true;

    obcore::ReportFileConversion(options);

    EXPECT_FALSE(obcore::LoadArchiveService());
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
    EXPECT_TRUE(boxes.Seen().empty());
}

} // namespace
