// The stages of a run: every call of the manager with its arguments and its thread, and what the
// dialog shows meanwhile.
#include <commctrl.h>
#include <objbase.h>

#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::HeldCall;
using obtest::Lines;

constexpr wchar_t kSummary[] = L"GetSelectedTransformSummary(manager) [worker]";
constexpr wchar_t kTargets[] = L"GetTargetFile(manager, 514) [worker]";
constexpr wchar_t kLeaveOut70[] = L"SelectProviders(manager, 1, 70, 4) [worker]";
constexpr wchar_t kNoName[] = L"status(\"Processing... \")";
constexpr wchar_t kEnd1[] = L"EndDialog(dialog, 1) [worker]";
constexpr wchar_t kEnd2[] = L"EndDialog(dialog, 2) [worker]";
constexpr wchar_t kReport[] =
    L"LogAppletFeature(\"feature.file-conversion\", \"file-conversion.type=IMAGERESIZE\")";

// From the start of a run to the first summary.
const Lines kOpening = {L"SelectProviders(manager, 2, 2, 4) [dialog]",
                        L"IsProviderTypeSelected(manager, 4) [dialog]",
                        L"CreateThread() [dialog]",
                        L"SetThreadUILanguage(0) [worker]",
                        L"bar.SetMarquee(1, moving)",
                        kSummary};

std::wstring Paths(const Lines& paths) {
    std::wstring text = L"paths(";
    for (const std::wstring& path : paths) {
        text += (text.back() == L'(' ? L"\"" : L", \"") + path + L"\"";
    }
    return text + L")";
}

std::wstring PostCall(const Lines& paths, const wchar_t* mode = L"3") {
    return L"ExecutePostTransforms(manager, dialog, " + Paths(paths) + L", " +
           std::to_wstring(paths.size()) + L", " + mode + L", null, null) [worker]";
}

std::wstring FinalCall(const Lines& paths, const wchar_t* mode = L"3") {
    return L"ExecuteFinalTransforms(manager, dialog, " + Paths(paths) + L", " +
           std::to_wstring(paths.size()) + L", " + mode + L", null, null) [dialog]";
}

// After a per-file stage of several files.
constexpr wchar_t kMovesAgain[] = L"bar.SetMarquee(1, moving)";

const Lines kFinalStage = {kNoName, L"dialog.FinalStage(0) [dialog]",
                           L"GetSelectedTransformSummary(manager) [dialog]"};

Lines Joined(std::initializer_list<Lines> parts) {
    Lines all;
    for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

class TransformStages : public obtest::TransformsFixture {
protected:
    void SetUp() override {
        TransformsFixture::SetUp();
        WantResize();
        files_ = {a_, b_};
    }

    // One file of the per-file stage; position 0 for a run of one file.
    static Lines FileStep(const wchar_t* name, int position, const wchar_t* mode = L"3") {
        const std::wstring path = std::wstring(L"C:\\t\\") + name;
        Lines lines = {L"SetProviderTarget(manager, \"" + path + L"\") [worker]",
                       std::wstring(L"status(\"Processing... ") + name + L"\")",
                       std::wstring(L"ExecuteTransforms(manager, null, dialog, \"C:\\t\\\", 1, ") +
                           mode + L", null, null) [worker]"};
        if (position > 0) lines.push_back(L"bar.SetPos(" + std::to_wstring(position) + L")");
        lines.push_back(L"GetProviderTarget(manager) [worker]");
        return lines;
    }
    static Lines Measured(int files) {
        return {L"bar.SetMarquee(0, measured)",
                L"bar.SetRange(0, " + std::to_wstring(files) + L")"};
    }
    void Expect(std::initializer_list<Lines> parts) { EXPECT_EQ(Written(), Joined(parts)); }

    const std::wstring a_ = L"C:\\t\\a.doc";
    const std::wstring b_ = L"C:\\t\\b.doc";
};

TEST_F(TransformStages, EndWellWhenNoProviderCountsInAnyStage) {
    EXPECT_TRUE(Run());
    EXPECT_NE(LastDialog(), nullptr);
    Expect({kOpening, {kEnd1, kReport}});
    EXPECT_EQ(files_, (Lines{a_, b_}));
}

TEST_F(TransformStages, RunInTheirOrderWithTheirArgumentsAndThreads) {
    Stages(L"1,1,1,1");
    job_.TransformsBeforeArchive = true;
    const Lines both = {a_, b_};
    EXPECT_TRUE(Run());
    Expect({kOpening,
            {kNoName, kSummary, PostCall(both, L"1"), kTargets, kLeaveOut70},
            Measured(2),
            FileStep(L"a.doc", 1, L"1"),
            FileStep(L"b.doc", 2, L"1"),
            {kMovesAgain, kNoName, kSummary, PostCall(both, L"1"), kTargets},
            kFinalStage,
            {FinalCall(both, L"1"), L"GetTargetFile(manager, 514) [dialog]", kEnd1, kReport}});
    EXPECT_EQ(files_, both);
}

TEST_F(TransformStages, HaveMode3WithoutAZip) {
    Stages(L"1,1,1,1");
    EXPECT_TRUE(Run());
    Expect({kOpening,
            {kNoName, kSummary, PostCall({a_, b_}), kTargets, kLeaveOut70},
            Measured(2),
            FileStep(L"a.doc", 1),
            FileStep(L"b.doc", 2),
            {kMovesAgain, kNoName, kSummary, PostCall({a_, b_}), kTargets},
            kFinalStage,
            {FinalCall({a_, b_}), L"GetTargetFile(manager, 514) [dialog]", kEnd1, kReport}});
}

TEST_F(TransformStages, UseTheInstalledLanguageOnTheWorkersThread) {
    obtest::ClearProductRegistry();
    obtest::SetValue(HKEY_LOCAL_MACHINE, obtest::kLangsKey, L"InstalledUILangID", L"1031");
    EXPECT_TRUE(Run());
    obtest::ClearProductRegistry();
    EXPECT_EQ(Written({L"SetThreadUILanguage"}), Lines{L"SetThreadUILanguage(1031) [worker]"});
}

TEST_F(TransformStages, RunOnAWorkerWithoutCom) {
    Stages(L"1,1,1,1");
    EXPECT_TRUE(Run());
    for (const std::wstring& line : Written()) EXPECT_FALSE(line.ends_with(L"with COM"));
    // The fake does notice an apartment.
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    obcore::ProviderManager().GetProviderTarget(job_.OwnedProviderManager);
    CoUninitialize();
    EXPECT_TRUE(obtest::FakeModules::Calls().back().ends_with(L"with COM"));
}

// List stages.

TEST_F(TransformStages, LeaveOutTheConversionFromPdfOnlyAfterABeforeListStage) {
    Stages(L"0,1,1,1");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"SelectProviders"}), Lines{kOpening[0]});
}

TEST_F(TransformStages, LeaveOutTheConversionFromPdfAlsoAfterAFailure) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms", L"0");
    EXPECT_FALSE(Run());
    Expect({kOpening, {kNoName, kSummary, PostCall({a_, b_}), kLeaveOut70, kEnd2}});
    EXPECT_EQ(files_, (Lines{a_, b_}));
}

TEST_F(TransformStages, LeaveOutTheConversionFromPdfAlsoWhenThereIsNoMemoryForTheResults) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms.count", L"4294967295");
    EXPECT_FALSE(Run());
    Expect({kOpening, {kNoName, kSummary, PostCall({a_, b_}), kLeaveOut70, kEnd2}});
    EXPECT_EQ(files_, (Lines{a_, b_}));
}

TEST_F(TransformStages, GoOnWhenTheManagerRefusesToLeaveOutTheConversion) {
    Stages(L"1,0,1,0");
    Answer(L"SelectProviders.70", L"0");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"ExecuteTransforms"}).size(), 2u);
}

TEST_F(TransformStages, AskForTheCountsAgainAndSkipAListStageWithoutProviders) {
    Stages(L"1,1,0,0;0,0,9,9");
    EXPECT_TRUE(Run());
    Expect({kOpening, {kNoName, kSummary, kLeaveOut70, kNoName, kSummary, kEnd1, kReport}});
}

TEST_F(TransformStages, RunAListStageForTheCountOfEitherOne) {
    Stages(L"1,1,0,0;0,1,0,0;1,0,0,0");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"ExecutePost"}).size(), 2u);
}

TEST_F(TransformStages, TakeNegativeCountsForNone) {
    Stages(L"-1,-1,-1,-1");
    EXPECT_TRUE(Run());
    Expect({kOpening, {kEnd1, kReport}});
}

TEST_F(TransformStages, LetAListStageMergeFiles) {
    Stages(L"0,1,0,0");
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\all.pdf");
    EXPECT_TRUE(Run());
    Expect({kOpening, {kNoName, kSummary, PostCall({a_, b_}), kTargets, kEnd1, kReport}});
    EXPECT_EQ(files_, Lines{L"C:\\t\\all.pdf"});
}

TEST_F(TransformStages, LetAListStageMakeMoreFiles) {
    Stages(L"0,1,0,0");
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\1.pdf|C:\\t\\2.pdf|C:\\t\\3.pdf");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, (Lines{L"C:\\t\\1.pdf", L"C:\\t\\2.pdf", L"C:\\t\\3.pdf"}));
}

TEST_F(TransformStages, TakeAsManyResultsAsTheSecondCountReturns) {
    Stages(L"0,1,0,0");
    Answer(L"ExecutePostTransforms.count", L"4"); // buffers; two are filled
    Answer(L"GetTargetFile.count", L"1");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, Lines{a_});
}

TEST_F(TransformStages, TakeNoMoreResultsThanThereAreBuffers) {
    Stages(L"0,1,0,0");
    Answer(L"ExecutePostTransforms.count", L"1");
    Answer(L"GetTargetFile.count", L"1000000");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, Lines{a_});
}

TEST_F(TransformStages, EmptyTheListWhereAListStageLeavesNothing) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms.paths", L"");
    EXPECT_TRUE(Run());
    // The later list stage and the final stage have nothing to do.
    Expect({kOpening,
            {kNoName, kSummary, PostCall({a_, b_}), kTargets, kLeaveOut70, kNoName, kSummary},
            kFinalStage,
            {kEnd1, kReport}});
    EXPECT_TRUE(files_.empty());
}

TEST_F(TransformStages, TakeAResultOf513Characters) {
    Stages(L"0,1,0,0");
    const std::wstring longest = L"C:\\" + std::wstring(510, L'x');
    Answer(L"ExecutePostTransforms.paths", longest.c_str());
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, Lines{longest});
}

TEST_F(TransformStages, TakeAResultThatFillsItsBufferWithoutANul) {
    Stages(L"0,1,0,0");
    const std::wstring whole = L"C:\\" + std::wstring(511, L'x');
    ASSERT_EQ(whole.size(), 514u);
    Answer(L"ExecutePostTransforms.paths", (whole + L"|" + b_).c_str());
    Answer(L"GetTargetFile.noNul", L"1");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, (Lines{whole, b_}));
}

TEST_F(TransformStages, StopAfterAFailedAfterListStage) {
    Stages(L"0,1,1,1");
    Answer(L"ExecutePostTransforms", L"0");
    EXPECT_FALSE(Run());
    Expect({kOpening,
            Measured(2),
            FileStep(L"a.doc", 1),
            FileStep(L"b.doc", 2),
            {kMovesAgain, kNoName, kSummary, PostCall({a_, b_}), kEnd2}});
}

TEST_F(TransformStages, GiveTheLaterStagesWhatTheEarlierOnesLeft) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\c.doc|C:\\t\\d.doc;C:\\t\\e.doc");
    Answer(L"GetProviderTarget.c.doc", L"C:\\t\\c.pdf");
    Answer(L"ExecuteFinalTransforms.paths", L"C:\\t\\f.doc");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"ExecutePost", L"ExecuteFinal"}),
              (Lines{PostCall({a_, b_}), PostCall({L"C:\\t\\c.pdf", L"C:\\t\\d.doc"}),
                     FinalCall({L"C:\\t\\e.doc"})}));
    EXPECT_EQ(files_, Lines{L"C:\\t\\f.doc"});
}

// The per-file stage.

TEST_F(TransformStages, KeepTheBarMovingForASingleFile) {
    Stages(L"0,0,1,0");
    files_ = {a_};
    EXPECT_TRUE(Run());
    Expect({kOpening, FileStep(L"a.doc", 0), {kEnd1, kReport}});
}

TEST_F(TransformStages, LetTheBarMoveAgainInAFinalStageAfterSeveralFiles) {
    Stages(L"0,0,1,1");
    EXPECT_TRUE(Run());
    Expect({kOpening,
            Measured(2),
            FileStep(L"a.doc", 1),
            FileStep(L"b.doc", 2),
            {kMovesAgain},
            kFinalStage,
            {FinalCall({a_, b_}), L"GetTargetFile(manager, 514) [dialog]", kEnd1, kReport}});
}

TEST_F(TransformStages, SkipThePerFileStageWithoutFiles) {
    Stages(L"0,0,1,0");
    files_.clear();
    EXPECT_TRUE(Run());
    Expect({kOpening, {kEnd1, kReport}});
}

TEST_F(TransformStages, ReplaceEachPathByItsResult) {
    Stages(L"0,0,1,0");
    Answer(L"GetProviderTarget.b.doc", L"C:\\t\\b.pdf");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, (Lines{a_, L"C:\\t\\b.pdf"}));
}

TEST_F(TransformStages, StopAtTheThirdOfFiveFiles) {
    Stages(L"0,1,1,1");
    files_ = {a_, b_, L"C:\\t\\c.doc", L"C:\\t\\d.doc", L"C:\\t\\e.doc"};
    Answer(L"ExecuteTransforms", L"1,1,0");
    Answer(L"GetProviderTarget.a.doc", L"C:\\t\\a.pdf");
    EXPECT_FALSE(Run());
    Lines third = FileStep(L"c.doc", 0);
    third.pop_back(); // neither a position nor a target after the failure
    Expect({kOpening, Measured(5), FileStep(L"a.doc", 1), FileStep(L"b.doc", 2), third, {kEnd2}});
    EXPECT_EQ(files_,
              (Lines{L"C:\\t\\a.pdf", b_, L"C:\\t\\c.doc", L"C:\\t\\d.doc", L"C:\\t\\e.doc"}));
}

TEST_F(TransformStages, ShowTwoOfFiveWhileTheThirdIsBeingDone) {
    Stages(L"0,0,1,0");
    files_ = {a_, b_, L"C:\\t\\c.doc", L"C:\\t\\d.doc", L"C:\\t\\e.doc"};
    Answer(L"Hold", L"ExecuteTransforms");
    obtest::TransformUiDriver driver([](HWND dialog) {
        const HWND bar = GetDlgItem(dialog, OB_TRANSFORM_BAR);
        for (int done = 0; done < 5; ++done) {
            EXPECT_FALSE(HeldCall::Await().empty());
            EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), done);
            EXPECT_EQ(SendMessageW(bar, PBM_GETRANGE, FALSE, 0), 5);
            EXPECT_EQ(GetWindowLongW(bar, GWL_STYLE) & PBS_MARQUEE, 0);
            HeldCall::Release();
        }
    });
    EXPECT_TRUE(Run());
    EXPECT_TRUE(driver.SawDialog());
}

TEST_F(TransformStages, DropAFileWhoseTargetComesBackEmptyAndSkipNone) {
    Stages(L"0,0,1,0");
    files_ = {a_, b_, L"C:\\t\\c.doc"};
    Answer(L"GetProviderTarget.a.doc", L"");
    EXPECT_TRUE(Run());
    // The bar counts the dropped file as done.
    Expect({kOpening,
            Measured(3),
            FileStep(L"a.doc", 1),
            FileStep(L"b.doc", 2),
            FileStep(L"c.doc", 3),
            {kEnd1, kReport}});
    EXPECT_EQ(files_, (Lines{b_, L"C:\\t\\c.doc"}));
}

TEST_F(TransformStages, StopWhenTheManagerGivesNoTargetAtAll) {
    Stages(L"0,1,1,1");
    Answer(L"GetProviderTarget.null", L"1");
    EXPECT_FALSE(Run());
    Expect({kOpening, Measured(2), FileStep(L"a.doc", 1), {kEnd2}});
    EXPECT_EQ(files_, (Lines{a_, b_}));
}

TEST_F(TransformStages, DropSeveralFilesInARow) {
    Stages(L"0,0,1,0");
    files_ = {a_, b_, L"C:\\t\\c.doc"};
    for (const wchar_t* name : {L"a.doc", L"b.doc"}) {
        Answer((std::wstring(L"GetProviderTarget.") + name).c_str(), L"");
    }
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, Lines{L"C:\\t\\c.doc"});
}

TEST_F(TransformStages, GoOnWithAnEmptyListWhenTheOnlyFileWasDropped) {
    Stages(L"0,1,1,1");
    files_ = {a_};
    Answer(L"GetProviderTarget.a.doc", L"");
    EXPECT_TRUE(Run());
    Expect({kOpening, FileStep(L"a.doc", 0), {kNoName, kSummary}, kFinalStage, {kEnd1, kReport}});
    EXPECT_TRUE(files_.empty());
}

TEST_F(TransformStages, TakeTwoFilesOfOneNameAsTwo) {
    Stages(L"0,0,1,0");
    files_ = {a_, a_};
    EXPECT_TRUE(Run());
    EXPECT_EQ(Written({L"ExecuteTransforms"}).size(), 2u);
    EXPECT_EQ(files_, (Lines{a_, a_}));
}

// The final stage.

TEST_F(TransformStages, RunTheFinalStageOnTheDialogsThread) {
    Stages(L"0,0,0,1");
    EXPECT_TRUE(Run());
    Expect({kOpening,
            kFinalStage,
            {FinalCall({a_, b_}), L"GetTargetFile(manager, 514) [dialog]", kEnd1, kReport}});
}

TEST_F(TransformStages, StopAfterAFailedFinalStage) {
    Stages(L"0,0,0,1");
    Answer(L"ExecuteFinalTransforms", L"0");
    EXPECT_FALSE(Run());
    Expect({kOpening, kFinalStage, {FinalCall({a_, b_}), kEnd2}});
    EXPECT_EQ(files_, (Lines{a_, b_}));
}

TEST_F(TransformStages, SkipAFinalStageWhoseCountHasGone) {
    Stages(L"0,0,0,1;0,0,0,0");
    EXPECT_TRUE(Run());
    Expect({kOpening, kFinalStage, {kEnd1, kReport}});
}

TEST_F(TransformStages, GiveTheFinalStageOneBufferForEachFileThatWentIn) {
    Stages(L"0,0,0,1");
    Answer(L"ExecuteFinalTransforms.paths", L"C:\\t\\1|C:\\t\\2|C:\\t\\3"); // fills two buffers
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, (Lines{L"C:\\t\\1", L"C:\\t\\2"}));
}

TEST_F(TransformStages, LetTheFinalStageDropFiles) {
    Stages(L"0,0,0,1");
    Answer(L"ExecuteFinalTransforms.paths", L"C:\\t\\1");
    EXPECT_TRUE(Run());
    EXPECT_EQ(files_, Lines{L"C:\\t\\1"});
}

// The status text.

TEST_F(TransformStages, ShowALongNameOnASecondLine) {
    Stages(L"0,0,1,0");
    const std::wstring middle(40, L'w');
    const std::wstring endless(300, L'w');
    files_ = {L"C:\\t\\" + middle, L"C:\\t\\" + endless};
    EXPECT_TRUE(Run());
    const Lines texts = Written({L"status"});
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], L"status(\"Processing... |" + middle + L"\")");
    EXPECT_TRUE(texts[1].starts_with(L"status(\"Processing... |www"));
    EXPECT_TRUE(texts[1].ends_with(L"www...\")"));
}

} // namespace
