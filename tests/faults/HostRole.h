// The test's process in the host's role, with the real archive service and provider manager. Only
// the shell's dialog is a double: a test says what the person picked.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <commdlg.h>

#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/RecordingFileDialog.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Utf8.h"

namespace obtest {

using Texts = std::vector<std::wstring>;

class HostRole : public testing::Test {
protected:
    HostRole();
    ~HostRole() override;
    void SetUp() override;
    void TearDown() override;

    // What the page is given.
    struct Answer {
        std::int32_t result = 0; // BOOL or HRESULT, by the road
        Texts files;             // as the page reads them; empty when nothing is handed over
        std::wstring cleanupFolder;
        std::wstring cleanupFile;
    };

    // Serves the request `page` on the open-file-name road; the person picks these files.
    Answer Open(const Texts& picked);
    // The same on the dialog road.
    Answer Show(const Texts& picked);

    // The choices that the person finds made: a zip, a zip with a password, or neither.
    static void ChooseZip();
    static void ChooseNoZip();

    // From now on GetTempPathW answers this folder.
    static void UseTemporaryFolder(const std::wstring& folder);

    // What lies in the temporary folder, each folder that a run made as its number, in order.
    Texts Left() const;
    static Texts Numbered(Texts items);

    // The page was given one zip that lies in the temporary folder; its entries by name in UTF-8.
    std::map<std::string, std::string> ZipOf(const Answer& answer) const;

    // The zip of a run is all that it left.
    void ExpectOnlyTheZipIsLeft(const Answer& answer) const;
    static void ExpectNothingGiven(const Answer& answer);

    // The boxes that said that no zip could be made.
    std::size_t TimesToldThatTheZipFailed() const;

    OPENFILENAMEW page_ = {};
    TestFolder sources_;
    TestFolder temp_;
    MessageBoxWatcher boxes_;

private:
    struct Com {
        Com() { CoInitialize(nullptr); }
        ~Com() { CoUninitialize(); }
    } com_;

protected:
    FakeFileDialog shell_;
    ObLib::UniqueWindow owner_;
};

inline constexpr wchar_t kZipName[] = L"Ombrix Compressed Attachments.zip";

} // namespace obtest
