// What the calls of shim/windows/windows.h answer from: a registry, string tables and files that
// the fuzz targets fill. One thread.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

struct RegistryValue {
    DWORD type = REG_SZ;
    std::vector<BYTE> data; // as stored: a text may lack its NUL or end in half a unit
};

struct SystemState {
    // By access bit of the view (KEY_WOW64_64KEY or KEY_WOW64_32KEY); a view without a map has no
    // policies at all.
    std::map<REGSAM, std::map<std::wstring, RegistryValue>> policies;
    std::map<UINT, std::wstring> ownTexts;     // string table of the module under test
    std::map<UINT, std::wstring> productTexts; // string table of the product's library
    // Identity by exact path; a path that isn't here doesn't exist.
    std::map<std::wstring, std::uint64_t> files;
};

SystemState& System();
