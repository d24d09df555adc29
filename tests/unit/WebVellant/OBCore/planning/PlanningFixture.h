// A picker run that has its files and asks what becomes of them.
#pragma once

#include <utility>

#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"
#include "tests/unit/WebVellant/OBCore/planning/FakePipeline.h"

namespace obtest {

class PlanningFixture : public RunFixture {
protected:
    class Picker : public obcore::OBOpenFileNameDlg {
    public:
        explicit Picker(obcore::OBAttachJob& job) : OBOpenFileNameDlg(nullptr, job) {}
        int ShowPickerDialog() override { return 0; }
    };

    void SetUp() override {
        RunFixture::SetUp();
        // An uninitialised manager supports nothing.
        obcore::ProviderManager().Init(job_.OwnedProviderManager, 0, L"");
        FakeModules::ForgetCalls();
        TheFakePipeline().Reset();
        job_.SendItem = true;
        job_.SendSetting = obcore::SendSettingKind::Never;
    }

    int Process(const std::vector<std::wstring>& picked) {
        return picker_.ProcessPickedFiles(picked);
    }

    static Lines UsageReports() { return FakeModules::CallsOf({L"LogAppletFeature"}); }
    static Lines Report(const std::wstring& text) {
        return {L"LogAppletFeature(\"feature.file-send\", \"file-send." + text + L"\")"};
    }
    static Lines PlainReport() { return Report(L"type=attachment|file-send.expiry=no"); }

    Picker picker_{job_};
};

} // namespace obtest
