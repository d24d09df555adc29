#include "tests/unit/WebVellant/obwmv/RequestDoubles.h"

#include "obwmv/BrowserRequest.h"
#include "obwmv/HostEntry.h"
#include "obwmv/SiteRules.h"

namespace obtest {
namespace {

ActivationRecorder* current = nullptr;

} // namespace

RequestDoubles& Doubles() {
    static RequestDoubles doubles;
    return doubles;
}

void ResetDoubles() { Doubles() = {}; }

void NoteStep(const std::string& step) { Doubles().steps.push_back(step); }

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

using obtest::Doubles;
using obtest::NoteStep;

bool UsesBrowserDialog(const wchar_t* url) {
    Doubles().url = url;
    NoteStep("UsesBrowserDialog");
    return Doubles().usesBrowserDialog;
}

bool IsLinkForbidden(const wchar_t*, const wchar_t*) { return false; }

BOOL RunOpenFileNameRequest(OPENFILENAMEW* request, BrowserContext* context) {
    NoteStep("RunOpenFileNameRequest");
    return Doubles().openFileName ? Doubles().openFileName(request, context) : FALSE;
}

HRESULT RunDialogRequest(IFileDialog* dialog, HWND owner, BrowserContext* context) {
    NoteStep("RunDialogRequest");
    return Doubles().dialog ? Doubles().dialog(dialog, owner, context) : E_UNEXPECTED;
}

int HostEntry(HWND owner, std::uint32_t id) {
    NoteStep("HostEntry");
    return Doubles().host ? Doubles().host(owner, id) : -1;
}

} // namespace obwmv
