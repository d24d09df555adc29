#include "tests/unit/WebVellant/OBCore/planning/FakePipeline.h"

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "OBCore/cloud/CloudSend.h"
#include "OBCore/transforms/Transforms.h"
#include "tests/fakes/Recording.h"

using obcontract::ProviderProfile;

namespace obtest {
namespace {

std::wstring List(const std::vector<std::wstring>& files) {
    std::wstring text = L"[";
    for (const std::wstring& file : files)
        text += (text.size() > 1 ? L", " : L"") + Quoted(file.c_str());
    return text + L"]";
}

} // namespace

void FakePipeline::Reset() {
    runTransforms = [](auto&, auto&) { return true; };
    transformSingleFile = [](auto&) { return true; };
    chooseProvider = [](auto&) { return false; };
    send = [](auto&, std::wstring& linkText) {
        linkText = L"link";
        return true;
    };
}

FakePipeline& TheFakePipeline() {
    static FakePipeline pipeline;
    return pipeline;
}

} // namespace obtest

namespace obcore {

bool CompressUtils::RunTransforms(OBAttachJob& job, std::vector<std::wstring>& files,
                                  const std::wstring& folder) {
    obtest::RecordCall(L"RunTransforms(" + obtest::List(files) + L", " +
                       obtest::Quoted(folder.c_str()) + L", " +
                       std::to_wstring(job.TransformsBeforeArchive) + L")");
    return obtest::TheFakePipeline().runTransforms(job, files);
}

bool CompressUtils::TransformSingleFile(OBAttachJob& job, const std::vector<std::wstring>& files) {
    obtest::RecordCall(L"TransformSingleFile(" + obtest::List(files) + L")");
    return obtest::TheFakePipeline().transformSingleFile(job);
}

bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job) {
    obtest::RecordCall(L"ShowSelectDefaultCloudDialog(" + obtest::WindowText(owner) + L")");
    return obtest::TheFakePipeline().chooseProvider(job);
}

bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  ProviderProfile& profile) {
    obtest::RecordCall(L"RunCloudSend(" + obtest::Quoted(job.ResultPath.c_str()) + L", " +
                       std::to_wstring(totalSize) + L", " + std::to_wstring(profile.providerId) +
                       L", " + obtest::Quoted(profile.accountKey) + L")");
    return obtest::TheFakePipeline().send(job, linkText);
}

} // namespace obcore
