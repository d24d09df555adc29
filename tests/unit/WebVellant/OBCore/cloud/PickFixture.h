// A pick from the cloud with the fake provider manager.
#pragma once

#include "OBCore/cloud/PickFromCloud.h"
#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"

namespace obtest {

class PickFixture : public CloudFixture {
protected:
    void SetUp() override {
        CloudFixture::SetUp();
        record_.providerManager = job_.OwnedProviderManager;
        dialog_.Reset(CreateWindowExW(0, L"Static", L"file dialog", WS_POPUP, 0, 0, 100, 100,
                                      owner_.Get(), nullptr, nullptr, nullptr));
        ASSERT_TRUE(dialog_);
        Answer(L"Providers", L"7,8");
        Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
        Answer(L"provider7.HasCapability", L"1");
        FakeModules::ForgetCalls();
    }
    bool Pick() { return obcore::PickFromCloud(record_, dialog_.Get()); }
    std::wstring Dialog() const { return WindowText(dialog_.Get()); }
    static std::wstring Sentence() { return obcore::LoadText(obcore::TextId{150}); }

    obcore::CloudButtonHook record_;
    ObLib::UniqueWindow dialog_;
};

} // namespace obtest
