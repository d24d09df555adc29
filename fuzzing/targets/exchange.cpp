// Both readers of the exchange block, over any block: the host's reader of a request and the
// browser's reader of an answer stay inside the block, and what was written is read back.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "WebVellant/OBCore/exchange/ExchangeAnswer.h"
#include "WebVellant/OBCore/exchange/ExchangeRequest.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

namespace obcontract {}
using namespace obcontract;
using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using obcontract::kExchangeBlockSize;
using obcontract::kTextAreaOffset;
using namespace obcore;

namespace {

// On the heap, so that the sanitizer sees an access past its end.
using Block = std::unique_ptr<ExchangeBlock>;

constexpr std::int32_t kBlockEnd = static_cast<std::int32_t>(kExchangeBlockSize);

// Offsets that mean something, and any other.
std::int32_t Offset(FuzzInput& input) {
    switch (input.Below(6)) {
    case 0:
        return 0;
    case 1:
        return kTextAreaOffset + static_cast<std::int32_t>(input.Byte());
    case 2:
        return kBlockEnd - static_cast<std::int32_t>(input.Byte());
    case 3:
        return static_cast<std::int32_t>(input.Byte()) - 128;
    case 4:
        return static_cast<std::int32_t>(input.Byte()) << 24 | input.Byte();
    default:
        return static_cast<std::int32_t>(input.Byte() << 8 | input.Byte());
    }
}

void FillHeader(ExchangeBlock& block, FuzzInput& input) {
    block.Status = static_cast<ExchangeStatus>(input.Below(6));
    block.Result = static_cast<std::int32_t>(input.Byte()) - 1;
    block.CleanupFolderOffset = Offset(input);
    block.CleanupFileOffset = Offset(input);
    std::int32_t words[13];
    for (std::int32_t& word : words) word = Offset(input);
    static_assert(sizeof words == sizeof block.Request);
    std::memcpy(&block.Request, words, sizeof words);
}

// A text area without any NUL, or of NULs alone, with the input's own text somewhere in it.
void FillTexts(ExchangeBlock& block, FuzzInput& input) {
    const bool full = input.Flag();
    const std::int32_t start = Offset(input);
    auto* const units = reinterpret_cast<wchar_t*>(block.TextArea);
    std::fill_n(units, sizeof block.TextArea / sizeof(wchar_t), full ? L'x' : L'\0');
    const std::wstring text = input.Rest();
    const std::size_t copied = std::min(text.size(), RoomFrom(start));
    if (copied != 0) std::copy_n(text.data(), copied, PlaceAt(block, start));
}

bool IsInside(const ExchangeBlock& block, const wchar_t* place) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(place);
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(&block);
    return bytes >= begin + kTextAreaOffset && bytes < begin + kBlockEnd;
}

std::size_t RoomAt(const ExchangeBlock& block, const wchar_t* place) {
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(&block);
    return static_cast<std::size_t>(begin + kBlockEnd -
                                    reinterpret_cast<const std::uint8_t*>(place)) /
           sizeof(wchar_t);
}

void RequireText(const ExchangeBlock& block, const wchar_t* text) {
    if (!text) return;
    Require(IsInside(block, text), "a text of the request is inside the block");
    Require(wcsnlen(text, RoomAt(block, text)) < RoomAt(block, text),
            "a text of the request ends inside the block");
}

void RequireList(const ExchangeBlock& block, const wchar_t* list) {
    if (!list) return;
    Require(IsInside(block, list), "the filter is inside the block");
    const std::wstring_view rest(list, RoomAt(block, list));
    Require(rest.find(std::wstring_view(L"\0\0", 2)) != rest.npos,
            "the filter is closed inside the block");
}

void CheckHostReader(ExchangeBlock& block) {
    const OPENFILENAMEW request = ReadOpenFileNameRequest(block, nullptr);
    RequireText(block, request.lpstrInitialDir);
    RequireText(block, request.lpstrTitle);
    RequireText(block, request.lpstrDefExt);
    RequireText(block, request.lpTemplateName);
    RequireList(block, request.lpstrFilter);
    if (request.lpstrFile) Require(IsInside(block, request.lpstrFile), "so is the file slot");
    Require(!request.lpstrCustomFilter && !request.lpstrFileTitle && !request.lpfnHook,
            "what isn't carried stays null");
}

void CheckFileList(const ExchangeBlock& block) {
    const std::wstring list = ReadFileList(block);
    const std::size_t room = RoomFrom(block.Request.FileListOffset);
    Require(list.size() <= room, "the list is no longer than its room");
    Require(list.empty() == (room == 0), "without a slot there is no list");
    const std::wstring_view closing(L"\0\0", 2);
    Require(list.size() < 2 || std::wstring_view(list).ends_with(closing), "the list is closed");
    if (list.size() == 1) Require(list[0] == L'\0', "a list of one character is closed as well");
}

void CheckDialogResult(const ExchangeBlock& block) {
    PickedFiles picked;
    picked.paths = {L"left from before"};
    ReadDialogResult(block, picked);
    std::size_t units = 0;
    for (const std::wstring& path : picked.paths) {
        Require(!path.empty() && path.find(L'\0') == path.npos, "a path is a text");
        units += path.size() + 1;
    }
    Require(units <= RoomFrom(block.Dialog.PathListOffset) + 1, "the paths fit their room");
    Require(picked.folder.size() <= RoomFrom(block.Dialog.FolderOffset), "the folder does too");
}

// Clean-up names come after any answer, change nothing before them and are read back.
void CheckCleanupNames(ExchangeBlock& block, const std::wstring& folder, const std::wstring& file) {
    const auto before = std::make_unique<ExchangeBlock>(block);
    WriteCleanupNames(block, folder.c_str(), file.c_str());
    Require(std::memcmp(&before->Request, &block.Request, sizeof block.Request) == 0,
            "the answer's own fields stay");
    const std::wstring readFolder = ReadText(block, block.CleanupFolderOffset);
    Require(std::wstring_view(folder.c_str()).starts_with(readFolder), "the folder is read back");
    const std::wstring readFile = ReadText(block, block.CleanupFileOffset);
    Require(std::wstring_view(file.c_str()).starts_with(readFile), "the file is read back");
    const auto end = static_cast<std::size_t>(std::max(0, block.CleanupFolderOffset));
    if (end < kTextAreaOffset || end >= kExchangeBlockSize) return;
    Require(std::memcmp(before->TextArea, block.TextArea, end - kTextAreaOffset) == 0,
            "what comes before the names stays");
}

bool IsCutOf(const std::wstring& read, const wchar_t* written) {
    return std::wstring_view(written).starts_with(read);
}

void CheckAnswersComeBack(const std::vector<std::wstring>& texts) {
    const Block block = std::make_unique<ExchangeBlock>();
    WriteLinkAnswer(*block, texts.front());
    Require(IsCutOf(ReadText(*block, block->Link.LinkOffset), texts.front().c_str()),
            "a link comes back");
    WriteDialogAnswer(*block, texts);
    PickedFiles picked;
    ReadDialogResult(*block, picked);
    std::vector<std::wstring> expected;
    for (const std::wstring& text : texts) {
        if (text.empty()) break; // an empty string closes the list
        expected.push_back(text);
    }
    Require(picked.paths == expected, "all paths that fit come back");
}

void CheckRequestComesBack(const std::vector<std::wstring>& texts, const std::wstring& filter) {
    const Block block = std::make_unique<ExchangeBlock>();
    OPENFILENAMEW request{};
    request.lpstrInitialDir = texts[0].c_str();
    request.lpstrTitle = texts[1].c_str();
    request.lpstrFilter = filter.c_str();
    request.nMaxFile = static_cast<DWORD>(filter.size());
    WriteOpenFileNameRequest(*block, request);
    const OPENFILENAMEW read = ReadOpenFileNameRequest(*block, nullptr);
    Require(read.nMaxFile == request.nMaxFile, "numbers come back");
    Require(texts[0] == read.lpstrInitialDir && texts[1] == read.lpstrTitle, "texts come back");
    Require(!read.lpstrDefExt && !read.lpTemplateName, "absent texts stay absent");
    const std::wstring_view list = ListAt(*block, block->Request.FilterOffset);
    Require(list.size() >= 2 &&
                std::wstring_view(filter).starts_with(list.substr(0, list.size() - 2)),
            "the filter comes back up to its first empty string");
    Require(read.lpstrFile && read.lpstrFile[0] == L'\0' && read.lpstrFile[1] == L'\0',
            "the file slot is an empty list");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::vector<std::wstring> texts = {input.Name(40), input.Name(40), input.Name(40)};
    const Block block = std::make_unique<ExchangeBlock>();
    FillHeader(*block, input);
    FillTexts(*block, input);
    CheckHostReader(*block);
    CheckFileList(*block);
    CheckDialogResult(*block);
    ReadText(*block, block->Link.LinkOffset);
    CheckCleanupNames(*block, texts[0], texts[1]);
    CheckAnswersComeBack(texts);
    CheckRequestComesBack(texts, FuzzInput(bytes, size).Rest() + std::wstring(2, L'\0'));
    return 0;
}
