// Files that are locked, read-only, deep below or oddly named, in each transform, with a work
// process that does what the test asks.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

struct Transform {
    const char* title;
    std::uint32_t id;
    bool isForLists;
    const char* word;           // for the work process
    const wchar_t* extension;   // of the files
    std::string begin;          // of their content
    std::size_t size;           // of each
    const wchar_t* result;      // the extension of a result
    const char* resultContent;  // a part of it
    std::size_t resultsOfThree; // files
    const wchar_t* aim = L"";   // of pictures that become smaller
};

const Transform kTransforms[] = {
    {"pdf", 3, false, "pdf", L".jpg", "photo", 5, L".pdf", "%PDF-made", 3},
    {"photos", 50, false, "jpeg", L".heic", "photo", 5, L".jpg", "jpeg", 3},
    {"resize", 2, false, "good", L".jpg", "photo", 5, L".jpg", "aim 1 2048", 3, L"LongestEdge"},
    {"watermark", 5, false, "good", L".jpg", "photo", 5, L".jpg", "mark ", 3},
    {"combine", 65, true, "good", L".pdf", "%PDF-pages", 10, L".pdf", "=pages;", 1},
    {"fit", 2, true, "good", L".jpg", "pic", 400'000, L".jpg", "smaller", 3, L"FitMail"},
};

std::wstring Long(const std::wstring& path) { return L"\\\\?\\" + path; }

class FileInputs : public ManagerFixture {
protected:
    void Begin(const Transform& transform) {
        SetUp();
        SelectOnly(transform.id);
        const std::wstring key = std::wstring(kProviderManagerKey) + L"\\Transforms\\";
        obtest::SetValue(HKEY_CURRENT_USER, key + L"5", L"Text", L"Ann Example");
        obtest::SetValue(HKEY_CURRENT_USER, key + L"2", L"Aim", transform.aim);
        obtest::SetValue(HKEY_CURRENT_USER, key + L"2", L"Megabytes", L"1");
        Script(transform.word);
    }
    // `path` without its extension.
    static std::wstring Make(const Transform& transform, const std::wstring& path) {
        std::string content = transform.begin;
        content.resize(transform.size, 'p');
        EXPECT_TRUE(obtest::WriteFileContent(Long(path + transform.extension), content));
        return path + transform.extension;
    }
    // The files after the transform; empty when it stopped.
    Names Run(const Transform& transform, const Names& paths) {
        if (transform.isForLists) return List(paths, 3) ? Results(paths.size()) : Names();
        Names results;
        for (const std::wstring& path : paths) {
            if (!Execute(path)) return {};
            results.push_back(Entries().GetProviderTarget(manager_));
        }
        return results;
    }
};

TEST_F(FileInputs, ThatAreLockedStopTheRunWithOneSentence) {
    for (const Transform& transform : kTransforms) {
        SCOPED_TRACE(transform.title);
        Begin(transform);
        const Names paths{Make(transform, folder_ / L"locked"),
                          Make(transform, folder_ / L"other")};
        const auto before = obtest::ReadFileContent(paths[0]);
        ObLib::UniqueKernelHandle lock(
            CreateFileW(paths[0].c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(lock);
        const obtest::MessageBoxWatcher boxes;
        EXPECT_TRUE(Run(transform, paths).empty());
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_NE(boxes.Seen()[0].text.find(L"\u201Clocked"), std::wstring::npos);
        lock.Reset();
        EXPECT_EQ(obtest::ReadFileContent(paths[0]), before);
        EXPECT_EQ(obtest::ReadFileContent(paths[1]), before);
        EXPECT_EQ(Files().size(), 2u);
        for (const std::wstring& path : paths) DeleteFileW(path.c_str());
    }
}

TEST_F(FileInputs, ThatAreReadOnlyDeepBelowOrOddlyNamedAreTransformed) {
    const std::wstring deep = DeepFolder(300);
    for (const Transform& transform : kTransforms) {
        SCOPED_TRACE(transform.title);
        Begin(transform);
        const Names names{deep + L"\\long", folder_ / L"r\u00e9sum\u00e9 \u6f22 %1 & co.",
                          folder_ / L"-o 100%"};
        Names paths;
        for (const std::wstring& name : names) {
            paths.push_back(Make(transform, name));
            SetFileAttributesW(Long(paths.back()).c_str(), FILE_ATTRIBUTE_READONLY);
        }
        const obtest::MessageBoxWatcher boxes;
        const Names results = Run(transform, paths);
        for (const obtest::SeenBox& box : boxes.Seen())
            ADD_FAILURE() << testing::PrintToString(box.text);
        ASSERT_EQ(results.size(), transform.resultsOfThree);
        for (std::size_t at = 0; at < results.size(); ++at) {
            EXPECT_EQ(results[at], names[at] + transform.result);
            const auto content = obtest::ReadFileContent(Long(results[at])).value_or("");
            EXPECT_NE(content.find(transform.resultContent), std::string::npos);
            EXPECT_TRUE(GetFileAttributesW(Long(results[at]).c_str()) & FILE_ATTRIBUTE_READONLY);
            SetFileAttributesW(Long(results[at]).c_str(), FILE_ATTRIBUTE_NORMAL);
            EXPECT_TRUE(DeleteFileW(Long(results[at]).c_str()));
        }
        // The copies are gone, and nothing else is left.
        for (const std::wstring& path : paths) EXPECT_FALSE(obtest::FileExists(Long(path)));
    }
}

} // namespace
