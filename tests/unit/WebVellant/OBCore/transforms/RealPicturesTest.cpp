// Runs with the real provider manager and its work process that make real pictures smaller, each
// alone or all of a mail together: what is attached, what the user reads, what is on the disk.
#include <algorithm>
#include <map>
#include <optional>

#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "OBCore/transforms/Transforms.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using obtest::Lines;
using obtest::PictureBytes;

constexpr int kStatusText = 1001;                     // of the progress dialog
constexpr std::uint64_t kRoomOfOneMegabyte = 729'927; // for files, in a mail of 1,000,000 bytes
constexpr std::uint64_t kZipEntry = 76 + 28 + 11;     // headers, and what encryption adds, at least

const std::wstring kKey = std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\";

std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
PictureBytes Bytes(const std::string& text) { return {text.begin(), text.end()}; }

class PicturesByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoResizeImages = true;
    }
    // Every original is as it was.
    void TearDown() override {
        for (const auto& [path, content] : originals_) {
            EXPECT_EQ(obtest::ReadFileContent(path), content);
        }
        RealManagerFixture::TearDown();
    }

    static void Aim(const wchar_t* aim, const wchar_t* name, const wchar_t* number) {
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"2", L"Aim", aim);
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"2", name, number);
    }
    static void FitOneMegabyte() { Aim(L"FitMail", L"Megabytes", L"1"); }
    void RemovePersonalDataToo() {
        job_.AutoRemoveInfo = true;
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"51", L"AskAboutOtherFiles", L"1");
        obtest::SetValue(HKEY_CURRENT_USER, kKey + L"51", L"ShowReceipt", L"0");
    }

    std::wstring Pick(const std::wstring& name, const std::string& content) {
        const std::wstring path = sources_.File(name, content);
        originals_[path] = content;
        picked_.push_back(path);
        return path;
    }
    std::wstring Pick(const std::wstring& name, const PictureBytes& picture) {
        return Pick(name, Text(picture));
    }
    // Copies of what was picked, in the folder of a run.
    Lines Copies() {
        folder_ = temp_.Folder(L"run") + L"\\";
        Lines copies;
        for (const std::wstring& path : picked_) {
            copies.push_back(folder_ + path.substr(path.find_last_of(L'\\') + 1));
            EXPECT_TRUE(CopyFileW(path.c_str(), copies.back().c_str(), FALSE));
        }
        return copies;
    }
    // Runs the transforms on copies. The contents of the results by name; nothing if the run
    // stopped.
    std::optional<std::map<std::wstring, std::string>> Run(bool zips) {
        Begin();
        job_.TransformsBeforeArchive = zips;
        Lines files = Copies();
        const Lines copies = files;
        if (!obcore::CompressUtils::RunTransforms(job_, files, folder_)) return {};
        EXPECT_EQ(files, copies);
        Lines names;
        std::map<std::wstring, std::string> results;
        for (const std::wstring& path : files) {
            names.push_back(path.substr(folder_.size()));
            results[names.back()] = obtest::ReadFileContent(path).value_or("");
        }
        std::ranges::sort(names);
        EXPECT_EQ(obtest::ListTree(folder_), names); // and nothing else
        obtest::RemoveTree(temp_ / L"run");
        return results;
    }
    void ExpectStopped(const std::wstring& text) {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(Run(false));
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_NE(boxes.Seen()[0].text.find(text), std::wstring::npos)
            << testing::PrintToString(boxes.Seen()[0].text);
        obtest::RemoveTree(temp_ / L"run");
    }

    std::map<std::wstring, std::string> originals_;
    Lines picked_;
    std::wstring folder_;
};

TEST_F(PicturesByTheRealManager, MakeTheCopyOfASinglePhotoSmaller) {
    Aim(L"LongestEdge", L"Pixels", L"400");
    const auto source = Pick(L"photo.jpg", obtest::MakeJpeg(obtest::Photo(800, 600, 3)));
    EXPECT_TRUE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    ASSERT_EQ(job_.Files, Lines{RunFolder() + L"photo.jpg"});
    const auto result = Bytes(*obtest::ReadFileContent(job_.Files[0]));
    EXPECT_EQ(obtest::ParseJpeg(result).raster.width, 400u);
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\photo.jpg"}));
}

TEST_F(PicturesByTheRealManager, KeepFormDepthAlphaProfileAndOrientation) {
    Aim(L"Percent", L"Percent", L"50");
    const std::string profile(300, 'c');
    Pick(L"print.jpg", obtest::MakeJpeg(obtest::Photo(400, 300, 4),
                                        {.across = 1,
                                         .down = 1,
                                         .adobe = true,
                                         .markers = {{0xE1, obtest::ExifOf(400, 300)}}}));
    Pick(L"deep.png", obtest::MakePng(obtest::Photo(400, 300, 4, 16)));
    Pick(L"scan.tif",
         obtest::MakeTiff(obtest::Photo(400, 300, 3, 16), {.profile = profile, .orientation = 3}));
    Pick(L"web.webp", obtest::MakeWebp(obtest::Photo(400, 300, 4), {.lossless = true}));
    Pick(L"old.bmp", obtest::MakeBmp(obtest::Photo(400, 300, 3)));
    const auto results = Run(false);
    ASSERT_TRUE(results);
    const auto print = obtest::ParseJpeg(Bytes(results->at(L"print.jpg")));
    EXPECT_TRUE(print.isCmyk);
    EXPECT_EQ(print.raster.width, 200u);
    const auto deep = obtest::ParsePng(Bytes(results->at(L"deep.png")));
    EXPECT_EQ(deep.bits, 16u);
    EXPECT_EQ(deep.channels, 4u);
    EXPECT_EQ(deep.width, 200u);
    const auto scan = obtest::ParseTiff(Bytes(results->at(L"scan.tif")));
    EXPECT_EQ(scan.raster.bits, 16u);
    EXPECT_EQ(scan.profile, profile);
    EXPECT_EQ(scan.orientation, 3);
    EXPECT_TRUE(obtest::ParseWebp(Bytes(results->at(L"web.webp"))).lossless);
    EXPECT_EQ(obtest::ParseBmp(Bytes(results->at(L"old.bmp"))).raster.width, 200u);
}

TEST_F(PicturesByTheRealManager, LeaveWhatPassesByteForByte) {
    Aim(L"LongestEdge", L"Pixels", L"100");
    const auto photo = obtest::Photo(300, 200, 3);
    Pick(L"small.jpg", obtest::MakeJpeg(obtest::Photo(100, 80, 3)));
    Pick(L"moving.webp", obtest::MakeWebp(photo, {.frames = 3}));
    Pick(L"pages.tif", obtest::MakeTiff(photo, {.pages = 2}));
    Pick(L"letter.jpg", "Dear all, this is no picture.");
    Pick(L"empty.png", "");
    Pick(L"photo.txt", obtest::MakeJpeg(photo)); // a picture under another name
    const auto results = Run(false);
    ASSERT_TRUE(results);
    for (const wchar_t* name :
         {L"small.jpg", L"moving.webp", L"pages.tif", L"letter.jpg", L"empty.png"}) {
        EXPECT_EQ(results->at(name), originals_.at(sources_ / name)) << name;
    }
    EXPECT_EQ(obtest::ParseJpeg(Bytes(results->at(L"photo.txt"))).raster.width, 100u);
}

TEST_F(PicturesByTheRealManager, MeetAnAimInKilobytes) {
    Aim(L"KilobytesEach", L"Kilobytes", L"60");
    Pick(L"a.jpg", obtest::MakeJpeg(obtest::Photo(800, 600, 3), {.quality = 98}));
    const auto results = Run(false);
    ASSERT_TRUE(results);
    EXPECT_LE(results->at(L"a.jpg").size(), 60'000u);
    EXPECT_GT(results->at(L"a.jpg").size(), 50'000u);
}

TEST_F(PicturesByTheRealManager, StopForADamagedPictureAndForABomb) {
    Aim(L"LongestEdge", L"Pixels", L"100");
    const auto whole = Text(obtest::MakeJpeg(obtest::Photo(400, 300, 3)));
    Pick(L"good.jpg", whole);
    Pick(L"damaged.jpg", whole.substr(0, whole.size() / 2));
    ExpectStopped(L"\u201cdamaged.jpg\u201d can't be made smaller, because it is damaged.");
    picked_.pop_back();
    std::string bomb = whole;
    const std::size_t frame = bomb.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    bomb.replace(frame + 5, 4, "\xff\xdc\xff\xdc");
    Pick(L"bomb.jpg", bomb);
    ExpectStopped(L"\u201cbomb.jpg\u201d can't be made smaller, because it has too many pixels.");
}

// Noise that deflate makes nothing of.
std::string Noise(std::size_t size) {
    std::string noise(size, '\0');
    std::uint32_t state = 12345;
    for (char& byte : noise) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return noise;
}

std::uint64_t Sum(const std::map<std::wstring, std::string>& files) {
    std::uint64_t sum = 0;
    for (const auto& [name, content] : files) sum += content.size();
    return sum;
}

TEST_F(PicturesByTheRealManager, FitIntoAMailTogether) {
    FitOneMegabyte();
    for (unsigned set = 1; set <= 3; ++set) {
        picked_.clear();
        for (unsigned number = 0; number < 3 + set; ++number) {
            const auto photo = obtest::Photo(900 + 100 * number, 700, 3, 8, 10 * set + number, 40);
            Pick(L"p" + std::to_wstring(number) + L".jpg",
                 obtest::MakeJpeg(photo, {.quality = 95}));
        }
        Pick(L"other.bin", Noise(50'000 * set));
        const auto results = Run(false);
        ASSERT_TRUE(results);
        EXPECT_EQ(results->at(L"other.bin").size(), 50'000u * set);
        EXPECT_LE(Sum(*results), kRoomOfOneMegabyte);
        EXPECT_GE(Sum(*results), kRoomOfOneMegabyte * 85 / 100);
        // One quality for all.
        const auto first = obtest::ParseJpeg(Bytes(results->at(L"p0.jpg")));
        const auto second = obtest::ParseJpeg(Bytes(results->at(L"p1.jpg")));
        EXPECT_TRUE(std::ranges::equal(first.table, second.table));
    }
}

TEST_F(PicturesByTheRealManager, CountWhatAZipMakesOfTheOtherFiles) {
    FitOneMegabyte();
    for (unsigned number = 0; number < 3; ++number) {
        Pick(L"p" + std::to_wstring(number) + L".jpg",
             obtest::MakeJpeg(obtest::Photo(1100, 800, 3, 8, number + 1, 40), {.quality = 95}));
    }
    std::string text;
    while (text.size() < 2'000'000) text += "line " + std::to_string(text.size() % 977) + "\r\n";
    Pick(L"log.txt", text); // hardly anything in a zip, and too much without one
    Pick(L"noise.bin", Noise(200'000));
    const auto results = Run(true);
    ASSERT_TRUE(results);
    EXPECT_EQ(results->at(L"log.txt"), text);
    std::uint64_t pictures = 0;
    for (const auto& [name, content] : *results) {
        if (name[0] == L'p') pictures += content.size();
    }
    EXPECT_LE(pictures + 200'000 + 5 * kZipEntry, kRoomOfOneMegabyte);
    EXPECT_GE(pictures + 200'000 + 100'000, kRoomOfOneMegabyte * 85 / 100);
    ExpectStopped(L"The other files alone take 2.3 MB, and a mail of 1 MB has room for 729 KB.");
}

TEST_F(PicturesByTheRealManager, ChangeNothingWhenTheMailTakesThemAsTheyAre) {
    FitOneMegabyte();
    Pick(L"a.jpg", obtest::MakeJpeg(obtest::Photo(800, 600, 3)));
    Pick(L"damaged.jpg", "\xff\xd8\xff\xe0 and no more"); // nobody has to look at it
    const auto results = Run(true);
    ASSERT_TRUE(results);
    for (const auto& [name, content] : *results) {
        EXPECT_EQ(content, originals_.at(sources_ / name));
    }
}

// All files are measured as the zip makes them, pictures too, before one is made smaller.
TEST_F(PicturesByTheRealManager, PassABitmapThatAZipMakesSmallEnough) {
    FitOneMegabyte();
    obtest::Raster raster{.width = 800, .height = 600, .channels = 3, .bytes = {}};
    raster.bytes.assign(800 * 600 * 3, 200);
    const PictureBytes bitmap = obtest::MakeBmp(raster);
    ASSERT_GT(bitmap.size(), kRoomOfOneMegabyte);
    const std::wstring path = Pick(L"screen.bmp", bitmap);
    Pick(L"photo.jpg", obtest::MakeJpeg(obtest::Photo(400, 300, 3)));
    const auto zipped = Run(true);
    ASSERT_TRUE(zipped);
    for (const auto& [name, content] : *zipped) {
        EXPECT_EQ(content, originals_.at(sources_ / name));
    }
    const auto alone = Run(false); // without a zip it has to become smaller
    ASSERT_TRUE(alone);
    EXPECT_LE(Sum(*alone), kRoomOfOneMegabyte);
    EXPECT_LT(alone->at(L"screen.bmp").size(), originals_.at(path).size());
}

TEST_F(PicturesByTheRealManager, FitAndHaveNoPersonalDataInWhatIsNew) {
    FitOneMegabyte();
    RemovePersonalDataToo();
    for (unsigned number = 0; number < 3; ++number) {
        const obtest::JpegMaking making{
            .quality = 95,
            .markers = {{0xE1, obtest::ExifOf(1100, 800)}, {0xFE, "canary of a comment"}}};
        Pick(L"p" + std::to_wstring(number) + L".jpg",
             obtest::MakeJpeg(obtest::Photo(1100, 800, 3, 8, number + 1, 40), making));
    }
    const auto results = Run(false);
    ASSERT_TRUE(results);
    EXPECT_LE(Sum(*results), kRoomOfOneMegabyte);
    for (const auto& [name, content] : *results) {
        EXPECT_LT(content.size(), originals_.at(sources_ / name).size());
        EXPECT_EQ(content.find("canary"), std::string::npos);
    }
}

// Whole runs of the planning.
class PlannedPictures : public PicturesByTheRealManager {
protected:
    class Picker : public obcore::OBOpenFileNameDlg {
    public:
        explicit Picker(obcore::OBAttachJob& job) : OBOpenFileNameDlg(nullptr, job) {}
        int ShowPickerDialog() override { return 0; }
    };
    void SetUp() override {
        PicturesByTheRealManager::SetUp();
        job_.SendItem = true;
        job_.SendSetting = obcore::SendSettingKind::Never;
        for (unsigned number = 0; number < 3; ++number) {
            Pick(
                L"p" + std::to_wstring(number) + L".jpg",
                obtest::MakeJpeg(obtest::Photo(1600, 1200, 3, 8, number + 1, 40), {.quality = 95}));
        }
    }
    int Process() { return Picker(job_).ProcessPickedFiles(picked_); }
    // Cancels once `isTime`, and expects that nothing is left.
    void ExpectNothingAfterACancel(const std::function<bool()>& isTime) {
        obtest::DialogUiDriver user(kStatusText, [&](HWND dialog) {
            for (int waited = 0; waited < 20000 && !isTime(); waited += 5) Sleep(5);
            EXPECT_TRUE(isTime());
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        });
        EXPECT_EQ(Process(), 0);
        EXPECT_TRUE(user.WasUsed());
        obcore::ProviderManager().Deinit(job_.OwnedProviderManager); // as the end of a run does
        EXPECT_TRUE(job_.Files.empty());
        EXPECT_TRUE(Left().empty());
    }
    bool HasBegunAFile() const {
        return std::ranges::any_of(Left(),
                                   [](const auto& name) { return name.ends_with(L".new"); });
    }
};

TEST_F(PlannedPictures, AreZippedSmaller) {
    Aim(L"LongestEdge", L"Pixels", L"200");
    EXPECT_EQ(Process(), 1);
    EXPECT_TRUE(job_.ResultIsArchive);
}

TEST_F(PlannedPictures, LeaveNothingAfterACancelWithinAFile) {
    Aim(L"KilobytesEach", L"Kilobytes", L"100");
    ExpectNothingAfterACancel([&] { return HasBegunAFile(); });
}

TEST_F(PlannedPictures, LeaveNothingAfterACancelWhileTheyAreFitted) {
    FitOneMegabyte();
    ExpectNothingAfterACancel([&] { return Left().size() == 4; }); // the folder and the copies
}

TEST_F(PlannedPictures, LeaveNothingWhenTheOtherFilesAreTooMuch) {
    FitOneMegabyte();
    Pick(L"noise.bin", Noise(800'000));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Process(), 0);
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"The other files alone take 80"), std::wstring::npos);
    EXPECT_TRUE(Left().empty());
}

} // namespace
