// A text's own declaration of its encoding is found, and only there.
#include <algorithm>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

bool IsPlainName(const std::wstring& name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), [](wchar_t unit) {
        return EndsName(unit) || unit == L'&' || unit == L'\0';
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::wstring name = input.Name(input.Below(64));
    const std::wstring text = input.Rest();
    const std::wstring found = GetDeclaredEncoding(text);
    Require(text.find(found) != std::wstring::npos, "the text contains what is declared");
    Require(found.empty() || text.find(L'<') != std::wstring::npos, "and in a tag");
    if (!IsPlainName(name)) return 0;
    const std::wstring start = L"<?xml version=\"1.0\" encoding=";
    Require(GetDeclaredEncoding(start + L"\"" + name + L"\"?>" + text) == name,
            "a quoted declaration is found whatever follows");
    Require(GetDeclaredEncoding(start + L"'" + name + L"' standalone='yes'?>" + text) == name,
            "with either quote");
    Require(GetDeclaredEncoding(L"<html><head><meta http-equiv=Content-Type content=\"text/html; "
                                L"charset=" +
                                name + L"\">" + text) == name,
            "and that of a page");
    return 0;
}
