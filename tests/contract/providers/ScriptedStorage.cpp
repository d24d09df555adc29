// The storage providers of the real manager in the contract tests: each answers from the script of
// the fake manager (tests/fakes/providers/Script.h), so that both managers run the same cases.
//
// Beyond that script: providerN.GetAccountSpace.hangs, 1: an account's space is reported only once
// the event kReleaseEvent is set.
#include <windows.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "services/providers/StorageProviders.h"
#include "services/providers/folder/FolderIconIds.h"
#include "tests/contract/providers/ScriptedStorage.h"
#include "tests/fakes/Recording.h"

namespace {

using namespace providers;

std::wstring Text(const std::wstring& key, const std::wstring& otherwise = {}) {
    return obtest::ScriptedAnswer(key.c_str()).value_or(otherwise);
}

std::uint64_t Number(const std::wstring& key, std::uint64_t otherwise) {
    return obtest::ScriptedNumber(key.c_str(), otherwise);
}

std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> parts;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

// The number at `index` of a list such as "0,1"; past its end the last one.
int NumberAt(const std::wstring& list, std::size_t index, int empty) {
    const auto numbers = Split(list, L',');
    if (numbers.empty()) return empty;
    return _wtoi(numbers[std::min(index, numbers.size() - 1)].c_str());
}

class ScriptedStorage final : public StorageProvider {
public:
    ScriptedStorage(std::uint32_t id, const AccountBook& book) : id_(id), book_(book) {}

    std::uint32_t Id() const noexcept override { return id_; }
    std::wstring DisplayName() const override {
        return Text(Key(L"GetDisplayName"), L"provider" + std::to_wstring(id_));
    }
    std::wstring ShortDescription() const override { return Text(Key(L"GetShortDescription")); }
    UINT IconId() const noexcept override {
        return Number(Key(L"GetBitmap"), 0) != 0 ? OB_FOLDER_ICON : 0;
    }
    bool Has(obcontract::ProviderCapability capability) const noexcept override {
        return (Number(Key(L"HasCapability"), 0) & static_cast<std::uint32_t>(capability)) != 0;
    }

    std::optional<StorageAccount> LogIn(const std::wstring& key, HWND) override {
        if (Number(L"Login2", 0) == 0) return {};
        return key.empty() ? book_.Add(id_, Text(L"Login2.accountLabel")) : book_.Account(id_, key);
    }
    bool IsLoggedIn(const std::wstring& key) const override {
        return NumberAt(Text(Key(L"IsAccountLoggedIn") + L"." + key), 0, 0) != 0;
    }
    void LogOut(const std::wstring& key, HWND) override { book_.Remove(id_, key); }
    void Manage(const std::wstring&, HWND) override {}

    std::optional<AccountSpace> Space(const std::wstring&, HANDLE) const override {
        if (Number(Key(L"GetAccountSpace") + L".hangs", 0) != 0) Hang();
        const auto values = Split(Text(Key(L"GetAccountSpace")), L',');
        if (values.size() < 2) return {};
        return AccountSpace{std::wcstoll(values[0].c_str(), nullptr, 10),
                            std::wcstoll(values[1].c_str(), nullptr, 10)};
    }
    std::optional<std::uint64_t> MaxFileSize(const std::wstring&) const override {
        const std::uint64_t most = Number(Key(L"GetMaxFileSize"), 0);
        if (most == 0) return {};
        return most;
    }
    std::wstring RootFolder(const std::wstring&) const override {
        return Text(Key(L"GetAccountRootFolder"));
    }

    UploadResult Upload(const std::wstring&, const UploadFile& file, UploadProgress&) override {
        const std::size_t attempt = attempts_++;
        if (NumberAt(Text(Key(L"RunUpload.reason")), attempt, 0) == 1) {
            return {UploadEnd::NameTaken, {}, {}};
        }
        if (NumberAt(Text(Key(L"RunUpload")), attempt, 1) == 0) return {};
        return {UploadEnd::Done, {L"/" + file.name, file.name, L"version", 1}, {}};
    }
    ShareResult Share(const std::wstring&, const StoredFile& file, HANDLE) override {
        const std::wstring link = L"https://" + std::to_wstring(id_) + L".example/" + file.name;
        return {Number(Key(L"ShareItems"), 1) != 0, link, L"share", {}, {}};
    }
    bool SetExpiry(const std::wstring&, const std::wstring&, std::int32_t, HANDLE) override {
        return true;
    }
    DeletionEnd Delete(const std::wstring&, const StoredFile&, HANDLE) override {
        return DeletionEnd::Unreachable;
    }
    PickResult Pick(const std::wstring&, HWND) override {
        PickResult result;
        if (Number(L"GetLastErrorCodeOfProvider", 0) != 0) {
            result.sentence = Text(L"GetLastErrorCodeOfProvider.text");
        }
        for (const auto& text : Split(Text(L"GetSharedListFromOpenPicker"), L';')) {
            const auto fields = Split(text, L'|');
            if (fields.size() >= 2) result.files.push_back({{}, fields[0], fields[1]});
        }
        return result;
    }

private:
    std::wstring Key(const wchar_t* operation) const {
        return L"provider" + std::to_wstring(id_) + L'.' + operation;
    }
    static void Hang() {
        const HANDLE release = CreateEventW(nullptr, TRUE, FALSE, kReleaseEvent);
        WaitForSingleObject(release, 60'000);
        CloseHandle(release);
    }

    std::uint32_t id_;
    AccountBook book_;
    std::size_t attempts_ = 0;
};

// Without the progress window, which has tests of its own.
class NoProgress final : public UploadProgress {
public:
    explicit NoProgress(HANDLE ended) : ended_(ended) {}
    void Show(std::uint64_t, std::uint64_t) override {}
    HANDLE Cancelled() const override { return ended_; }
    bool Ask(const std::function<void(HWND)>&) override { return false; }

private:
    HANDLE ended_;
};

} // namespace

StorageParts providers::MakeStorageParts(const AccountBook& book) {
    StorageParts parts;
    for (const std::wstring& id : Split(Text(L"Providers"), L',')) {
        parts.providers.push_back(
            std::make_unique<ScriptedStorage>(static_cast<std::uint32_t>(_wtoi(id.c_str())), book));
    }
    parts.upload = [](StorageProvider& provider, const std::wstring& key, const UploadFile& file,
                      const UploadTexts&, HWND, HANDLE ended) {
        NoProgress progress(ended);
        return provider.Upload(key, file, progress);
    };
    return parts;
}
