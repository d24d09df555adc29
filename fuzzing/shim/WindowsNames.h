// Functions of the Windows C library that the portable sources use; every native file sees them.
#pragma once

#include <wchar.h>

extern "C" int _wcsicmp(const wchar_t* one, const wchar_t* other);
extern "C" int _wcsnicmp(const wchar_t* one, const wchar_t* other, size_t count);
