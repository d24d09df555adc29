#include "ObLibX/src/dialog/DialogRun.h"

#include <optional>
#include <span>
#include <vector>

#include "ObLibX/src/dialog/DialogTemplate.h"
#include "ObLibX/src/dialog/DlgFont.h"

namespace ObLibX {
namespace {

std::optional<TemplateFont> BaseFontFor(HMODULE module) {
    wchar_t face[LF_FACESIZE] = {};
    std::int32_t size = 0;
    if (!FindDialogFont(module, face, LF_FACESIZE, size)) return {};
    return TemplateFont{face, static_cast<std::uint16_t>(size)};
}

std::span<const std::byte> TemplateBytes(HMODULE module, std::int32_t templateId) {
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(templateId), RT_DIALOG);
    const HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return {static_cast<const std::byte*>(bytes), SizeofResource(module, found)};
}

// The template to open in place of the resource; empty: the resource itself. A template that can't
// be rewritten isn't there or is damaged, which the system reports.
std::vector<std::byte> Rewritten(HMODULE module, std::int32_t templateId, DWORD extraStyle) {
    const auto font = BaseFontFor(module);
    if (!font && extraStyle == 0) return {};
    return RewriteTemplate(TemplateBytes(module, templateId), extraStyle, font)
        .value_or(std::vector<std::byte>());
}

const DLGTEMPLATE* AsTemplate(const std::vector<std::byte>& bytes) {
    return reinterpret_cast<const DLGTEMPLATE*>(bytes.data());
}

// The toolkit has one scale, that of the first monitor, while the system's dialog code gives a
// window of a thread that knows of several the fonts and sizes of its own monitor. So dialogs are
// made for the one scale, and the system stretches them on other monitors. Systems before
// Windows 10 have neither the calls nor dialogs of several scales.
class OneScale {
public:
    OneScale()
        : set_(Find<SetContext>("SetThreadDpiAwarenessContext")),
          old_(IsPerMonitor() ? set_(DPI_AWARENESS_CONTEXT_SYSTEM_AWARE) : nullptr) {}
    OneScale(const OneScale&) = delete;
    OneScale& operator=(const OneScale&) = delete;
    ~OneScale() {
        if (old_ != nullptr) set_(old_);
    }

private:
    using SetContext = DPI_AWARENESS_CONTEXT WINAPI(DPI_AWARENESS_CONTEXT);
    using GetContext = DPI_AWARENESS_CONTEXT WINAPI();
    using GetAwareness = DPI_AWARENESS WINAPI(DPI_AWARENESS_CONTEXT);

    template <class Function>
    static Function* Find(const char* name) {
        const HMODULE user = GetModuleHandleW(L"user32.dll");
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(user, name)));
    }
    bool IsPerMonitor() const {
        auto* const get = Find<GetContext>("GetThreadDpiAwarenessContext");
        auto* const awareness = Find<GetAwareness>("GetAwarenessFromDpiAwarenessContext");
        return set_ != nullptr && get != nullptr && awareness != nullptr &&
               awareness(get()) == DPI_AWARENESS_PER_MONITOR_AWARE;
    }

    SetContext* set_;
    DPI_AWARENESS_CONTEXT old_;
};

} // namespace

INT_PTR RunDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                  LPARAM param, DWORD extraStyle) {
    const OneScale scale;
    const auto bytes = Rewritten(module, templateId, extraStyle);
    return bytes.empty()
               ? DialogBoxParamW(module, MAKEINTRESOURCEW(templateId), parent, procedure, param)
               : DialogBoxIndirectParamW(module, AsTemplate(bytes), parent, procedure, param);
}

HWND CreateModelessDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                          LPARAM param, DWORD extraStyle) {
    const OneScale scale;
    const auto bytes = Rewritten(module, templateId, extraStyle);
    return bytes.empty()
               ? CreateDialogParamW(module, MAKEINTRESOURCEW(templateId), parent, procedure, param)
               : CreateDialogIndirectParamW(module, AsTemplate(bytes), parent, procedure, param);
}

} // namespace ObLibX
