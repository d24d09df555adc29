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

} // namespace

INT_PTR RunDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                  LPARAM param, DWORD extraStyle) {
    const auto bytes = Rewritten(module, templateId, extraStyle);
    return bytes.empty()
               ? DialogBoxParamW(module, MAKEINTRESOURCEW(templateId), parent, procedure, param)
               : DialogBoxIndirectParamW(module, AsTemplate(bytes), parent, procedure, param);
}

HWND CreateModelessDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                          LPARAM param, DWORD extraStyle) {
    const auto bytes = Rewritten(module, templateId, extraStyle);
    return bytes.empty()
               ? CreateDialogParamW(module, MAKEINTRESOURCEW(templateId), parent, procedure, param)
               : CreateDialogIndirectParamW(module, AsTemplate(bytes), parent, procedure, param);
}

} // namespace ObLibX
