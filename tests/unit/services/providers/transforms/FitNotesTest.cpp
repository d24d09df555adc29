// Photos and watermarks that wait until all pictures are made to fit, in the stages of the
// manager's module, with a work process that records what it is asked for.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

constexpr std::uint32_t kResize = 2, kWatermark = 5, kConvert = 50;
const std::wstring kKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\";

// A mail of 1 MB has room for 729,927 bytes.
class FitNotes : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
        Select(kResize);
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"2", L"Aim", L"FitMail");
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"2", L"Megabytes", L"1");
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"5", L"Text", L"Ann Example");
        Begin("fit-good");
    }
    void Select(std::uint32_t id) {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, id, kTransform));
    }
    // The end of a session deletes an empty folder, so the files are deleted after it.
    void Anew() {
        SetUp();
        for (const std::wstring& name : Files()) DeleteFileW((folder_ / name).c_str());
    }
    // Forgets what was recorded.
    static void Begin(const char* word) {
        Script(word);
        DeleteFileW(obtest::BesideProgram(L"kinds.txt").c_str());
        DeleteFileW(obtest::BesideProgram(L"starts.txt").c_str());
    }
    // How many work processes were started since then.
    static std::size_t Starts() {
        return obtest::ReadFileContent(obtest::BesideProgram(L"starts.txt")).value_or("").size();
    }
    // The kinds of the requests since then, as numbers.
    static std::string Asked() {
        return obtest::ReadFileContent(obtest::BesideProgram(L"kinds.txt")).value_or("");
    }
    // A photo that can be converted, and a picture that can't.
    std::wstring Photo(const std::wstring& name, std::size_t size) {
        return folder_.File(name, "pic" + std::string(size - 3, 'p'));
    }
    std::wstring Jpeg(const std::wstring& name, std::size_t size) {
        return folder_.File(name, "jpe" + std::string(size - 3, 'j'));
    }
    std::string BeginOf(const std::wstring& name) const {
        return obtest::ReadFileContent(folder_ / name).value_or("none").substr(0, 12);
    }
    // The per-file stage for each, which changes none of them.
    void NoteAll(const Names& paths) {
        const obtest::MessageBoxWatcher boxes;
        for (const std::wstring& path : paths) {
            const auto before = obtest::ReadFileContent(path);
            ASSERT_TRUE(Execute(path));
            EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
            EXPECT_EQ(obtest::ReadFileContent(path), before);
        }
        EXPECT_TRUE(boxes.Seen().empty());
    }
    // The list stage, without a sentence.
    bool Fit(const Names& paths, std::uint32_t mode = 3) {
        const obtest::MessageBoxWatcher boxes;
        const bool done = List(paths, mode);
        for (const obtest::SeenBox& box : boxes.Seen())
            ADD_FAILURE() << testing::PrintToString(box.text);
        return done;
    }
    // Both stages; the list stage fails with one sentence that contains the text, and nothing but
    // the copies is left, as they were.
    void ExpectStopped(const char* word, const Names& paths, const std::wstring& text) {
        NoteAll(paths);
        Begin(word);
        ExpectListStopped(paths, 3, text);
    }
    // A cancel once so many files are there; the copies alone stay, as they were.
    void ExpectOnlyCopiesAfterACancel(const char* word, const Names& paths, std::size_t files) {
        NoteAll(paths);
        ExpectListEndedBySession(word, paths, 3, files);
    }
};

// 18 asks whether fit takes a file; 8 converts one file, 9 stamps one; 16 is the watermark for fit,
// 5 adds, 6 searches, 7 writes.
TEST_F(FitNotes, CodeEachPictureOnce) {
    Select(kConvert);
    Select(kWatermark);
    const Names paths{Jpeg(L"a.jpg", 800'000), Photo(L"b.heic", 90'000), Photo(L"c.tif", 90'000)};
    NoteAll({paths[1], paths[2]});
    EXPECT_EQ(Asked(), "18 18 ");
    NoteAll({paths[0]});
    EXPECT_EQ(Asked(), "18 18 18 8 18 "); // for 50, which passes it, and for 5
    Begin("fit-good");
    // The first picture's watermark alone shows that not all fits.
    EXPECT_TRUE(Fit(paths));
    EXPECT_EQ(Asked(), "9 16 5 5 5 6 7 7 7 ");
    EXPECT_EQ(Results(3), (Names{paths[0], folder_ / L"b.jpg", folder_ / L"c.jpg"}));
    EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.jpg", L"c.jpg"}));
    EXPECT_EQ(BeginOf(L"a.jpg"), "smaller");
    EXPECT_EQ(BeginOf(L"b.jpg"), "\xFF\xD8\xFF small");
}

TEST_F(FitNotes, ConvertNothingAloneOnceOtherPicturesAreTooMuch) {
    Select(kConvert);
    const Names paths{Jpeg(L"a.jpg", 800'000), Photo(L"b.heic", 90'000)};
    NoteAll(paths);
    EXPECT_EQ(BeginOf(L"b.heic"), "picppppppppp");
    Begin("fit-good");
    EXPECT_TRUE(Fit(paths));
    EXPECT_EQ(Asked(), "5 5 6 7 7 ");
}

TEST_F(FitNotes, DoTheStepsAsWithoutAFitWhenAllFits) {
    Select(kConvert);
    Select(kWatermark);
    const Names paths{Jpeg(L"a.jpg", 300'000), Photo(L"b.heic", 90'000)};
    NoteAll(paths);
    Begin("fit-good");
    EXPECT_TRUE(Fit(paths));
    EXPECT_EQ(Asked(), "9 8 9 ");
    EXPECT_EQ(Results(2), (Names{paths[0], folder_ / L"b.jpg"}));
    EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.jpg"}));
    EXPECT_EQ(BeginOf(L"a.jpg"), "jpejjjjjjjjj");
    const std::string both = obtest::ReadFileContent(folder_ / L"b.jpg").value_or("");
    EXPECT_EQ(both.substr(0, 19), "\xFF\xD8\xFF converte marked");
}

TEST_F(FitNotes, CountPicturesWithTheirStepsDoneAsAZipMakesThem) {
    Select(kWatermark);
    const Names paths{Jpeg(L"a.bmp", 800'000), Jpeg(L"b.bmp", 800'000)};
    NoteAll(paths);
    Begin("fit-small-zip");
    EXPECT_TRUE(Fit(paths, 1));
    EXPECT_EQ(Asked(), "9 9 ");
    EXPECT_EQ(obtest::ReadFileContent(paths[1]).value_or("").size(), 800'000u);
}

TEST_F(FitNotes, NumberANameThatAnotherFileHas) {
    for (const std::size_t size : {90'000, 900'000}) { // all fits; made smaller
        Anew();
        Select(kConvert);
        const Names paths{Jpeg(L"a.jpg", 1000), Photo(L"a.heic", size), Photo(L"a.tif", 1000)};
        NoteAll(paths);
        EXPECT_TRUE(Fit(paths));
        EXPECT_EQ(Results(3), (Names{paths[0], folder_ / L"a (2).jpg", folder_ / L"a (3).jpg"}));
        EXPECT_EQ(Files(), (Names{L"a (2).jpg", L"a (3).jpg", L"a.jpg"}));
    }
}

TEST_F(FitNotes, AnswerASecondVisitWithTheFirstOnesResult) {
    Select(kConvert);
    const std::wstring photo = Photo(L"a.heic", 90'000), other = Jpeg(L"b.jpg", 1000);
    NoteAll({photo, photo, other});
    EXPECT_TRUE(Fit({photo, other, photo}));
    const std::wstring made = folder_ / L"a.jpg";
    EXPECT_EQ(Results(3), (Names{made, other, made}));
    EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.jpg"}));
    // Also for a visit after that.
    EXPECT_TRUE(Execute(photo));
    EXPECT_EQ(Entries().GetProviderTarget(manager_), made);
}

TEST_F(FitNotes, NoteInTheListStageWhatTheFileStageHasNotSeen) {
    Select(kConvert);
    const std::wstring photo = Photo(L"a.heic", 90'000);
    EXPECT_TRUE(Fit({photo}));
    EXPECT_EQ(Asked(), "18 8 ");
    EXPECT_EQ(Results(1), Names{folder_ / L"a.jpg"});
}

// What the zip takes of such a file is known before it is reported that it doesn't fit.
TEST_F(FitNotes, MeasureInTheZipWhatIsDoneAlone) {
    Select(kConvert);
    const Names paths{Jpeg(L"a.jpg", 800'000), Photo(L"b.tif", 900'000)};
    NoteAll(paths);
    Begin("fit-refuse-small-steps");
    EXPECT_TRUE(Fit(paths, 1));
    EXPECT_EQ(Asked(), "5 5 8 5 5 6 7 ");
    EXPECT_EQ(BeginOf(L"a.jpg"), "smaller");
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"b.jpg").value_or("").size(), 900'000u);
}

TEST_F(FitNotes, MeasureEachFileInOneProcessBesideTheOneThatDoesTheSteps) {
    Select(kWatermark);
    Names paths;
    for (int i = 0; i < 6; ++i) paths.push_back(Jpeg(std::to_wstring(i) + L".bmp", 800'000));
    NoteAll(paths);
    Begin("fit-small-zip");
    EXPECT_TRUE(Fit(paths, 1));
    EXPECT_EQ(Asked(), "9 9 9 9 9 9 ");
    EXPECT_LE(Starts(), 2u);
}

// All that the search finds are done alone before the next search.
TEST_F(FitNotes, SearchOnceMoreForAllPhotosThatTheSearchRefuses) {
    Select(kConvert);
    Names paths{Jpeg(L"a.jpg", 700'000)};
    for (const wchar_t* name : {L"b.heic", L"c.heic", L"d.heic"})
        paths.push_back(Photo(name, 10'000));
    NoteAll(paths);
    Begin("fit-unsupported");
    EXPECT_TRUE(Fit(paths));
    EXPECT_EQ(Asked(), "8 8 8 5 5 5 5 6 8 8 8 5 5 5 5 6 7 ");
    EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.jpg", L"c.jpg", L"d.jpg"}));
}

// What isn't a picture that fit takes gets its steps at once.
TEST_F(FitNotes, AreForPicturesThatFitTakesAlone) {
    Select(kWatermark);
    const std::wstring path = folder_.File(L"contract.pdf", "%PDF-pages of it");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Asked(), "18 9 ");
    EXPECT_EQ(*obtest::ReadFileContent(path), "%PDF-pages o mar");
    Begin("fit-good");
    EXPECT_TRUE(Fit({path}));
    EXPECT_EQ(Asked(), "");
}

// The settings say that pictures are to fit, and the transform isn't selected.
TEST_F(FitNotes, AreNotMadeWithoutTheFit) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kResize, kTransform));
    Select(kConvert);
    EXPECT_TRUE(Execute(Photo(L"a.heic", 100)));
    EXPECT_EQ(Asked(), "8 ");
    EXPECT_EQ(Entries().GetProviderTarget(manager_), folder_ / L"a.jpg");
}

TEST_F(FitNotes, DoTheStepsAloneForWhatTheFitRefuses) {
    for (const char* word : {"fit-refuse", "fit-unsupported"}) {
        Anew();
        Select(kConvert);
        Select(kWatermark);
        const Names paths{Jpeg(L"a.jpg", 700'000), Photo(L"b.heic", 90'000)};
        NoteAll(paths);
        Begin(word);
        EXPECT_TRUE(Fit(paths)) << word;
        EXPECT_EQ(Results(2), (Names{paths[0], folder_ / L"b.jpg"})) << word;
        EXPECT_EQ(Files(), (Names{L"a.jpg", L"b.jpg"})) << word;
    }
}

TEST_F(FitNotes, PassAPhotoThatNothingDecodesAfterOneSentence) {
    Select(kConvert);
    const Names paths{Photo(L"a.avif", 90'000), Photo(L"b.avif", 90'000)};
    NoteAll(paths);
    Script("fit-no-decoder");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(List(paths, 3));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"\u201ca.avif\u201d goes out as it is"),
              std::wstring::npos);
    EXPECT_EQ(Results(2), paths);
    ExpectFilesSoon({L"a.avif", L"b.avif"});
}

TEST_F(FitNotes, StopForADamagedPhoto) {
    Select(kConvert);
    ExpectStopped("fit-damaged-step", {Photo(L"a.heic", 90'000), Photo(L"b.heic", 90'000)},
                  L"\u201ca.heic\u201d can't be converted, because the photo is damaged.");
    ExpectStopped("fit-damaged", {Jpeg(L"a.jpg", 900'000), Photo(L"c.heic", 90'000)},
                  L"\u201cc.heic\u201d can't be converted, because the photo is damaged.");
}

TEST_F(FitNotes, StopWhenThePicturesCannotBeSmallEnough) {
    Select(kWatermark);
    ExpectStopped("fit-cannot", {Jpeg(L"a.jpg", 600'000), Jpeg(L"b.jpg", 600'000)},
                  L"Your pictures can't be made so small");
}

TEST_F(FitNotes, StopForADamagedPictureThatGetsAWatermark) {
    Select(kWatermark);
    ExpectStopped("fit-damaged-step", {Jpeg(L"a.jpg", 90'000)},
                  L"\u201ca.jpg\u201d can't get a watermark, because it is damaged.");
}

// Each at a request of its own: the word, and what the user reads about which file.
TEST_F(FitNotes, StopWithASentenceForTheFileThatFails) {
    const struct {
        const char* word;
        const wchar_t* text;
    } rows[] = {
        {"fit-crash-in-add", L"\u201cletter.txt\u201d can't be made smaller"},
        {"fit-crash-in-search", L"\u201cb.heic\u201d can't be converted"},
        {"fit-crash-in-write", L"\u201cb.heic\u201d can't be converted"},
        {"fit-unsupported-other", L"\u201ca.jpg\u201d can't be made smaller"},
        {"fit-crash-in-mark", L"\u201ca.jpg\u201d can't get a watermark"},
        {"fit-full", L"copy of \u201cb.heic\u201d can't be written"},
        {"fit-unchanged", L"\u201cb.heic\u201d can't be converted"},
        {"fit-wrong-size", L"\u201cb.heic\u201d can't be converted"},
        {"fit-odd", L"\u201cb.heic\u201d can't be converted"},
        {"fit-too-much", L"\u201ca.jpg\u201d can't be made smaller"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        Anew();
        Select(kConvert);
        Select(kWatermark);
        const Names paths{folder_.File(L"letter.txt", "text"), Jpeg(L"a.jpg", 400'000),
                          Photo(L"b.heic", 400'000)};
        ExpectStopped(row.word, paths, row.text);
    }
}

TEST_F(FitNotes, StopWithASentenceForTheStepThatFails) {
    Select(kConvert);
    const Names paths{Jpeg(L"a.jpg", 1000), Photo(L"b.heic", 1000)};
    ExpectStopped("fit-full-in-step", paths, L"copy of \u201cb.heic\u201d can't be written");
    ExpectStopped("fit-crash-in-step", paths, L"\u201cb.heic\u201d can't be converted");
}

// A file that ended the work process at the question is done at once, whose sentence names it.
TEST_F(FitNotes, AreNotMadeWhenTheQuestionFails) {
    Select(kConvert);
    Begin("fit-crash-in-check");
    EXPECT_TRUE(Execute(Photo(L"a.heic", 90'000)));
    EXPECT_EQ(Entries().GetProviderTarget(manager_), folder_ / L"a.jpg");
    EXPECT_EQ(Asked(), "18 8 ");
}

TEST_F(FitNotes, LeaveAnUnconvertedPictureThatStaysAsItIs) {
    Select(kWatermark);
    const Names paths{Jpeg(L"a.jpg", 800'000), Jpeg(L"b.jpg", 1000)};
    NoteAll(paths);
    Begin("fit-unchanged");
    EXPECT_TRUE(Fit(paths));
    EXPECT_EQ(BeginOf(L"a.jpg"), "smaller");
    EXPECT_EQ(BeginOf(L"b.jpg"), "jpejjjjjjjjj");
}

TEST_F(FitNotes, StopForAWatermarksPictureThatCantBeUsed) {
    const obtest::TestFolder own;
    Select(kWatermark);
    obtest::SetValue(HKEY_CURRENT_USER, kKey + L"5", L"Kind", L"Picture");
    obtest::SetValue(HKEY_CURRENT_USER, kKey + L"5", L"Picture", (own / L"logo.png").c_str());
    const std::wstring path = Jpeg(L"a.jpg", 800'000);
    {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(Execute(path));
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_NE(boxes.Seen()[0].text.find(
                      L"\u201Clogo.png\u201D, the picture of your watermark, is missing"),
                  std::wstring::npos);
    }
    own.File(L"logo.png", "logo");
    ExpectStopped("fit-bad-picture", {path},
                  L"\u201Clogo.png\u201D, the picture of your watermark");
}

TEST_F(FitNotes, LeaveOnlyTheCopiesAfterACancel) {
    for (const char* word : {"fit-hang-in-step", "fit-hang-in-write"}) {
        Anew();
        Select(kConvert);
        const bool isStep = std::string(word) == "fit-hang-in-step";
        const Names paths{isStep ? Photo(L"a.heic", 90'000) : Jpeg(L"a.jpg", 900'000),
                          Photo(L"b.heic", 90'000)};
        // The copies, and what has been begun beside them.
        ExpectOnlyCopiesAfterACancel(word, paths, isStep ? 3 : 4);
    }
}

TEST_F(FitNotes, RefuseALongerPathThanTheResultMayHaveBeforeTheWork) {
    Select(kConvert);
    const std::wstring path = DeepFile(L".t", 513, "pic");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too long"), std::wstring::npos);
}

// Its result would have a longer path, but it has none.
TEST_F(FitNotes, PassALongPathOfWhatIsNoPhoto) {
    for (const bool isFitted : {true, false}) {
        Anew();
        Select(kConvert);
        if (!isFitted) {
            ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kResize, kTransform));
        }
        const std::wstring path = DeepFile(L"", 513, "text");
        const obtest::MessageBoxWatcher boxes;
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
        EXPECT_TRUE(boxes.Seen().empty());
        DeleteFileW((L"\\\\?\\" + path).c_str());
    }
}

// The second result finds no name once the first one has its place. Both are in one folder.
TEST_F(FitNotes, StopWhenAResultFindsNoNameAnyMore) {
    Select(kConvert);
    const std::wstring first = DeepFile(L".tif", 513, "pic" + std::string(90'000, 'p'));
    const std::wstring second = DeepFile(L".bmp", 513, "pic" + std::string(90'000, 'p'));
    NoteAll({first, second});
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(List({first, second}, 3));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too long"), std::wstring::npos);
    EXPECT_EQ(obtest::ReadFileContent(L"\\\\?\\" + second).value_or("").size(), 90'003u);
    for (const std::wstring& name : Files()) EXPECT_FALSE(name.ends_with(L".new"));
    EXPECT_TRUE(Results(2).empty());
}

// What an earlier clean found in the copy counts for the result, which is cleaned again.
TEST_F(FitNotes, AreDoneBeforePersonalDataIsRemovedAgain) {
    Select(kConvert);
    Select(kRemoveInfo);
    Settings(false, true);
    const std::wstring path = Photo(L"a.heic", 90'000);
    Script("good");
    ASSERT_TRUE(Execute(path));
    EXPECT_EQ(*obtest::ReadFileContent(path), "clean");
    Photo(L"a.heic", 90'000); // as if the clean had left a large file
    Begin("fit-good");
    ASSERT_TRUE(Fit({path}));
    EXPECT_EQ(Asked(), "8 1 ");
    const std::wstring made = folder_ / L"a.jpg";
    EXPECT_EQ(*obtest::ReadFileContent(made), "clean");
    Begin("fit-good");
    EXPECT_TRUE(Final({made}));
    EXPECT_EQ(Asked(), "2 ");
}

} // namespace
