// Runs that make a zip: working copy, transforms, compression, and what is left afterwards.
#include <new>

#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"
#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;
using obtest::TheFakePipeline;

constexpr wchar_t kZipName[] = L"Ombrix Compressed Attachments.zip";

class ZipRoute : public obtest::PlanningFixture {
protected:
    void TearDown() override {
        SetCurrentDirectoryW(obtest::ProgramFolder().c_str());
        PlanningFixture::TearDown();
    }

    static Lines ZipReport(const std::wstring& encryption = L"no") {
        return Report(L"type=attachment|file-send.encryption=" + encryption +
                      L"|file-send.compression=zip|file-send.expiry=no");
    }
    std::wstring Transformed(const Lines& names, const std::wstring& folder) {
        std::wstring list;
        for (const std::wstring& name : names)
            list += (list.empty() ? L"" : L", ") + Quote(folder + name);
        return L"RunTransforms([" + list + L"], " + Quote(folder) + L", 1)";
    }
    void ExpectSourcesWhole() {
        EXPECT_EQ(obtest::ReadFileContent(one_), "one");
        EXPECT_EQ(obtest::ReadFileContent(two_), "two");
    }

    std::wstring one_ = sources_.File(L"one.txt", "one");
    std::wstring two_ = sources_.File(L"two.txt", "two");
};

TEST_F(ZipRoute, CopiesTransformsZipsAndAttaches) {
    EXPECT_EQ(Process({two_, one_}), 1);
    const std::wstring zip = RunFolder(1);
    Lines expected = {Transformed({L"two.txt", L"one.txt"}, RunFolder()),
                      L"CreateZipContext()",
                      L"AddFileW(context5, " + Quote(RunFolder() + L"two.txt") + L")",
                      L"AddFileW(context5, " + Quote(RunFolder() + L"one.txt") + L")",
                      L"SetZipNameW(context5, " + Quote(zip + kZipName) + L")",
                      L"SetTempFolderW(context5, " + Quote(zip) + L")",
                      L"SetEncrypt(context5, 0)",
                      L"SetCompression(context5, 8)",
                      L"SetDuplicateReferences(context5, 0)",
                      L"Zip(" + Owner() + L", context5)",
                      L"DestroyZipContext(context5)",
                      ZipReport().front()};
    EXPECT_EQ(FakeModules::Calls(), expected);
    EXPECT_EQ(job_.ResultPath, zip + kZipName);
    EXPECT_TRUE(job_.ResultIsArchive);
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, LeavesTheZipAndNoWorkingCopy) {
    EXPECT_EQ(Process({one_, two_}), 1);
    EXPECT_EQ(Left(), (Lines{L"1001\\", std::wstring(L"1001\\") + kZipName}));
}

TEST_F(ZipRoute, ZipsAlsoForEncryptionAlone) {
    job_.SendItem = false;
    job_.AutoEncrypt = true;
    EXPECT_EQ(Process({one_}), 1);
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_EQ(job_.ResultName, L"one.zip");
    EXPECT_EQ(UsageReports(), ZipReport(L"yes"));
}

TEST_F(ZipRoute, GivesTheTransformsACopyOfItsOwn) {
    TheFakePipeline().runTransforms = [this](auto&, auto& files) {
        EXPECT_EQ(obtest::ReadFileContent(files.front()), "one");
        obtest::WriteFileContent(files.front(), "changed");
        return true;
    };
    EXPECT_EQ(Process({one_}), 1);
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, ZipsTheFilesAsTheTransformsLeftThem) {
    TheFakePipeline().runTransforms = [](auto&, auto& files) {
        files = {L"C:\\made\\one.pdf"};
        return true;
    };
    EXPECT_EQ(Process({one_, two_}), 1);
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}),
              Lines{L"AddFileW(context5, \"C:\\made\\one.pdf\")"});
    EXPECT_EQ(job_.Files, Lines{L"C:\\made\\one.pdf"});
}

TEST_F(ZipRoute, ReportsAndAttachesWhereTheRunMadeNoZip) {
    job_.SendSetting = obcore::SendSettingKind::Always;
    TheFakePipeline().runTransforms = [](auto& job, auto&) {
        job.SendItem = false;
        return true;
    };
    EXPECT_EQ(Process({one_}), 1);
    EXPECT_FALSE(job_.ResultIsArchive);
    EXPECT_EQ(job_.Files, Lines{RunFolder() + L"one.txt"});
    Lines expected = {Transformed({L"one.txt"}, RunFolder())};
    expected.push_back(PlainReport().front());
    EXPECT_EQ(FakeModules::Calls(), expected);
    EXPECT_TRUE(Left().empty());
}

TEST_F(ZipRoute, StopsWhenTheTransformsStop) {
    TheFakePipeline().runTransforms = [](auto&, auto&) { return false; };
    picker_.LinkText = L"before";
    const MessageBoxWatcher boxes;
    EXPECT_EQ(Process({one_, two_}), 0);
    EXPECT_EQ(FakeModules::Calls(), Lines{Transformed({L"one.txt", L"two.txt"}, RunFolder())});
    EXPECT_TRUE(Left().empty());
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_EQ(picker_.LinkText, L"before");
    EXPECT_FALSE(job_.ResultIsArchive);
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, StopsWhenTheZipFails) {
    FakeModules::Answer(L"Zip", L"1");
    picker_.LinkText = L"before";
    const MessageBoxWatcher boxes;
    EXPECT_EQ(Process({one_, two_}), 0);
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(Left(), Lines{L"1001\\"});
    EXPECT_EQ(picker_.LinkText, L"");
    EXPECT_TRUE(UsageReports().empty());
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, LeavesNothingWhenTheUserGivesNoPassword) {
    job_.AutoEncrypt = true;
    FakeModules::Answer(L"PasswordNewDlg_C", L"0");
    EXPECT_EQ(Process({one_}), 0);
    EXPECT_TRUE(Left().empty());
    EXPECT_TRUE(UsageReports().empty());
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, EmptiesTheLinkTextBeforeItCompresses) {
    picker_.LinkText = L"before";
    EXPECT_EQ(Process({one_}), 1);
    EXPECT_EQ(picker_.LinkText, L"");
}

TEST_F(ZipRoute, LeavesOutWhatCanNotBeCopied) {
    const ObLib::UniqueKernelHandle lock(
        CreateFileW(one_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(lock);
    EXPECT_EQ(Process({one_, sources_ / L"missing.txt", two_}), 1);
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}),
              Lines{L"AddFileW(context5, " + Quote(RunFolder() + L"two.txt") + L")"});
    EXPECT_EQ(job_.ResultName, L"two.zip");
}

TEST_F(ZipRoute, StopsWhenNoneCanBeCopied) {
    EXPECT_EQ(Process({sources_ / L"missing.txt"}), 0);
    EXPECT_EQ(FakeModules::Calls(), Lines{Transformed({}, RunFolder())});
    EXPECT_TRUE(Left().empty());
}

TEST_F(ZipRoute, StopsOnAnEmptyList) {
    EXPECT_EQ(Process({}), 0);
    EXPECT_EQ(FakeModules::Calls(), Lines{Transformed({}, RunFolder())});
    EXPECT_TRUE(Left().empty());
}

TEST_F(ZipRoute, ListsTwoFilesOfOneNameTwice) {
    const std::wstring other = sources_.Folder(L"other") + L"\\one.txt";
    ASSERT_TRUE(obtest::WriteFileContent(other, "other"));
    EXPECT_EQ(Process({one_, other}), 1);
    const std::wstring add = L"AddFileW(context5, " + Quote(RunFolder() + L"one.txt") + L")";
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}), (Lines{add, add}));
    EXPECT_EQ(obtest::ReadFileContent(other), "other");
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, LeavesNoCopyOfAWriteProtectedFile) {
    ASSERT_TRUE(SetFileAttributesW(one_.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(Process({one_}), 1);
    EXPECT_EQ(Left(), (Lines{L"1001\\", L"1001\\one.zip"}));
    EXPECT_NE(GetFileAttributesW(one_.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, TakesAFileWithAPathOfMoreThan260Characters) {
    std::wstring folder = L"\\\\?\\" + sources_.Path();
    for (int depth = 0; depth < 3; ++depth) {
        folder += L"\\" + std::wstring(100, L'd');
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    }
    ASSERT_TRUE(obtest::WriteFileContent(folder + L"\\deep.txt", "deep"));
    EXPECT_EQ(Process({folder.substr(4) + L"\\deep.txt"}), 1);
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}),
              Lines{L"AddFileW(context5, " + Quote(RunFolder() + L"deep.txt") + L")"});
    EXPECT_EQ(obtest::ReadFileContent(folder + L"\\deep.txt"), "deep");
}

TEST_F(ZipRoute, LeavesTheWorkingCopyToTheWipeProgramWhereThereIsOne) {
    const obtest::PlacedWipeProgram program(obtest::ProgramFolder());
    program.WipeForReal();
    EXPECT_EQ(Process({one_, two_}), 1);
    const auto runs = program.WaitForRuns(1);
    ASSERT_EQ(runs.size(), 1u);
    const std::wstring first = L" " + Quote(RunFolder() + L"one.txt");
    const std::wstring second = L" " + Quote(RunFolder() + L"two.txt");
    const std::wstring folder = L" " + Quote(RunFolder());
    const std::wstring start = L"\"\" /timeout:120";
    EXPECT_TRUE(runs[0].commandLine == start + first + second + folder ||
                runs[0].commandLine == start + second + first + folder);
    EXPECT_EQ(Left(), (Lines{L"1001\\", std::wstring(L"1001\\") + kZipName}));
}

TEST_F(ZipRoute, ClearsItsCopiesWhenMemoryRunsOut) {
    TheFakePipeline().runTransforms = [](auto&, auto&) -> bool { throw std::bad_alloc(); };
    EXPECT_THROW(Process({one_}), std::bad_alloc);
    EXPECT_TRUE(Left().empty());
}

// Without a temporary folder the record's folder is empty, which a search would take for the
// current one.
DWORD WINAPI NoTempPath(DWORD, LPWSTR) { return 0; }

TEST_F(ZipRoute, TouchesNothingWithoutATemporaryFolder) {
    ASSERT_TRUE(SetCurrentDirectoryW(sources_.Path().c_str()));
    const obtest::PlacedWipeProgram program(obtest::ProgramFolder());
    obtest::ImportPatch<decltype(&GetTempPathW)> noFolder("kernel32.dll", "GetTempPathW",
                                                          &NoTempPath);
    ASSERT_TRUE(noFolder.Ok());
    const Lines before = obtest::ListTree(sources_.Path());
    EXPECT_EQ(Process({one_, two_}), 0);
    EXPECT_EQ(FakeModules::Calls(),
              Lines{L"RunTransforms([" + Quote(one_) + L", " + Quote(two_) + L"], \"\", 1)"});
    EXPECT_EQ(obtest::ListTree(sources_.Path()), before);
    EXPECT_TRUE(program.Runs().empty());
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, StopsWhenTheTemporaryFolderIsMissing) {
    UseTemporaryFolder(temp_ / L"missing");
    EXPECT_EQ(Process({one_}), 0);
    EXPECT_EQ(FakeModules::CallsOf({L"RunTransforms"}), Lines{L"RunTransforms([], \"\", 1)"});
    EXPECT_TRUE(FakeModules::CallsOf({L"CreateZipContext"}).empty());
    EXPECT_TRUE(Left().empty());
    ExpectSourcesWhole();
}

TEST_F(ZipRoute, LeavesTheTemporaryFolderOfOthersAlone) {
    temp_.File(L"of another program.txt");
    EXPECT_EQ(Process({one_}), 1);
    EXPECT_EQ(Left(), (Lines{L"1001\\", L"1001\\one.zip", L"of another program.txt"}));
}

TEST_F(ZipRoute, AttachesAPickedArchiveAsItIs) {
    const std::wstring archive = sources_.File(L"picked.7z", "archive");
    job_.AutoEncrypt = true;
    job_.AutoWatermark = true;
    job_.SendItem = false;
    EXPECT_EQ(Process({archive}), 1);
    EXPECT_EQ(FakeModules::Calls(), PlainReport());
    EXPECT_EQ(job_.ResultPath, archive);
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_TRUE(job_.SendItem);
    EXPECT_TRUE(Left().empty());
    EXPECT_EQ(obtest::ReadFileContent(archive), "archive");
}

TEST_F(ZipRoute, ZipsTwoArchives) {
    EXPECT_EQ(Process({sources_.File(L"a.zip"), sources_.File(L"b.zip")}), 1);
    EXPECT_EQ(job_.ResultPath, RunFolder(1) + kZipName);
}

TEST_F(ZipRoute, ZipsAnArchiveWithACapitalExtensionAgain) {
    EXPECT_EQ(Process({sources_.File(L"a.ZIP")}), 1);
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}),
              Lines{L"AddFileW(context5, " + Quote(RunFolder() + L"a.ZIP") + L")"});
    EXPECT_EQ(job_.ResultPath, RunFolder(1) + L"a.zip");
}

} // namespace
