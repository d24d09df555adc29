// Picked files that have been deleted, can't be read, or have unusual names and paths.
#include <algorithm>

#include "tests/faults/HostRole.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Contents = std::map<std::string, std::string>;

class PickedFilesFaults : public HostRole {
protected:
    void SetUp() override {
        HostRole::SetUp();
        one_ = sources_.File(L"one.txt", "first");
        two_ = sources_.File(L"two.txt", "second");
    }

    // Expects that nothing was made, that no message was shown, and that the page gets a cancel.
    void ExpectNothingCameOfIt(const Answer& answer) const {
        ExpectNothingGiven(answer);
        EXPECT_EQ(Left(), Texts{});
        EXPECT_TRUE(boxes_.Seen().empty());
    }

    std::wstring one_;
    std::wstring two_;
};

TEST_F(PickedFilesFaults, OneThatVanishedIsLeftOutOfTheZip) {
    shell_.script.onShow = [this](RecordingFileDialog&) { DeleteFileW(one_.c_str()); };
    const Answer answer = Open({one_, two_});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(ZipOf(answer), (Contents{{"two.txt", "second"}}));
    ExpectOnlyTheZipIsLeft(answer);
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(PickedFilesFaults, AllThatVanishedGiveThePageNothing) {
    const Texts gone = {sources_ / L"gone.txt", sources_ / L"gone too.txt"};
    ExpectNothingCameOfIt(Open(gone));
    ExpectNothingCameOfIt(Show(gone));
}

TEST_F(PickedFilesFaults, OneThatVanishedIsGivenAsPickedWithoutAZip) {
    ChooseNoZip();
    const Texts gone = {sources_ / L"gone.txt"};
    EXPECT_EQ(Open(gone).files, gone);
    EXPECT_EQ(Show(gone).files, gone);
    EXPECT_EQ(Left(), Texts{});
}

ObLib::UniqueKernelHandle LockedFile(const std::wstring& path) {
    return ObLib::UniqueKernelHandle(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                                 nullptr, OPEN_EXISTING, 0, nullptr));
}

TEST_F(PickedFilesFaults, OneThatIsLockedIsLeftOutOfTheZipAndStaysWhole) {
    ObLib::UniqueKernelHandle lock = LockedFile(one_);
    ASSERT_TRUE(lock);
    const Answer answer = Show({one_, two_});
    EXPECT_EQ(answer.result, S_OK);
    EXPECT_EQ(ZipOf(answer), (Contents{{"two.txt", "second"}}));
    ExpectOnlyTheZipIsLeft(answer);
    lock.Reset();
    EXPECT_EQ(ReadFileContent(one_), "first");
}

TEST_F(PickedFilesFaults, AllThatAreLockedGiveThePageNothing) {
    const ObLib::UniqueKernelHandle first = LockedFile(one_);
    const ObLib::UniqueKernelHandle second = LockedFile(two_);
    ASSERT_TRUE(first && second);
    ExpectNothingCameOfIt(Open({one_, two_}));
    ExpectNothingCameOfIt(Show({one_, two_}));
}

TEST_F(PickedFilesFaults, ReadOnlyOnesAreZippedAndStayReadOnly) {
    for (const std::wstring& file : {one_, two_})
        ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    const Answer answer = Open({one_, two_});
    EXPECT_EQ(ZipOf(answer), (Contents{{"one.txt", "first"}, {"two.txt", "second"}}));
    ExpectOnlyTheZipIsLeft(answer);
    for (const std::wstring& file : {one_, two_}) {
        EXPECT_TRUE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY);
        SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    }
}

// A folder so deep that everything in it has a path of more than 260 characters. This class removes
// it, as the test folder's own clean-up uses short paths.
class DeepFolder {
public:
    explicit DeepFolder(const std::wstring& base) {
        std::wstring folder = L"\\\\?\\" + base;
        for (int depth = 0; depth < 3; ++depth) {
            folder += L"\\" + std::wstring(100, L'd');
            EXPECT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
            folders_.push_back(folder);
        }
    }
    ~DeepFolder() {
        for (const std::wstring& file : files_) DeleteFileW((L"\\\\?\\" + file).c_str());
        std::ranges::reverse(folders_);
        for (const std::wstring& folder : folders_) RemoveDirectoryW(folder.c_str());
    }
    DeepFolder(const DeepFolder&) = delete;
    DeepFolder& operator=(const DeepFolder&) = delete;

    // The full path without a prefix, as the shell returns it.
    std::wstring File(const std::wstring& name, std::string_view content) {
        const std::wstring path = folders_.back() + L"\\" + name;
        EXPECT_TRUE(WriteFileContent(path, content));
        files_.push_back(path.substr(4));
        return files_.back();
    }

private:
    Texts folders_;
    Texts files_;
};

TEST_F(PickedFilesFaults, OnesWithPathsBeyond260CharactersAreZippedAndGiven) {
    DeepFolder deep(sources_.Path());
    const Texts files = {deep.File(L"a.txt", "deep"), deep.File(L"b.txt", "deeper")};
    ASSERT_GT(files.front().size(), std::size_t{260});
    const Answer zipped = Open(files);
    EXPECT_EQ(ZipOf(zipped), (Contents{{"a.txt", "deep"}, {"b.txt", "deeper"}}));
    ExpectOnlyTheZipIsLeft(zipped);
    ChooseNoZip();
    EXPECT_EQ(Show(files).files, files);
    EXPECT_EQ(Open({files.front()}).files, Texts{files.front()});
}

TEST_F(PickedFilesFaults, OnesWithEveryLegalOddityInTheirNamesAreZippedWhole) {
    const Texts names = {
        L"  leading blanks.txt",
        L"...three points",
        L"..two points",
        L"no extension",
        L"a.b.c.tar.gz",
        L"100%s%n;&'!{}[]^~@#$.txt",
        std::wstring(251, L'n') + L".txt",
        L"\xD83D\xDE00\x200D\xD83D\xDD25.txt",
        L"\x05E9\x05DC\x05D5\x05DD \x202E\x0627\x0644.txt",
        L"e\x0301\x0301\x0301.txt",
        L"\x6F22\x5B57.txt",
    };
    Texts files;
    Contents expected;
    for (const std::wstring& name : names) {
        const std::string content = "content of " + Utf8(name);
        files.push_back(sources_.File(name, content));
        expected[Utf8(name)] = content;
    }
    const Answer answer = Open(files);
    EXPECT_EQ(ZipOf(answer), expected);
    ExpectOnlyTheZipIsLeft(answer);
    for (const std::wstring& file : files) EXPECT_TRUE(FileExists(file));
    ChooseNoZip();
    Texts list = {sources_.Path() + L"\\"};
    list.insert(list.end(), names.begin(), names.end());
    EXPECT_EQ(Open(files).files, list);
    EXPECT_EQ(Show(files).files, files);
}

// The zip is named after its one file, and is in its own folder with that name.
TEST_F(PickedFilesFaults, OneWhoseNameBeginsWithPointsGivesItsNameToTheZip) {
    SetUserValue(L"SingleAttachFileName", L"1");
    for (const wchar_t* name : {L"..two points", L"...three points", L".one point", L"...."}) {
        const std::wstring file = sources_.File(std::wstring(name) + L".txt", "points");
        const Answer answer = Open({file});
        ASSERT_EQ(answer.files.size(), 1u);
        EXPECT_TRUE(answer.files.front().ends_with(std::wstring(L"\\") + name + L".zip"));
        EXPECT_EQ(ZipOf(answer), (Contents{{Utf8(name) + ".txt", "points"}}));
        ExpectOnlyTheZipIsLeft(answer);
        EXPECT_EQ(ReadFileContent(file), "points");
        RemoveTree(answer.cleanupFolder.substr(0, answer.cleanupFolder.size() - 1));
    }
}

// Half of a surrogate pair is legal in a name and not in text; the other files must not be
// affected.
TEST_F(PickedFilesFaults, OneWithHalfASurrogatePairInItsNameIsZippedUnderAReplacement) {
    const std::wstring odd = sources_ / L"half \xD83D pair.txt";
    if (!WriteFileContent(odd, "odd")) {
        GTEST_SKIP() << "this file system takes no name with half a surrogate pair";
    }
    const Answer answer = Open({odd, two_});
    const Contents entries = ZipOf(answer);
    EXPECT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("two.txt"), "second");
    ExpectOnlyTheZipIsLeft(answer);
}

// The working copy has one file of each name: the later one. Both originals stay.
TEST_F(PickedFilesFaults, TwoOfTheSameNameFromTwoFoldersAreOneEntryAndBothStay) {
    const std::wstring other = sources_.Folder(L"other") + L"\\one.txt";
    ASSERT_TRUE(WriteFileContent(other, "other"));
    const Answer answer = Open({one_, other, two_});
    EXPECT_EQ(ZipOf(answer), (Contents{{"one.txt", "other"}, {"two.txt", "second"}}));
    ExpectOnlyTheZipIsLeft(answer);
    EXPECT_EQ(ReadFileContent(one_), "first");
    EXPECT_EQ(ReadFileContent(other), "other");
}

TEST_F(PickedFilesFaults, TwoOfTheSameNameAreBothGivenWithoutAZipWhereThePageTakesFullPaths) {
    ChooseNoZip();
    const std::wstring other = sources_.Folder(L"other") + L"\\one.txt";
    ASSERT_TRUE(WriteFileContent(other, "other"));
    EXPECT_EQ(Show({one_, other}).files, (Texts{one_, other}));
    // The list of the open-file-name path has one folder.
    EXPECT_EQ(Open({one_, other}).files, (Texts{sources_.Path() + L"\\", L"one.txt", L"one.txt"}));
}

TEST_F(PickedFilesFaults, AThousandAreOneZip) {
    Texts files;
    Contents expected;
    for (int number = 0; number < 1000; ++number) {
        const std::wstring name = L"file " + std::to_wstring(number) + L".txt";
        files.push_back(sources_.File(name, std::to_string(number)));
        expected[Utf8(name)] = std::to_string(number);
    }
    const Answer answer = Open(files);
    EXPECT_EQ(ZipOf(answer), expected);
    ExpectOnlyTheZipIsLeft(answer);
    EXPECT_EQ(ListTree(sources_.Path()).size(), 1002u);
}

TEST_F(PickedFilesFaults, AThousandNamesFitTheListOfOneFolder) {
    ChooseNoZip();
    Texts files;
    Texts list = {sources_.Path() + L"\\"};
    for (int number = 0; number < 1000; ++number) {
        list.push_back(L"file " + std::to_wstring(number) + L".txt");
        files.push_back(sources_ / list.back());
    }
    EXPECT_EQ(Open(files).files, list);
}

// Full paths of a thousand files need more room than the block has. Every path that is delivered is
// one that was picked, except the last, which the block's end cuts.
TEST_F(PickedFilesFaults, AThousandFullPathsEndWithTheBlock) {
    ChooseNoZip();
    Texts files;
    for (int number = 0; number < 1000; ++number) {
        const std::wstring name = std::to_wstring(number) + std::wstring(60, L'x') + L".txt";
        files.push_back(sources_ / name);
    }
    const Texts given = Show(files).files;
    ASSERT_GT(given.size(), 200u);
    ASSERT_LT(given.size(), files.size());
    for (std::size_t index = 0; index + 1 < given.size(); ++index)
        EXPECT_EQ(given[index], files[index]);
    EXPECT_TRUE(files[given.size() - 1].starts_with(given.back()));
}

} // namespace
} // namespace obtest
