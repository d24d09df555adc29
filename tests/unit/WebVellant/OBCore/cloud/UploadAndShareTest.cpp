// One upload: its calls, the second attempt, the days until expiry, and what a failure leaves.
#include "OBCore/cloud/UploadAndShare.h"

#include "OBCore/files/TemporaryFolders.h"
#include "tests/support/AbsentModule.h"
#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"
#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"

namespace {

using obcontract::ProviderProfile;
using obcore::UploadAndShare;
using obtest::FakeModules;
using obtest::FileExists;
using obtest::Lines;
using obtest::MessageBoxWatcher;
using obtest::PlacedWipeProgram;
using obtest::Profile;
using obtest::ProgramFolder;

class CloudUpload : public obtest::CloudFixture {
protected:
    void SetUp() override {
        CloudFixture::SetUp();
        MakeOwnResult();
    }
    void Upload(std::uint32_t id = 7) {
        profile_.providerId = id;
        obcontract::CloudProvider* provider = Provider(id);
        FakeModules::ForgetCalls();
        EXPECT_TRUE(UploadAndShare(job_, provider, linkText_, profile_));
    }
    // An upload of so many attempts that gives no link, and one sentence about it.
    void ExpectFailureAfter(std::size_t attempts) {
        const MessageBoxWatcher boxes;
        Upload();
        EXPECT_EQ(CallsOf({L"RunUpload"}).size(), attempts);
        EXPECT_EQ(linkText_, L"");
        EXPECT_EQ(boxes.Seen().size(), 1u);
    }
    static Lines Attempts() { return CallsOf({L"AddFile", L"RunUpload", L"ResetList"}); }

    ProviderProfile profile_ = Profile(7, L"Ann", L"ann");
    std::wstring linkText_;
};

TEST_F(CloudUpload, MakesItsCallsInOrder) {
    Upload();
    EXPECT_EQ(
        FakeModules::Calls(),
        (Lines{L"CreateUploadList(provider7, \"ann\")", L"SetCallback(provider7, callback)",
               L"HasCapability(provider7, 1, 1024)", FileAdded(), UploadRun(),
               L"GetDisplayName(provider7, 1, 128)",
               L"LogAppletFeature(\"feature.cloud\", \"cloud.name=provider7\")",
               L"CreateDownloadList(provider7)", L"GetItem(list, 0)",
               L"AddItem(list, item(\"files.zip\", \"\"))", L"GetItem(list, 1)",
               L"ShareItems(provider7, list)", L"GetDisplayName(provider7, 1, 128)",
               L"GetItem(list, 0)", L"GetItem(list, 1)", L"DestroyDownloadList(provider7, list)",
               L"ClearCallback(provider7)", L"DestroyUploadList(provider7, list)"}));
    EXPECT_TRUE(linkText_.starts_with(L"0| |files.zip|https://7.example/files.zip|"));
    EXPECT_FALSE(job_.Usage.UsageExpiry);
    EXPECT_TRUE(FileExists(job_.ResultPath)); // cleared by others
}

TEST_F(CloudUpload, ReportsNoUseWithoutTheArchiveService) {
    obcore::FreeArchiveService();
    const obtest::AbsentModule archive(L"obofcsvc64.dll");
    ASSERT_TRUE(archive.Ok());
    Upload();
    EXPECT_TRUE(CallsOf({L"LogAppletFeature"}).empty());
    EXPECT_TRUE(linkText_.starts_with(L"0| |files.zip|"));
}

TEST_F(CloudUpload, GoesIntoAFolderOfItsOwnWhereTheProviderHasFolders) {
    Answer(L"provider7.HasCapability", L"1024");
    Upload();
    EXPECT_EQ(CallsOf({L"AddFile", L"GetAccountRootFolder"}),
              (Lines{L"GetAccountRootFolder(provider7, \"ann\", 2048)",
                     FileAdded(std::wstring(L"Quillbox\\") + kFirstStamp)}));
}

TEST_F(CloudUpload, GoesBelowTheRootFolderOfTheAccount) {
    Answer(L"provider7.HasCapability", L"1024");
    Answer(L"provider7.GetAccountRootFolder", L"home\\team");
    Upload();
    EXPECT_EQ(CallsOf({L"AddFile"}),
              Lines{FileAdded(std::wstring(L"home\\team\\Quillbox\\") + kFirstStamp)});
}

TEST_F(CloudUpload, TriesOnceMoreUnderAStampedNameAfterAClash) {
    Answer(L"provider7.HasCapability", L"1024");
    Answer(L"provider7.RunUpload", L"0,1");
    Answer(L"provider7.RunUpload.reason", L"1,0");
    const std::wstring first = FileAdded(std::wstring(L"Quillbox\\") + kFirstStamp);
    Upload();
    EXPECT_EQ(job_.ResultName, std::wstring(L"files") + kSecondStamp + L".zip");
    EXPECT_EQ(Attempts(),
              (Lines{first, UploadRun(), L"ResetList(list, 0)",
                     FileAdded(std::wstring(L"Quillbox\\") + kThirdStamp), UploadRun()}));
    EXPECT_TRUE(linkText_.starts_with(L"0| |" + job_.ResultName + L"|"));
    EXPECT_TRUE(FileExists(job_.ResultPath)); // its path stays
}

TEST_F(CloudUpload, TriesOnceMoreAfterAClashThatTheProviderCalledASuccess) {
    Answer(L"provider7.RunUpload", L"1,0");
    Answer(L"provider7.RunUpload.reason", L"1");
    ExpectFailureAfter(2); // the last result counts
}

TEST_F(CloudUpload, NeverTriesAThirdTime) {
    Answer(L"provider7.RunUpload", L"0");
    Answer(L"provider7.RunUpload.reason", L"1,1,1");
    ExpectFailureAfter(2);
    EXPECT_EQ(CallsOf({L"ResetList"}).size(), 1u);
}

TEST_F(CloudUpload, TriesOnlyOnceAfterAnyOtherReason) {
    Answer(L"provider7.RunUpload", L"0,1");
    Answer(L"provider7.RunUpload.reason", L"2");
    ExpectFailureAfter(1);
}

TEST_F(CloudUpload, StampsTheNameBeforeItsLastPoint) {
    Answer(L"provider7.RunUpload.reason", L"1");
    const std::wstring stamp = kFirstStamp; // no folder takes one before
    const std::pair<std::wstring, std::wstring> names[] = {{L"a.b.zip", L"a.b" + stamp + L".zip"},
                                                           {L"nodot", L"nodot" + stamp},
                                                           {L".zip", stamp + L".zip"},
                                                           {L"end.", L"end" + stamp + L"."}};
    for (const auto& [before, after] : names) {
        obtest::localSecond = 7;
        job_.ResultName = before;
        Upload();
        EXPECT_EQ(job_.ResultName, after);
    }
}

TEST_F(CloudUpload, AsksForExpiryOnlyWithBothSwitches) {
    job_.S4DelExpireDays = 12;
    for (const bool available : {false, true}) {
        for (const bool wanted : {false, true}) {
            job_.ExpireFilesAvailable = available;
            job_.ExpireFiles = wanted;
            job_.Usage.UsageExpiry = false;
            Upload();
            const bool expires = available && wanted;
            EXPECT_EQ(CallsOf({L"AddFileToDeletionSchedule"}).size(), expires ? 1u : 0u);
            EXPECT_EQ(job_.Usage.UsageExpiry, expires);
        }
    }
    EXPECT_EQ(CallsOf({L"AddFileToDeletionSchedule"}),
              Lines{L"AddFileToDeletionSchedule(item(\"files.zip\", "
                    L"\"https://7.example/files.zip\"), 12)"});
}

// A number of days that the options read as negative.
TEST_F(CloudUpload, NeverExpiresAfterANegativeNumberOfDays) {
    job_.ExpireFilesAvailable = job_.ExpireFiles = true;
    std::wstring expiry = obcore::LoadText(obcore::TextId::ShareExpiry);
    expiry.resize(expiry.find(L"%d"));
    for (const std::uint32_t days : {0xFFFFFFFFu, 0xFFFFFFFBu, 0x80000000u}) {
        job_.S4DelExpireDays = days;
        Upload();
        EXPECT_TRUE(CallsOf({L"AddFileToDeletionSchedule"}).empty());
        EXPECT_EQ(linkText_.find(expiry), std::wstring::npos);
        EXPECT_TRUE(linkText_.starts_with(L"0| |files.zip|"));
        EXPECT_FALSE(job_.Usage.UsageExpiry);
    }
}

TEST_F(CloudUpload, SchedulesTheDeletionAfterNoDaysToo) {
    job_.ExpireFilesAvailable = job_.ExpireFiles = true;
    job_.S4DelExpireDays = 0;
    Upload();
    ASSERT_EQ(CallsOf({L"AddFileToDeletionSchedule"}).size(), 1u);
    EXPECT_TRUE(CallsOf({L"AddFileToDeletionSchedule"})[0].ends_with(L", 0)"));
    EXPECT_TRUE(job_.Usage.UsageExpiry);
    EXPECT_NE(linkText_.find(L": 0. "), std::wstring::npos);
}

TEST_F(CloudUpload, CountsAsExpiringAlsoWhenTheDeletionOrTheShareFails) {
    job_.ExpireFilesAvailable = job_.ExpireFiles = true;
    Answer(L"AddFileToDeletionSchedule", L"0");
    Upload();
    EXPECT_TRUE(job_.Usage.UsageExpiry);
    job_.Usage.UsageExpiry = false;
    Answer(L"provider7.ShareItems", L"0");
    Upload();
    EXPECT_TRUE(job_.Usage.UsageExpiry);
}

TEST_F(CloudUpload, IsSilentWhenTheShareFailsAndKeepsTheResult) {
    Answer(L"provider7.ShareItems", L"0");
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_EQ(CallsOf({L"LogAppletFeature"}).size(), 1u);
    EXPECT_EQ(CallsOf({L"DestroyDownloadList"}).size(), 1u);
    EXPECT_TRUE(FileExists(job_.ResultPath));
}

TEST_F(CloudUpload, ShowsTheProvidersTextWhenItFailsAndClearsTheResult) {
    Answer(L"provider7.RunUpload", L"0");
    Answer(L"GetLastErrorOfProvider", L"The server is full.");
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(CallsOf({L"GetLastErrorOfProvider", L"ClearCallback", L"DestroyUploadList",
                       L"GetDisplayName", L"LogAppletFeature", L"CreateDownloadList"}),
              (Lines{L"GetLastErrorOfProvider(provider7, \"ann\", \"files.zip\", 2048)",
                     L"ClearCallback(provider7)", L"DestroyUploadList(provider7, list)"}));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectPlainBox(boxes.Seen()[0], L"The server is full.");
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(Left().empty());
    EXPECT_FALSE(job_.Usage.UsageExpiry);
}

bool wasThereAtTheError = false;
std::wstring resultOfTheError;
decltype(&MessageBoxW) realBox = nullptr;
int WINAPI NotedBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style) {
    wasThereAtTheError = FileExists(resultOfTheError);
    return realBox(owner, text, caption, style);
}

TEST_F(CloudUpload, ClearsTheResultBeforeItShowsTheFailure) {
    Answer(L"provider7.RunUpload", L"0");
    const obtest::ImportPatch<decltype(&MessageBoxW)> box("user32.dll", "MessageBoxW", &NotedBox);
    ASSERT_TRUE(box.Ok());
    realBox = box.Real();
    resultOfTheError = job_.ResultPath;
    wasThereAtTheError = true;
    ASSERT_TRUE(FileExists(resultOfTheError));
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_FALSE(wasThereAtTheError);
}

TEST_F(CloudUpload, AsksForTheErrorOfTheStampedNameAfterASecondFailure) {
    Answer(L"provider7.RunUpload", L"0");
    Answer(L"provider7.RunUpload.reason", L"1,0");
    const MessageBoxWatcher boxes;
    Upload();
    const std::wstring stamped = std::wstring(L"files") + kFirstStamp + L".zip";
    EXPECT_EQ(CallsOf({L"GetLastErrorOfProvider"}),
              Lines{L"GetLastErrorOfProvider(provider7, \"ann\", " + Quote(stamped) + L", 2048)"});
    EXPECT_TRUE(Left().empty());
}

TEST_F(CloudUpload, ShowsATextThatFillsItsBuffer) {
    const std::wstring text(2048, L't');
    Answer(L"provider7.RunUpload", L"0");
    Answer(L"GetLastErrorOfProvider", text.c_str());
    Answer(L"GetLastErrorOfProvider.noNul", L"1");
    const MessageBoxWatcher boxes;
    Upload();
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectPlainBox(boxes.Seen()[0], text);
}

TEST_F(CloudUpload, HandsAFailedResultToTheWipeProgram) {
    Answer(L"provider7.RunUpload", L"0");
    const PlacedWipeProgram program(ProgramFolder());
    ASSERT_TRUE(program.Ok());
    const MessageBoxWatcher boxes;
    Upload();
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_EQ(program.Runs()[0].commandLine,
              L"\"\" /timeout:120 \"" + job_.ResultPath + L"\" \"" + job_.ResultFolder + L"\"");
    EXPECT_TRUE(FileExists(job_.ResultPath)); // this wipe program only takes notes
}

// A run that can't make a folder writes into the temporary folder, where others have files too.
TEST_F(CloudUpload, NeverClearsTheTemporaryFolderItself) {
    Answer(L"provider7.RunUpload", L"0");
    const PlacedWipeProgram program(ProgramFolder());
    ASSERT_TRUE(program.Ok());
    program.WipeForReal();
    ASSERT_TRUE(obcore::GetTemporaryFolder(job_.ResultFolder));
    temp_.File(L"canary.txt", "canary");
    temp_.File(L"files.zip", "zip");
    job_.ResultPath = job_.ResultFolder + L"files.zip";
    job_.CleanupFolder = job_.ResultFolder;
    job_.CleanupFile = job_.ResultPath;
    ASSERT_TRUE(FileExists(job_.ResultPath));
    const MessageBoxWatcher boxes;
    Upload();
    // An own result that does reach the wipe program shows that the first one didn't.
    MakeOwnResult();
    Upload();
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_NE(program.Runs()[0].commandLine.find(job_.ResultPath), std::wstring::npos);
    EXPECT_EQ(obtest::ReadFileContent(temp_ / L"canary.txt"), "canary");
    EXPECT_EQ(obtest::ReadFileContent(temp_ / L"files.zip"), "zip");
}

TEST_F(CloudUpload, LeavesTheFolderOfAFailedResultWhenSomethingElseIsInIt) {
    Answer(L"provider7.RunUpload", L"0");
    temp_.File(L"run\\other.txt");
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(Left(), (Lines{L"run\\", L"run\\other.txt"}));
}

TEST_F(CloudUpload, AssertsAMissingUploadListAndCallsNothingOfIt) {
    Answer(L"provider7.CreateUploadList", L"0");
    Answer(L"GetLastErrorOfProvider", L"No list.");
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(FakeModules::Calls(),
              (Lines{L"CreateUploadList(provider7, \"ann\")", L"SetCallback(provider7, callback)",
                     L"GetLastErrorOfProvider(provider7, \"ann\", \"files.zip\", 2048)",
                     L"ClearCallback(provider7)"}));
    ASSERT_EQ(boxes.Seen().size(), 2u);
    ExpectAssertion(boxes.Seen()[0], L"upload_list != NULL", L"332");
    ExpectPlainBox(boxes.Seen()[1], L"No list.");
    EXPECT_TRUE(Left().empty());
}

TEST_F(CloudUpload, AssertsAMissingDownloadListAndGivesNoLink) {
    Answer(L"provider7.CreateDownloadList", L"0");
    const MessageBoxWatcher boxes;
    Upload();
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"download_list != NULL", L"266");
    EXPECT_TRUE(CallsOf({L"ShareItems", L"DestroyDownloadList"}).empty());
    EXPECT_EQ(linkText_, L"");
}

// What the user has picked is the user's: it stays as it is, with the files beside it.
class PickedArchive : public CloudUpload {
protected:
    void SetUp() override {
        CloudUpload::SetUp();
        job_.CleanupFolder.clear();
        job_.CleanupFile.clear();
        MakePickedResult();
        before_ = UsersFiles();
        path_ = job_.ResultPath;
    }
    void ExpectUntouched() {
        EXPECT_EQ(UsersFiles(), before_);
        EXPECT_EQ(obtest::ReadFileContent(path_), "their archive");
        EXPECT_EQ(obtest::ReadFileContent(sources_ / L"home\\canary.txt"), "canary");
        EXPECT_EQ(job_.ResultPath, path_);
    }

    Lines before_;
    std::wstring path_;
};

TEST_F(PickedArchive, StaysAfterAFailedUpload) {
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    Upload();
    EXPECT_EQ(boxes.Seen().size(), 1u);
    ExpectUntouched();
}

TEST_F(PickedArchive, IsNeverHandedToTheWipeProgram) {
    Answer(L"provider7.RunUpload", L"0");
    const PlacedWipeProgram program(ProgramFolder());
    ASSERT_TRUE(program.Ok());
    program.WipeForReal();
    const MessageBoxWatcher boxes;
    Upload();
    ExpectUntouched();
    // An own result that does reach the wipe program shows that the first one didn't.
    MakeOwnResult();
    Upload();
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_EQ(program.Runs()[0].commandLine.find(path_), std::wstring::npos);
    EXPECT_EQ(obtest::ReadFileContent(path_), "their archive");
}

TEST_F(PickedArchive, IsNotRenamedForAProviderOfArchives) {
    job_.ResultPath = sources_.File(L"home\\report.pdf", "their archive");
    job_.ResultName = L"report.pdf";
    path_ = job_.ResultPath;
    before_ = UsersFiles();
    Upload(21);
    ExpectUntouched();
    EXPECT_EQ(job_.ResultName, L"report.zip"); // on the cloud
    EXPECT_EQ(job_.CleanupFile, L"");
    EXPECT_EQ(CallsOf({L"AddFile"}), Lines{FileAdded()});
}

// A run that has made a folder, with a result that isn't in it.
TEST_F(PickedArchive, StaysWhenTheRunHasAFolderOfItsOwn) {
    job_.CleanupFolder = temp_.Folder(L"run") + L"\\";
    job_.CleanupFile = job_.CleanupFolder + L"files.zip";
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    Upload();
    ExpectUntouched();
}

TEST_F(PickedArchive, StaysInAFolderBelowTheRunsOwn) {
    job_.CleanupFolder = sources_.Path() + L"\\";
    job_.ResultFolder = job_.CleanupFolder;
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    Upload();
    ExpectUntouched();
}

// A provider that takes archives only.
class ArchivesOnly : public CloudUpload {
protected:
    void ExpectRenamed(const std::wstring& from, const std::wstring& to) {
        MakeOwnResult(from);
        Upload(21);
        EXPECT_EQ(job_.ResultName, to);
        EXPECT_EQ(job_.ResultPath, job_.ResultFolder + to);
        EXPECT_EQ(job_.CleanupFile, job_.ResultFolder + to);
        EXPECT_EQ(CallsOf({L"AddFile"}), Lines{FileAdded()});
        EXPECT_EQ(obtest::ReadFileContent(job_.ResultPath), "zip");
        EXPECT_EQ(Left(), (Lines{L"run\\", L"run\\" + to}));
        obtest::RemoveTree(temp_ / L"run");
    }
    void SetUp() override {
        CloudUpload::SetUp();
        obtest::RemoveTree(temp_ / L"run");
    }
};

TEST_F(ArchivesOnly, GetsAFileOfAnotherNameUnderThatOfAZip) {
    ExpectRenamed(L"report.pdf", L"report.zip");
    ExpectRenamed(L"report", L"report.zip");
    ExpectRenamed(L"a.b.pip", L"a.b.zip");
}

TEST_F(ArchivesOnly, GetsAZipxUnderItsExtension) {
    job_.CompressionMethod = 0xFFFFFFFF;
    ExpectRenamed(L"report.pdf", L"report.zipx");
}

TEST_F(ArchivesOnly, GetsAnArchiveUnderItsOwnName) {
    ExpectRenamed(L"Report.ZIP", L"Report.ZIP");
    ExpectRenamed(L"x.roaming", L"x.roaming");
}

TEST_F(ArchivesOnly, LeavesOtherProvidersTheirNames) {
    MakeOwnResult(L"report.pdf");
    Upload(7);
    EXPECT_EQ(job_.ResultName, L"report.pdf");
    EXPECT_TRUE(FileExists(temp_ / L"run\\report.pdf"));
}

TEST_F(ArchivesOnly, LeavesNothingAfterAFailedUpload) {
    Answer(L"provider21.RunUpload", L"0");
    MakeOwnResult(L"report.pdf");
    const MessageBoxWatcher boxes;
    Upload(21);
    EXPECT_EQ(job_.ResultPath, temp_ / L"run\\report.zip");
    EXPECT_TRUE(Left().empty());
}

TEST_F(ArchivesOnly, GetsAZipNameAlsoForAPathOfMoreThan260Characters) {
    const std::wstring folder = temp_ / std::wstring(240, L'd');
    ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr));
    job_.ResultName = L"a long name of a report.pdf";
    job_.ResultFolder = job_.CleanupFolder = folder + L"\\";
    job_.ResultPath = job_.CleanupFile = job_.ResultFolder + job_.ResultName;
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + job_.ResultPath, "zip"));
    Upload(21);
    EXPECT_EQ(job_.ResultPath, folder + L"\\a long name of a report.zip");
    EXPECT_EQ(obtest::ReadFileContent(L"\\\\?\\" + job_.ResultPath), "zip");
}

// A file of the new name is in the way: nothing is overwritten, and the failed move isn't looked
// at.
TEST_F(ArchivesOnly, GoesOnWhenTheFileCannotBeRenamed) {
    MakeOwnResult(L"report.pdf");
    temp_.File(L"run\\report.zip", "in the way");
    Upload(21);
    EXPECT_EQ(CallsOf({L"AddFile"}), Lines{FileAdded()});
    EXPECT_EQ(job_.ResultPath, temp_ / L"run\\report.zip");
    EXPECT_EQ(obtest::ReadFileContent(temp_ / L"run\\report.zip"), "in the way");
    EXPECT_EQ(obtest::ReadFileContent(temp_ / L"run\\report.pdf"), "zip");
}

TEST_F(ArchivesOnly, LeavesNothingAfterAFailedUploadOfAFileThatCannotBeRenamed) {
    Answer(L"provider21.RunUpload", L"0");
    MakeOwnResult(L"report.pdf");
    temp_.File(L"run\\report.zip", "in the way");
    const MessageBoxWatcher boxes;
    Upload(21);
    EXPECT_TRUE(Left().empty());
}

DWORD movedWith = 0;
decltype(&MoveFileExW) realMove = nullptr;
BOOL WINAPI NotedMove(LPCWSTR from, LPCWSTR to, DWORD flags) {
    movedWith = flags;
    return realMove(from, to, flags);
}

TEST_F(ArchivesOnly, MayBeCopiedToAnotherVolumeAndReplacesNothing) {
    const obtest::ImportPatch<decltype(&MoveFileExW)> move("kernel32.dll", "MoveFileExW",
                                                           &NotedMove);
    ASSERT_TRUE(move.Ok());
    realMove = move.Real();
    MakeOwnResult(L"report.pdf");
    Upload(21);
    EXPECT_EQ(movedWith, static_cast<DWORD>(MOVEFILE_COPY_ALLOWED));
}

DWORD WINAPI RunFolderIsALink(LPCWSTR) {
    return FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
}

TEST_F(CloudUpload, ClearsNothingWhenALinkHasTakenTheFoldersPlace) {
    Answer(L"provider7.RunUpload", L"0");
    const MessageBoxWatcher boxes;
    {
        const obtest::ImportPatch<decltype(&GetFileAttributesW)> link(
            "kernel32.dll", "GetFileAttributesW", &RunFolderIsALink);
        ASSERT_TRUE(link.Ok());
        Upload();
    }
    EXPECT_TRUE(FileExists(job_.ResultPath));
}

} // namespace
