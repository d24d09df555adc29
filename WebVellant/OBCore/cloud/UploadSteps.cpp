#include "OBCore/cloud/UploadSteps.h"

#include <cwchar>
#include <iterator>

#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"

using obcontract::CloudProvider;
using obcontract::ProviderCapability;
using obcontract::ProviderKind;
using obcontract::ProviderProfile;
using obcontract::UploadList;
using obcore::slots::OnCloudProvider;
using obcore::slots::OnUploadList;

namespace obcore {
namespace {

constexpr wchar_t kFolderBase[] = L"Quillbox\\";
constexpr std::uint32_t kRootCapacity = 2048; // wide characters

bool HasFolders(CloudProvider* provider) {
    return OnCloudProvider::HasCapability::Call(provider, ProviderKind::Storage,
                                                ProviderCapability::Folders) != 0;
}

} // namespace

std::wstring LocalTimeStamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    wchar_t stamp[32] = {};
    _snwprintf(stamp, std::size(stamp) - 1, L"%04d%02d%02d%02d%02d%02d", now.wYear, now.wMonth,
               now.wDay, now.wHour, now.wMinute, now.wSecond);
    return stamp;
}

void MakeTargetFolder(CloudProvider* provider, std::wstring& folder,
                      const ProviderProfile& profile) {
    folder = kFolderBase + LocalTimeStamp();
    wchar_t root[kRootCapacity] = {};
    OnCloudProvider::GetAccountRootFolder::Call(provider, profile.accountKey, root, kRootCapacity);
    if (root[0] != L'\0') folder = TextIn(root) + L'\\' + folder;
}

void AddAttachmentToUploadList(const OBAttachJob& job, CloudProvider* provider, UploadList* list,
                               const ProviderProfile& profile) {
    std::wstring folder;
    if (HasFolders(provider)) MakeTargetFolder(provider, folder, profile);
    OnUploadList::AddFile::Call(list, job.ResultPath.c_str(), job.ResultName.c_str(), 0, 0,
                                folder.c_str());
}

bool RunUploadWithProgress(CloudProvider* provider, UploadList* list, HWND owner) {
    const std::wstring title = LoadText(TextId::UploadTitle);
    const std::wstring body = LoadText(TextId::UploadBody);
    return OnCloudProvider::RunUpload::Call(provider, list, owner, title.c_str(), body.c_str(), 1,
                                            0, 1, 1, 1, nullptr) != 0;
}

} // namespace obcore
