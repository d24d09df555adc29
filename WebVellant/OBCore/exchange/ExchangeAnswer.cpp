#include "OBCore/exchange/ExchangeAnswer.h"

#include <algorithm>

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using obcontract::kTextAreaOffset;

namespace obcore {
namespace {

constexpr std::int32_t kPathListOffset = 78; // after the empty folder text

// The offset past the end of the answer; 0 when there is no answer, or none inside the block.
std::int32_t EndOfAnswer(const ExchangeBlock& block) {
    switch (block.Status) {
    case ExchangeStatus::LinkAnswer:
        return EndOfText(block, block.Link.LinkOffset);
    case ExchangeStatus::OpenFileNameTaken:
        return EndOfList(block, block.Request.FileListOffset);
    case ExchangeStatus::DialogAnswer:
        return EndOfList(block, block.Dialog.PathListOffset);
    default:
        return 0;
    }
}

} // namespace

void WriteLinkAnswer(ExchangeBlock& block, const std::wstring& text) {
    block.Status = ExchangeStatus::LinkAnswer;
    block.Link.LinkOffset = kTextAreaOffset;
    PutText(block, kTextAreaOffset, text.c_str());
}

void WriteDialogAnswer(ExchangeBlock& block, const std::vector<std::wstring>& paths) {
    block.Status = ExchangeStatus::DialogAnswer;
    block.Dialog.FolderOffset = kTextAreaOffset;
    PutText(block, kTextAreaOffset, {});
    block.Dialog.PathListOffset = kPathListOffset;
    std::int32_t cursor = kPathListOffset;
    for (const std::wstring& path : paths) cursor = PutText(block, cursor, path.c_str());
    PutNuls(block, cursor, 1);
}

void WriteCleanupNames(ExchangeBlock& block, const wchar_t* folder, const wchar_t* file) {
    block.CleanupFolderOffset = 0;
    block.CleanupFileOffset = 0;
    std::int32_t cursor = EndOfAnswer(block);
    if (cursor == 0) return;
    if (folder) {
        block.CleanupFolderOffset = cursor;
        cursor = PutText(block, cursor, folder);
    }
    if (file) {
        block.CleanupFileOffset = cursor;
        PutText(block, cursor, file);
    }
}

std::wstring ReadFileList(const ExchangeBlock& block) {
    std::wstring list(ListAt(block, block.Request.FileListOffset));
    if (list.ends_with(std::wstring_view(L"\0\0", 2))) return list;
    const std::size_t closing = std::min<std::size_t>(list.size(), 2);
    std::fill_n(list.end() - static_cast<std::ptrdiff_t>(closing), closing, L'\0');
    return list;
}

void ReadDialogResult(const ExchangeBlock& block, PickedFiles& picked) {
    picked.flag = block.Dialog.PickedFlag;
    picked.folder = ReadText(block, block.Dialog.FolderOffset);
    picked.paths.clear();
    std::int32_t offset = block.Dialog.PathListOffset;
    for (auto path = TextAt(block, offset); !path.empty(); path = TextAt(block, offset)) {
        picked.paths.emplace_back(path);
        offset = EndOfText(block, offset);
    }
}

} // namespace obcore
