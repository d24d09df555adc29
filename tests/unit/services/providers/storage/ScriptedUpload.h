// A storage provider whose upload is what a test says.
#pragma once

#include <functional>
#include <utility>

#include "services/providers/storage/StorageProvider.h"

namespace obtest {

class ScriptedUpload final : public providers::StorageProvider {
public:
    using Script = std::function<providers::UploadResult(
        const std::wstring& key, const providers::UploadFile&, providers::UploadProgress&)>;

    explicit ScriptedUpload(Script script) : script_(std::move(script)) {}

    std::uint32_t Id() const noexcept override { return 0; }
    std::wstring DisplayName() const override { return {}; }
    std::wstring ShortDescription() const override { return {}; }
    UINT IconId() const noexcept override { return 0; }
    bool Has(obcontract::ProviderCapability) const noexcept override { return false; }
    std::optional<providers::StorageAccount> LogIn(const std::wstring&, HWND) override {
        return std::nullopt;
    }
    bool IsLoggedIn(const std::wstring&) const override { return false; }
    void LogOut(const std::wstring&, HWND) override {}
    void Manage(const std::wstring&, HWND) override {}
    std::optional<providers::AccountSpace> Space(const std::wstring&, HANDLE) const override {
        return std::nullopt;
    }
    std::optional<std::uint64_t> MaxFileSize(const std::wstring&) const override {
        return std::nullopt;
    }
    std::wstring RootFolder(const std::wstring&) const override { return {}; }
    providers::UploadResult Upload(const std::wstring& key, const providers::UploadFile& file,
                                   providers::UploadProgress& progress) override {
        return script_(key, file, progress);
    }
    providers::ShareResult Share(const std::wstring&, const providers::StoredFile&,
                                 HANDLE) override {
        return {};
    }
    bool SetExpiry(const std::wstring&, const std::wstring&, std::int32_t, HANDLE) override {
        return false;
    }
    providers::DeletionEnd Delete(const std::wstring&, const providers::StoredFile&,
                                  HANDLE) override {
        return providers::DeletionEnd::Unreachable;
    }
    providers::PickResult Pick(const std::wstring&, HWND) override { return {}; }

private:
    Script script_;
};

} // namespace obtest
