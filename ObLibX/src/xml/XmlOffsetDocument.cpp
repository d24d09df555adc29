#include "ObLibX/src/xml/XmlOffsetDocument.h"

#include "ObLibX/src/xml/document/Editing.h"
#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Navigation.h"
#include "ObLibX/src/xml/stream/StreamReading.h"
#include "ObLibX/src/xml/stream/StreamWriting.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kClientFlags = kDocIgnoreCase | kDocTrim | kDocCollapse;

// Closes a stream that is open and releases all records but record 0.
void PrepareStream(XmlOffsetDocument& document) {
    document.Close();
    document.SetText(nullptr);
}

} // namespace

XmlOffsetDocument::XmlOffsetDocument() {
    state_.records = std::make_unique<ElementRecordTable>();
    state_.savedPositions = std::make_unique<SavedPositionTable>();
    SetText(nullptr);
}

XmlOffsetDocument::~XmlOffsetDocument() {
    try {
        Close();
    } catch (...) {
        // Memory ran out: the last text isn't written, but the members close the file.
    }
}

bool XmlOffsetDocument::SetText(const wchar_t* text) {
    if (text != nullptr) {
        return SetText(std::wstring_view(text));
    }
    if (state_.Has(kDocStreams)) {
        return false;
    }
    ForgetElements(state_);
    std::wstring().swap(state_.text);
    state_.records->Clear();
    state_.result.clear();
    state_.docFlags &= ~kDocModified;
    return ParseText();
}

bool XmlOffsetDocument::SetText(std::wstring_view text) {
    if (state_.Has(kDocStreams) || text.size() > kLongestText) {
        return false;
    }
    ForgetElements(state_);
    state_.text.assign(text);
    state_.result.clear();
    state_.docFlags &= ~kDocModified;
    return ParseText();
}

bool XmlOffsetDocument::ParseText() {
    if (state_.Has(kDocStreams)) {
        return IsWellFormed(state_);
    }
    IndexElements(state_);
    return IsWellFormed(state_);
}

void XmlOffsetDocument::ResetPosition(std::int32_t parent, std::int32_t current,
                                      std::int32_t child) {
    SetPosition(state_, parent, current, child);
}

bool XmlOffsetDocument::OpenForReading(const wchar_t* path, const StreamReadOptions& options) {
    PrepareStream(*this);
    return OpenStreamForReading(state_, path, options);
}

bool XmlOffsetDocument::OpenForWriting(const wchar_t* path, const StreamWriteOptions& options) {
    PrepareStream(*this);
    return OpenStreamForWriting(state_, path, options);
}

bool XmlOffsetDocument::Close() { return CloseStream(state_); }

bool XmlOffsetDocument::FindElement(const wchar_t* path) {
    return state_.Has(kDocStreamRead) ? FindElementInStream(state_, path)
                                      : ObLibX::FindElement(state_, path);
}

bool XmlOffsetDocument::FindChildElement(const wchar_t* path) {
    return ObLibX::FindChildElement(state_, path);
}

bool XmlOffsetDocument::IntoElement() {
    if (state_.Has(kDocStreamRead)) return IntoElementInStream(state_);
    if (state_.Has(kDocStreamWrite)) return IntoElementInWriting(state_);
    return ObLibX::IntoElement(state_);
}

bool XmlOffsetDocument::OutOfElement() {
    if (state_.Has(kDocStreamRead)) return OutOfElementInStream(state_);
    if (state_.Has(kDocStreamWrite)) return OutOfElementInWriting(state_);
    return ObLibX::OutOfElement(state_);
}

std::wstring XmlOffsetDocument::GetTagName() const {
    return state_.Has(kDocStreamRead) ? GetTagNameInStream(state_) : ObLibX::GetTagName(state_);
}

std::wstring XmlOffsetDocument::GetAttribute(std::int32_t position, const wchar_t* name) const {
    return ObLibX::GetAttribute(state_, position, name);
}

std::wstring XmlOffsetDocument::GetAttributeNameAt(std::int32_t index) const {
    return ObLibX::GetAttributeNameAt(state_, index);
}

bool XmlOffsetDocument::GetNextAttribute(AttributeCursor& cursor) const {
    return ObLibX::GetNextAttribute(state_, cursor);
}

std::wstring XmlOffsetDocument::GetData(std::int32_t position) {
    return state_.Has(kDocStreamRead) ? GetDataInStream(state_, position)
                                      : ObLibX::GetData(state_, position);
}

bool XmlOffsetDocument::AddElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags) {
    return state_.Has(kDocStreamWrite) ? AddElementToStream(state_, name, value, flags)
                                       : ObLibX::AddElement(state_, name, value, flags);
}

bool XmlOffsetDocument::SetAttribute(std::int32_t position, const wchar_t* name,
                                     const wchar_t* value, std::uint32_t flags) {
    return state_.Has(kDocStreamWrite) ? SetAttributeInStream(state_, position, name, value, flags)
                                       : ObLibX::SetAttribute(state_, position, name, value, flags);
}

void XmlOffsetDocument::SetFlags(std::uint32_t flags) {
    state_.docFlags = (state_.docFlags & ~kClientFlags) | (flags & kClientFlags);
}

} // namespace ObLibX
