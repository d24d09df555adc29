// A file that passes by in small blocks answers as one that comes in a single block does, whatever
// is in it and whatever is asked; a well-formed one as the same document in memory.
#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/document/XmlPath.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/MemoryFile.h"
#include "fuzzing/support/Require.h"
#include "fuzzing/support/Soundness.h"

using namespace ObLibX;

namespace {

constexpr std::uint32_t kModes[] = {0, kDocIgnoreCase, kDocTrim, kDocCollapse};
constexpr const wchar_t* kPaths[] = {nullptr, L"a", L"*",     L"a/b",    L"/r/a",        L"//a",
                                     L"//c",  L"b", L"a[2]",  L"*[2]",   L"r/a/@x",      L"/*/*/*",
                                     L"//*",  L"r", L"a[@x]", L"/r/b/c", L"//a[@x='1']", L"a[b]"};
constexpr int kOneBlock = 1 << 20;
constexpr int kMostCalls = 64;
constexpr std::size_t kLongestPath = 48;

enum class Form { Utf8, Utf8Marked, Utf16, Utf16BigEndian };

std::string BytesOf(const std::wstring& text, Form form) {
    switch (form) {
    case Form::Utf8:
        return Utf8Of(text);
    case Form::Utf8Marked:
        return "\xEF\xBB\xBF" + Utf8Of(text);
    case Form::Utf16:
        return "\xFF\xFE" + Utf16Of(text, false);
    default:
        return "\xFE\xFF" + Utf16Of(text, true);
    }
}

bool IsWide(Form form) { return form == Form::Utf16 || form == Form::Utf16BigEndian; }

const MemoryFile& TheFile() {
    static const MemoryFile file;
    return file;
}

void Open(XmlOffsetDocument& document, std::uint32_t flags, std::int32_t blockSize) {
    document.SetFlags(flags);
    StreamReadOptions options;
    options.encoding = L"UTF-8";
    options.blockSize = blockSize;
    Require(document.OpenForReading(TheFile().Path(), options), "a file in memory opens");
}

void RequirePositionInText(const XmlOffsetDocument& document) {
    const DocumentState& state = document.State();
    Require(state.nodeOffset >= 0 && state.nodeLength >= 0, "a node is in the text");
    if (state.nodeLength != 0 && state.nodeType != 0) {
        Require(static_cast<std::size_t>(state.nodeOffset) +
                        static_cast<std::size_t>(state.nodeLength) <=
                    state.text.size(),
                "and doesn't reach out of it");
    }
    if (state.currentPos == 0) return;
    const ElementRecord& record = (*state.records)[state.currentPos];
    Require(std::size_t{record.start} + record.StartTagLength() <= state.text.size(),
            "a tag is in the text");
}

// The same call on both; its result in a form that doesn't depend on blocks.
std::wstring Call(XmlOffsetDocument& document, std::uint32_t choice) {
    const auto answer = [](bool good) { return std::wstring(good ? L"yes" : L"no"); };
    const std::int32_t at = document.CurrentPosition();
    std::wstring result;
    switch (choice % 8) {
    case 0:
    case 1:
        result = answer(document.FindElement());
        break;
    case 2:
        result = answer(document.FindElement(kPaths[choice / 8 % std::size(kPaths)]));
        break;
    case 3:
        result = answer(document.IntoElement());
        break;
    case 4:
        result = answer(document.OutOfElement());
        break;
    case 5:
        result = document.GetData(at);
        break;
    case 6:
        result = document.GetAttribute(at, L"x") + L"|" + document.GetAttributeNameAt(0);
        break;
    default:
        result = answer(document.FindChildElement());
        break;
    }
    RequirePositionInText(document);
    return result + L"|" + document.GetTagName();
}

// Everything that is left, depth first.
std::wstring ReadAll(XmlOffsetDocument& document, std::size_t units) {
    std::wstring all;
    // A search without a match continues after an error, so that the text bounds the number of
    // calls.
    for (std::size_t calls = 0; calls < 3 * units + 16; ++calls) {
        if (document.FindElement()) {
            const std::int32_t at = document.CurrentPosition();
            all += L"(" + document.GetTagName();
            for (std::int32_t i = 0; !document.GetAttributeNameAt(i).empty(); ++i) {
                const std::wstring name = document.GetAttributeNameAt(i);
                all += L" " + name + L"=" + document.GetAttribute(at, name.c_str());
            }
            all += L">" + document.GetData(at);
            RequirePositionInText(document);
            document.IntoElement();
        } else if (!document.OutOfElement()) {
            break;
        } else {
            all += L")";
        }
    }
    return all;
}

// The contents of the elements, without the ends of those that can't be entered in a stream.
std::wstring WithoutEnds(std::wstring all) {
    std::erase(all, L')');
    return all;
}

void CompareBlocks(FuzzInput& calls, int count, std::uint32_t flags, std::int32_t blockSize,
                   std::size_t units) {
    XmlOffsetDocument small;
    XmlOffsetDocument large;
    Open(small, flags, blockSize);
    Open(large, flags, kOneBlock);
    for (int i = 0; i < count; ++i) {
        const std::uint32_t choice = calls.Byte();
        Require(Call(small, choice) == Call(large, choice), "a call answers alike in any block");
        Require(small.CurrentPosition() == large.CurrentPosition(), "and the position is the same");
        Require(small.State().nodeType == large.State().nodeType, "on a node of the same type");
    }
    Require(ReadAll(small, units) == ReadAll(large, units), "what is left is read alike");
    Require((*small.State().records)[0].Has(kRecordBad) ==
                (*large.State().records)[0].Has(kRecordBad),
            "a bad document is bad in any block");
    Require(small.Result().empty() == large.Result().empty(), "and is reported");
    RequireSoundReport(small.Result());
    Require(small.Close() && large.Close(), "a file that was read closes");
}

// What a path from the start finds first, which needs no way back. A stream has no child tests.
void CompareFirstMatch(XmlOffsetDocument& memory, const std::wstring& path, std::uint32_t flags,
                       std::int32_t blockSize) {
    if (XmlPath(path.c_str()).HasChildTest()) return;
    XmlOffsetDocument stream;
    Open(stream, flags, blockSize);
    const bool found = memory.FindElement(path.c_str());
    Require(stream.FindElement(path.c_str()) == found, "a path matches in a stream as in memory");
    if (found) {
        const std::int32_t at = stream.CurrentPosition();
        Require(stream.GetTagName() == memory.GetTagName(), "an element of that name");
        Require(stream.GetAttributeNameAt(0) == memory.GetAttributeNameAt(0), "and attributes");
        Require(stream.GetData(at) == memory.GetData(memory.CurrentPosition()), "and data");
    }
    memory.ResetPosition(0, 0, 0);
}

void CompareWithMemory(const std::wstring& text, const std::wstring& path, std::uint32_t flags,
                       std::int32_t blockSize) {
    XmlOffsetDocument memory;
    memory.SetFlags(flags);
    if (!memory.SetText(std::wstring_view(text))) return;
    CompareFirstMatch(memory, path, flags, blockSize);
    XmlOffsetDocument stream;
    Open(stream, flags, blockSize);
    Require(WithoutEnds(ReadAll(stream, text.size())) == WithoutEnds(ReadAll(memory, text.size())),
            "a stream reads what memory reads");
    Require(stream.Result().empty(), "a well-formed file has no report");
    stream.Close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::uint32_t choice = input.Byte();
    const auto form = static_cast<Form>(choice % 4);
    const std::uint32_t flags = kModes[choice / 4 % std::size(kModes)];
    const std::int32_t blockSize = 1 + input.Byte();
    const int count = static_cast<int>(input.Below(kMostCalls));
    FuzzInput calls(input.Bytes(), std::min<std::size_t>(input.Left(), count));
    for (int i = 0; i < count; ++i) input.Byte();
    const std::wstring path = input.Name(kLongestPath);
    std::wstring text = WithoutNulls(input.Rest());
    if (!IsWide(form)) text = WithWholePairs(text);
    TheFile().Write(BytesOf(text, form));
    CompareBlocks(calls, count, flags, blockSize, text.size());
    CompareWithMemory(text, path, flags, blockSize);
    return 0;
}
