// The run with the real provider manager and its work process: personal data of a photo
// and of documents.
#include "OBCore/transforms/Transforms.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/transforms/documents/AnyFile.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/OdfSamples.h"
#include "tests/unit/services/transforms/documents/OoxmlSamples.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

namespace {

using obtest::Lines;

class TransformsByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoRemoveInfo = true;
    }

    bool Transform(int receiptButton) { return Transform(receiptButton, source_); }

    bool Transform(int receiptButton, const std::wstring& source) {
        obtest::DialogUiDriver receipt(OB_RECEIPT_LIST, [&](HWND dialog) {
            receipt_ = obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_LIST));
            obtest::DialogUiDriver::Press(dialog, receiptButton);
        });
        const bool result = obcore::CompressUtils::TransformSingleFile(job_, {source});
        EXPECT_TRUE(receipt.WasUsed());
        return result;
    }

    // The copy loses the canary, its file is whole, and the receipt names what stays.
    void ExpectCleanedDocument(const wchar_t* name, const std::string& content) {
        const std::wstring source = sources_.File(name, content);
        EXPECT_TRUE(Transform(IDOK, source));
        ASSERT_EQ(job_.Files, Lines{RunFolder() + name});
        const auto cleaned = obtest::ReadFileContent(job_.Files[0]);
        ASSERT_TRUE(cleaned);
        EXPECT_NE(*cleaned, content);
        const auto again = transforms::CleanFile(std::as_bytes(std::span(*cleaned)));
        EXPECT_EQ(again.outcome, transforms::CleanOutcome::NothingFound);
        EXPECT_NE(receipt_.find(std::wstring(name) + L": removed"), std::wstring::npos);
        EXPECT_NE(receipt_.find(std::wstring(name) + L": still contains"), std::wstring::npos);
        EXPECT_EQ(obtest::ReadFileContent(source), content);
    }

    const std::string photo_ = samples::Photo();
    const std::wstring source_ = sources_.File(L"photo.jpg", photo_);
    std::wstring receipt_; // the list that the user saw
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

TEST_F(TransformsByTheRealManager, CleanTheCopyOfAPdf) {
    ExpectCleanedDocument(
        L"letter.pdf",
        samples::OnePage("/Annots [<</Type /Annot /Subtype /Text /Rect [0 0 9 9] /T (CANARY) "
                         "/Contents (a note)>>]")
            .File());
}

TEST_F(TransformsByTheRealManager, CleanTheCopyOfAnOoxmlDocument) {
    ExpectCleanedDocument(L"letter.docx", samples::Docx().File());
}

TEST_F(TransformsByTheRealManager, CleanTheCopyOfAnOdfDocument) {
    ExpectCleanedDocument(L"letter.odt", samples::Odt().File());
}

TEST_F(TransformsByTheRealManager, NameASignedDocumentAndLeaveItAsItIs) {
    const std::string content = samples::OnePage("", "/Perms <</DocMDP <</Type /Sig /Contents <00> "
                                                     "/ByteRange [0 1 2 3]>>>>")
                                    .File();
    EXPECT_TRUE(Transform(IDOK, sources_.File(L"contract.pdf", content)));
    EXPECT_NE(receipt_.find(L"contract.pdf: can't be cleaned, it is signed"), std::wstring::npos);
    ASSERT_EQ(job_.Files, Lines{RunFolder() + L"contract.pdf"});
    EXPECT_EQ(obtest::ReadFileContent(job_.Files[0]), content);
}

TEST_F(TransformsByTheRealManager, AttachNothingWhenTheUserRefusesTheReceipt) {
    EXPECT_FALSE(Transform(IDCANCEL));
    EXPECT_TRUE(job_.Files.empty());
    EXPECT_EQ(obtest::ReadFileContent(source_), photo_);
}

} // namespace
