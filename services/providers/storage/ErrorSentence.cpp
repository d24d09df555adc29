#include "services/providers/storage/ErrorSentence.h"

#include "services/providers/storage/UploadTimes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

std::wstring TooLarge(const StorageProvider& provider, const std::wstring& accountKey,
                      const std::wstring& fileName) {
    const auto most = provider.MaxFileSize(accountKey);
    if (!most) return FormatOwnText(OB_TEXT_STORAGE_TOO_LARGE, {fileName});
    return FormatOwnText(OB_TEXT_STORAGE_LIMIT,
                         {fileName, provider.DisplayName(), ByteText(*most)});
}

} // namespace

std::wstring ErrorSentence(const StorageRun& run, const StorageProvider& asked,
                           const std::wstring& accountKey, const std::wstring& fileName) {
    const auto error = run.errors.Of(accountKey);
    if (!error) return {};
    const StorageProvider* const owner = run.ProviderOf(accountKey);
    const StorageProvider& provider = owner ? *owner : asked;
    if (error->code == obcontract::ProviderErrorTooLarge) {
        return TooLarge(provider, accountKey, fileName);
    }
    if (error->code == obcontract::ProviderErrorQuota) {
        return FormatOwnText(OB_TEXT_STORAGE_NO_SPACE, {fileName, provider.DisplayName()});
    }
    return error->sentence.empty() ? FormatOwnText(OB_TEXT_STORAGE_FAILED, {fileName})
                                   : error->sentence;
}

} // namespace providers
