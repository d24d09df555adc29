#include "services/providers/ui/SaveList.h"

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/ui/FileQuestion.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// Empty when the user cancels.
std::wstring AskForPath(HWND owner) {
    constexpr std::size_t kLongest = 4095;
    return AskForFileToSave(
        {owner, OB_TEXT_RECEIPT_FILTER, kLongest, OwnText(OB_TEXT_RECEIPT_FILE_NAME), L"txt"});
}

} // namespace

bool SaveListAs(const std::wstring& path, const std::wstring& headline, const std::wstring& list) {
    const std::string content = "\xef\xbb\xbf" + ObLib::ToUtf8(headline + L"\r\n\r\n" + list);
    ObLib::UniqueKernelHandle file(CreateFileW(ObLib::WithLongPathPrefix(path).c_str(),
                                               GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                               FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return false;
    if (ObLib::WriteWhole(file.Get(), content.data(), content.size())) return true;
    FILE_DISPOSITION_INFO gone{TRUE};
    SetFileInformationByHandle(file.Get(), FileDispositionInfo, &gone, sizeof gone);
    SetLastError(ERROR_WRITE_FAULT);
    return false;
}

void SaveList(HWND owner, const std::wstring& headline, const std::wstring& list) {
    for (;;) {
        const std::wstring path = AskForPath(owner);
        if (path.empty() || SaveListAs(path, headline, list)) return;
        const bool exists = GetLastError() == ERROR_FILE_EXISTS;
        ShowSentence(owner, OwnText(exists ? OB_TEXT_RECEIPT_EXISTS : OB_TEXT_NOT_SAVED));
    }
}

} // namespace providers
