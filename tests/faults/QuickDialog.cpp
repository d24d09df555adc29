// A fake shell dialog that picks and confirms at once, without a window. A test registers this
// module as the dialog's server for every process of its prefix. The picked path comes from the
// environment, which a host inherits from the process that started it.
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
