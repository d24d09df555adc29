// Watermarks in the stages of the manager's module, with a work process that does what the test
// asks.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/ui/WatermarkDialogIds.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

namespace {

using namespace stagetest;

constexpr std::uint32_t kWatermark = 5;
const std::wstring kWatermarkKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\5";

class WatermarkStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(kWatermark);
        Set(L"Text", L"Ann Example");
        Set(L"Place", L"TopRight");
        Set(L"Opacity", L"45");
    }
    static void Set(const wchar_t* name, const wchar_t* text) {
        obtest::SetValue(HKEY_CURRENT_USER, kWatermarkKey, name, text);
    }
    // Runs the stage on a file about which a question is asked; gives the question.
    std::wstring Asked(const char* word, int answer, bool& goesOn) {
        Script(word);
        obtest::MessageBoxWatcher boxes;
        boxes.AnswerWith(answer);
        const std::wstring path = folder_.File(L"contract.pdf", "pages");
        goesOn = Execute(path);
        EXPECT_EQ(Content(path), "pages");
        EXPECT_EQ(Files(), (Names{L"contract.pdf"}));
        const auto seen = boxes.Seen();
        EXPECT_EQ(seen.size(), 1u);
        if (seen.empty()) return {};
        EXPECT_EQ(seen[0].defaultButton, IDNO);
        return seen[0].text;
    }
};

TEST_F(WatermarkStages, WorkOnEachFile) {
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, kWatermark, kTransform));
    EXPECT_EQ(Counts(), (std::vector<std::int32_t>{0, 0, 1, 0}));
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "mark 2 45 Ann Example");
    EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

TEST_F(WatermarkStages, ComeAfterResizeAndBeforePersonalData) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 2, kTransform));
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    DeleteFileW(obtest::BesideProgram(L"kinds.txt").c_str());
    Script("record");
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(obtest::ReadFileContent(obtest::BesideProgram(L"kinds.txt")), "3 9 1 ");
}

// The watermark takes some bytes of a picture that was made to take so many at most.
TEST_F(WatermarkStages, AreWithinTheLimitOfEachPicture) {
    const std::wstring resize = std::wstring(kProviderManagerKey) + L"\\Transforms\\2";
    obtest::SetValue(HKEY_CURRENT_USER, resize, L"Aim", L"KilobytesEach");
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 2, kTransform));
    DeleteFileW(obtest::BesideProgram(L"kinds.txt").c_str());
    Script("record");
    EXPECT_TRUE(Execute(folder_.File(L"photo.jpg", "photo")));
    EXPECT_EQ(obtest::ReadFileContent(obtest::BesideProgram(L"kinds.txt")), "3 9 3 ");
}

TEST_F(WatermarkStages, LeaveAFileThatPassesAsItIs) {
    const obtest::MessageBoxWatcher boxes;
    const std::wstring path = folder_.File(L"letter.txt", "text");
    for (const char* word : {"unchanged", "not-supported"}) {
        Script(word);
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(Content(path), "text");
        SetUp();
    }
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(WatermarkStages, AskBeforeASignedFileGoesOutWithoutOne) {
    bool goesOn = false;
    EXPECT_EQ(Asked("signed", IDYES, goesOn),
              L"\u201Ccontract.pdf\u201D is signed, and a watermark would break its signature. "
              L"Attach it without the watermark?");
    EXPECT_TRUE(goesOn);
    SetUp();
    Asked("signed", IDNO, goesOn);
    EXPECT_FALSE(goesOn);
}

TEST_F(WatermarkStages, AskBeforeAFileForWhichNoPasswordIsTakenGoesOutWithoutOne) {
    bool goesOn = false;
    EXPECT_NE(Asked("other-cipher", IDYES, goesOn).find(L"is encrypted"), std::wstring::npos);
    EXPECT_TRUE(goesOn);
    SetUp();
    Asked("other-cipher", IDNO, goesOn);
    EXPECT_FALSE(goesOn);
}

TEST_F(WatermarkStages, StopWithASentenceForADamagedFile) { ExpectRefused("damaged"); }
TEST_F(WatermarkStages, StopWithASentenceForAFileThatIsTooLarge) { ExpectRefused("too-large"); }
TEST_F(WatermarkStages, StopWithASentenceOnAFullDisk) { ExpectRefused("full"); }
TEST_F(WatermarkStages, StopWithASentenceWhenTheResultIsNotWhole) { ExpectRefused("wrong-size"); }
TEST_F(WatermarkStages, StopWithASentenceWhenTheProcessDies) {
    ExpectRefused("crash-after-writing");
}

TEST_F(WatermarkStages, EndWithTheSessionAndLeaveOnlyTheCopy) {
    ExpectEndedBySession(L"photo.jpg");
}

TEST_F(WatermarkStages, HaveATextBeforeOneWasEntered) {
    Set(L"Text", L"");
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "mark 2 45 Draft");
}

TEST_F(WatermarkStages, LayThePictureOfTheSettingsOverEachFile) {
    const obtest::TestFolder own;
    const std::wstring logo = own.File(L"logo.png", "logo");
    Set(L"Kind", L"Picture");
    Set(L"Picture", logo.c_str());
    for (const wchar_t* name : {L"one.jpg", L"two.pdf"}) {
        const std::wstring path = folder_.File(name, "content");
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(Content(path), "picture 2 45 logo");
    }
    EXPECT_EQ(Content(logo), "logo");
    EXPECT_EQ(obtest::ListTree(own.Path()), (Names{L"logo.png"}));
}

TEST_F(WatermarkStages, StopWithASentenceWithoutTheirPicture) {
    const obtest::TestFolder own;
    Set(L"Kind", L"Picture");
    Set(L"Picture", (own / L"logo.png").c_str());
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text.find(L"\u201Clogo.png\u201D, the picture of your watermark, is "
                                        L"missing"),
              0u);
    EXPECT_EQ(Content(path), "photo");
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

// A path of 1,001 characters was written by somebody else.
TEST_F(WatermarkStages, StopWithASentenceWithoutThePathOfTheirPicture) {
    Set(L"Kind", L"Picture");
    for (const std::wstring& stored : {std::wstring(), L"C:\\" + std::wstring(998, L'a')}) {
        Set(L"Picture", stored.c_str());
        const std::wstring path = folder_.File(L"photo.jpg", "photo");
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(Execute(path));
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_EQ(boxes.Seen()[0].text, L"Please choose the picture of the watermark.");
        EXPECT_EQ(Content(path), "photo");
    }
}

TEST_F(WatermarkStages, LayAPictureWithALongPathOverEachFile) {
    const obtest::TestFolder own;
    const std::wstring folder = own / std::wstring(120, L'a');
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    const std::wstring logo = folder + L"\\logo.png";
    ASSERT_GT(logo.size(), 128u);
    ASSERT_TRUE(obtest::WriteFileContent(logo, "logo"));
    Set(L"Kind", L"Picture");
    Set(L"Picture", logo.c_str());
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "picture 2 45 logo");
}

// The work process would take it for a request that isn't valid.
TEST_F(WatermarkStages, StopWithASentenceForAPictureThatIsNoFileOnADisk) {
    constexpr wchar_t kPipe[] = L"\\\\.\\pipe\\logo.png";
    const ObLib::UniqueKernelHandle pipe(
        CreateNamedPipeW(kPipe, PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr));
    ASSERT_TRUE(pipe);
    Set(L"Kind", L"Picture");
    Set(L"Picture", kPipe);
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"is missing or can't be read"), std::wstring::npos);
    EXPECT_EQ(Content(path), "photo");
}

TEST_F(WatermarkStages, StopWithASentenceForAPictureThatCantBeUsed) {
    const obtest::TestFolder own;
    Set(L"Kind", L"Picture");
    Set(L"Picture", own.File(L"logo.png", "logo").c_str());
    Script("bad-picture");
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text.find(
                  L"\u201Clogo.png\u201D, the picture of your watermark, is damaged"),
              0u);
    EXPECT_EQ(Content(path), "photo");
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

TEST_F(WatermarkStages, ShowTheirSettings) {
    obtest::DialogUiDriver user(OB_WATERMARK_TEXT, [](HWND dialog) {
        SetWindowTextW(GetDlgItem(dialog, OB_WATERMARK_TEXT), L"Bob");
        obtest::DialogUiDriver::Press(dialog, IDOK);
    });
    Entries().ShowProviderOptions(manager_, kWatermark, kTransform, nullptr, nullptr);
    EXPECT_TRUE(user.WasUsed());
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kWatermarkKey, L"Text"), L"Bob");
}

} // namespace
