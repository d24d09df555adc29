// The test's process in the host's role, with the real archive service and provider manager. Only
// the shell's dialog is a fake: the test sets what the user picks.
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
        std::int32_t result = 0; // BOOL or HRESULT, by the path
        Texts files;             // as the page reads them; empty when nothing is delivered
        std::wstring cleanupFolder;
        std::wstring cleanupFile;
    };

    // Serves the request `page` on the open-file-name path; the user picks these files.
    Answer Open(const Texts& picked);
    // Serves a request on the dialog path; the user picks these files.
    Answer Show(const Texts& picked);

    // The choice that is made when the dialog opens: a zip, or no zip.
    static void ChooseZip();
    static void ChooseNoZip();

    // From now on GetTempPathW returns this folder.
    static void UseTemporaryFolder(const std::wstring& folder);

    // What is in the temporary folder; each folder that a run made is shown as its number, in
    // order.
    Texts Left() const;
    static Texts Numbered(Texts items);

    // Expects that the page was given one zip in the temporary folder; returns its entries by name
    // in UTF-8.
    std::map<std::string, std::string> ZipOf(const Answer& answer) const;

    // Expects that the zip is all that the run left.
    void ExpectOnlyTheZipIsLeft(const Answer& answer) const;
    static void ExpectNothingGiven(const Answer& answer);

    // How many message boxes reported that no zip could be made.
    std::size_t ZipFailureMessages() const;

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
