// Whole requests in which a transform fails: the page gets a cancel, the user one sentence with the
// file's name, the picked files are as they were, and nothing changed is left.
#include <algorithm>
#include <optional>

#include "tests/e2e/Missing.h"
#include "tests/e2e/TickedRequest.h"
#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr wchar_t kWorkProcess[] = L"PVXTransform64.exe";
constexpr wchar_t kDamaged[] = L"K\u00F6ln.jpg";

class FailedTransform : public TickedRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        Store(2, L"Aim", L"LongestEdge");
        Store(2, L"Pixels", L"100");
        Store(50, L"Quality", L"High");
        Store(50, L"Bmp", L"1");
        Store(51, L"ShowReceipt", L"1");
    }

    static std::string Jpeg() {
        const auto jpeg = MakeJpeg(Photo(300, 200, 3));
        return {jpeg.begin(), jpeg.end()};
    }
    // A bitmap whose header promises more rows than there are.
    static std::string CutBitmap() {
        constexpr int kSide = 64;
        BITMAPINFOHEADER info{sizeof(info), kSide, kSide, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        BITMAPFILEHEADER head{};
        head.bfType = 0x4D42;
        head.bfOffBits = sizeof(head) + sizeof(info);
        head.bfSize = head.bfOffBits + 3 * kSide * kSide;
        return std::string(reinterpret_cast<const char*>(&head), sizeof(head)) +
               std::string(reinterpret_cast<const char*>(&info), sizeof(info)) +
               std::string(3 * kSide, '\x55');
    }

    std::wstring Pickable(const std::wstring& name, const std::string& content) {
        const std::wstring path = files_.File(name, content);
        picked_.push_back({path, content});
        return path;
    }
    Texts Picked() const {
        Texts paths;
        for (const auto& [path, content] : picked_) paths.push_back(path);
        return paths;
    }

    // Asks on both entry points; `use` is what the UI driver does in each picker.
    void ExpectCancelsWithASentence(const Use& use, const std::wstring& sentence) {
        const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
        {
            PickerUiDriver driver(use);
            const OpenAnswer answer = AskOpen();
            EXPECT_TRUE(driver.Done());
            EXPECT_EQ(answer.result, FALSE);
            EXPECT_EQ(answer.given, Texts{});
        }
        ExpectOneSentence(boxes, 1, sentence);
        {
            PickerUiDriver driver(use);
            EXPECT_EQ(AskShow(), kCancelled);
            EXPECT_TRUE(driver.Done());
        }
        ExpectOneSentence(boxes, 2, sentence);
        EXPECT_EQ(browser_.OwnDialogCount(), 0u);
        ExpectNothingLeft();
        ExpectPickedFilesAsTheyWere();
    }
    // Of a run for a single file its copy stays, however the run ended; it is as it was picked.
    void ExpectNothingLeft() const {
        const Texts left = LeftInTemp();
        if (picked_.size() > 1) {
            EXPECT_EQ(left, Texts{});
            return;
        }
        for (const std::wstring& item : left) {
            if (item.ends_with(L'\\')) continue;
            EXPECT_EQ(NameOf(item), NameOf(picked_[0].first));
            EXPECT_EQ(ReadFileContent(TempFolder() + L'\\' + item), picked_[0].second);
        }
    }
    void ExpectPickedFilesAsTheyWere() const {
        for (const auto& [path, content] : picked_) {
            EXPECT_EQ(ReadFileContent(path), content) << Utf8(path);
        }
        const auto mine = ListTree(files_.Path());
        EXPECT_EQ(mine.size(), picked_.size());
    }
    // So many sentences were shown so far, and the last one is this.
    static void ExpectOneSentence(const MessageBoxWatcher& boxes, std::size_t count,
                                  const std::wstring& sentence) {
        ASSERT_EQ(boxes.Seen().size(), count);
        EXPECT_EQ(boxes.Seen().back().text, sentence) << Utf8(boxes.Seen().back().text);
    }
    static std::wstring MissingSentence(const std::wstring& name) {
        return L"\u201C" + name +
               L"\u201D can't be changed, because the program PVXTransform64.exe is missing or "
               L"can't be started. Nothing was attached, and your files are unchanged. Please "
               L"repair the installation.";
    }

private:
    std::vector<std::pair<std::wstring, std::string>> picked_;
};

TEST_F(FailedTransform, OfADamagedPictureGivesTheUserOneSentence) {
    Pickable(L"a.jpg", Jpeg());
    Pickable(kDamaged, Jpeg().substr(0, 2000));
    Pickable(L"letter.txt", "Dear all");
    ExpectCancelsWithASentence(
        PickTicked(Box::ResizeImages, Choice::Zip, Picked()),
        L"\u201CK\u00F6ln.jpg\u201D can't be made smaller, because it is damaged. Nothing was "
        L"attached, and your files are unchanged.");
}

TEST_F(FailedTransform, OfOneDamagedPictureGivesTheUserOneSentence) {
    Pickable(kDamaged, Jpeg().substr(0, 2000));
    ExpectCancelsWithASentence(
        PickTicked(Box::ResizeImages, Choice::None, Picked()),
        L"\u201CK\u00F6ln.jpg\u201D can't be made smaller, because it is damaged. Nothing was "
        L"attached, and your files are unchanged.");
}

TEST_F(FailedTransform, OfADamagedPhotoGivesTheUserOneSentence) {
    Pickable(L"a.jpg", Jpeg());
    Pickable(L"scan.bmp", CutBitmap());
    ExpectCancelsWithASentence(
        PickTicked(Box::ConvertPhotos, Choice::Zip, Picked()),
        L"\u201Cscan.bmp\u201D can't be converted, because the photo is damaged. Nothing was "
        L"attached, and your files are unchanged. Please leave the photo out and try again.");
}

// The file goes between the tick, which asks for the program, and the work.
TEST_F(FailedTransform, WithoutItsProgramGivesTheUserOneSentence) {
    Pickable(L"a.jpg", samples::Photo());
    Pickable(L"letter.txt", "Dear all");
    for (const Box box : {Box::ResizeImages, Box::RemovePersonalData}) {
        std::optional<Missing> missing;
        const Use use = [&, box, pick = Pick(Choice::Zip, Picked())](OpenPicker& picker) {
            const std::wstring text = Text(static_cast<UINT>(box));
            ASSERT_TRUE(WaitUntil([&] { return picker.IsEnabled(text); }));
            missing.reset();
            ASSERT_TRUE(picker.Click(text));
            ASSERT_TRUE(WaitUntil([&] { return picker.IsChecked(text); }));
            missing.emplace(kWorkProcess);
            pick(picker);
        };
        ExpectCancelsWithASentence(use, MissingSentence(L"a.jpg"));
    }
}

// A message comes at the tick, the box stays empty, and the files go out as they are.
TEST_F(FailedTransform, CantBeTickedWithoutItsProgram) {
    const Missing missing(kWorkProcess);
    const std::wstring photo = Pickable(L"a.jpg", samples::Photo());
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver([&](OpenPicker& picker) {
        const std::wstring box = Text(static_cast<UINT>(Box::RemovePersonalData));
        ASSERT_TRUE(WaitUntil([&] { return picker.IsEnabled(box); }));
        ASSERT_TRUE(picker.Click(box));
        EXPECT_TRUE(boxes.WaitFor(1));
        EXPECT_TRUE(WaitUntil(
            [&] { return IsWindowEnabled(picker.Window()) != FALSE && !picker.IsChecked(box); }));
        Pick(Choice::None, Picked())(picker);
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.given, Texts{photo});
    ExpectOneSentence(boxes, 1,
                      L"Files can't be changed, because the program PVXTransform64.exe is "
                      L"missing. Please repair the installation.");
    ExpectPickedFilesAsTheyWere();
}

// A saved option ticks nothing, so nobody is asked for the program before the work.
TEST_F(FailedTransform, OfASavedOptionWithoutItsProgramGivesTheUserOneSentence) {
    SetUserValue(L"AutoConvertPhotos", L"1");
    const Missing missing(kWorkProcess);
    Pickable(L"scan.bmp", CutBitmap());
    ExpectCancelsWithASentence(Pick(Choice::None, Picked()), MissingSentence(L"scan.bmp"));
}

} // namespace
} // namespace obtest
