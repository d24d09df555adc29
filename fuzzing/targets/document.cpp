// A text is indexed, walked and read whole.
#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "fuzzing/support/Soundness.h"

using namespace ObLibX;

namespace {

const ElementRecord& RecordOf(const XmlOffsetDocument& document, std::int32_t position) {
    return (*document.State().records)[static_cast<std::uint32_t>(position)];
}

void ReadElement(XmlOffsetDocument& document) {
    const std::int32_t at = document.CurrentPosition();
    const ElementRecord& record = RecordOf(document, at);
    Require(document.GetTagName().size() < record.StartTagLength(), "a name is in its tag");
    AttributeCursor attributes(at);
    for (std::int32_t index = 0;; ++index) {
        const std::wstring name = document.GetAttributeNameAt(index);
        Require(document.GetNextAttribute(attributes) == !name.empty() && attributes.Name() == name,
                "a cursor meets the attributes in their order");
        if (name.empty()) break;
        Require(attributes.Value().size() < record.StartTagLength(), "a value is in its tag");
        Require(index < static_cast<std::int32_t>(record.StartTagLength()),
                "a tag has fewer attributes than units");
        Require(document.GetAttribute(at, name.c_str()).size() < record.StartTagLength(),
                "a value is in its tag");
    }
    const std::size_t tags = record.StartTagLength() + record.EndTagLength();
    const std::size_t data = document.GetData(at).size();
    Require(data <= record.length - tags, "decoding never lengthens");
    Require(data == 0 || record.firstChild == 0, "an element with children has no data");
}

// Depth first, by the methods that clients have.
std::int32_t VisitAll(XmlOffsetDocument& document) {
    std::int32_t count = 0;
    document.ResetPosition(0, 0, 0);
    for (;;) {
        if (document.FindElement()) {
            ++count;
            ReadElement(document);
            Require(document.IntoElement(), "every element can be entered");
        } else if (!document.OutOfElement()) {
            return count;
        }
    }
}

void FindAllBelow(XmlOffsetDocument& document, std::int32_t expected) {
    std::int32_t count = 0;
    document.ResetPosition(0, 0, 0);
    while (document.FindElement(L"//*")) ++count;
    Require(count == expected, "a search below finds each element once");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::uint32_t kModes[] = {0, kDocIgnoreCase, kDocTrim, kDocCollapse};
    FuzzInput input(bytes, size);
    XmlOffsetDocument document;
    document.SetFlags(input.Pick(kModes));
    const bool good = document.SetText(std::wstring_view(input.Rest()));
    RequireSoundReport(document.Result());
    if (document.Text().empty()) {
        Require(!good && document.Result().empty(), "an empty text is false without a report");
        return 0;
    }
    RequireSoundRecords(document);
    Require(good == document.Result().empty(), "what isn't well formed has a report");
    const std::int32_t elements = document.State().nextFreePos - 1;
    Require(VisitAll(document) == elements, "a pass visits each element once");
    FindAllBelow(document, elements);
    const std::wstring text = document.Text();
    const std::wstring report = document.Result();
    Require(document.ParseText() == good && document.Text() == text, "indexing anew is the same");
    Require(document.State().nextFreePos - 1 == elements, "with as many elements");
    return 0;
}
