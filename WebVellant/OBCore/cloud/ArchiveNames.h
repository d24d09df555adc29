// Which file names count as those of archives, for a provider that takes nothing else.
#pragma once

#include <string>

namespace obcore {

// Whether the path's extension is one of an archive, in upper or lower case. A wider question than
// whether a picked file is an archive already, which planning asks of four extensions, with case.
bool IsArchiveName(const std::wstring& path);

// `path` with `extension`, which begins with a point, in place of the extension that it has, or at
// its end when it has none. Only the last name of the path is looked at. Comes back as it is when
// the new name is longer than a name may be.
std::wstring WithExtension(const std::wstring& path, const wchar_t* extension);

} // namespace obcore
