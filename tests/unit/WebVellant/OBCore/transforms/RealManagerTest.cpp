// The run with the real provider manager and its work process: personal data of a photo.
#include "OBCore/transforms/Transforms.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/SamplePhoto.h"

namespace {

using obtest::Lines;

class TransformsByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoRemoveInfo = true;
    }

    bool Transform(int receiptButton) {
        obtest::DialogUiDriver receipt(OB_RECEIPT_LIST, [receiptButton](HWND dialog) {
            obtest::DialogUiDriver::Press(dialog, receiptButton);
        });
        const bool result = obcore::CompressUtils::TransformSingleFile(job_, {source_});
        EXPECT_TRUE(receipt.WasUsed());
        return result;
    }

    const std::string photo_ = samples::Photo();
    const std::wstring source_ = sources_.File(L"photo.jpg", photo_);
};

TEST_F(TransformsByTheRealManager, CleanTheCopyOfAPhoto) {
    EXPECT_TRUE(Transform(IDOK));
    ASSERT_EQ(job_.Files, Lines{RunFolder() + L"photo.jpg"});
    const auto cleaned = obtest::ReadFileContent(job_.Files[0]);
    ASSERT_TRUE(cleaned);
    ASSERT_NE(photo_.find(samples::kCanary), std::string::npos);
    EXPECT_EQ(cleaned->find(samples::kCanary), std::string::npos);
    EXPECT_LT(cleaned->size(), photo_.size());
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\photo.jpg"}));
    EXPECT_EQ(obtest::ReadFileContent(source_), photo_);
}

TEST_F(TransformsByTheRealManager, AttachNothingWhenTheUserRefusesTheReceipt) {
    EXPECT_FALSE(Transform(IDCANCEL));
    EXPECT_TRUE(job_.Files.empty());
    EXPECT_EQ(obtest::ReadFileContent(source_), photo_);
}

} // namespace
