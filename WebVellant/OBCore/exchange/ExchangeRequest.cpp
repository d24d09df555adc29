#include "OBCore/exchange/ExchangeRequest.h"

#include <algorithm>
#include <cwchar>

#include "OBCore/exchange/ExchangeText.h"

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

void WriteNumbers(OpenFileNameFields& fields, const OPENFILENAMEW& request) {
    fields.nFileExtension = request.nFileExtension;
    fields.nFileOffset = request.nFileOffset;
    fields.nFilterIndex = request.nFilterIndex;
    fields.nMaxCustFilter = request.nMaxCustFilter;
    fields.nMaxFile = request.nMaxFile;
    fields.nMaxFileTitle = request.nMaxFileTitle;
    fields.Flags = request.Flags;
    fields.FlagsEx = request.FlagsEx;
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

// From the first string through the closing empty string.
std::size_t FilterLength(const wchar_t* filter) {
    const wchar_t* end = filter;
    while (*end != L'\0') end += std::wcslen(end) + 1;
    return static_cast<std::size_t>(end - filter) + 1;
}

// The copy ends with two NULs also where it was cut. An empty list is given two as well, and only
// its one is read: no caller need have a second.
std::int32_t WriteFilter(ExchangeBlock& block, std::int32_t cursor, const wchar_t* filter) {
    constexpr std::size_t kClosing = 2; // wide characters
    const std::size_t length = FilterLength(filter);
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

void ReadNumbers(const OpenFileNameFields& fields, OPENFILENAMEW& request) {
    request.nFileExtension = fields.nFileExtension;
    request.nFileOffset = fields.nFileOffset;
    request.nFilterIndex = fields.nFilterIndex;
    request.nMaxCustFilter = fields.nMaxCustFilter;
    request.nMaxFile = fields.nMaxFile;
    request.nMaxFileTitle = fields.nMaxFileTitle;
    request.Flags = fields.Flags;
    request.FlagsEx = fields.FlagsEx;
}

} // namespace

void WriteOpenFileNameRequest(ExchangeBlock& block, const OPENFILENAMEW& request) {
    block.Status = ExchangeStatus::OpenFileNameRequest;
    block.Request = {};
    WriteNumbers(block.Request, request);
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
    ReadNumbers(block.Request, request);
    for (const TextField& field : kTextFields)
        request.*field.text = RequestText(block, block.Request.*field.offset);
    request.lpstrFilter = RequestList(block, block.Request.FilterOffset);
    // Output, so nothing has to stand there yet.
    request.lpstrFile = PlaceAt(block, block.Request.FileListOffset);
    return request;
}

} // namespace obcore
