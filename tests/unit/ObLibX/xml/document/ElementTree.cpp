#include "tests/unit/ObLibX/xml/document/ElementTree.h"

#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/Navigation.h"

using namespace ObLibX;

std::ostream& operator<<(std::ostream& out, const TreeElement& element) {
    return out << "depth " << element.depth << " start " << element.start << " length "
               << element.length << " tags " << (element.tagLengths & 0x3FFFFF) << "+"
               << (element.tagLengths >> 22) << " flags " << std::hex << element.flagsAndLevel
               << std::dec;
}

std::vector<TreeElement> TreeOf(const DocumentState& document) {
    std::vector<TreeElement> tree;
    const ElementRecordTable& records = *document.records;
    int depth = 0;
    std::int32_t last = 0;
    for (std::int32_t at = NextInDocumentOrder(document, 0); at != 0;
         at = NextInDocumentOrder(document, at)) {
        while (records[at].parent != static_cast<std::uint32_t>(last) && depth > 0) {
            last = static_cast<std::int32_t>(records[last].parent);
            --depth;
        }
        last = at;
        const ElementRecord& record = records[at];
        tree.push_back(
            {++depth, record.start, record.length, record.tagLengths, record.flagsAndLevel});
    }
    return tree;
}

namespace {

void ExpectSoundChildren(const ElementRecordTable& records, std::uint32_t parent) {
    std::uint32_t last = 0;
    std::uint32_t end = records[parent].start + records[parent].StartTagLength();
    const std::uint32_t first = records[parent].firstChild;
    for (std::uint32_t at = first; at != 0; at = records[at].next) {
        ASSERT_EQ(records[at].parent, parent);
        ASSERT_EQ(records[at].Has(kRecordFirstSibling), at == first) << "record " << at;
        ASSERT_GE(records[at].start, end);
        if (at != first) {
            ASSERT_EQ(records[at].prev, last);
        }
        end = records[at].start + records[at].length;
        last = at;
    }
    ASSERT_LE(end, records[parent].start + records[parent].length);
    if (first != 0) {
        ASSERT_EQ(records[first].prev, last);
    }
}

} // namespace

void ExpectSoundLinks(const DocumentState& document) {
    const ElementRecordTable& records = *document.records;
    ASSERT_EQ(records[0].length, document.text.size());
    ExpectSoundChildren(records, 0);
    for (std::int32_t at = NextInDocumentOrder(document, 0); at != 0;
         at = NextInDocumentOrder(document, at)) {
        ExpectSoundChildren(records, static_cast<std::uint32_t>(at));
        if (testing::Test::HasFatalFailure()) return;
    }
}

void ExpectAsIndexedAnew(const XmlOffsetDocument& document) {
    ExpectSoundLinks(document.State());
    XmlOffsetDocument anew;
    anew.SetFlags(document.Flags());
    anew.SetText(std::wstring_view(document.Text()));
    const std::vector<TreeElement> shifted = TreeOf(document.State());
    const std::vector<TreeElement> parsed = TreeOf(anew.State());
    ASSERT_EQ(shifted.size(), parsed.size()) << Narrow(document.Text());
    for (std::size_t i = 0; i < parsed.size(); ++i) {
        ASSERT_EQ(shifted[i], parsed[i]) << "element " << i << " of " << Narrow(document.Text());
    }
}

void PutOnNode(XmlOffsetDocument& document, std::int32_t type, const wchar_t* node) {
    const std::size_t at = document.Text().find(node);
    ASSERT_NE(at, std::wstring::npos);
    document.State().nodeType = type;
    document.State().nodeOffset = static_cast<std::int32_t>(at);
    document.State().nodeLength = static_cast<std::int32_t>(std::wstring_view(node).size());
}

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t unit : text) narrow.push_back(unit < 128 ? static_cast<char>(unit) : '?');
    return narrow;
}
