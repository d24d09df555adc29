#include "services/providers/storage/RecordTexts.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace providers {
namespace {

template <std::size_t Capacity>
bool Fill(const std::wstring& text, wchar_t (&field)[Capacity]) {
    return CopyWhole(text, field, Capacity);
}

template <std::size_t Capacity>
bool Ends(const wchar_t (&field)[Capacity]) {
    return std::wmemchr(field, L'\0', Capacity) != nullptr;
}

} // namespace

std::optional<std::wstring> TextIn(const wchar_t* text, std::size_t capacity) {
    const wchar_t* const end = text ? std::find(text, text + capacity, L'\0') : nullptr;
    if (!text || end == text + capacity) return {};
    return std::wstring(text, end);
}

std::optional<std::wstring> AccountKeyIn(const wchar_t* text) {
    return TextIn(text, std::size(obcontract::ProviderProfile{}.accountKey));
}

bool CopyWhole(const std::wstring& text, wchar_t* place, std::uint64_t capacity) {
    if (!place || capacity == 0) return false;
    const bool fits = text.size() < capacity;
    const std::size_t length = fits ? text.copy(place, text.size()) : 0;
    place[length] = L'\0';
    return fits;
}

void CopyCut(const std::wstring& text, wchar_t* place, std::uint64_t capacity) {
    if (!place || capacity == 0) return;
    std::wstring part = text.substr(0, static_cast<std::size_t>(capacity - 1));
    if (part.size() < text.size() && !part.empty() && IS_HIGH_SURROGATE(part.back())) {
        part.pop_back();
    }
    CopyWhole(part, place, capacity);
}

obcontract::ProviderProfile ProfileOf(std::uint32_t providerId, const StorageAccount& account) {
    obcontract::ProviderProfile profile{};
    profile.providerId = providerId;
    CopyCut(account.label, profile.accountLabel, std::size(profile.accountLabel));
    Fill(account.key, profile.accountKey);
    return profile;
}

std::optional<obcontract::CloudItem> ItemOf(const obcontract::ProviderProfile& profile,
                                            const std::wstring& name, const std::wstring& link) {
    obcontract::CloudItem item{};
    item.profile = profile;
    if (!Fill(name, item.name) || !Fill(link, item.link)) return {};
    return item;
}

bool IsSound(const obcontract::CloudItem& item) {
    return Ends(item.profile.accountLabel) && Ends(item.profile.accountKey) && Ends(item.link) &&
           Ends(item.name);
}

} // namespace providers
