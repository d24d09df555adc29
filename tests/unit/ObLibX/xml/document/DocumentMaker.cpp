#include "tests/unit/ObLibX/xml/document/DocumentMaker.h"

namespace {

constexpr const wchar_t* kNames[] = {L"a",   L"b",    L"item",      L"x:y", L"_z",
                                     L"Q-1", L"r.s2", L"\xE9t\xE9", L"A",   L"longer_name"};
constexpr const wchar_t* kSpaces[] = {L" ", L"\t", L"\r\n", L"  ", L"\n"};
// Data for text and for values. No reference to white space, which would look like
// white space to one reader and like text to the other.
constexpr const wchar_t* kPieces[] = {L"x",
                                      L"words of text",
                                      L" ",
                                      L"\r\n",
                                      L"&lt;",
                                      L"&gt;",
                                      L"&amp;",
                                      L"&quot;",
                                      L"&apos;",
                                      L"&#65;",
                                      L"&#x42;",
                                      L"&#xe9;",
                                      L"&#128512;",
                                      L"&#x10FFFF;",
                                      L"\xE4\xF6\xFC",
                                      L"\x4E2D",
                                      L"\xD83D\xDE00",
                                      L"&amp;lt;",
                                      L"1=2",
                                      L"]] >",
                                      L"/",
                                      L"?>",
                                      L"--",
                                      L"&#38;lt;",
                                      L"!",
                                      L"[@a]",
                                      L";"};
constexpr const wchar_t* kComments[] = {L"<!---->", L"<!-- <a b='c'> & ' \" -->", L"<!-- -> >-->",
                                        L"<!--\r\n]]>\r\n-->"};
constexpr const wchar_t* kInstructions[] = {L"<?p?>", L"<?p x='1' y=\"<a>\"?>",
                                            L"<?php echo '>' ?>"};
constexpr const wchar_t* kSections[] = {L"",   L"x", L"<a>&amp;</a>", L"]",        L"]]",
                                        L"]>", L" ", L"]] >",         L"<!-- -->", L"a]]b"};
constexpr const wchar_t* kProlog[] = {L"",
                                      L"<?xml version=\"1.0\" encoding='UTF-16'?>",
                                      L"<?xml version='1.0'?>\r\n",
                                      L"<!DOCTYPE a>",
                                      L"<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e \"v>\">]>\r\n",
                                      L"<?xml version='1.0'?><!DOCTYPE a SYSTEM \"a>b.dtd\">"};
constexpr std::size_t kDeepest = 12;

} // namespace

std::wstring DocumentMaker::Make() {
    text_.clear();
    text_ += Pick(kProlog);
    Misc();
    const std::uint32_t steps = Below(60);
    StartTag(Pick(kNames), steps == 0);
    for (std::uint32_t step = 0; step < steps && !open_.empty(); ++step) Content();
    while (!open_.empty()) {
        text_ += L"</" + open_.back() + (Below(8) == 0 ? L" >" : L">");
        open_.pop_back();
    }
    Misc();
    return text_;
}

// What a document may have before and after the root element.
void DocumentMaker::Misc() {
    if (Below(3) == 0) text_ += Pick(kComments);
    if (Below(3) == 0) text_ += Pick(kSpaces);
    if (Below(4) == 0) text_ += Pick(kInstructions);
}

void DocumentMaker::StartTag(const std::wstring& name, bool empty) {
    text_ += L"<" + name;
    Attributes();
    if (Below(6) == 0) text_ += Pick(kSpaces);
    text_ += empty ? L"/>" : L">";
    if (!empty) open_.push_back(name);
}

void DocumentMaker::Attributes() {
    const std::uint32_t count = Below(3) == 0 ? Below(6) : Below(2);
    for (std::uint32_t i = 0; i < count; ++i) {
        text_ += Pick(kSpaces);
        text_ += Pick(kNames);
        text_ += static_cast<wchar_t>(L'0' + i); // no name twice in a tag
        if (Below(8) == 0) text_ += Pick(kSpaces);
        text_ += L'=';
        if (Below(8) == 0) text_ += Pick(kSpaces);
        const wchar_t quote = Below(2) == 0 ? L'"' : L'\'';
        text_ += quote;
        Value(quote);
        text_ += quote;
    }
}

void DocumentMaker::Value(wchar_t quote) {
    for (std::uint32_t pieces = Below(4); pieces > 0; --pieces) CharacterData();
    if (Below(6) == 0) text_ += quote == L'"' ? L"it's > /" : L"say \"> /";
}

void DocumentMaker::Content() {
    switch (Below(10)) {
    case 0:
    case 1:
    case 2:
        if (open_.size() < kDeepest) return StartTag(Pick(kNames), false);
        [[fallthrough]];
    case 3:
        return StartTag(Pick(kNames), true);
    case 4:
        if (open_.size() == 1) return CharacterData();
        text_ += L"</" + open_.back() + L">";
        return open_.pop_back();
    case 5:
        return Cdata();
    case 6:
        text_ += Below(2) == 0 ? Pick(kComments) : Pick(kInstructions);
        return;
    default:
        return CharacterData();
    }
}

void DocumentMaker::CharacterData() { text_ += Pick(kPieces); }

void DocumentMaker::Cdata() {
    text_ += L"<![CDATA[";
    text_ += Pick(kSections);
    text_ += L"]]>";
}
