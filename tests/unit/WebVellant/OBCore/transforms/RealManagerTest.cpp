// The run with the real provider manager and its work process: personal data of a photo
// and of documents.
#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "OBCore/transforms/DoTransformsProgress.h"
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

// Whole runs of the planning.
class PlannedCleaning : public TransformsByTheRealManager {
protected:
    class Picker : public obcore::OBOpenFileNameDlg {
    public:
        explicit Picker(obcore::OBAttachJob& job) : OBOpenFileNameDlg(nullptr, job) {}
        int ShowPickerDialog() override { return 0; }
    };
};

HWND cancelledDialog = nullptr;

// The command is in the queue when the final stage begins, which takes it while it waits for the
// work process.
LRESULT CALLBACK CancelTheFinalStage(int code, WPARAM wParam, LPARAM lParam) {
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && sent.message == obcore::kFinalStageMessage && !cancelledDialog &&
        obtest::IsDialog(sent.hwnd)) {
        cancelledDialog = sent.hwnd;
        PostMessageW(sent.hwnd, WM_COMMAND, IDCANCEL, 0);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(PlannedCleaning, LeavesNothingAfterACancelInTheFinalStage) {
    job_.SendItem = true;
    job_.SendSetting = obcore::SendSettingKind::Never;
    obtest::SetValue(HKEY_CURRENT_USER,
                     std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\51",
                     L"ShowReceipt", L"1");
    Lines picked{source_};
    for (const wchar_t* name : {L"a.jpg", L"b.jpg", L"c.jpg"}) {
        picked.push_back(sources_.File(name, photo_));
    }
    const ObLib::UniqueWindowHook hook(
        SetWindowsHookExW(WH_CALLWNDPROC, &CancelTheFinalStage, nullptr, GetCurrentThreadId()));
    const obtest::MessageBoxWatcher boxes;
    obtest::DialogUiDriver receipt(OB_RECEIPT_LIST, [](HWND) {});
    EXPECT_EQ(Picker(job_).ProcessPickedFiles(picked), 0);
    EXPECT_NE(cancelledDialog, nullptr);
    EXPECT_FALSE(receipt.WasUsed());
    obcore::ProviderManager().Deinit(job_.OwnedProviderManager); // as the end of a run does
    EXPECT_TRUE(job_.Files.empty());
    EXPECT_TRUE(Left().empty());
    EXPECT_TRUE(boxes.Seen().empty());
    for (const std::wstring& path : picked) EXPECT_EQ(obtest::ReadFileContent(path), photo_);
}

} // namespace
