// What the product keeps on this machine after a request, to be searched for secrets.
#pragma once

#include <windows.h>

#include <string>

namespace obtest {

// The record of the product's use, as UTF-8; empty after RemoveUsageRecord.
std::string UsageRecord();
void RemoveUsageRecord();

// Names and data of all values below the maker's key, whatever their type, with the names of the
// keys.
std::string ProductRegistryBytes();

// Whether the bytes have the text in them, in UTF-8 or in UTF-16.
bool HasText(const std::string& bytes, const std::wstring& text);

} // namespace obtest
