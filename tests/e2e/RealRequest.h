// Plays the page of one request; everything else is real. The library is loaded as a browser's hook
// would load it.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>
#include <shobjidl.h>

#include <functional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ExchangeBlock.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Utf8.h"

namespace obtest {

using obcontract::kCancelled;

// The product's choices, by their text ids.
enum class Choice : UINT { Zip = 101, Encrypt = 102, None = 103 };

// The library is loaded anew for each test and unloaded after it.
class RealRequest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // From now on a zip is attached whatever its size. Otherwise one above five megabytes is for a
    // cloud account, and without one the user is asked.
    static void AttachEverySize();

    // What the UI driver does in the picker, on a thread of its own.
    using Use = std::function<void(OpenPicker&)>;
    Use Pick(Choice choice, std::vector<std::wstring> paths) const;
    Use PickAndEncrypt(std::vector<std::wstring> paths, std::wstring password) const;

    // Makes the request of a page that calls GetOpenFileNameW. `given` has the answer's list
    // without its NULs.
    struct OpenAnswer {
        BOOL result = FALSE;
        std::vector<std::wstring> given;
        HWND ownerAfterwards = nullptr;
    };
    OpenAnswer AskOpen(DWORD flags = OFN_ALLOWMULTISELECT | OFN_EXPLORER);

    // Makes the request of a page that calls IFileDialog; to be asked for results after a success
    // only.
    HRESULT AskShow(FILEOPENDIALOGOPTIONS options = FOS_ALLOWMULTISELECT | FOS_FORCEFILESYSTEM);
    HRESULT GetResult(std::wstring& path);
    HRESULT GetResults(std::vector<std::wstring>& paths);

    // Confirms several files on a page that takes one: the box is answered, the picker stays open,
    // and the UI driver cancels it.
    Use PickTooMany(std::vector<std::wstring> paths, const MessageBoxWatcher& boxes) const;

    // Expects a cancel on both paths, and no dialog, neither the product's nor the browser's.
    void ExpectCancels();

    std::wstring Text(UINT id) const;

    // The request's owner window: the fixture's own, or one that the test has set.
    HWND Owner() const { return page_ ? page_ : owner_.Get(); }
    void AskFrom(HWND page) { page_ = page; }

    // What was made in the temporary folder since the test began, except the test's own files.
    std::vector<std::wstring> LeftInTemp() const;
    static std::wstring TempFolder();

    FakeBrowserContext browser_;
    TestFolder files_;

private:
    template <class Export>
    Export* Find(const char* name) const;

    ObLib::UniqueModule library_;
    ObLib::UniqueWindow owner_;
    HWND page_ = nullptr;
    ObLib::ComPtr<IFileOpenDialog> dialog_;
    std::vector<std::wstring> tempBefore_;
};

// A file's folder, with its last backslash, and its name.
std::wstring FolderOf(const std::wstring& path);
std::wstring NameOf(const std::wstring& path);

} // namespace obtest
