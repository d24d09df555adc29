#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"

#include <gtest/gtest.h>

using namespace ObLibX;

std::wstring CurrentElement(XmlOffsetDocument& document) {
    std::wstring element = document.GetTagName();
    for (std::int32_t i = 0;; ++i) {
        const std::wstring name = document.GetAttributeNameAt(i);
        if (name.empty()) break;
        element +=
            L' ' + name + L'=' + document.GetAttribute(document.CurrentPosition(), name.c_str());
    }
    return element + L": " + document.GetData(document.CurrentPosition());
}

std::wstring ElementsInOrder(XmlOffsetDocument& document) {
    std::wstring out;
    for (std::size_t depth = 0;;) {
        if (document.FindElement()) {
            out.append(depth, L' ').append(CurrentElement(document)).append(L"\n");
            if (document.IntoElement()) ++depth;
        } else if (document.State().nodeLength == 0) {
            if (depth-- == 0 || !document.OutOfElement()) return out;
        }
    }
}

std::wstring ElementsOfFile(const wchar_t* path, const StreamReadOptions& options,
                            std::uint32_t flags) {
    XmlOffsetDocument document;
    document.SetFlags(flags);
    if (!document.OpenForReading(path, options)) return L"not opened: " + document.Result();
    return ElementsInOrder(document);
}

std::wstring ElementsOfText(std::wstring_view text, std::uint32_t flags) {
    XmlOffsetDocument document;
    document.SetFlags(flags);
    document.SetText(text);
    return ElementsInOrder(document);
}

void ExpectWithinText(const XmlOffsetDocument& document) {
    const DocumentState& state = document.State();
    const std::uint64_t size = state.text.size();
    for (std::int32_t at = 1; at < state.nextFreePos; ++at) {
        const ElementRecord& record = (*state.records)[static_cast<std::uint32_t>(at)];
        ASSERT_LE(std::uint64_t{record.start} + record.StartTagLength(), size) << "record " << at;
        ASSERT_LE(std::uint64_t{record.start} + record.length, size) << "record " << at;
    }
    ASSERT_GE(state.nodeOffset, 0);
    ASSERT_GE(state.nodeLength, 0);
    ASSERT_LE(static_cast<std::uint64_t>(state.nodeOffset) +
                  static_cast<std::uint64_t>(state.nodeLength),
              size);
}

bool ResultHas(const XmlOffsetDocument& document, const wchar_t* words) {
    return document.Result().find(words) != std::wstring::npos;
}
