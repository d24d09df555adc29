// A name is found exactly when a row of its table has it.
#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "ObLibX/src/xml/names/NameTables.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/NameRows.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

using Names = std::unordered_map<std::wstring, std::uint32_t>;

// The first row of a name is the one that counts.
Names NamesOf(const std::vector<NameRow>& rows) {
    Names names;
    for (const NameRow& row : rows) {
        if (!row.misplaced) names.emplace(row.name, row.value);
    }
    return names;
}

std::wstring Folded(std::wstring name) {
    for (wchar_t& unit : name) {
        if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit + 32);
    }
    return name;
}

std::int32_t ExpectedPage(const std::wstring& name) {
    static const Names names = NamesOf(CharsetRows());
    if (name.starts_with(L"UTF-32")) return kCodePageUtf32;
    if (name.empty()) return 0;
    const auto found = names.find(Folded(name));
    return found == names.end() ? -1 : static_cast<std::int32_t>(found->second);
}

std::uint32_t ExpectedCodePoint(const std::wstring& name) {
    static const Names names = NamesOf(EntityRows());
    const auto found = names.find(Folded(name));
    return found == names.end() ? 0 : found->second;
}

void LookUp(const std::wstring& name) {
    Require(LookupCodePage(name) == ExpectedPage(name), "a charset is found as in its row");
    Require(LookupEntity(name) == ExpectedCodePoint(name), "an entity is found as in its row");
}

// A row's own name with some letters in upper case and one unit changed.
std::wstring Varied(FuzzInput& input) {
    const std::vector<NameRow>& rows = input.Flag() ? CharsetRows() : EntityRows();
    std::wstring name = rows[(input.Byte() << 8 | input.Byte()) % rows.size()].name;
    const std::uint32_t upper = input.Byte();
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool letter = name[i] >= L'a' && name[i] <= L'z';
        if (letter && (upper >> i % 8 & 1) != 0) name[i] = static_cast<wchar_t>(name[i] - 32);
    }
    const std::wstring changed = input.Name(1);
    if (!changed.empty()) name[input.Below(static_cast<std::uint32_t>(name.size()))] = changed[0];
    return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    LookUp(Varied(input));
    LookUp(input.Rest());
    return 0;
}
