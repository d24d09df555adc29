// The password of a link, which the user sends another way than the link.
#pragma once

#include <windows.h>

#include <string>

namespace providers {

// Shows the password in front of the owner, which may be null or no longer exist, and waits until
// the user closes the dialog. False when it can't be shown. The dialog keeps no copy: the user's
// own, made by the button or by Ctrl+C in the field, is kept out of the clipboard's history, and is
// removed after a minute if the process lasts that long. On the thread of the owner.
bool ShowLinkPassword(HWND owner, const std::wstring& fileName, const std::wstring& password);

} // namespace providers
