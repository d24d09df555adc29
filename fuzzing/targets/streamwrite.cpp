// The same calls give the same text in a file that is written forward and in memory.
#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/MemoryFile.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

constexpr std::size_t kLongestName = 8;
constexpr std::size_t kLongestValue = 24;

struct Call {
    std::uint32_t what;
    std::uint32_t flags = 0;
    std::wstring name;
    std::wstring value;
};

std::wstring SomeValue(FuzzInput& input) {
    constexpr const wchar_t* kValues[] = {L"", L"v", L"a<b&c>d", L"]]>", L" \r\n ", L"&lt;x"};
    const std::uint32_t choice = input.Byte();
    return WithWholePairs(choice < 128 ? kValues[choice % 6] : input.Name(kLongestValue));
}

Call NextCall(FuzzInput& input) {
    Call call{input.Below(8)};
    if (call.what == 5 || call.what == 6) return call;
    call.flags = input.Byte() & 0x1F;
    call.name = input.Flag() ? WithWholePairs(input.Name(kLongestName)) : L"a";
    call.value = SomeValue(input);
    return call;
}

bool Act(XmlOffsetDocument& document, const Call& call) {
    switch (call.what) {
    case 5:
        return document.IntoElement();
    case 6:
        return document.OutOfElement();
    case 7:
        return document.SetAttribute(document.CurrentPosition(), call.name.c_str(),
                                     call.value.c_str(), call.flags);
    default:
        return document.AddElement(call.name.c_str(), call.value.c_str(), call.flags);
    }
}

struct Form {
    const wchar_t* encoding;
    bool mark;
    bool wide;
    bool bigEndian;
};
constexpr Form kForms[] = {{L"UTF-8", false, false, false},
                           {L"UTF-8", true, false, false},
                           {L"UTF-16", true, true, false},
                           {L"UTF-16BE", true, true, true}};

std::string BytesOf(const std::wstring& text, const Form& form) {
    const std::wstring marked = (form.mark ? L"\xFEFF" : L"") + text;
    return form.wide ? Utf16Of(marked, form.bigEndian) : Utf8Of(marked);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const MemoryFile file;
    FuzzInput input(bytes, size);
    const Form& form = input.Pick(kForms);
    StreamWriteOptions options;
    options.encoding = form.encoding;
    options.byteOrderMark = form.mark;
    options.declaration = false;
    options.blockSize = 1 + input.Byte();
    XmlOffsetDocument stream;
    Require(stream.OpenForWriting(file.Path(), options), "a file in memory opens");
    XmlOffsetDocument memory;
    while (!input.IsUsedUp()) {
        const Call call = NextCall(input);
        // What needs a way back is refused by a stream only.
        if (!Act(stream, call)) continue;
        Require(Act(memory, call), "what a stream takes memory takes");
    }
    Require(stream.Close(), "a file in memory closes");
    Require(file.Read() == BytesOf(memory.Text(), form), "both give the same text");
    return 0;
}
