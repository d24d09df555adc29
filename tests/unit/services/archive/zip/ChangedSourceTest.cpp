// Sources that change at each moment of a run with duplicate references: such files are read twice,
// once to see whether they are known, and then to be stored.
#include <functional>

#include "services/archive/zip/ReadAhead.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/services/archive/zip/EngineFixture.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace obtest {
namespace {

using obarchive::kBlockSize;
using obarchive::ZipProgress;
using obarchive::ZipResult;

// What happens just before a file is opened for the n-th time.
struct Intrusion {
    std::wstring path;
    int opening = 0;
    std::function<void()> action;
    decltype(&CreateFileW) real = nullptr;
};
Intrusion intrusion;

HANDLE WINAPI OpenAfterIntrusion(LPCWSTR path, DWORD access, DWORD share,
                                 LPSECURITY_ATTRIBUTES security, DWORD how, DWORD flags,
                                 HANDLE model) {
    if (access == GENERIC_READ && intrusion.action && intrusion.path == path &&
        --intrusion.opening == 0) {
        const auto action = std::move(intrusion.action);
        intrusion.action = nullptr;
        action();
    }
    return intrusion.real(path, access, share, security, how, flags, model);
}

constexpr int kHashing = 1;
constexpr int kStoring = 2;

class ChangedSourceTest : public EngineFixture {
protected:
    ChangedSourceTest() {
        job_.duplicateReferences = true;
        const std::string content = EngineProse(kBlockSize + 600'000);
        source_ = Add(L"first.txt", content);
        Add(L"same.txt", content);
        intrusion = {};
        intrusion.path = source_;
    }

    // Runs with something done before the source is opened for the n-th time.
    ZipResult RunWith(int opening, std::function<void()> action) {
        const ImportPatch<decltype(&CreateFileW)> patch("kernel32.dll", "CreateFileW",
                                                        &OpenAfterIntrusion);
        EXPECT_TRUE(patch.Ok());
        intrusion.real = patch.Real();
        intrusion.opening = opening;
        intrusion.action = std::move(action);
        const ZipResult result = Run();
        EXPECT_FALSE(intrusion.action) << "the file is opened so often";
        return result;
    }

    // Runs with something done once while the source is read, in the first or in the second
    // reading: only the second counts bytes.
    ZipResult RunWithDuring(int reading, const std::function<void()>& action) {
        bool done = false;
        const ZipResult result = Run([&](const ZipProgress& now) {
            const bool storing = now.bytesRead != 0;
            if (now.file != source_ || done || storing != (reading == kStoring)) return true;
            action();
            done = true;
            return true;
        });
        EXPECT_TRUE(done);
        return result;
    }

    void ExpectFailure(ZipResult result, ZipResult expected) {
        EXPECT_EQ(result, expected);
        EXPECT_EQ(failedFile_, source_);
        ExpectNothingLeft();
    }

    ObLib::UniqueKernelHandle OpenToChange() const {
        return ObLib::UniqueKernelHandle(
            CreateFileW(source_.c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, 0, nullptr));
    }

    void Resize(LONGLONG by) const {
        const auto file = OpenToChange();
        LARGE_INTEGER end;
        end.QuadPart = by;
        EXPECT_TRUE(SetFilePointerEx(file.Get(), end, nullptr, FILE_END));
        EXPECT_TRUE(SetEndOfFile(file.Get()));
    }

    // Other bytes in the place of some; the time of the change is set, or put back.
    void Overwrite(bool hidden) const {
        const auto file = OpenToChange();
        FILETIME time;
        EXPECT_TRUE(GetFileTime(file.Get(), nullptr, nullptr, &time));
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(file.Get(), "changed", 7, &written, nullptr));
        // A second on, as the clock of a file may be that coarse.
        if (!hidden) time.dwLowDateTime += 20'000'000;
        EXPECT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
    }

    std::wstring source_;
};

TEST_F(ChangedSourceTest, UnchangedItIsReadTwiceAndStoredOnce) {
    EXPECT_EQ(RunWith(kStoring, [] {}), ZipResult::Ok);
    const auto raw = ReadRawEntries(job_.target);
    ASSERT_EQ(raw.size(), 2U);
    EXPECT_EQ(raw[0].packed, raw[1].packed);
}

TEST_F(ChangedSourceTest, ChangedBetweenTheReadings) {
    ExpectFailure(RunWith(kStoring, [this] { Overwrite(false); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, GrownBetweenTheReadings) {
    ExpectFailure(RunWith(kStoring, [this] { Resize(1); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, CutBetweenTheReadings) {
    ExpectFailure(RunWith(kStoring, [this] { Resize(-1); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, DeletedBetweenTheReadings) {
    const auto vanish = [this] { EXPECT_TRUE(DeleteFileW(source_.c_str())); };
    ExpectFailure(RunWith(kStoring, vanish), ZipResult::SourceMissing);
}

TEST_F(ChangedSourceTest, LockedBetweenTheReadings) {
    ObLib::UniqueKernelHandle lock;
    const auto take = [&] {
        lock = ObLib::UniqueKernelHandle(
            intrusion.real(source_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_TRUE(lock);
    };
    ExpectFailure(RunWith(kStoring, take), ZipResult::SourceLocked);
}

TEST_F(ChangedSourceTest, ReplacedByAnotherFileBetweenTheReadings) {
    const std::wstring other = in_.File(L"other.txt", EngineProse(kBlockSize + 600'000, 8));
    const FILETIME time{0, 0x01D00000};
    {
        const ObLib::UniqueKernelHandle file(CreateFileW(other.c_str(), FILE_WRITE_ATTRIBUTES, 0,
                                                         nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
    }
    const auto replace = [&] {
        EXPECT_TRUE(MoveFileExW(other.c_str(), source_.c_str(), MOVEFILE_REPLACE_EXISTING));
    };
    ExpectFailure(RunWith(kStoring, replace), ZipResult::SourceChanged);
}

// Neither size nor time shows it, as on a disk whose clock is coarse. The second file still has
// what the first one had.
TEST_F(ChangedSourceTest, AFileChangedBetweenTheReadingsIsNeverTakenForItsDuplicate) {
    ExpectFailure(RunWith(kStoring, [this] { Overwrite(true); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, ChangedInEitherReading) {
    ExpectFailure(RunWithDuring(kHashing, [this] { Overwrite(false); }), ZipResult::SourceChanged);
    ExpectFailure(RunWithDuring(kStoring, [this] { Overwrite(false); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, GrownInTheFirstReading) {
    ExpectFailure(RunWithDuring(kHashing, [this] { Resize(5); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, GrownInTheSecondReading) {
    ExpectFailure(RunWithDuring(kStoring, [this] { Resize(5); }), ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, CutInTheFirstReading) {
    ExpectFailure(RunWithDuring(kHashing, [this] { Resize(-1'000'000); }),
                  ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, CutInTheSecondReading) {
    ExpectFailure(RunWithDuring(kStoring, [this] { Resize(-1'000'000); }),
                  ZipResult::SourceChanged);
}

TEST_F(ChangedSourceTest, DeletedBeforeEachReadingButTheLast) {
    const auto vanish = [this] { EXPECT_TRUE(DeleteFileW(source_.c_str())); };
    ExpectFailure(RunWith(kHashing, vanish), ZipResult::SourceMissing);
}

// Once it is open, its content can be had to the end.
TEST_F(ChangedSourceTest, DeletedInTheLastReadingItIsStoredWhole) {
    const std::string content = ReadFileContent(source_).value_or("");
    const auto vanish = [this] { EXPECT_TRUE(DeleteFileW(source_.c_str())); };
    EXPECT_EQ(RunWithDuring(kStoring, vanish), ZipResult::Ok);
    const auto entries = ReadZip(job_.target);
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 2U);
    EXPECT_TRUE(entries->at(0).content == content);
    EXPECT_TRUE(entries->at(1).content == content);
}

// The copy itself is read once only, and is of the first file's content only if it still is so.
TEST_F(ChangedSourceTest, ADuplicateThatChangesWhileItIsReadFailsTheRun) {
    source_ = job_.files.back();
    bool done = false;
    const ZipResult result = Run([&](const ZipProgress& now) {
        if (now.file == source_ && !done) Overwrite(false);
        done = done || now.file == source_;
        return true;
    });
    EXPECT_TRUE(done);
    ExpectFailure(result, ZipResult::SourceChanged);
}

} // namespace
} // namespace obtest
