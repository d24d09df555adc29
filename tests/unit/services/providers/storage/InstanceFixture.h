// The instances of two scripted providers, with accounts in a real registry, reached by slot as the
// product reaches them.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "contracts/ProviderManager.h"
#include "services/providers/storage/ErrorSentence.h"
#include "services/providers/storage/ProviderInstance.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/storage/ScriptedProvider.h"

namespace obtest {

class InstanceFixture : public testing::Test {
protected:
    using On = obcore::slots::OnCloudProvider;
    using OnUploads = obcore::slots::OnUploadList;
    using OnDownloads = obcore::slots::OnDownloadList;

    static constexpr std::uint32_t kSeven = 7;
    static constexpr std::uint32_t kEight = 8;

    void SetUp() override {
        ClearProductRegistry();
        auto seven = std::make_unique<ScriptedProvider>(kSeven);
        auto eight = std::make_unique<ScriptedProvider>(kEight);
        sevenScript_ = seven.get();
        eightScript_ = eight.get();
        providers::StorageParts parts;
        parts.providers.push_back(std::move(seven));
        parts.providers.push_back(std::move(eight));
        parts.upload = [this](providers::StorageProvider& provider, const std::wstring& key,
                              const providers::UploadFile& file,
                              const providers::UploadTexts& texts, HWND owner,
                              HANDLE) { return upload_(provider, key, file, texts, owner); };
        run_ = std::make_shared<providers::StorageRun>(
            HKEY_CURRENT_USER, obcontract::kProviderManagerKey, std::move(parts));
        run_->windowDelay = 60'000; // no window unless a test asks for it
        const auto spaces = std::make_shared<providers::AccountSpaces>(run_);
        sevenInstance_ = std::make_shared<providers::ProviderInstance>(run_, spaces, *sevenScript_);
        eightInstance_ = std::make_shared<providers::ProviderInstance>(run_, spaces, *eightScript_);
    }

    // The key of a new account.
    std::wstring Add(std::uint32_t providerId, const std::wstring& label = L"label") {
        const auto account = book_.Add(providerId, label);
        EXPECT_TRUE(account);
        return account ? account->key : std::wstring();
    }

    obcontract::CloudProvider* Seven() { return sevenInstance_.get(); }
    obcontract::CloudProvider* Eight() { return eightInstance_.get(); }

    std::wstring Error(const std::wstring& accountKey, const std::wstring& fileName = L"a.zip") {
        return providers::ErrorSentence(*run_, *sevenScript_, accountKey, fileName);
    }

    // A list of seven's instance with one file.
    obcontract::UploadList* ListOf(const std::wstring& accountKey, const wchar_t* name = L"a.zip") {
        obcontract::UploadList* list = On::CreateUploadList::Call(Seven(), accountKey.c_str());
        OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", name, 0, 0, L"folder");
        return list;
    }

    obcontract::Bool Run(obcontract::UploadList* list, HWND owner = nullptr) {
        return On::RunUpload::Call(Seven(), list, owner, L"title", L"body", 1, 0, 1, 1, 1, nullptr);
    }

    // An upload that stores the file under its own name.
    static providers::UploadResult Store(const providers::UploadFile& file) {
        return {providers::UploadEnd::Done,
                {L"/" + file.folder + L"/" + file.name, file.name, L"version", 5},
                {}};
    }

    providers::AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    ScriptedProvider* sevenScript_ = nullptr;
    ScriptedProvider* eightScript_ = nullptr;
    std::shared_ptr<providers::StorageRun> run_;
    std::shared_ptr<providers::ProviderInstance> sevenInstance_;
    std::shared_ptr<providers::ProviderInstance> eightInstance_;
    std::function<providers::UploadResult(providers::StorageProvider&, const std::wstring&,
                                          const providers::UploadFile&,
                                          const providers::UploadTexts&, HWND)>
        upload_ = [](auto&, auto&, const providers::UploadFile& file, auto&, HWND) {
            return Store(file);
        };
};

} // namespace obtest
