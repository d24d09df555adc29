#include "OBCore/exchange/ExchangeRequest.h"

#include <algorithm>

#include "OBCore/exchange/ExchangeText.h"
#include "ObLib/Src/Win32/StringList.h"

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using obcontract::kTextAreaOffset;
using obcontract::OpenFileNameFields;

namespace obcore {
namespace {

// Field of the block, field of the request: the plain texts in the order of the text area.
struct TextField {
    std::int32_t OpenFileNameFields::*offset;
    LPCWSTR OPENFILENAMEW::*text;
};

constexpr TextField kTextFields[] = {
    {&OpenFileNameFields::InitialDirOffset, &OPENFILENAMEW::lpstrInitialDir},
    {&OpenFileNameFields::TitleOffset, &OPENFILENAMEW::lpstrTitle},
    {&OpenFileNameFields::DefExtOffset, &OPENFILENAMEW::lpstrDefExt},
    {&OpenFileNameFields::TemplateNameOffset, &OPENFILENAMEW::lpTemplateName},
};

// Both records give these fields the same names.
template <class Target, class Source>
void CopyNumbers(Target& target, const Source& source) {
    target.nFileExtension = source.nFileExtension;
    target.nFileOffset = source.nFileOffset;
    target.nFilterIndex = source.nFilterIndex;
    target.nMaxCustFilter = source.nMaxCustFilter;
    target.nMaxFile = source.nMaxFile;
    target.nMaxFileTitle = source.nMaxFileTitle;
    target.Flags = source.Flags;
    target.FlagsEx = source.FlagsEx;
}

std::int32_t WriteTexts(ExchangeBlock& block, const OPENFILENAMEW& request) {
    std::int32_t cursor = kTextAreaOffset;
    for (const TextField& field : kTextFields) {
        const wchar_t* text = request.*field.text;
        if (!text) continue;
        block.Request.*field.offset = cursor;
        cursor = PutText(block, cursor, text);
    }
    return cursor;
}

// The copy ends with two NULs also where it was cut. An empty list is given two as well, although
// only one is read: a caller needn't have a second.
std::int32_t WriteFilter(ExchangeBlock& block, std::int32_t cursor, const wchar_t* filter) {
    constexpr std::size_t kClosing = 2; // wide characters
    const std::size_t length = ObLib::ListLength(filter);
    const std::size_t copied = std::min(std::max(length, kClosing), RoomFrom(cursor));
    wchar_t* place = PlaceAt(block, cursor);
    std::copy_n(filter, std::min(length, copied), place);
    const std::size_t closing = std::min(copied, kClosing);
    std::fill_n(place + (copied - closing), closing, L'\0');
    return cursor + static_cast<std::int32_t>(copied * sizeof(wchar_t));
}

// A text that doesn't end inside the block counts as absent, as the dialog would read on past it.
const wchar_t* RequestText(ExchangeBlock& block, std::int32_t offset) {
    const bool ends = TextAt(block, offset).size() < RoomFrom(offset);
    return ends ? PlaceAt(block, offset) : nullptr;
}

// As RequestText; a list must be closed inside the block.
const wchar_t* RequestList(ExchangeBlock& block, std::int32_t offset) {
    return ListAt(block, offset).ends_with(std::wstring_view(L"\0\0", 2)) ? PlaceAt(block, offset)
                                                                          : nullptr;
}

} // namespace

void WriteOpenFileNameRequest(ExchangeBlock& block, const OPENFILENAMEW& request) {
    block.Status = ExchangeStatus::OpenFileNameRequest;
    block.Request = {};
    CopyNumbers(block.Request, request);
    std::int32_t cursor = WriteTexts(block, request);
    if (request.lpstrFilter) {
        block.Request.FilterOffset = cursor;
        cursor = WriteFilter(block, cursor, request.lpstrFilter);
    }
    block.Request.FileListOffset = cursor;
    PutNuls(block, cursor, 2);
}

OPENFILENAMEW ReadOpenFileNameRequest(ExchangeBlock& block, HWND owner) {
    OPENFILENAMEW request = {};
    static_assert(sizeof(request) == 152);
    request.lStructSize = sizeof(request);
    request.hwndOwner = owner;
    CopyNumbers(request, block.Request);
    for (const TextField& field : kTextFields)
        request.*field.text = RequestText(block, block.Request.*field.offset);
    request.lpstrFilter = RequestList(block, block.Request.FilterOffset);
    // Output, so no text has to be there yet.
    request.lpstrFile = PlaceAt(block, block.Request.FileListOffset);
    return request;
}

} // namespace obcore
