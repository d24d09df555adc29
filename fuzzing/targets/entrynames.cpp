// The names that files get inside a zip, and which sources count as one file.
#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/Utf8.h"
#include "fuzzing/shim/WindowsCalls.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/archive/Paths.h"
#include "services/archive/zip/EntryNames.h"
#include "services/archive/zip/SourceList.h"

using namespace obarchive;

namespace {

using Texts = std::vector<std::wstring>;
using NameSet = std::set<std::wstring, LessIgnoringCase>;

constexpr std::size_t kLongestName = 255;

// Paths that often end in the same name, now and then in one of the longest.
Texts Paths(FuzzInput& input) {
    Texts paths;
    while (!input.IsUsedUp() && paths.size() < 40) {
        const std::uint32_t kind = input.Below(8);
        std::wstring path = input.Name(12);
        if (kind == 1 && !paths.empty()) path = L"other\\" + paths.back();
        if (kind == 2)
            path += std::wstring(kLongestName - std::min<std::size_t>(path.size(), 4), L'n');
        if (kind == 3 && !paths.empty()) path = std::wstring(FileName(paths.front())) + L" (2)";
        if (kind == 4) path = L"folder/" + path;
        paths.push_back(path);
    }
    return paths;
}

void CheckNames(const Texts& paths) {
    const Texts names = UniqueEntryNames(paths);
    Require(names.size() == paths.size(), "each path has a name");
    NameSet own;
    for (const std::wstring& path : paths) own.insert(WithoutLoneSurrogates(FileName(path)));
    NameSet taken;
    for (std::size_t at = 0; at < names.size(); ++at) {
        const std::wstring name = WithoutLoneSurrogates(FileName(paths[at]));
        Require(taken.insert(names[at]).second, "no two names differ in case alone");
        Require(names[at] == WithoutLoneSurrogates(names[at]), "no name has half of a pair");
        Require(names[at].size() <= std::max(kLongestName, name.size()), "no name grows too long");
        if (names[at] != name)
            Require(!own.contains(names[at]), "a number takes no file's own name");
    }
    for (const std::wstring& name : own) Require(taken.contains(name), "each own name is used");
}

void CheckParts(const Texts& paths) {
    for (const std::wstring& path : paths) {
        Require(std::wstring(FolderOf(path)) + std::wstring(FileName(path)) == path,
                "folder and name are the path");
        Require(FileName(path).find_first_of(L"\\/") == std::wstring_view::npos,
                "a name is no path");
        const std::wstring clean = WithoutLoneSurrogates(path);
        Require(clean.size() == path.size(), "the length stays");
        Require(clean == WithWholePairs(path), "halves of pairs are replaced, whole pairs stay");
        Require(ObLib::ToUtf8(clean) == Utf8Of(clean), "UTF-8 is that of the standard");
    }
}

// Some paths exist, some of them as the same file.
void CheckSources(const Texts& paths, std::uint8_t identities) {
    System().files.clear();
    std::uint64_t identity = 0;
    for (const std::wstring& path : paths)
        System().files[FullPath(path)] = identities ? identity++ % identities : 0;
    std::optional<std::wstring> tooLong;
    const Texts distinct = DistinctSources(paths, &tooLong);
    Texts full; // up to the first path that the system can't take, which ends the list
    for (const std::wstring& path : paths) {
        if (FullPath(path).empty()) break;
        full.push_back(FullPath(path));
    }
    const bool ended = full.size() != paths.size();
    Require(tooLong.has_value() == ended, "a path that can't be taken is named");
    Require(!ended || *tooLong == paths[full.size()], "it is the first of its kind");
    std::size_t next = 0;
    for (const std::wstring& path : full) {
        if (next < distinct.size() && distinct[next] == path) ++next;
        Require(std::any_of(distinct.begin(), distinct.end(),
                            [&](const auto& kept) { return EqualIgnoringCase(kept, path); }),
                "each source is stored");
    }
    Require(next == distinct.size(), "sources keep their order");
    Require(std::set<std::wstring>(distinct.begin(), distinct.end()).size() == distinct.size(),
            "no path is stored twice");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::uint8_t identities = input.Byte() % 4;
    const Texts paths = Paths(input);
    CheckNames(paths);
    CheckParts(paths);
    CheckSources(paths, identities);
    return 0;
}
