#include "tests/unit/WebVellant/OBCore/picker/CloudButtonFixture.h"

#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {

namespace {

decltype(&SendMessageW) realSend = nullptr;

} // namespace

SIZE CloudButtonFixture::idealSize;
std::vector<CloudButtonFixture::FontGiven> CloudButtonFixture::fontsGiven;

LRESULT WINAPI CloudButtonFixture::SendWithIdealSize(HWND window, UINT message, WPARAM wParam,
                                                     LPARAM lParam) {
    if (message == WM_SETFONT) {
        fontsGiven.push_back({window, reinterpret_cast<HFONT>(wParam), lParam != FALSE});
    }
    if (message != BCM_GETIDEALSIZE) return realSend(window, message, wParam, lParam);
    *reinterpret_cast<SIZE*>(lParam) = idealSize;
    return TRUE;
}

ObLib::UniqueWindowHook HookThread(HOOKPROC procedure) {
    return ObLib::UniqueWindowHook(
        SetWindowsHookExW(WH_CBT, procedure, nullptr, GetCurrentThreadId()));
}

CloudButtonScope::CloudButtonScope() {
    obcore::SetCloudButtonRecord(&record);
    record.hook = HookThread(&obcore::CloudButtonHookProcedure);
}

CloudButtonScope::~CloudButtonScope() {
    obcore::SetCloudButtonRecord(nullptr);
    record.hook.Reset();
}

void CloudButtonFixture::SetUp() {
    ASSERT_TRUE(send_.Ok());
    realSend = send_.Real();
    idealSize = {83, 25};
    fontsGiven.clear();
    FakeModules::Reset();
    FakeCloudPick::Reset();
    ClearProductRegistry();
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    ASSERT_TRUE(obcore::LoadArchiveService());
    const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_USEREX_CLASSES};
    ASSERT_TRUE(InitCommonControlsEx(&controls));
}

void CloudButtonFixture::TearDown() { ObLib::AppGlobals().Clear(); }

namespace {

SubclassRecord::Entries subclassed;
SubclassRecord::Entries released;
decltype(&SetWindowSubclass) realSet = nullptr;
decltype(&RemoveWindowSubclass) realRemove = nullptr;

BOOL WINAPI RecordSet(HWND window, SUBCLASSPROC procedure, UINT_PTR id, DWORD_PTR data) {
    subclassed.push_back({window, id});
    return realSet(window, procedure, id, data);
}

BOOL WINAPI RecordRemove(HWND window, SUBCLASSPROC procedure, UINT_PTR id) {
    released.push_back({window, id});
    return realRemove(window, procedure, id);
}

} // namespace

SubclassRecord::SubclassRecord()
    : set_("comctl32.dll", "SetWindowSubclass", &RecordSet),
      remove_("comctl32.dll", "RemoveWindowSubclass", &RecordRemove) {
    realSet = set_.Real();
    realRemove = remove_.Real();
    subclassed.clear();
    released.clear();
}

const SubclassRecord::Entries& SubclassRecord::Added() { return subclassed; }
const SubclassRecord::Entries& SubclassRecord::Removed() { return released; }

bool NextDialogGetsAButton() {
    SyntheticDialog form;
    return GetDlgItem(form.Create(), 3011) != nullptr;
}

} // namespace obtest
