// Photos and pictures that are converted, stamped and made to fit a mail in one pass, by the real
// work process: what is written, and that it is what the steps alone write when all fits.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace stagetest;
using obtest::PictureBytes;
using Contents = std::map<std::wstring, std::string>; // by name

constexpr std::uint32_t kResize = 2, kToPdf = 3, kWatermark = 5, kConvert = 50;
constexpr std::uint64_t kRoomOfOneMegabyte = 729'927; // for files, in a mail of 1,000,000 bytes
const std::wstring kKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\";

std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
PictureBytes Bytes(const std::string& text) { return {text.begin(), text.end()}; }
bool IsJpeg(const std::string& content) { return content.starts_with("\xFF\xD8\xFF"); }
bool IsPng(const std::string& content) { return content.starts_with("\x89PNG"); }

obtest::Raster Grainy(unsigned width, unsigned height, unsigned seed) {
    return obtest::Photo(width, height, 3, 8, seed, 40);
}

class FittedPhotos : public ManagerFixture {
protected:
    void Start(const std::vector<std::uint32_t>& ids) {
        SetUp(); // a manager without a selection but 51
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
        Set(L"2", L"Aim", L"FitMail");
        Set(L"2", L"Megabytes", L"1");
        Set(L"5", L"Text", L"Ann Example");
        if (!logo_.empty()) UseLogo();
        for (const std::uint32_t id : ids)
            ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, id, kTransform));
    }
    // A picture as the watermark, in the middle.
    void UseLogo() {
        Set(L"5", L"Kind", L"Picture");
        Set(L"5", L"Picture", logo_.c_str());
        Set(L"5", L"Place", L"Centre");
        Set(L"5", L"Opacity", L"100");
    }
    static void Set(const std::wstring& id, const wchar_t* name, const wchar_t* value) {
        obtest::SetValue(HKEY_CURRENT_USER, kKey + id, name, value);
    }
    static std::string Sample(const wchar_t* name) {
        return *obtest::ReadFileContent(*ObLib::ModuleFolder(nullptr) + L"photos\\" + name);
    }
    void Pick(const std::wstring& name, const std::string& content) {
        picked_.emplace_back(name, content);
    }
    void Pick(const std::wstring& name, const PictureBytes& content) { Pick(name, Text(content)); }

    // The transforms on copies of what was picked: the results by name; empty when they stopped.
    Contents Run(const std::vector<std::uint32_t>& ids) {
        Start(ids);
        const std::wstring run = folder_.Path() + L"\\run";
        obtest::RemoveTree(run);
        CreateDirectoryW(run.c_str(), nullptr);
        Names paths;
        for (const auto& [name, content] : picked_) {
            paths.push_back(run + L"\\" + name);
            EXPECT_TRUE(obtest::WriteFileContent(paths.back(), content));
        }
        if (!RunStages(paths)) return {};
        Contents results;
        for (const std::wstring& path : paths)
            results[path.substr(run.size() + 1)] = obtest::ReadFileContent(path).value_or("none");
        // The folder has the listed files alone.
        Names names;
        for (const auto& [name, content] : results) names.push_back(name);
        Names files = obtest::ListTree(run);
        std::ranges::sort(files);
        std::ranges::sort(names);
        EXPECT_EQ(files, names);
        return results;
    }
    bool RunStages(Names& paths) {
        if (Counts()[2] > 0) {
            for (std::wstring& path : paths) {
                if (!Execute(path)) return false;
                path = Entries().GetProviderTarget(manager_);
            }
        }
        if (Counts()[1] > 0) {
            if (!List(paths, 3)) return false;
            paths = Results(paths.size());
        }
        return true;
    }
    static std::uint64_t Sum(const Contents& contents) {
        std::uint64_t sum = 0;
        for (const auto& [name, content] : contents) sum += content.size();
        return sum;
    }
    static void ExpectFitted(const Contents& contents) {
        EXPECT_LE(Sum(contents), kRoomOfOneMegabyte);
        EXPECT_GE(Sum(contents), kRoomOfOneMegabyte * 85 / 100);
    }

    // A picture in one colour.
    std::wstring Logo(const PictureBytes& colour) const {
        obtest::Raster raster{10, 10, 3, 8, {}};
        for (int pixel = 0; pixel < 100; ++pixel)
            raster.bytes.insert(raster.bytes.end(), colour.begin(), colour.end());
        return folder_.File(L"logo.png", Text(obtest::MakePng(raster)));
    }

    std::vector<std::pair<std::wstring, std::string>> picked_;
    std::wstring logo_; // empty: the watermark is a text
};

class FittedPhotosThatAllFit : public FittedPhotos {};

TEST_F(FittedPhotosThatAllFit, AreWhatTheStepsAloneMake) {
    Pick(L"beach.heic", Sample(L"turn6.heic"));
    Pick(L"logo.heic", Sample(L"alpha.heic"));
    Pick(L"scan.tif", obtest::MakeTiff(obtest::Photo(300, 200, 3), {.orientation = 8}));
    Pick(L"web.webp", obtest::MakeWebp(obtest::Photo(300, 200, 3)));
    Pick(L"old.bmp", obtest::MakeBmp(obtest::Photo(200, 100, 3)));
    Pick(L"beach.jpg", obtest::MakeJpeg(obtest::Photo(300, 200, 3)));
    Pick(L"plan.png", obtest::MakePng(obtest::Photo(300, 200, 4)));
    Pick(L"pages.tif", obtest::MakeTiff(obtest::Photo(100, 80, 3), {.pages = 2}));
    Pick(L"letter.txt", "text");
    const std::vector<std::uint32_t> rows[] = {{kConvert}, {kWatermark}, {kConvert, kWatermark}};
    for (std::vector<std::uint32_t> steps : rows) {
        const Contents alone = Run(steps);
        ASSERT_EQ(alone.size(), picked_.size());
        steps.push_back(kResize);
        EXPECT_TRUE(Run(steps) == alone);
    }
}

// The copy is cleaned first, and the result again.
TEST_F(FittedPhotosThatAllFit, LookAsTheStepsAloneMakeThemWhenTheyAreCleaned) {
    Pick(L"beach.heic", Sample(L"turn6.heic"));
    const obtest::JpegMaking making{
        .markers = {{0xE1, obtest::ExifOf(300, 200)}, {0xFE, "canary of a comment"}}};
    Pick(L"beach.jpg", obtest::MakeJpeg(obtest::Photo(300, 200, 3), making));
    Pick(L"scan.tif", obtest::MakeTiff(obtest::Photo(300, 200, 3), {.artist = "canary"}));
    const Contents alone = Run({kConvert, kWatermark, kRemoveInfo});
    const Contents fitted = Run({kResize, kConvert, kWatermark, kRemoveInfo});
    ASSERT_EQ(alone.size(), 3u);
    ASSERT_EQ(fitted.size(), 3u);
    for (const auto& [name, content] : alone) {
        ASSERT_TRUE(fitted.contains(name));
        EXPECT_EQ(obtest::ParseJpeg(Bytes(fitted.at(name))).raster.bytes,
                  obtest::ParseJpeg(Bytes(content)).raster.bytes);
        EXPECT_EQ(fitted.at(name).find("canary"), std::string::npos);
        EXPECT_EQ(fitted.at(name).find("MakerCo"), std::string::npos);
    }
}

TEST_F(FittedPhotos, AreMadeSmallerConvertedAndStampedTogether) {
    Pick(L"a.tif", obtest::MakeTiff(Grainy(900, 700, 1), {.orientation = 6}));
    Pick(L"b.bmp", obtest::MakeBmp(Grainy(800, 700, 2)));
    Pick(L"c.jpg", obtest::MakeJpeg(Grainy(900, 800, 3), {.quality = 97}));
    Pick(L"beach.heic", Sample(L"turn6.heic"));
    Pick(L"logo.heic", Sample(L"alpha.heic"));
    Pick(L"letter.txt", "text");
    const Contents fitted = Run({kResize, kConvert, kWatermark});
    ASSERT_EQ(fitted.size(), 6u);
    ExpectFitted(fitted);
    for (const wchar_t* name : {L"a.jpg", L"b.jpg", L"c.jpg", L"beach.jpg"})
        EXPECT_TRUE(IsJpeg(fitted.at(name))) << testing::PrintToString(name);
    EXPECT_TRUE(IsPng(fitted.at(L"logo.png")));
    EXPECT_EQ(fitted.at(L"letter.txt"), "text");
    const auto turned = obtest::ParseJpeg(Bytes(fitted.at(L"a.jpg")));
    EXPECT_GT(turned.raster.height, turned.raster.width); // turned once
    const auto scanned = obtest::ParseJpeg(Bytes(fitted.at(L"b.jpg")));
    EXPECT_TRUE(std::ranges::equal(turned.table, scanned.table)); // one quality
    // The watermark is on each: nothing else in them is magenta.
    logo_ = Logo({255, 0, 255});
    const Contents marked = Run({kResize, kConvert, kWatermark});
    ASSERT_EQ(marked.size(), 6u);
    for (const auto& [name, content] : marked) {
        if (name == L"letter.txt") continue;
        const auto raster = IsPng(content) ? obtest::ParsePng(Bytes(content))
                                           : obtest::ParseJpeg(Bytes(content)).raster;
        for (const auto& [channel, wanted] : {std::pair{0u, 255u}, {1u, 0u}, {2u, 255u}}) {
            EXPECT_NEAR(raster.At(raster.width / 2, raster.height / 2, channel), wanted, 60)
                << testing::PrintToString(name);
        }
    }
}

TEST_F(FittedPhotos, GetAPictureAsTheirWatermark) {
    logo_ = Logo({0, 0, 0});
    Pick(L"a.jpg", obtest::MakeJpeg(obtest::Raster{1000, 800, 3, 8, PictureBytes(2'400'000, 250)}));
    Pick(L"b.jpg", obtest::MakeJpeg(Grainy(1100, 900, 3), {.quality = 97}));
    const Contents fitted = Run({kResize, kWatermark});
    ASSERT_EQ(fitted.size(), 2u);
    EXPECT_LE(Sum(fitted), kRoomOfOneMegabyte);
    const auto a = obtest::ParseJpeg(Bytes(fitted.at(L"a.jpg"))).raster;
    EXPECT_LT(a.At(a.width / 2, a.height / 2, 0), 20u);
    EXPECT_GT(a.At(10, 10, 0), 230u);
}

// What fit can't shrink gets its steps one by one: a picture that is a PDF by then, pages, an
// animation.
TEST_F(FittedPhotos, AreBesideFilesThatGetTheirStepsAtOnce) {
    Pick(L"scan.png", obtest::MakePng(obtest::Photo(300, 200, 3)));
    const Contents pdf = Run({kToPdf, kWatermark});
    ASSERT_EQ(pdf.size(), 1u);
    const Contents fittedPdf = Run({kResize, kToPdf, kConvert, kWatermark});
    EXPECT_TRUE(fittedPdf == pdf);

    picked_.clear();
    Pick(L"contract.pdf", pdf.at(L"scan.pdf"));
    Pick(L"moving.webp", obtest::MakeWebp(obtest::Photo(100, 80, 3), {.frames = 2}));
    Pick(L"pages.tif", obtest::MakeTiff(obtest::Photo(100, 80, 3), {.pages = 2}));
    const Contents alone = Run({kConvert, kWatermark});
    Pick(L"a.tif", obtest::MakeTiff(Grainy(1100, 900, 1)));
    const Contents fitted = Run({kResize, kConvert, kWatermark});
    ASSERT_EQ(fitted.size(), 4u);
    ExpectFitted(fitted);
    for (const auto& [name, content] : alone)
        EXPECT_TRUE(fitted.at(name) == content) << testing::PrintToString(name);
    EXPECT_NE(fitted.at(L"contract.pdf"), picked_[0].second); // stamped
}

// The system of the tests has no codec for AVIF.
TEST_F(FittedPhotos, PassAPhotoWithoutADecoderAfterOneSentence) {
    Pick(L"a.jpg", obtest::MakeJpeg(Grainy(1100, 900, 3), {.quality = 97}));
    Pick(L"one.avif", Sample(L"plain.avif"));
    Pick(L"two.avif", Sample(L"plain.avif"));
    const obtest::MessageBoxWatcher boxes;
    const Contents fitted = Run({kResize, kConvert, kWatermark});
    ASSERT_EQ(fitted.size(), 3u);
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"\u201cone.avif\u201d goes out as it is"),
              std::wstring::npos);
    EXPECT_EQ(fitted.at(L"two.avif"), picked_[2].second);
    ExpectFitted(fitted);
}

TEST_F(FittedPhotos, StopForADamagedOneWithOneSentenceAndTheCopiesAsTheyWere) {
    const std::string whole = Sample(L"plain.heic");
    Pick(L"a.jpg", obtest::MakeJpeg(Grainy(1100, 900, 3), {.quality = 97}));
    Pick(L"b.tif", obtest::MakeTiff(Grainy(500, 400, 3)));
    Pick(L"c.heic", whole.substr(0, whole.size() - 100));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Run({kResize, kConvert, kWatermark}).empty());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"\u201cc.heic\u201d can't be converted, because the photo "
                                        L"is damaged"),
              std::wstring::npos)
        << testing::PrintToString(boxes.Seen()[0].text);
    for (const auto& [name, content] : picked_)
        EXPECT_EQ(obtest::ReadFileContent(folder_ / (L"run\\" + name)), content);
    EXPECT_EQ(obtest::ListTree(folder_ / L"run").size(), 3u);
}

TEST_F(FittedPhotos, HaveNoPersonalDataLeft) {
    Pick(L"a.tif", obtest::MakeTiff(Grainy(1100, 900, 1), {.artist = "canary of a name"}));
    Pick(L"beach.heic", Sample(L"turn6.heic"));
    const Contents fitted = Run({kResize, kConvert, kWatermark, kRemoveInfo});
    ASSERT_EQ(fitted.size(), 2u);
    ExpectFitted(fitted);
    for (const auto& [name, content] : fitted) {
        EXPECT_EQ(content.find("canary"), std::string::npos);
        EXPECT_EQ(content.find("MakerCo"), std::string::npos);
    }
    const std::wstring run = folder_.Path() + L"\\run\\";
    EXPECT_TRUE(Final({run + L"a.jpg", run + L"beach.jpg"}));
}

} // namespace
