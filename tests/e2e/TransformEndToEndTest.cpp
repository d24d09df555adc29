// Whole requests with the box of a transform ticked: between the picker and the page each file is
// changed by the real provider manager and its work process.
#include <algorithm>
#include <atomic>
#include <thread>

#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/e2e/TickedRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr DWORD kReceiptLimit = 60000; // milliseconds

bool HasReceiptList(HWND window) { return GetDlgItem(window, OB_RECEIPT_LIST) != nullptr; }

// The receipt is a window of the host, which is another process.
bool AnswerReceipt(int button) {
    const HWND receipt = WaitForTopWindow(&HasReceiptList, 0, kReceiptLimit);
    if (!receipt) return false;
    PostMessageW(GetDlgItem(receipt, button), BM_CLICK, 0, 0);
    return WaitUntil([&] { return !IsWindow(receipt); }, kReceiptLimit);
}

// A zip that uses at least 85 percent of what a mail of 1 MB has room for.
void ExpectFitsTheMail(const std::wstring& zip) {
    constexpr std::size_t kRoom = 729'927; // 1,000,000 bytes without what a mail adds
    const std::size_t size = ReadFileContent(zip).value_or("").size();
    EXPECT_LE(size, kRoom);
    EXPECT_GE(size, kRoom * 85 / 100);
}

class TransformEndToEnd : public TickedRequest {
protected:
    // The settings are there, so that the tick asks for none.
    void SetUp() override {
        RealRequest::SetUp();
        Store(51, L"ShowReceipt", L"1");
        Store(51, L"AskAboutOtherFiles", L"1");
        Store(5, L"Text", L"Ann Example");
    }

    using TickedRequest::PickTicked;
    Use PickTicked(Choice choice, Texts paths, int receiptButton) const {
        return [pick = PickTicked(Box::RemovePersonalData, choice, std::move(paths)),
                receiptButton](OpenPicker& picker) {
            pick(picker);
            EXPECT_TRUE(AnswerReceipt(receiptButton));
        };
    }

    void ExpectCleaned(const std::string& content) const {
        ASSERT_NE(photo_.find(samples::kCanary), std::string::npos);
        EXPECT_EQ(content.find(samples::kCanary), std::string::npos);
        EXPECT_LT(content.size(), photo_.size());
        EXPECT_GT(content.size(), photo_.size() / 10);
    }
    // The picked photo is as it was, and nothing is left but what the page was given.
    void ExpectNoMoreThan(const Texts& left) const {
        EXPECT_EQ(ReadFileContent(source_), photo_);
        EXPECT_EQ(LeftInTemp(), left);
    }

    const std::string photo_ = samples::Photo();
    const std::wstring source_ = files_.File(L"photo.jpg", photo_);
};

TEST_F(TransformEndToEnd, GivesACleanedCopyOfOnePhoto) {
    PickerUiDriver driver(PickTicked(Choice::None, {source_}, IDOK));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.result, TRUE);
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(NameOf(answer.given[0]), L"photo.jpg");
    EXPECT_NE(answer.given[0], source_);
    ExpectCleaned(ReadFileContent(answer.given[0]).value_or(""));
    const std::wstring folder = FolderOf(answer.given[0]).substr(TempFolder().size() + 1);
    ExpectNoMoreThan({folder, folder + L"photo.jpg"});
}

TEST_F(TransformEndToEnd, GivesTheDialogsPageACleanedCopyToo) {
    PickerUiDriver driver(PickTicked(Choice::None, {source_}, IDOK));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    Texts paths;
    ASSERT_EQ(GetResults(paths), S_OK);
    ASSERT_EQ(paths.size(), 1u);
    EXPECT_EQ(NameOf(paths[0]), L"photo.jpg");
    ExpectCleaned(ReadFileContent(paths[0]).value_or(""));
}

TEST_F(TransformEndToEnd, ZipsTheCleanedPhotoAndTheFileThatIsAttachedAnyway) {
    const std::wstring text = files_.File(L"letter.txt", "Dear all");
    PickerUiDriver driver(PickTicked(Choice::Zip, {source_, text}, IDOK));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 2u);
    ExpectCleaned(entries.at("photo.jpg").content);
    EXPECT_EQ(entries.at("letter.txt").content, "Dear all");
    const std::wstring folder = FolderOf(answer.given[0]).substr(TempFolder().size() + 1);
    ExpectNoMoreThan({folder, folder + NameOf(answer.given[0])});
}

TEST_F(TransformEndToEnd, GivesNothingWhenTheReceiptIsRefused) {
    PickerUiDriver driver(PickTicked(Choice::Zip, {source_, files_.File(L"letter.txt")}, IDCANCEL));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    ExpectNoMoreThan({});
}

TEST_F(TransformEndToEnd, LaysAWatermarkOverAPdfAndLeavesATextAsItIs) {
    const std::string pdf = samples::OnePage().File();
    const std::wstring pages = files_.File(L"pages.pdf", pdf);
    const std::wstring text = files_.File(L"letter.txt", "Dear all");
    PickerUiDriver driver(PickTicked(Box::AddWatermark, Choice::Zip, {pages, text}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 2u);
    const std::string& marked = entries.at("pages.pdf").content;
    EXPECT_TRUE(marked.starts_with("%PDF-"));
    EXPECT_NE(marked.find("/ObStamp1"), std::string::npos);
    EXPECT_EQ(entries.at("letter.txt").content, "Dear all");
    EXPECT_EQ(ReadFileContent(pages), pdf);
    const std::wstring folder = FolderOf(answer.given[0]).substr(TempFolder().size() + 1);
    ExpectNoMoreThan({folder, folder + NameOf(answer.given[0])});
}

// The box asks for no settings; it may tick another transform, about which a sentence may be shown.
TEST_F(TransformEndToEnd, ZipsOnePdfInThePlaceOfThree) {
    const std::string pdf = samples::OnePage().File();
    Texts picked;
    for (const wchar_t* name : {L"one.pdf", L"two.pdf", L"three.pdf"}) {
        picked.push_back(files_.File(name, pdf));
    }
    picked.push_back(files_.File(L"data.bin", "Dear all"));
    obtest::MessageBoxWatcher boxes(obtest::MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(PickTicked(Box::CombinePdfs, Choice::Zip, picked));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 2u);
    const std::string& combined = entries.at("one.pdf").content;
    EXPECT_TRUE(combined.starts_with("%PDF-"));
    EXPECT_NE(combined.find("/Count 3"), std::string::npos);
    EXPECT_EQ(entries.at("data.bin").content, "Dear all");
    for (std::size_t file = 0; file < 3; ++file) EXPECT_EQ(ReadFileContent(picked[file]), pdf);
    const std::wstring folder = FolderOf(answer.given[0]).substr(TempFolder().size() + 1);
    ExpectNoMoreThan({folder, folder + NameOf(answer.given[0])});
}

// Pictures that become PDFs.
class PdfEndToEnd : public TickedRequest {
protected:
    // The settings are there and want no documents, so that the tick shows nothing.
    void SetUp() override {
        RealRequest::SetUp();
        Store(3, L"Page", L"A4");
        Store(3, L"Documents", L"0");
    }
    static std::string Coded() {
        const auto jpeg = MakeJpeg(Photo(300, 200, 3));
        return {jpeg.begin(), jpeg.end()};
    }
};

TEST_F(PdfEndToEnd, GivesAPdfWithTheDataOfThePhoto) {
    const std::string photo = Coded();
    const std::wstring source = files_.File(L"photo.jpg", photo);
    PickerUiDriver driver(PickTicked(Box::ConvertPdf, Choice::None, {source}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(NameOf(answer.given[0]), L"photo.pdf");
    const std::string pdf = ReadFileContent(answer.given[0]).value_or("");
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_NE(pdf.find(photo), std::string::npos);
    EXPECT_NE(pdf.find("/MediaBox [0 0 841.89 595.276]"), std::string::npos);
    EXPECT_EQ(ReadFileContent(source), photo);
}

TEST_F(PdfEndToEnd, ZipsPdfsBesideFilesThatStayAsTheyAre) {
    const Texts picked{files_.File(L"one.jpg", Coded()), files_.File(L"one.pdf", "%PDF-1.4"),
                       files_.File(L"letter.txt", "Dear all")};
    PickerUiDriver driver(PickTicked(Box::ConvertPdf, Choice::Zip, picked));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_NE(entries.at("one (2).pdf").content.find(Coded()), std::string::npos);
    EXPECT_EQ(entries.at("one.pdf").content, "%PDF-1.4");
    EXPECT_EQ(entries.at("letter.txt").content, "Dear all");
}

// Pictures that are made smaller.
class ResizeEndToEnd : public TickedRequest {
protected:
    static void Aim(const wchar_t* aim, const wchar_t* name, const wchar_t* number) {
        Store(2, L"Aim", aim);
        Store(2, name, number);
    }
    static std::string Coded(unsigned width, unsigned seed, unsigned grain) {
        const auto jpeg = MakeJpeg(Photo(width, 900, 3, 8, seed, grain), {.quality = 95});
        return {jpeg.begin(), jpeg.end()};
    }
    static unsigned WidthOf(const std::string& jpeg) {
        return ParseJpeg({jpeg.begin(), jpeg.end()}).raster.width;
    }
};

TEST_F(ResizeEndToEnd, GivesASmallerCopyOfOnePhoto) {
    Aim(L"LongestEdge", L"Pixels", L"300");
    const std::string photo = Coded(1200, 1, 16);
    const std::wstring source = files_.File(L"photo.jpg", photo);
    PickerUiDriver driver(PickTicked(Box::ResizeImages, Choice::None, {source}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    EXPECT_EQ(NameOf(answer.given[0]), L"photo.jpg");
    EXPECT_EQ(WidthOf(ReadFileContent(answer.given[0]).value_or("")), 300u);
    EXPECT_EQ(ReadFileContent(source), photo);
}

TEST_F(ResizeEndToEnd, GivesOneZipThatFitsTheMail) {
    Aim(L"FitMail", L"Megabytes", L"1");
    Texts paths;
    for (unsigned number = 0; number < 4; ++number) {
        paths.push_back(files_.File(L"p" + std::to_wstring(number) + L".jpg",
                                    Coded(1000 + 100 * number, number + 1, 40)));
    }
    std::string text;
    while (text.size() < 1'500'000) text += "line " + std::to_string(text.size() % 977) + "\r\n";
    paths.push_back(files_.File(L"log.txt", text));
    PickerUiDriver driver(PickTicked(Box::ResizeImages, Choice::Zip, paths));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    ExpectFitsTheMail(answer.given[0]);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 5u);
    EXPECT_EQ(entries.at("log.txt").content, text);
    EXPECT_GT(WidthOf(entries.at("p3.jpg").content), 300u);
    const std::wstring folder = FolderOf(answer.given[0]).substr(TempFolder().size() + 1);
    EXPECT_EQ(LeftInTemp(), (Texts{folder, folder + NameOf(answer.given[0])}));
}

// Photos that are converted in every run since the user chose so once.
class SavedOptionEndToEnd : public TickedRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        SetUserValue(L"AutoConvertPhotos", L"1");
        SetUserValue(L"AutoRemoveInfo", L"1");
        Store(50, L"Bmp", L"1");
        Store(51, L"ShowReceipt", L"0");
        Store(51, L"AskAboutOtherFiles", L"0");
    }
    // 24 bits a pixel, all of one colour; the side is a multiple of 4.
    static std::string Bmp(int side = 16) {
        BITMAPINFOHEADER info{sizeof(info), side, side, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        const std::string pixels(static_cast<std::size_t>(3 * side * side), '\x55');
        BITMAPFILEHEADER head{};
        head.bfType = 0x4D42;
        head.bfOffBits = sizeof(head) + sizeof(info);
        head.bfSize = static_cast<DWORD>(head.bfOffBits + pixels.size());
        return std::string(reinterpret_cast<const char*>(&head), sizeof(head)) +
               std::string(reinterpret_cast<const char*>(&info), sizeof(info)) + pixels;
    }
};

TEST_F(SavedOptionEndToEnd, ConvertsAPhotoAndCleansAnotherOne) {
    const std::wstring bitmap = files_.File(L"scan.bmp", Bmp());
    const std::wstring photo = files_.File(L"photo.jpg", samples::Photo());
    PickerUiDriver driver(Pick(Choice::Zip, {bitmap, photo}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_TRUE(entries.at("scan.jpg").content.starts_with("\xFF\xD8"));
    EXPECT_EQ(entries.at("photo.jpg").content.find(samples::kCanary), std::string::npos);
    EXPECT_EQ(ReadFileContent(bitmap), Bmp());
}

// Pictures that fit the mail once they are converted, stamped and made smaller, all in one pass.
TEST_F(SavedOptionEndToEnd, GivesOneZipOfConvertedAndStampedPicturesThatFitsTheMail) {
    SetUserValue(L"AutoResizeImages", L"1");
    SetUserValue(L"AutoWatermark", L"1");
    Store(2, L"Aim", L"FitMail");
    Store(2, L"Megabytes", L"1");
    Store(5, L"Text", L"Ann Example");
    Store(5, L"Place", L"Centre");
    Store(5, L"Opacity", L"100");
    const std::wstring bitmap = files_.File(L"scan.bmp", Bmp(800));
    Texts paths{bitmap};
    for (unsigned number = 0; number < 3; ++number) {
        const auto jpeg = MakeJpeg(Photo(1000, 900, 3, 8, number + 1, 40), {.quality = 95});
        paths.push_back(files_.File(L"p" + std::to_wstring(number) + L".jpg",
                                    std::string(jpeg.begin(), jpeg.end())));
    }
    PickerUiDriver driver(Pick(Choice::Zip, paths));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(answer.given.size(), 1u);
    ExpectFitsTheMail(answer.given[0]);
    const auto entries = ReadZip(answer.given[0]);
    ASSERT_EQ(entries.size(), 4u);
    const std::string& scan = entries.at("scan.jpg").content;
    const Raster pixels = ParseJpeg({scan.begin(), scan.end()}).raster;
    unsigned lightest = 0; // of the row through the letters, on a dark ground
    for (unsigned x = 0; x < pixels.width; ++x)
        lightest = std::max(lightest, pixels.At(x, pixels.height / 2, 0));
    EXPECT_GT(lightest, 200u);
    EXPECT_EQ(ReadFileContent(bitmap), Bmp(800));
}

} // namespace
} // namespace obtest
