// The manager's module, driven as the product drives it, with a work process that does what the
// test asks.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "contracts/TransformWork.h"
#include "tests/fakes/Recording.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

namespace stagetest {

using namespace obcontract;
using namespace obcore;
using Names = std::vector<std::wstring>;

inline constexpr auto kCurrentUser =
    static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
inline constexpr auto kTransform = ProviderKind::Transform;
inline constexpr std::uint32_t kRemoveInfo = 51;
inline constexpr int kLimit = 20000; // milliseconds, for what has to happen soon

inline const std::wstring kSettingsKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\51";

// A window of the test's own that a stage has as its owner.
class Owner {
public:
    Owner()
        : window_(CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                                nullptr)) {}
    ~Owner() { Destroy(); }
    HWND Get() const { return window_; }
    void Destroy() {
        if (window_) DestroyWindow(std::exchange(window_, nullptr));
    }

private:
    HWND window_;
};

class ManagerFixture : public testing::Test {
protected:
    void SetUp() override {
        obtest::ClearProductRegistry();
        ASSERT_TRUE(LoadProviderManager());
        Delete(); // a test may begin anew
        manager_ = Entries().CreateObExtensionsManager();
        Entries().Init(manager_, kCurrentUser, kProviderManagerKey);
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
        Settings(false, true);
        Script("good");
    }
    void TearDown() override { Delete(); }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }
    static void Script(const char* word) {
        ASSERT_TRUE(obtest::WriteFileContent(obtest::BesideProgram(L"worker.txt"), word));
    }
    static void Settings(bool receipt, bool ask) {
        obtest::SetValue(HKEY_CURRENT_USER, kSettingsKey, L"ShowReceipt", receipt ? L"1" : L"0");
        obtest::SetValue(HKEY_CURRENT_USER, kSettingsKey, L"AskAboutOtherFiles", ask ? L"1" : L"0");
    }
    void Delete() {
        if (manager_) Entries().DeleteObExtensionsManager(manager_);
        manager_ = nullptr;
    }

    bool Execute(const std::wstring& path, const std::wstring& folder, HWND owner = nullptr) {
        Entries().SetProviderTarget(manager_, path.c_str());
        return Entries().ExecuteTransforms(manager_, nullptr, owner, folder.c_str(), 1, 3, nullptr,
                                           nullptr);
    }
    bool Execute(const std::wstring& path) { return Execute(path, folder_.Path() + L"\\"); }
    // The stage after the list; `mode` 1: a zip follows.
    bool List(const Names& paths, std::uint32_t mode, HWND owner = nullptr) {
        std::vector<const wchar_t*> pointers;
        for (const std::wstring& path : paths) pointers.push_back(path.c_str());
        auto count = static_cast<std::uint32_t>(pointers.size());
        return Entries().ExecutePostTransforms(manager_, owner, pointers.data(), &count, mode,
                                               nullptr, nullptr);
    }
    // The counts of the stages: before the list, after it, per file, at the end.
    std::vector<std::int32_t> Counts() {
        std::vector<std::int32_t> counts(4, 9);
        Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2],
                                              &counts[3]);
        return counts;
    }
    static std::vector<const wchar_t*> Pointers(const Names& paths) {
        std::vector<const wchar_t*> pointers;
        for (const std::wstring& path : paths) pointers.push_back(path.c_str());
        return pointers;
    }
    bool Post(const Names& paths) {
        const auto pointers = Pointers(paths);
        auto count = static_cast<std::uint32_t>(pointers.size());
        const bool done = Entries().ExecutePostTransforms(manager_, nullptr, pointers.data(),
                                                          &count, 1, nullptr, nullptr);
        EXPECT_EQ(count, pointers.size());
        return done;
    }
    bool Final(const Names& paths, HWND owner = nullptr) {
        const auto pointers = Pointers(paths);
        return Entries().ExecuteFinalTransforms(manager_, owner, pointers.data(),
                                                static_cast<std::uint32_t>(pointers.size()), 3,
                                                nullptr, nullptr);
    }
    // What GetTargetFile gives for so many buffers.
    Names Results(std::size_t buffers) {
        std::vector<std::wstring> texts(buffers, std::wstring(514, L'\0'));
        std::vector<wchar_t*> pointers;
        for (std::wstring& text : texts) pointers.push_back(text.data());
        std::uint32_t count = 99;
        Entries().GetTargetFile(manager_, pointers.data(), &count, 514);
        texts.resize(std::min<std::size_t>(count, buffers));
        for (std::wstring& text : texts) text.resize(std::wcslen(text.c_str()));
        return texts;
    }
    // Expects that a step fails with one sentence that names the file, and changes nothing.
    void ExpectRefused(const std::wstring& path, const std::function<bool()>& step) {
        const auto before = obtest::ReadFileContent(path);
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(step());
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
        EXPECT_NE(boxes.Seen()[0].text.find(L"photo.jpg"), std::wstring::npos);
        EXPECT_EQ(obtest::ReadFileContent(path), before);
    }
    void ExpectRefused(const char* word) {
        Script(word);
        const std::wstring path = folder_.File(L"photo.jpg", "photo");
        ExpectRefused(path, [&] { return Execute(path); });
        EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
    }
    Names Files() const { return obtest::ListTree(folder_.Path()); }
    // The work process closes a target after its reply, and a target that was deleted meanwhile is
    // there until then.
    void ExpectFilesSoon(const Names& wanted) const {
        for (int waited = 0; waited < kLimit && Files() != wanted; waited += 5) Sleep(5);
        EXPECT_EQ(Files(), wanted);
    }
    // A folder in the run's own, with a path of so many characters and more.
    std::wstring DeepFolder(std::size_t length = 400) const {
        std::wstring deep = folder_.Path();
        while (deep.size() < length) {
            deep += L"\\" + std::wstring(50, L'd');
            EXPECT_TRUE(CreateDirectoryW((L"\\\\?\\" + deep).c_str(), nullptr) ||
                        GetLastError() == ERROR_ALREADY_EXISTS);
        }
        return deep;
    }
    // A file in a deep folder whose path has so many characters.
    std::wstring DeepFile(const std::wstring& extension, std::size_t length,
                          const std::string& content) const {
        std::wstring path = DeepFolder() + L'\\';
        path += std::wstring(length - path.size() - extension.size(), L'n') + extension;
        EXPECT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, content));
        return path;
    }
    // Waits until the work process has written half a file beside the copy.
    bool AwaitUnfinished() const {
        for (int waited = 0; waited < kLimit; waited += 5, Sleep(5)) {
            for (const std::wstring& name : Files()) {
                if (name.ends_with(L".new") &&
                    obtest::ReadFileContent(folder_ / name) == "half a file") {
                    return true;
                }
            }
        }
        return false;
    }
    // The transform alone, without the removal of personal data.
    void SelectOnly(std::uint32_t id) {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, id, kTransform));
    }
    static std::string Content(const std::wstring& path) {
        return obtest::ReadFileContent(path).value_or("none");
    }
    static std::vector<std::string> ContentsOf(const Names& paths) {
        std::vector<std::string> contents;
        for (const std::wstring& path : paths) contents.push_back(Content(path));
        return contents;
    }
    // Expects that the stage after the list fails with one sentence that contains the text, and
    // that all files are as they were.
    void ExpectListStopped(const Names& paths, std::uint32_t mode, const std::wstring& text) {
        const auto before = ContentsOf(paths);
        const Names files = Files();
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(List(paths, mode));
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_NE(boxes.Seen()[0].text.find(text), std::wstring::npos)
            << testing::PrintToString(boxes.Seen()[0].text);
        EXPECT_EQ(ContentsOf(paths), before);
        ExpectFilesSoon(files);
        EXPECT_TRUE(Results(paths.size()).empty());
    }
    // A cancel while the work process hangs in a request of a series, once there are so many files:
    // no sentence, the copies are as they were, and nothing else is left.
    void ExpectListEndedBySession(const char* word, const Names& paths, std::uint32_t mode,
                                  std::size_t filesThen) {
        Script(word);
        const Names files = Files();
        const auto before = ContentsOf(paths);
        const obtest::MessageBoxWatcher boxes;
        Owner owner;
        std::thread worker([&] { EXPECT_FALSE(List(paths, mode, owner.Get())); });
        for (int waited = 0; waited < kLimit && Files().size() < filesThen; waited += 5) Sleep(5);
        EXPECT_EQ(Files().size(), filesThen) << word;
        Entries().Deinit(manager_);
        worker.join();
        EXPECT_EQ(Files(), files) << word;
        EXPECT_EQ(ContentsOf(paths), before) << word;
        EXPECT_TRUE(boxes.Seen().empty()) << word;
    }
    // A cancel while the work process writes: no sentence, and nothing but the copy is left.
    void ExpectEndedBySession(const wchar_t* name) {
        const std::wstring path = folder_.File(name, "photo");
        Script("hang-after-writing");
        const obtest::MessageBoxWatcher boxes;
        std::thread worker([&] { EXPECT_FALSE(Execute(path)); });
        EXPECT_TRUE(AwaitUnfinished());
        Entries().Deinit(manager_);
        worker.join();
        EXPECT_EQ(Files(), (Names{name}));
        EXPECT_EQ(obtest::ReadFileContent(path), "photo");
        EXPECT_TRUE(boxes.Seen().empty());
    }
    void ExpectRefusedWithoutAWorkProcess() {
        const obtest::AbsentModule absent(kTransformWorkFileName);
        ASSERT_TRUE(absent.Ok());
        ExpectRefused("good");
    }

    const obtest::TestFolder folder_;
    ProviderManagerHandle manager_ = nullptr;
};

} // namespace stagetest
