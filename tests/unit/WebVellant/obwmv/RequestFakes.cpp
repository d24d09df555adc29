#include "tests/unit/WebVellant/obwmv/RequestFakes.h"

#include "OBCore/settings/ConfigurationEntry.h"
#include "obwmv/BrowserRequest.h"
#include "obwmv/HostEntry.h"
#include "obwmv/SiteRules.h"

using obcontract::BrowserContext;

namespace obtest {
namespace {

ActivationRecorder* current = nullptr;

} // namespace

RequestFakes& Fakes() {
    static RequestFakes fakes;
    return fakes;
}

void ResetFakes() { Fakes() = {}; }

void NoteStep(const std::string& step) { Fakes().steps.push_back(step); }

void NoteCallsOf(FakeBrowserContext& context) {
    context.onCall = [](BrowserCall call) { NoteStep(NameOf(call)); };
}

ActivationRecorder::ActivationRecorder(bool fails)
    : activate_("kernel32.dll", "ActivateActCtx", &Activate),
      deactivate_("kernel32.dll", "DeactivateActCtx", &Deactivate), fails_(fails) {
    current = this;
}

ActivationRecorder::~ActivationRecorder() { current = nullptr; }

BOOL WINAPI ActivationRecorder::Activate(HANDLE context, ULONG_PTR* cookie) {
    NoteStep("activate");
    return current->fails_ ? FALSE : current->activate_.Real()(context, cookie);
}

BOOL WINAPI ActivationRecorder::Deactivate(DWORD flags, ULONG_PTR cookie) {
    if (current->onDeactivate) current->onDeactivate();
    NoteStep(flags == 0 ? "deactivate" : "deactivate with flags");
    return current->deactivate_.Real()(flags, cookie);
}

} // namespace obtest

namespace obwmv {

using obtest::Fakes;
using obtest::NoteStep;

bool UsesBrowserDialog(const wchar_t* url) {
    Fakes().url = url;
    NoteStep("UsesBrowserDialog");
    return Fakes().usesBrowserDialog;
}

bool IsLinkForbidden(const wchar_t*, const wchar_t*) { return false; }

BOOL RunOpenFileNameRequest(OPENFILENAMEW* request, BrowserContext* context) {
    NoteStep("RunOpenFileNameRequest");
    return Fakes().openFileName ? Fakes().openFileName(request, context) : FALSE;
}

HRESULT RunDialogRequest(IFileDialog* dialog, HWND owner, BrowserContext* context) {
    NoteStep("RunDialogRequest");
    return Fakes().dialog ? Fakes().dialog(dialog, owner, context) : E_UNEXPECTED;
}

int HostEntry(HWND owner, std::uint32_t id) {
    NoteStep("HostEntry");
    return Fakes().host ? Fakes().host(owner, id) : -1;
}

} // namespace obwmv

namespace obcore {

void ShowConfiguration(HWND parent) {
    obtest::NoteStep("ShowConfiguration");
    if (obtest::Fakes().configuration) obtest::Fakes().configuration(parent);
}

} // namespace obcore
