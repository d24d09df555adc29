// The library's own file loaded a second time as data: every text and dialog is found through it,
// so that the loader finds the language resources of the thread's language.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "OBCore/modules/TextIds.h"

namespace obcore {

// Binds the module if it isn't bound yet. False when the own path can't be had whole or the file
// can't be loaded; nothing is remembered then and the next call tries again. No lock: the first
// call of a process comes from its entry point.
bool BindResourceModule();

// The bound module, null before BindResourceModule() has returned true.
HMODULE ResourceModule() noexcept;

// On process detach. Texts can be had again after another BindResourceModule().
void FreeResourceModule() noexcept;

// The text `id`, cut to `capacity` - 1 wide characters; empty when the module isn't bound or has no
// such text.
std::wstring LoadText(TextId id, int capacity = 512);

// Puts `value` in the place of the first `placeholder` ("%ls") of a text of the resources. Not by a
// format: a text that a translator got wrong then costs no more than its value.
void FillIn(std::wstring& text, std::wstring_view placeholder, std::wstring_view value);

} // namespace obcore
