// Whole runs of the planning with the transforms in them: what the page gets and what is left on
// the disk.
#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::HeldCall;
using obtest::Lines;

class TransformedRun : public obtest::TransformsFixture {
protected:
    class Picker : public obcore::OBOpenFileNameDlg {
    public:
        explicit Picker(obcore::OBAttachJob& job) : OBOpenFileNameDlg(nullptr, job) {}
        int ShowPickerDialog() override { return 0; }
    };

    void SetUp() override {
        TransformsFixture::SetUp();
        WantResize();
        Stages(L"0,0,1,0");
        job_.SendItem = true;
        job_.SendSetting = obcore::SendSettingKind::Never;
        for (const wchar_t* name : {L"a.jpg", L"b.jpg", L"c.jpg", L"d.jpg", L"e.jpg"}) {
            picked_.push_back(sources_.File(name, "original"));
        }
    }
    void TearDown() override {
        for (const std::wstring& path : picked_) {
            EXPECT_EQ(obtest::ReadFileContent(path), "original");
        }
        TransformsFixture::TearDown();
    }

    int Process() { return Picker(job_).ProcessPickedFiles(picked_); }
    void ExpectNothingAttached() {
        EXPECT_TRUE(Written({L"CreateZipContext", L"LogAppletFeature"}).empty());
        EXPECT_FALSE(job_.ResultIsArchive);
        EXPECT_TRUE(job_.Files.empty());
        EXPECT_TRUE(Left().empty());
    }

    Lines picked_;
};

TEST_F(TransformedRun, ZipsTheTransformedCopies) {
    const std::wstring smaller = RunFolder() + L"b-small.jpg";
    Answer(L"GetProviderTarget.b.jpg", smaller.c_str());
    EXPECT_EQ(Process(), 1);
    EXPECT_EQ(Written({L"ExecuteTransforms"})[0], L"ExecuteTransforms(manager, null, dialog, " +
                                                      Quote(RunFolder()) +
                                                      L", 1, 1, null, null) [worker]");
    const Lines added = Written({L"AddFileW"});
    ASSERT_EQ(added.size(), 5u);
    EXPECT_EQ(added[0], L"AddFileW(context5, " + Quote(RunFolder() + L"a.jpg") + L")");
    EXPECT_EQ(added[1], L"AddFileW(context5, " + Quote(smaller) + L")");
    EXPECT_TRUE(job_.ResultIsArchive);
}

TEST_F(TransformedRun, AttachesNothingWhenTheThirdOfFiveFilesFails) {
    Answer(L"ExecuteTransforms", L"1,1,0");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Process(), 0);
    EXPECT_EQ(Written({L"bar.SetRange", L"bar.SetPos"}),
              (Lines{L"bar.SetRange(0, 5)", L"bar.SetPos(1)", L"bar.SetPos(2)"}));
    ExpectNothingAttached();
    EXPECT_TRUE(boxes.Seen().empty()); // the provider has shown its own message
}

TEST_F(TransformedRun, AttachesNothingWhenAllFilesAreDropped) {
    for (const wchar_t* name : {L"a", L"b", L"c", L"d", L"e"}) {
        Answer((std::wstring(L"GetProviderTarget.") + name + L".jpg").c_str(), L"");
    }
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Process(), 0);
    EXPECT_TRUE(Written({L"Zip("}).empty());
    EXPECT_TRUE(Left().empty());
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(TransformedRun, LeavesNothingAfterACancelInAnyStage) {
    Stages(L"1,1,1,1");
    const std::pair<const wchar_t*, std::size_t> calls[] = {
        {L"GetSelectedTransformSummary", 1},
        {L"ExecutePostTransforms", 1}, // before the list
        {L"GetTargetFile", 1},
        {L"SetProviderTarget", 1},
        {L"ExecuteTransforms", 1},
        {L"GetProviderTarget", 1},
        {L"ExecutePostTransforms", 2}}; // after the list
    for (const auto& [call, visit] : calls) {
        Answer(L"Hold", call);
        obtest::FakeModules::ForgetCalls();
        obtest::TransformUiDriver driver([&, call = call, visit = visit](HWND dialog) {
            EXPECT_TRUE(HeldCall::AwaitVisit(call, visit));
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        });
        EXPECT_EQ(Process(), 0);
        EXPECT_TRUE(driver.SawDialog());
        ExpectNothingAttached();
        HeldCall::Release();
        EXPECT_TRUE(JoinWorkers());
        ExpectNothingAttached();
    }
}

TEST_F(TransformedRun, LeavesNothingAfterACancelInTheFinalStage) {
    Stages(L"0,0,0,1");
    Answer(L"ExecuteFinalTransforms.waits", L"1");
    obtest::TransformUiDriver driver([](HWND dialog) {
        EXPECT_TRUE(obtest::WaitUntil(
            [] { return !obtest::FakeModules::CallsOf({L"ExecuteFinalTransforms"}).empty(); }));
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(Process(), 0);
    EXPECT_TRUE(driver.SawDialog());
    ExpectNothingAttached();
}

TEST_F(TransformedRun, GivesThePageTheConvertedCopyOfASingleFile) {
    job_.SendItem = false;
    job_.SingleAttachConversion = true;
    picked_.resize(1);
    EXPECT_EQ(Process(), 1);
    EXPECT_EQ(job_.Files, Lines{RunFolder() + L"a.jpg"});
    EXPECT_FALSE(job_.ResultIsArchive);
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\a.jpg"}));
}

TEST_F(TransformedRun, GivesTheOriginalsAnEmptyFolderWithoutATemporaryOne) {
    Answer(L"ExecuteTransforms", L"0"); // as a manager does that changes copies only
    obtest::ImportPatch<decltype(&GetTempPathW)> noFolder(
        "kernel32.dll", "GetTempPathW", +[](DWORD, LPWSTR) WINAPI -> DWORD { return 0; });
    ASSERT_TRUE(noFolder.Ok());
    EXPECT_EQ(Process(), 0);
    EXPECT_EQ(
        Written({L"SetProviderTarget", L"ExecuteTransforms"}),
        (Lines{L"SetProviderTarget(manager, " + Quote(picked_[0]) + L") [worker]",
               L"ExecuteTransforms(manager, null, dialog, \"\", 1, 1, null, null) [worker]"}));
}

} // namespace
