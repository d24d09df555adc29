// The dialog is a key to the exchange block's users and never called; see windows.h.
#pragma once

#include <windows.h>

struct IFileDialog;
