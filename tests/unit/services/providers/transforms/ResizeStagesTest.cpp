// Pictures that are made smaller in the stages of the manager's module, each alone and all of a
// mail together, with a work process that does what the test asks.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "services/providers/ui/ResizeDialogIds.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

namespace {

using namespace stagetest;
using Counted = std::vector<std::int32_t>;

constexpr std::uint32_t kResize = 2;
const std::wstring kResizeKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\2";

class ResizeFixture : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(kResize);
    }
    static void Aim(const wchar_t* aim, const wchar_t* name, const wchar_t* number) {
        obtest::SetValue(HKEY_CURRENT_USER, kResizeKey, L"Aim", aim);
        obtest::SetValue(HKEY_CURRENT_USER, kResizeKey, name, number);
    }
    void AlsoRemovePersonalData() {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    }
};

class ResizeStages : public ResizeFixture {};

TEST_F(ResizeStages, WorkOnEachFileUnlessTheMailIsToFit) {
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, kResize, kTransform));
    EXPECT_EQ(Counts(), (Counted{0, 0, 1, 0}));
    // The settings of a run stay as they were at its beginning.
    Aim(L"FitMail", L"Megabytes", L"1");
    EXPECT_EQ(Counts(), (Counted{0, 0, 1, 0}));
}

TEST_F(ResizeStages, AskForWhatTheSettingsSay) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "aim 1 2048");
    SetUp();
    Aim(L"Percent", L"Percent", L"25");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "aim 2 25");
    SetUp();
    Aim(L"KilobytesEach", L"Kilobytes", L"300");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "aim 3 300000");
    EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

TEST_F(ResizeStages, LeaveAFileThatPassesAsItIs) {
    const obtest::MessageBoxWatcher boxes;
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    for (const char* word : {"unchanged", "not-supported"}) {
        SetUp();
        Script(word);
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(Content(path), "photo");
        EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
    }
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(ResizeStages, StopWithASentenceForADamagedPicture) { ExpectRefused("damaged"); }
TEST_F(ResizeStages, StopWithASentenceForAPictureOfTooManyPixels) { ExpectRefused("too-large"); }
TEST_F(ResizeStages, StopWithASentenceForAPictureThatCannotBeSoSmall) { ExpectRefused("cannot"); }
TEST_F(ResizeStages, StopWithASentenceOnAFullDisk) { ExpectRefused("full"); }
TEST_F(ResizeStages, StopWithASentenceWhenTheResultIsNotWhole) { ExpectRefused("wrong-size"); }
TEST_F(ResizeStages, StopWithASentenceWhenTheProcessDies) { ExpectRefused("crash-after-writing"); }
TEST_F(ResizeStages, StopWithASentenceWhenTheProcessSendsGarbage) { ExpectRefused("garbage"); }

TEST_F(ResizeStages, StopWithASentenceForALockedFile) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const HANDLE lock =
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ExpectRefused(path, [&] { return Execute(path); });
    CloseHandle(lock);
    EXPECT_EQ(Content(path), "photo");
}

TEST_F(ResizeStages, ChangeNothingOutsideTheTemporaryPath) {
    const std::wstring path = L"C:\\photo.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(path, "theirs"));
    ExpectRefused(path, [&] { return Execute(path); });
    DeleteFileW(path.c_str());
}

TEST_F(ResizeStages, WorkOnReadOnlyAndLongPaths) {
    std::wstring folder = folder_.Path();
    for (int depth = 0; depth < 6; ++depth) {
        folder += L"\\" + std::wstring(50, L'd');
        ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr));
    }
    const std::wstring path = folder + L"\\photo.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, "photo"));
    SetFileAttributesW((L"\\\\?\\" + path).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(L"\\\\?\\" + path), "aim 1 2048");
    EXPECT_TRUE(GetFileAttributesW((L"\\\\?\\" + path).c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_F(ResizeStages, EndWithTheSessionAndLeaveOnlyTheCopy) { ExpectEndedBySession(L"photo.jpg"); }

// 2 comes before 51 on a file: what is cleaned is the smaller picture.
TEST_F(ResizeStages, RemovePersonalDataFromTheSmallerPicture) {
    AlsoRemovePersonalData();
    EXPECT_EQ(Counts(), (Counted{0, 0, 2, 1}));
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Content(path), "clean");
    EXPECT_TRUE(Final({path}));
    EXPECT_EQ(Results(1), (Names{path}));
}

TEST_F(ResizeStages, HaveTheirOwnSettings) {
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kResizeKey));
    const auto ask = [&](int button) {
        obtest::DialogUiDriver user(OB_RESIZE_EDGE, [&](HWND dialog) {
            obtest::DialogUiDriver::Press(dialog, OB_RESIZE_PERCENT);
            obtest::DialogUiDriver::Press(dialog, button);
        });
        const bool there = Entries().ShowProviderOptionsWhenNoOptionsSet(
            manager_, kResize, kTransform, nullptr, nullptr);
        return there + 2 * user.WasUsed();
    };
    EXPECT_EQ(ask(IDCANCEL), 2);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kResizeKey));
    EXPECT_EQ(ask(IDOK), 3);
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kResizeKey, L"Aim"), L"Percent");
    EXPECT_EQ(ask(IDOK), 1);
    Entries().ShowProviderOptions(manager_, 66, kTransform, nullptr, nullptr); // not supported
}

// A mail of 1 MB has room for 729,927 bytes.
class FitStages : public ResizeFixture {
protected:
    void SetUp() override {
        ResizeFixture::SetUp();
        Aim(L"FitMail", L"Megabytes", L"1");
    }
    std::wstring Picture(const std::wstring& name, std::size_t size = 400'000) {
        return folder_.File(name, "pic" + std::string(size - 3, 'p'));
    }
    std::wstring Other(const std::wstring& name, std::size_t size) {
        return folder_.File(name, std::string(size, 'o'));
    }
    void ExpectStopped(const char* word, const std::wstring& text) {
        Script(word);
        ExpectListStopped({Picture(L"a.jpg"), Picture(L"b.jpg")}, 3, text);
    }
};

TEST_F(FitStages, AreAfterTheList) {
    EXPECT_EQ(Counts(), (Counted{0, 1, 0, 0}));
    const std::wstring path = Picture(L"a.jpg");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path)); // nothing works on each file
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(FitStages, PutAllSmallerPicturesInTheirPlaces) {
    const Names paths{Picture(L"a.jpg"), Other(L"b.txt", 1000), Picture(L"c.jpg")};
    EXPECT_TRUE(List(paths, 3));
    EXPECT_EQ(Content(paths[0]), "smaller");
    EXPECT_EQ(Content(paths[1]), std::string(1000, 'o'));
    EXPECT_EQ(Content(paths[2]), "smaller");
    EXPECT_EQ(Results(3), paths);
    EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.txt", L"c.jpg"}));
}

// The work process isn't even started.
TEST_F(FitStages, ChangeNothingWhenAllFits) {
    Script("crash-at-start");
    const Names paths{Picture(L"a.jpg", 400'000), Other(L"b.txt", 329'927)};
    EXPECT_TRUE(List(paths, 3));
    EXPECT_EQ(Content(paths[0]).size(), 400'000u);
    EXPECT_EQ(Results(2), paths);
    Script("good");
    const Names more{paths[0], Other(L"b.txt", 329'928)};
    EXPECT_TRUE(List(more, 3));
    EXPECT_EQ(Content(paths[0]), "smaller");
}

TEST_F(FitStages, CountOtherFilesAsTheZipMakesThem) {
    const Names paths{Picture(L"a.jpg"), Other(L"b.txt", 500'000)};
    Script("fit-small-zip");
    EXPECT_TRUE(List(paths, 1)); // both together fit into the zip
    EXPECT_EQ(Content(paths[0]).size(), 400'000u);
    Script("good"); // whatever a process reports, a file counts at most about its size
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Content(paths[0]), "smaller");
}

TEST_F(FitStages, CountTheZipsOwnBytes) {
    Script("good");
    const Names paths{Picture(L"a.jpg", 400'000), Other(L"b.txt", 329'000)};
    EXPECT_TRUE(List(paths, 3));
    EXPECT_EQ(Content(paths[0]).size(), 400'000u);
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Content(paths[0]), "smaller");
}

TEST_F(FitStages, CountAFileThatIsTwiceInTheListOnce) {
    const std::wstring path = Picture(L"a.jpg", 700'000);
    EXPECT_TRUE(List({path, path}, 3));
    EXPECT_EQ(Content(path).size(), 700'000u);
    EXPECT_EQ(Results(2), (Names{path, path}));
}

TEST_F(FitStages, ReportBeforeAnythingIsWrittenThatTheOtherFilesAreTooMuch) {
    const Names paths{Picture(L"a.jpg"), Other(L"b.txt", 1'350'000)};
    ExpectListStopped(
        paths, 3, L"The other files alone take 1.4 MB, and a mail of 1 MB has room for 729 KB.");
    ExpectListStopped({paths[1]}, 3, L"Your files take 1.4 MB");
}

TEST_F(FitStages, ReportThatThePicturesCannotBeSmallEnough) {
    ExpectStopped("fit-cannot", L"Your pictures can't be made so small");
}
TEST_F(FitStages, StopWithOneSentenceWhenTheProcessDiesAtAPicture) {
    ExpectStopped("fit-crash-in-add", L"\u201ca.jpg\u201d");
}
TEST_F(FitStages, StopWithThePicturesNameWhenTheProcessDiesInTheSearch) {
    ExpectStopped("fit-crash-in-search", L"\u201cb.jpg\u201d");
}
TEST_F(FitStages, StopWithThePicturesNameWhenTheProcessDiesWhileItWrites) {
    ExpectStopped("fit-crash-in-write", L"\u201cb.jpg\u201d");
}
TEST_F(FitStages, StopWithThePicturesNameOnAFullDisk) {
    ExpectStopped("fit-full", L"\u201cb.jpg\u201d");
}
// The process reported that a step fits, and wrote more.
TEST_F(FitStages, StopWhenTheResultIsAboveTheLimit) {
    ExpectStopped("fit-too-much", L"can't be made smaller");
}
TEST_F(FitStages, StopWithoutTheFile) {
    ExpectListStopped({Picture(L"a.jpg"), folder_ / L"gone.jpg"}, 3, L"\u201cgone.jpg\u201d");
}
TEST_F(FitStages, ChangeNothingOutsideTheTemporaryPath) {
    const std::wstring path = L"C:\\photo.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(path, "pic" + std::string(900'000, 'p')));
    ExpectListStopped({Picture(L"a.jpg"), path}, 3, L"\u201cphoto.jpg\u201d");
    DeleteFileW(path.c_str());
}

TEST_F(FitStages, EndWithTheSessionAndLeaveOnlyTheCopies) {
    const std::pair<const char*, std::size_t> rows[] = {{"fit-hang-in-search", 2},
                                                        {"fit-hang-in-write", 4}};
    for (const auto& [word, filesThen] : rows) {
        SetUp();
        ExpectListEndedBySession(word, {Picture(L"a.jpg"), Picture(L"b.jpg")}, 3, filesThen);
    }
}

// More pictures than a process gets requests of the other kinds.
TEST_F(FitStages, TakeManyPicturesToOneProcess) {
    Names paths;
    for (int number = 0; number < 200; ++number) {
        paths.push_back(Picture(L"p" + std::to_wstring(number) + L".jpg", 5'000));
    }
    EXPECT_TRUE(List(paths, 3));
    for (const std::wstring& path : paths) EXPECT_EQ(Content(path), "smaller");
    EXPECT_EQ(Results(200), paths);
}

TEST_F(FitStages, RemovePersonalDataAgainFromWhatIsNew) {
    AlsoRemovePersonalData();
    EXPECT_EQ(Counts(), (Counted{0, 1, 1, 1}));
    const Names paths{Picture(L"a.jpg"), Picture(L"b.jpg"), Other(L"c.txt", 900)};
    for (const std::wstring& path : paths) ASSERT_TRUE(Execute(path));
    EXPECT_EQ(Content(paths[0]), "clean");
    // As if the cleaned copies were large.
    Picture(L"a.jpg");
    Picture(L"b.jpg");
    EXPECT_TRUE(List(paths, 3));
    EXPECT_EQ(Content(paths[0]), "clean");
    EXPECT_EQ(Content(paths[1]), "clean");
    ASSERT_TRUE(Final(paths));
    EXPECT_EQ(Results(3), paths);
}

// A suite of its own, as it takes long.
class FitOfManyFiles : public FitStages {};

// The requests of more files don't fit into the pipe of one process, and none is started.
TEST_F(FitOfManyFiles, ReportsThatTheyAreTooMany) {
    Script("crash-at-start");
    Names paths;
    for (int number = 0; number <= 3000; ++number) {
        paths.push_back(Picture(std::to_wstring(number) + L".jpg", 300));
    }
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(List(paths, 3));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text,
              L"So many files can't be made to fit into one mail. Nothing was attached, and your "
              L"files are unchanged. Please pick fewer files.");
    EXPECT_EQ(Files().size(), paths.size());
    EXPECT_EQ(Content(paths.back()).size(), 300u);
}

} // namespace
