// From the picked files to the cloud: the planning with the real send, and what both leave.
#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"

namespace {

using obtest::Lines;
using obtest::MessageBoxWatcher;
using obtest::ReadFileContent;

class Picker : public obcore::OBOpenFileNameDlg {
public:
    explicit Picker(obcore::OBAttachJob& job) : OBOpenFileNameDlg(nullptr, job) {}
    int ShowPickerDialog() override { return 0; }
};

class PlannedSend : public obtest::CloudFixture {
protected:
    void SetUp() override {
        CloudFixture::SetUp();
        sources_.Folder(L"home");
        sources_.File(L"home\\canary.txt", "canary");
        archive_ = sources_.File(L"home\\theirs.zip", "their archive");
        before_ = UsersFiles();
        job_.SendItem = true;
        job_.SendSetting = obcore::SendSettingKind::Always;
        Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
    }
    int Process(const std::wstring& picked) { return picker_.ProcessPickedFiles({picked}); }
    void ExpectUsersFilesUntouched() {
        EXPECT_EQ(UsersFiles(), before_);
        EXPECT_EQ(ReadFileContent(archive_), "their archive");
        EXPECT_EQ(ReadFileContent(sources_ / L"home\\canary.txt"), "canary");
    }
    static Lines Uploads() { return CallsOf({L"RunUpload"}); }

    std::wstring archive_;
    Lines before_;
    Picker picker_{job_};
};

TEST_F(PlannedSend, LeavesAPickedArchiveAsItIsWhenTheUploadFails) {
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    EXPECT_EQ(Process(archive_), 0);
    EXPECT_EQ(Uploads().size(), 1u);
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(picker_.LinkText, L"");
    EXPECT_EQ(job_.CleanupFolder, L"");
    EXPECT_EQ(job_.CleanupFile, L"");
    ExpectUsersFilesUntouched();
}

TEST_F(PlannedSend, ClearsTheZipOfTheRunWhenTheUploadFails) {
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    EXPECT_EQ(Process(sources_ / L"home\\canary.txt"), 0);
    EXPECT_EQ(Uploads().size(), 1u);
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(picker_.LinkText, L"");
    EXPECT_FALSE(job_.CleanupFolder.empty());
    EXPECT_TRUE(Left().empty());
    ExpectUsersFilesUntouched();
}

TEST_F(PlannedSend, GivesTheLinkOfAZipOfTheRunAndLeavesTheZip) {
    EXPECT_EQ(Process(sources_ / L"home\\canary.txt"), 0);
    EXPECT_TRUE(picker_.LinkText.starts_with(L"0| |canary.zip|https://7.example/canary.zip|"));
    EXPECT_TRUE(obtest::FileExists(job_.ResultPath)); // cleared by the browser side
    ExpectUsersFilesUntouched();
}

TEST_F(PlannedSend, AttachesWithoutAQuestionWhereLinksAreForbidden) {
    job_.UploadBlocked = true;
    for (const wchar_t* account : {L"7|Ann|ann", L"0||", L"99|Zed|zed"}) {
        Answer(L"GetDefaultStorageProvider", account);
        EXPECT_EQ(Process(archive_), 1);
        EXPECT_EQ(job_.ResultPath, archive_);
    }
    EXPECT_TRUE(CallsOf({L"ShowSelectDefaultCloudDialog", L"CreateUploadList", L"LogAppletFeature"})
                    .empty());
    EXPECT_EQ(picker_.LinkText, L"");
    ExpectUsersFilesUntouched();
}

} // namespace
