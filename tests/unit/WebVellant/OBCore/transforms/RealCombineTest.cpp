// Runs with the real provider manager and its work process that make one PDF of several: what is
// attached, what is on the disk.
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>

#include "OBCore/transforms/Transforms.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

namespace {

using obtest::Lines;

class PdfsByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoCombinePDFs = true;
    }
    // A working copy in the run's folder.
    std::wstring Copy(const wchar_t* name, const std::string& content) {
        const std::wstring path = folder_ + name;
        EXPECT_TRUE(obtest::WriteFileContent(path, content));
        return path;
    }
    static std::string Form(const std::string& value) {
        samples::PdfBuilder pdf =
            samples::OnePage("/Annots [5 0 R]", "/AcroForm <</Fields [5 0 R]>>");
        pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name) /V (" + value +
                ")>>");
        return pdf.File();
    }
    // The full names and values of a file's form fields.
    static std::string Fields(const std::wstring& path, std::size_t& pages) {
        const std::string file = obtest::ReadFileContent(path).value_or("");
        QPDF pdf;
        pdf.processMemoryFile("combined", file.data(), file.size());
        pages = pdf.getAllPages().size();
        std::string text;
        for (auto& field : QPDFAcroFormDocumentHelper(pdf).getFormFields()) {
            text += field.getFullyQualifiedName() + "=" + field.getValueAsString() + ";";
        }
        return text;
    }

    const std::wstring folder_ = temp_.Folder(L"run") + L"\\";
};

TEST_F(PdfsByTheRealManager, BecomeOneInThePlaceOfTheFirst) {
    Lines files{Copy(L"Letter.bin", "text"), Copy(L"b.pdf", Form("one")), Copy(L"a.bin", "text"),
                Copy(L"a.pdf", Form("two")), Copy(L"c.pdf", Form("three"))};
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder_));
    EXPECT_EQ(files, (Lines{folder_ + L"Letter.bin", folder_ + L"b.pdf", folder_ + L"a.bin"}));
    EXPECT_EQ(obtest::ListTree(folder_), (Lines{L"Letter.bin", L"a.bin", L"b.pdf"}));
    std::size_t pages = 0;
    EXPECT_EQ(Fields(files[1], pages), "name=one;name (2)=two;name (3)=three;");
    EXPECT_EQ(pages, 3u);
}

TEST_F(PdfsByTheRealManager, AreCleanedBeforeAndAfterTheyBecomeOne) {
    job_.AutoRemoveInfo = true;
    const std::string author = "/Annots [<</Type /Annot /Subtype /Text /Rect [0 0 9 9] /T (CANARY) "
                               "/Contents (a note)>>]";
    Lines files{Copy(L"a.pdf", samples::OnePage().File()),
                Copy(L"b.pdf", samples::OnePage(author).File())};
    std::wstring list;
    obtest::DialogUiDriver receipt(OB_RECEIPT_LIST, [&](HWND dialog) {
        list = obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_LIST));
        obtest::DialogUiDriver::Press(dialog, IDOK);
    });
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder_));
    EXPECT_TRUE(receipt.WasUsed());
    EXPECT_EQ(files, Lines{folder_ + L"a.pdf"});
    EXPECT_EQ(obtest::ListTree(folder_), Lines{L"a.pdf"});
    const std::string file = obtest::ReadFileContent(files[0]).value_or("");
    EXPECT_EQ(file.find("CANARY"), std::string::npos);
    std::size_t pages = 0;
    Fields(files[0], pages);
    EXPECT_EQ(pages, 2u);
    // What went from the second file is in the row of the first, which is all that goes out.
    EXPECT_NE(list.find(L"a.pdf: removed"), std::wstring::npos);
    EXPECT_NE(list.find(L"who wrote its comments"), std::wstring::npos);
    EXPECT_EQ(list.find(L"b.pdf"), std::wstring::npos);
}

TEST_F(PdfsByTheRealManager, StayAsTheyAreWhenOneIsDamaged) {
    const std::string good = Form("one");
    Lines files{Copy(L"a.pdf", good), Copy(L"b.pdf", good.substr(0, good.size() / 2))};
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(obcore::CompressUtils::RunTransforms(job_, files, folder_));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"b.pdf"), std::wstring::npos);
    EXPECT_EQ(obtest::ReadFileContent(folder_ + L"a.pdf"), good);
    EXPECT_EQ(obtest::ListTree(folder_), (Lines{L"a.pdf", L"b.pdf"}));
}

} // namespace
