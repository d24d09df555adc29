// The fixture of the tests of the cloud button and the logo: fresh fakes, the product's texts and
// pictures, and the size that the system would give the button.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OBCore/cloud/CloudButtonHook.h"
#include "OBCore/picker/CloudButton.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/picker/FakeCloudPick.h"
#include "tests/unit/WebVellant/OBCore/picker/SyntheticDialog.h"

namespace obtest {

// Installs a hook of this thread as the driver does, for a scope.
ObLib::UniqueWindowHook HookThread(HOOKPROC procedure);

// The button's hook with its record, for a scope, as the driver has them around Show.
class CloudButtonScope {
public:
    CloudButtonScope();
    ~CloudButtonScope();
    CloudButtonScope(const CloudButtonScope&) = delete;
    CloudButtonScope& operator=(const CloudButtonScope&) = delete;

    obcore::CloudButtonHook record;
};

class CloudButtonFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // What the button replies when it is asked for its ideal size. A button without a visual style,
    // as in these tests, has none of its own.
    static SIZE idealSize;

    struct FontGiven {
        HWND window;
        HFONT font;
        bool redraws;
    };
    static std::vector<FontGiven> fontsGiven; // each WM_SETFONT, in order

    static HWND ButtonOf(HWND dialog) { return GetDlgItem(dialog, 3011); }

    // A click as the button reports it.
    static void Press(HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(3011, BN_CLICKED),
                     reinterpret_cast<LPARAM>(ButtonOf(dialog)));
    }

private:
    static LRESULT WINAPI SendWithIdealSize(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);

    ImportPatch<decltype(&SendMessageW)> send_{"user32.dll", "SendMessageW", &SendWithIdealSize};
};

// Records, for a scope, which windows the code under test subclasses and releases.
class SubclassRecord {
public:
    struct Entry {
        HWND window;
        UINT_PTR id;
        bool operator==(const Entry&) const = default;
    };
    using Entries = std::vector<Entry>;

    SubclassRecord();
    bool Ok() const { return set_.Ok() && remove_.Ok(); }
    static const Entries& Added();
    static const Entries& Removed();

private:
    ImportPatch<decltype(&SetWindowSubclass)> set_;
    ImportPatch<decltype(&RemoveWindowSubclass)> remove_;
};

// Whether a dialog that this thread creates now gets a button.
bool NextDialogGetsAButton();

} // namespace obtest
