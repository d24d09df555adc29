// Which files are office documents, by their names and first bytes.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace providers {

// By the program that opens it.
enum class DocumentKind : std::uint8_t { Text, Table, Slides };

struct OfficeDocument {
    DocumentKind kind;
    const wchar_t* extension; // in small letters, without the dot
};

// Nothing for any other file, and for one whose first bytes aren't those of its name's kind. The
// bytes are compared because a suite would open anything as some kind of text.
std::optional<OfficeDocument> DocumentOf(HANDLE source, const std::wstring& name);

} // namespace providers
