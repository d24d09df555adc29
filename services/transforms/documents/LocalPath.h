// Paths of a computer's own files, as documents store them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace transforms::documents {

// The name at the end of a path that names folders of a computer: a file: address, a path with a
// drive or of a server, UTF-8 or another form in which ASCII is itself. "." for a path
// of a folder, which ends in a separator; nothing for every other text.
std::optional<std::string_view> FileOfLocalPath(std::string_view text);

// The same for an address that leads out of the document: one from the root of a computer without
// drives, "/home/a/x.jpg", is such a path too.
std::optional<std::string_view> FileOfLocalAddress(std::string_view text);

// Whether the text is such a path, whatever it ends in.
bool IsLocalPath(std::string_view text);

} // namespace transforms::documents
