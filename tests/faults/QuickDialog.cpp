// A shell dialog in which a person has picked and confirmed before it could be seen: the class of a
// module that a test registers in the real dialog's place, for every process of its prefix. What is
// picked stands in the environment, which a host has from the process that started it.
#include <windows.h>

#include "tests/support/RecordingFileDialog.h"

namespace {

constexpr wchar_t kPicked[] = L"OB_QUICK_DIALOG_PICKS"; // one full path

obtest::FileDialogScript ScriptFromEnvironment() {
    wchar_t path[MAX_PATH] = {};
    obtest::FileDialogScript script;
    script.written = false;
    if (GetEnvironmentVariableW(kPicked, path, MAX_PATH) != 0) script.results = {path};
    return script;
}

} // namespace

STDAPI DllGetClassObject(REFCLSID, REFIID iid, void** object) {
    static obtest::FileDialogScript script = ScriptFromEnvironment();
    return obtest::FakeFileDialog::GiveClassObject(script, iid, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
