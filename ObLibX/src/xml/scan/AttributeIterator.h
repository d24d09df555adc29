// Reads the attributes of a tag one after the other, in place.
#pragma once

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/QuickScan.h"

namespace ObLibX {

// A token as a part of the text.
struct UnitSpan {
    const wchar_t* start = nullptr;
    const wchar_t* end = nullptr;
    bool quoted = false; // between quotes that aren't part of it
};

inline const wchar_t* SkipSpace(const wchar_t* at, const wchar_t* end) {
    while (at != end && IsXmlSpace(*at)) {
        ++at;
    }
    return at;
}

// Reads the attributes of a tag, or single tokens of it, from `at` up to `end`. `begin` is where
// the text begins that contains both. Allocates nothing.
class AttributeIterator {
public:
    AttributeIterator(const wchar_t* begin, const wchar_t* at, const wchar_t* end)
        : begin_(begin), at_(at), end_(end) {}

    const wchar_t* At() const { return at_; }

    // The next attribute: its name, and its value, which is the name when there is no '='. What is
    // no attribute, such as a value without a name, is skipped. False at the '>' of the tag and at
    // the end.
    bool Next(UnitSpan& name, UnitSpan& value) {
        for (;;) {
            name = Name();
            if (name.start != name.end) {
                break;
            }
            if (at_ == end_ || *at_ == L'>') {
                return false;
            }
            if (*at_ == L'=') {
                Value();
            } else {
                ++at_;
            }
        }
        at_ = SkipSpace(at_, end_);
        value = at_ != end_ && *at_ == L'=' ? Value() : name;
        return true;
    }

    UnitSpan Name() {
        const wchar_t* const start = SkipSpace(at_, end_);
        at_ = FindUnit(start, end_, AttributeNameEnd{});
        return {start, at_};
    }

    // The value after '='. The place is on that '=' or after it.
    UnitSpan Value() {
        SkipEquals();
        if (at_ != end_ && (*at_ == L'"' || *at_ == L'\'')) {
            return Quoted();
        }
        const wchar_t* const start = at_;
        at_ = FindUnit(start, end_, UnquotedValueEnd{});
        return {start, at_ - (start != at_ && SlashIsTheTags() ? 1 : 0)};
    }

private:
    // The '=' in front of a value and the white space around it. A '=' that follows another
    // directly belongs to the value.
    void SkipEquals() {
        while (at_ != end_ &&
               (IsXmlSpace(*at_) || (*at_ == L'=' && (at_ == begin_ || at_[-1] != L'=')))) {
            ++at_;
        }
    }

    UnitSpan Quoted() {
        const wchar_t* const start = at_ + 1;
        const wchar_t* const quote = FindUnit(start, end_, EqualTo{*at_});
        at_ = quote == end_ ? quote : quote + 1;
        return {start, quote, true};
    }

    // At the end of an unquoted value: the slash of "x />" and of "x"/>" is the tag's, that of
    // "x/>" the value's, as for the tag itself.
    bool SlashIsTheTags() const {
        return at_ != end_ && *at_ == L'>' && at_[-1] == L'/' && at_ - begin_ >= 2 &&
               (IsXmlSpace(at_[-2]) || at_[-2] == L'"' || at_[-2] == L'\'');
    }

    const wchar_t* begin_;
    const wchar_t* at_;
    const wchar_t* end_;
};

} // namespace ObLibX
