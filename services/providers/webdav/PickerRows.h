// The files and folders of a server's folder as the picker lists them.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "services/providers/dav/DavClient.h"

namespace providers {

struct PickerRow {
    DavItem item;
    std::wstring name; // as it is shown, and as the mail gets it
};

// A name without characters that a text of one line can't show or that turn round the order in
// which others are shown: each of them is U+FFFD. So no line break gets into a mail, and no name
// looks as if it had another ending.
std::wstring ShownName(const std::wstring& name);

// Folders first, then files, each in the order in which the shell sorts names: "2.txt" is before
// "10.txt". Left out are names that begin with a dot, which servers and their programs keep for
// themselves, files whose upload isn't finished, and names that are no part of a path.
std::vector<PickerRow> RowsOf(std::vector<DavItem> items);

// The first row from `start` on, then from the first one on, whose name begins with the text in any
// case.
std::optional<std::size_t> FindRow(std::span<const PickerRow> rows, std::wstring_view typed,
                                   std::size_t start);

} // namespace providers
