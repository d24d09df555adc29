#include "ObLibX/src/xml/document/AttributeCursor.h"

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/scan/AttributeIterator.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

// The offset at which the reading continues; false when the tag has become too short for it. The
// tag's name is read for the first attribute only, as it may be long.
bool IsInTag(const DocumentState& document, std::int32_t position, const TagBounds& tag,
             std::size_t read, std::size_t& at) {
    at = read == 0 ? TagAt(document, position)->nameEnd : tag.start + read;
    return at <= tag.end;
}

} // namespace

void AttributeCursor::Begin(std::int32_t position) {
    position_ = position;
    read_ = 0;
    name_.clear();
    value_.clear();
}

bool GetNextAttribute(const DocumentState& document, AttributeCursor& cursor) {
    cursor.name_.clear();
    cursor.value_.clear();
    std::size_t at = 0;
    const std::optional<TagBounds> tag = TagBoundsAt(document, cursor.position_);
    if (!tag || !IsInTag(document, cursor.position_, *tag, cursor.read_, at)) return false;
    const wchar_t* const text = document.text.data();
    AttributeIterator attributes(text, text + at, text + tag->end);
    UnitSpan name;
    UnitSpan value;
    const bool found = attributes.Next(name, value);
    if (found) {
        cursor.name_.assign(name.start, static_cast<std::size_t>(name.end - name.start));
        DecodeText({value.start, static_cast<std::size_t>(value.end - value.start)},
                   document.docFlags, cursor.value_);
    }
    cursor.read_ = static_cast<std::size_t>(attributes.At() - text) - tag->start;
    return found;
}

} // namespace ObLibX
