#include "tests/fakes/providers/FakeProvider.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <limits>
#include <map>

#include "tests/fakes/providers/ProviderIds.h"
#include "tests/fakes/providers/Script.h"
#include "tests/fakes/providers/SlotTable.h"

namespace fakes {
namespace {

using namespace obcontract; // the contract's tables name its types bare
using Provider = CloudProvider;

std::map<std::uint32_t, FakeProvider> allProviders;

FakeProvider& Fake(Provider* provider) { return *static_cast<FakeProvider*>(provider); }

template <class List, class Given>
void Drop(std::vector<std::unique_ptr<List>>& lists, Given* list) {
    const auto found = std::find_if(lists.begin(), lists.end(),
                                    [list](const auto& own) { return own.get() == list; });
    if (found == lists.end()) return Record(L"UnknownList");
    lists.erase(found);
}

// What the script has for one account of a provider, or for all of them.
std::wstring TextOfAccount(Provider* provider, const wchar_t* operation,
                           const wchar_t* accountKey) {
    const std::wstring key = Fake(provider).Key(operation);
    return ScriptedText(key + L'.' + (accountKey ? accountKey : L""), ScriptedText(key));
}

// Slot 10 of the callback takes a value that nobody uses and the reason.
void TellReason(ObPVX::ObPvxCallback* callback, std::int32_t reason) {
    constexpr std::size_t kReasonSlot = 10;
    using Function = void (*)(void*, std::uint64_t, std::int32_t);
    void* const* table = *reinterpret_cast<void* const* const*>(callback);
    reinterpret_cast<Function>(table[kReasonSlot])(callback, 0x1122334455667788, reason);
}

std::uint32_t GetProviderId(Provider* provider) {
    Record(L"GetProviderId", provider);
    return Fake(provider).id;
}

void GetDisplayName(Provider* provider, ProviderKind kind, wchar_t* buffer,
                    std::uint32_t* capacity) {
    Record(L"GetDisplayName", provider, kind, *capacity);
    const FakeProvider& fake = Fake(provider);
    const std::wstring call = fake.Key(L"GetDisplayName");
    FillTextOf(call, buffer, *capacity, ScriptedText(call, L"provider" + std::to_wstring(fake.id)));
}

void SetLastProviderError(Provider* provider, std::uint32_t code) {
    Record(L"SetLastProviderError", provider, code);
    Fake(provider).lastError = code;
}

void SetCallback(Provider* provider, ObPVX::ObPvxCallback* callback) {
    Record(L"SetCallback", provider, callback);
    Fake(provider).callback = callback;
    Fake(provider).attempts = 0;
}

void ClearCallback(Provider* provider) {
    Record(L"ClearCallback", provider);
    Fake(provider).callback = nullptr;
}

Bool HasCapability(Provider* provider, ProviderKind kind, ProviderCapability mask) {
    Record(L"HasCapability", provider, kind, mask);
    const auto wanted = static_cast<std::uint64_t>(mask);
    return (ScriptedCount(Fake(provider).Key(L"HasCapability"), 0) & wanted) == wanted;
}

obcontract::DownloadList* CreateDownloadList(Provider* provider) {
    Record(L"CreateDownloadList", provider);
    FakeProvider& fake = Fake(provider);
    if (ScriptedCount(fake.Key(L"CreateDownloadList"), 1) == 0) return nullptr;
    return fake.downloads.emplace_back(std::make_unique<FakeDownloadList>()).get();
}

void DestroyDownloadList(Provider* provider, obcontract::DownloadList* list) {
    Record(L"DestroyDownloadList", provider, list);
    DropDownloadList(Fake(provider), list);
}

obcontract::UploadList* CreateUploadList(Provider* provider, const wchar_t* accountKey) {
    Record(L"CreateUploadList", provider, accountKey);
    FakeProvider& fake = Fake(provider);
    if (ScriptedCount(fake.Key(L"CreateUploadList"), 1) == 0) return nullptr;
    return fake.uploads.emplace_back(std::make_unique<FakeUploadList>(fake.id, accountKey)).get();
}

void DestroyUploadList(Provider* provider, obcontract::UploadList* list) {
    Record(L"DestroyUploadList", provider, list);
    Drop(Fake(provider).uploads, list);
}

Bool GetAccountSpace(Provider* provider, const wchar_t* accountKey, std::int64_t* freeBytes,
                     std::int64_t* totalBytes) {
    Record(L"GetAccountSpace", provider, accountKey);
    const auto values = Split(TextOfAccount(provider, L"GetAccountSpace", accountKey), L',');
    if (values.size() < 2) return 0;
    *freeBytes = std::wcstoll(values[0].c_str(), nullptr, 10);
    *totalBytes = std::wcstoll(values[1].c_str(), nullptr, 10);
    return values.size() == 2 || values[2] != L"0";
}

std::uint64_t GetMaxFileSize(Provider* provider, const wchar_t* accountKey) {
    Record(L"GetMaxFileSize", provider, accountKey);
    return ScriptedCount(Fake(provider).Key(L"GetMaxFileSize"),
                         std::numeric_limits<std::uint64_t>::max());
}

void GetAccountRootFolder(Provider* provider, const wchar_t* accountKey, wchar_t* buffer,
                          std::uint32_t capacity) {
    Record(L"GetAccountRootFolder", provider, accountKey, capacity);
    const std::wstring call = Fake(provider).Key(L"GetAccountRootFolder");
    FillTextOf(call, buffer, capacity, ScriptedText(call));
}

Bool RunUpload(Provider* provider, obcontract::UploadList* list, HWND owner, const wchar_t* title,
               const wchar_t* body, Bool yes1, Bool no2, Bool yes3, Bool yes4, std::uint32_t one,
               void* none) {
    Record(L"RunUpload", provider, list, owner, title, body, yes1, no2, yes3, yes4, one, none);
    FakeProvider& fake = Fake(provider);
    const std::size_t attempt = fake.attempts++;
    const std::wstring reasons = ScriptedText(fake.Key(L"RunUpload.reason"));
    if (fake.callback && attempt < Split(reasons, L',').size()) {
        const auto reason = static_cast<std::int32_t>(NumberAt(reasons, attempt, 0));
        if (reason != 0) TellReason(fake.callback, reason);
    }
    return NumberAt(ScriptedText(fake.Key(L"RunUpload")), attempt, 1) != 0;
}

Bool ShareItems(Provider* provider, obcontract::DownloadList* list) {
    Record(L"ShareItems", provider, list);
    const FakeProvider& fake = Fake(provider);
    if (ScriptedCount(fake.Key(L"ShareItems"), 1) == 0) return 0;
    for (obcontract::CloudItem& item : static_cast<FakeDownloadList*>(list)->items) {
        FillText(item.link, std::size(item.link),
                 L"https://" + std::to_wstring(fake.id) + L".example/" + item.name);
    }
    return 1;
}

Bool IsAccountLoggedIn(Provider* provider, const wchar_t* accountKey) {
    Record(L"IsAccountLoggedIn", provider, accountKey);
    return NumberAt(TextOfAccount(provider, L"IsAccountLoggedIn", accountKey), 0, 0) != 0;
}

std::int32_t GetAccountProfiles(Provider* provider, ProviderProfile* profiles,
                                std::uint32_t capacity) {
    Record(L"GetAccountProfiles", provider, capacity);
    const std::wstring script = ScriptedText(Fake(provider).Key(L"GetAccountProfiles"), L"0");
    if (script.find(L'|') == std::wstring::npos)
        return static_cast<std::int32_t>(_wtoi(script.c_str()));
    const std::vector<ProviderProfile> all = ScriptedProfiles(Fake(provider));
    const std::size_t count = std::min<std::size_t>(all.size(), capacity);
    std::copy_n(all.begin(), count, profiles);
    return static_cast<std::int32_t>(count);
}

void ManageAccount(Provider* provider, HWND owner, const wchar_t* accountKey) {
    Record(L"ManageAccount", provider, owner, accountKey);
}

void* const* ProviderTable() {
    static const auto filled = [] {
        auto table = UnexpectedSlots<obcontract::kCloudProviderSlotCount>();
        OB_PROVIDER_SLOTS(FAKE_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

} // namespace

FakeProvider::FakeProvider(std::uint32_t ownId) : CloudProvider{ProviderTable()}, id(ownId) {
    NoteProvider(this, ownId);
}

std::wstring FakeProvider::Key(const wchar_t* operation) const {
    return L"provider" + std::to_wstring(id) + L'.' + operation;
}

std::vector<std::uint32_t> ScriptedProviders() {
    std::vector<std::uint32_t> ids;
    for (const std::wstring& id : Split(ScriptedText(L"Providers"), L',')) {
        ids.push_back(static_cast<std::uint32_t>(std::wcstoul(id.c_str(), nullptr, 10)));
    }
    return ids;
}

FakeProvider* ProviderOfId(std::uint32_t id) {
    const auto ids = ScriptedProviders();
    if (std::find(ids.begin(), ids.end(), id) == ids.end()) return nullptr;
    return &ProviderBesideTheList(id);
}

FakeProvider& ProviderBesideTheList(std::uint32_t id) {
    return allProviders.try_emplace(id, id).first->second;
}

FakeProvider* FindProvider(const CloudProvider* provider) {
    for (auto& [id, fake] : allProviders) {
        if (&fake == provider) return &fake;
    }
    return nullptr;
}

std::vector<ProviderProfile> ScriptedProfiles(const FakeProvider& provider) {
    std::vector<ProviderProfile> profiles;
    for (const auto& text : Split(ScriptedText(provider.Key(L"GetAccountProfiles")), L';')) {
        const auto fields = Split(text, L'|');
        ProviderProfile& profile = profiles.emplace_back();
        profile.providerId = provider.id;
        if (fields.size() != 2) continue;
        FillTextOf(provider.Key(L"GetAccountProfiles"), profile.accountLabel,
                   std::size(profile.accountLabel), fields[0]);
        FillText(profile.accountKey, std::size(profile.accountKey), fields[1]);
    }
    return profiles;
}

void DropDownloadList(FakeProvider& provider, obcontract::DownloadList* list) {
    Drop(provider.downloads, list);
}

} // namespace fakes
