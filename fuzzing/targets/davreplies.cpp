// The reply of a WebDAV server: whatever it sends, what is kept of it is within the limits, and a
// second XML reader finds the same elements in what is taken.
#include <pugixml.hpp>

#include <string_view>

#include "fuzzing/support/Require.h"
#include "services/providers/dav/DavReply.h"
#include "services/providers/dav/DavXml.h"

using namespace providers;

namespace {

// The number of elements; nothing when the text is bad.
std::optional<std::size_t> Elements(std::string_view text) {
    DavXml xml(text);
    std::size_t open = 0;
    std::size_t count = 0;
    for (;;) {
        const DavXmlEvent event = xml.Next();
        if (event == DavXmlEvent::Bad) return std::nullopt;
        if (event == DavXmlEvent::Finished) break;
        if (event == DavXmlEvent::Start) {
            ++count;
            Require(xml.Depth() == ++open && open <= 64, "elements are nested, within the limit");
        }
        if (event == DavXmlEvent::End) Require(xml.Depth() == open--, "each end follows its start");
        if (event == DavXmlEvent::Text) Require(open > 0, "texts are in elements");
    }
    Require(open == 0 && count > 0, "everything is closed at the end");
    return count;
}

struct Counter : pugi::xml_tree_walker {
    std::size_t elements = 0;
    bool for_each(pugi::xml_node& node) override {
        elements += node.type() == pugi::node_element;
        return true;
    }
};

void CompareWithAnotherReader(std::string_view text, std::size_t elements) {
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8))
        return;
    Counter counter;
    document.traverse(counter);
    Require(counter.elements == elements, "both readers find the same elements");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const auto elements = Elements(text);
    if (elements && text.find('\0') == std::string_view::npos)
        CompareWithAnotherReader(text, *elements);
    const auto entries = ReadMultistatus(text);
    Require(!entries || elements, "a reply that is taken is sound");
    if (entries) {
        Require(entries->size() <= kMostDavEntries, "no more entries than are taken");
        for (const DavEntry& entry : *entries) {
            Require(!entry.href.empty() && entry.href.size() <= size, "each entry has an address");
            Require(!entry.size || *entry.size <= INT64_MAX, "sizes are sizes of files");
        }
    }
    const auto url = TextOfElement(text, "url");
    Require(!url || (elements && url->size() <= size), "a text comes from a sound reply");
    return 0;
}
