#include "tests/fakes/providers/Script.h"

#include <objbase.h>

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "tests/fakes/providers/FakeManager.h"
#include "tests/fakes/providers/ProviderIds.h"

namespace fakes {

using obtest::Quoted;

std::wstring ScriptedText(const std::wstring& key, const std::wstring& otherwise) {
    return ScriptedAnswer(key.c_str()).value_or(otherwise);
}

std::uint64_t ScriptedCount(const std::wstring& key, std::uint64_t otherwise) {
    return ScriptedNumber(key.c_str(), otherwise);
}

std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> parts;
    if (text.empty()) return parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::wstring::npos) return parts;
        begin = end + 1;
    }
}

std::int64_t NumberAt(const std::wstring& list, std::size_t index, std::int64_t empty) {
    const std::vector<std::wstring> numbers = Split(list, L',');
    if (numbers.empty()) return empty;
    return std::wcstoll(numbers[std::min(index, numbers.size() - 1)].c_str(), nullptr, 10);
}

std::wstring ItemAt(const std::wstring& list, std::size_t index) {
    const std::vector<std::wstring> items = Split(list, L';');
    return items.empty() ? std::wstring() : items[std::min(index, items.size() - 1)];
}

void FillText(wchar_t* place, std::uint64_t capacity, const std::wstring& text) {
    if (!place || capacity == 0) return;
    const std::size_t length =
        std::min<std::size_t>(text.size(), static_cast<std::size_t>(capacity - 1));
    std::copy_n(text.begin(), length, place);
    place[length] = L'\0';
}

void FillTextOf(const std::wstring& call, wchar_t* place, std::uint64_t capacity,
                const std::wstring& text) {
    FillText(place, capacity, text);
    const bool isFull = place && capacity != 0 && text.size() >= capacity;
    if (isFull && ScriptedCount(call + L".noNul", 0) != 0) place[capacity - 1] = text[capacity - 1];
}

std::wstring DescribeThread() {
    if (ScriptedCount(L"Threads", 0) == 0) return {};
    APTTYPE type;
    APTTYPEQUALIFIER qualifier;
    const bool hasCom = CoGetApartmentType(&type, &qualifier) != CO_E_NOTINITIALIZED;
    return L" @" + std::to_wstring(GetCurrentThreadId()) + (hasCom ? L" with COM" : L"");
}

std::wstring Describe(const wchar_t* text) { return Quoted(text); }

std::wstring Describe(obcontract::ProviderManagerHandle manager) {
    if (!manager) return L"null";
    const auto guard = LockManagers();
    return IsLive(manager) ? L"manager" : L"stale manager";
}

std::wstring Describe(const obcontract::CloudProvider* provider) {
    if (!provider) return L"null";
    const auto id = IdOfProvider(provider);
    return id ? L"provider" + std::to_wstring(*id) : L"strange provider";
}

std::wstring Describe(const obcontract::DownloadList* list) { return list ? L"list" : L"null"; }
std::wstring Describe(const obcontract::UploadList* list) { return list ? L"list" : L"null"; }

std::wstring Describe(const obcontract::ProviderProfile* profile) {
    if (!profile) return L"null";
    return L"profile(" + std::to_wstring(profile->providerId) + L", " +
           Quoted(profile->accountLabel) + L", " + Quoted(profile->accountKey) + L')';
}

std::wstring Describe(const obcontract::CloudItem* item) {
    if (!item) return L"null";
    const std::wstring name(item->name, wcsnlen(item->name, std::size(item->name)));
    const std::wstring link(item->link, wcsnlen(item->link, std::size(item->link)));
    return L"item(" + Quoted(name.c_str()) + L", " + Quoted(link.c_str()) + L')';
}

std::wstring Describe(const ObPVX::ObPvxCallback* callback) {
    return callback ? L"callback" : L"null";
}

std::wstring Describe(HWND window) { return obtest::WindowText(window); }

std::wstring Describe(const void* pointer) { return pointer ? L"pointer" : L"null"; }

std::wstring Describe(const std::vector<std::wstring>& paths) {
    std::wstring line = L"paths(";
    for (const std::wstring& path : paths) {
        if (line.back() != L'(') line += L", ";
        line += Quoted(path.c_str());
    }
    return line + L')';
}

} // namespace fakes
