#include "services/providers/storage/PickLimits.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "contracts/ExchangeBlock.h"

namespace providers {
namespace {

constexpr std::size_t kLongestName = std::size(obcontract::CloudItem{}.name) - 1;
// What the browser is given: the text area of the exchange block, less the text's NUL.
constexpr std::size_t kLongestText =
    (obcontract::kExchangeBlockSize - obcontract::kTextAreaOffset) / sizeof(wchar_t) - 1;

// The parts of the text around names and providers.
constexpr std::wstring_view kBeforeName = L"||";
constexpr std::wstring_view kBeforeSentence = L"|||";
constexpr std::size_t kSentence = 511; // one of the product's, which has room for so much
constexpr std::wstring_view kAfterSentence = L" *: |||";
constexpr std::wstring_view kAfterProvider = L"||";

} // namespace

std::wstring EscapedLink(const std::wstring& link) {
    std::wstring text;
    for (const wchar_t character : link) {
        if (character == L'|') {
            text += L"%7C";
        } else {
            text += character;
        }
    }
    return text;
}

std::wstring NameWithLink(const PickedFile& file) {
    std::wstring name = file.name;
    std::ranges::replace(name, L'|', L' ');
    return name + L' ' + EscapedLink(file.link);
}

bool FitsLinkText(std::span<const PickedFile> files, const std::wstring& displayName) {
    std::size_t length = kBeforeSentence.size() + kSentence + kAfterSentence.size();
    std::set<std::wstring> names; // the text has each name once
    for (const PickedFile& file : files) {
        const auto [name, isNew] = names.insert(NameWithLink(file));
        if (name->size() > kLongestName) return false;
        if (!isNew) continue;
        length += kBeforeName.size() + name->size() + displayName.size() + kAfterProvider.size();
    }
    return length <= kLongestText;
}

} // namespace providers
