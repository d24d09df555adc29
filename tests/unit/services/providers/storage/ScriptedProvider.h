// A storage provider that does what a test has put into it.
#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "services/providers/storage/StorageProvider.h"

namespace obtest {

// What a test leaves unset has an answer that concerns nobody. Each function throws once `throws`
// is set.
class ScriptedProvider : public providers::StorageProvider {
public:
    using Key = const std::wstring&;

    explicit ScriptedProvider(std::uint32_t ownId) : id(ownId) {}

    std::uint32_t Id() const noexcept override { return id; }
    std::wstring DisplayName() const override { return Checked(displayName); }
    std::wstring ShortDescription() const override { return Checked(description); }
    UINT IconId() const noexcept override { return icon; }
    bool Has(obcontract::ProviderCapability capability) const noexcept override {
        return (capabilities & static_cast<std::uint32_t>(capability)) != 0;
    }

    std::optional<providers::StorageAccount> LogIn(Key key, HWND owner) override {
        Note(L"LogIn", key, owner);
        return logIn ? logIn(key) : std::nullopt;
    }
    bool IsLoggedIn(Key key) const override { return Checked(isLoggedIn && isLoggedIn(key)); }
    void LogOut(Key key, HWND owner) override {
        Note(L"LogOut", key, owner);
        if (logOut) logOut(key);
    }
    void Manage(Key key, HWND owner) override { Note(L"Manage", key, owner); }

    std::optional<providers::AccountSpace> Space(Key key, HANDLE ended) const override {
        Checked(true);
        return space ? space(key, ended) : std::nullopt;
    }
    std::optional<std::uint64_t> MaxFileSize(Key key) const override {
        return Checked(maxFileSize ? maxFileSize(key) : std::nullopt);
    }
    std::wstring RootFolder(Key key) const override {
        return Checked(rootFolder ? rootFolder(key) : std::wstring());
    }

    providers::UploadResult Upload(Key, const providers::UploadFile&,
                                   providers::UploadProgress&) override {
        return {};
    }
    providers::ShareResult Share(Key key, const providers::StoredFile& file,
                                 HANDLE ended) override {
        Checked(true);
        return share ? share(key, file, ended) : providers::ShareResult{};
    }
    bool SetExpiry(Key key, const std::wstring& shareId, std::int32_t days, HANDLE) override {
        return Checked(setExpiry && setExpiry(key, shareId, days));
    }
    providers::DeletionEnd Delete(Key key, const providers::StoredFile& file,
                                  HANDLE ended) override {
        Checked(true);
        return remove ? remove(key, file, ended) : providers::DeletionEnd::Unreachable;
    }
    providers::DeletionEnd RemovePart(Key key, const std::wstring& path, HANDLE ended) override {
        Checked(true);
        return removePart ? removePart(key, path, ended) : providers::DeletionEnd::Unreachable;
    }
    providers::PickResult Pick(Key preferred, HWND owner) override {
        Note(L"Pick", preferred, owner);
        return pick ? pick(preferred) : providers::PickResult{};
    }

    std::uint32_t id;
    std::wstring displayName = L"Provider";
    std::wstring description = L"Description";
    UINT icon = 0;
    std::uint32_t capabilities = 0;
    bool throws = false;
    std::function<std::optional<providers::StorageAccount>(Key)> logIn;
    std::function<bool(Key)> isLoggedIn;
    std::function<void(Key)> logOut;
    std::function<std::optional<providers::AccountSpace>(Key, HANDLE ended)> space;
    std::function<std::optional<std::uint64_t>(Key)> maxFileSize;
    std::function<std::wstring(Key)> rootFolder;
    std::function<providers::ShareResult(Key, const providers::StoredFile&, HANDLE ended)> share;
    std::function<bool(Key, const std::wstring& shareId, std::int32_t days)> setExpiry;
    std::function<providers::DeletionEnd(Key, const providers::StoredFile&, HANDLE ended)> remove;
    std::function<providers::DeletionEnd(Key, const std::wstring& path, HANDLE ended)> removePart;
    std::function<providers::PickResult(Key)> pick;

    std::vector<std::wstring> calls; // calls on the dialogs' thread, written as "Manage(key)"
    HWND lastOwner = nullptr;

private:
    template <class Result>
    Result Checked(Result result) const {
        if (throws) throw std::runtime_error("scripted");
        return result;
    }
    void Note(const wchar_t* call, Key key, HWND owner) {
        Checked(true);
        calls.push_back(std::wstring(call) + L'(' + key + L')');
        lastOwner = owner;
    }
};

} // namespace obtest
