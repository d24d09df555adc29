// The name of a zip in the attachment settings: what is typed, whether it can be used, and the
// preview of the name that a zip will get. On the dialog's thread; the archive service is bound.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "OBCore/options/OBOptions.h"

namespace obcore {

// What is cut off both ends of a name and of an extension when they are saved.
inline constexpr wchar_t kWhitespaceAndDots[] = L" .";

// `text` without the characters of `set` at its beginning and end; empty when it has no others.
std::wstring TrimWhitespaceAndDots(std::wstring_view text, std::wstring_view set);

// Ask the archive service. The second rules of an extension are asked for only after the first.
bool IsGoodZipName(const std::wstring& name);
bool IsGoodExtension(const std::wstring& extension);

// The choice of what is appended; a value outside the list when nothing is selected.
NameAppendKind ChosenAppend(HWND window);

// Writes the name that the controls of the attachment settings `window` give into the preview, or,
// when name or extension can't be used, string 1030. The name has its blanks and dots, as
// only saving trims it.
void UpdateNamePreview(HWND window);

// The same from the stored options, as the dialog opens: nothing is checked.
void ShowStoredName(HWND window, const OBOptions& options);

} // namespace obcore
