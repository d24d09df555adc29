// The settings window on a recording provider manager, with browsers of the test's own.
#pragma once

#include "OBCore/settings/OptionsDialog.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

namespace obtest {

// Enters a browser in App Paths of the real registry; `path` as it is, of this type. Both views of
// the system may share this key.
void AddBrowser(const std::wstring& executable, const std::wstring& path, int view,
                DWORD type = REG_SZ);
// Takes all three out of both views.
void ClearBrowsers();

// For a scope, App Paths of each view is a key of its own, which begins empty.
class SeparateViews {
public:
    SeparateViews();
    ~SeparateViews();

    [[nodiscard]] bool Ok() const { return open_.Ok(); }
    // `view` is 32 or 64.
    static void Add(const std::wstring& executable, const std::wstring& path, int view);
    static void Clear();

private:
    static LSTATUS WINAPI Open(HKEY root, const wchar_t* path, DWORD options, REGSAM access,
                               HKEY* key);

    ImportPatch<decltype(&RegOpenKeyExW)> open_;
};

// A version as the system stores it: major, minor, build.
struct ProgramVersion {
    WORD major = 0;
    WORD minor = 0;
    WORD build = 0;
};
// A program of 64 bits with this product version, or without a version resource.
std::wstring MakeProgram(const TestFolder& folder, const std::wstring& name,
                         const ProgramVersion* version = nullptr);
// The headers of a program of 32 bits, which is all that its kind is recognised by.
std::wstring MakeProgramOf32Bits(const TestFolder& folder, const std::wstring& name);

class OptionsFixture : public SettingsFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    // All transforms are supported, ready and have settings, unless a test answers otherwise.
    static void Support(int id, bool isSupported);

    // Shows the window of `options_`; one that is still open after `use` is cancelled. Returns what
    // it ended with.
    INT_PTR Show(const std::function<void(const OpenDialog&)>& use);
    // The calls of the manager since the window opened that are about settings of transforms.
    static Lines SettingsCalls();

    obcore::OBOptions options_ = PlainOptions();
    SeparateViews views_;
};

} // namespace obtest
