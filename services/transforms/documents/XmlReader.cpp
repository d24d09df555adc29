#include "services/transforms/documents/XmlReader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <system_error>

#include "ObLib/Src/AsciiLetters.h"

namespace transforms::documents {
namespace {

constexpr std::string_view kBom = "\xEF\xBB\xBF";
constexpr std::size_t kMostBindings = 512; // documents have some dozens

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool EndsName(char c) {
    constexpr std::string_view kEnds = " \t\r\n/>=<\"'&";
    return kEnds.find(c) != kEnds.npos || c == '\0';
}

std::string_view LocalName(std::string_view qualified) {
    const auto colon = qualified.find(':');
    return colon == qualified.npos ? qualified : qualified.substr(colon + 1);
}

// The prefix by which an attribute binds a namespace, empty for the default one; nothing for every
// other attribute.
std::optional<std::string_view> BoundPrefix(std::string_view qualified) {
    constexpr std::string_view kBinding = "xmlns:";
    if (qualified == "xmlns") return std::string_view();
    if (qualified.starts_with(kBinding)) return qualified.substr(kBinding.size());
    return {};
}

// Characters that XML can't contain aren't written as a number either.
bool IsXmlCharacter(std::uint32_t code) {
    if (code < 0x20) return code == 9 || code == 10 || code == 13;
    return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

std::string InUtf8(std::uint32_t code) {
    const auto more = [&](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), more(0)};
    if (code < 0x10000) return {static_cast<char>(0xE0 | code >> 12), more(6), more(0)};
    return {static_cast<char>(0xF0 | code >> 18), more(12), more(6), more(0)};
}

// A reference from its "&" to its ";". What is longer is read as text, so that many "&" without an
// end cost no more than their number.
constexpr std::size_t kLongestReference = 12;

// What a reference is for, by what is between "&" and ";"; empty when it isn't known.
std::string MeaningOf(std::string_view name) {
    struct Reference {
        std::string_view name;
        char c;
    };
    constexpr Reference kReferences[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    const auto row = std::ranges::find(kReferences, name, &Reference::name);
    if (row != std::end(kReferences)) return {row->c};
    if (!name.starts_with("#")) return {};
    const bool isHex = name.starts_with("#x");
    const auto digits = name.substr(isHex ? 2 : 1);
    const char* end = digits.data() + digits.size();
    std::uint32_t code = 0;
    const auto read = std::from_chars(digits.data(), end, code, isHex ? 16 : 10);
    const bool isWhole = read.ec == std::errc() && read.ptr == end;
    return isWhole && IsXmlCharacter(code) ? InUtf8(code) : std::string();
}

} // namespace

XmlReader::XmlReader(std::string_view text) : text_(text) {
    if (text_.starts_with(kBom)) at_ = kBom.size();
}

bool XmlReader::Fail() {
    failed_ = true;
    return false;
}

bool XmlReader::Next() {
    if (failed_) return false;
    if (isEmptyElement_) {
        isEmptyElement_ = false;
        event_ = XmlEvent::End;
        bindings_.resize(current_.bindings);
        return true;
    }
    if (pushes_) open_.push_back(current_);
    pushes_ = false;
    for (;;) {
        const auto tag = text_.find('<', at_);
        const auto between = text_.substr(at_, tag == text_.npos ? tag : tag - at_);
        if (open_.empty() && !std::ranges::all_of(between, IsSpace)) return Fail();
        if (tag == text_.npos) {
            at_ = text_.size();
            return open_.empty() && hadRoot_ ? false : Fail();
        }
        at_ = tag;
        if (IsAt("<!--")) {
            if (!SkipPast("-->")) return Fail();
        } else if (IsAt("<?")) {
            if (!SkipPast("?>")) return Fail();
        } else if (IsAt("<![CDATA[")) {
            if (open_.empty() || !SkipPast("]]>")) return Fail();
        } else if (IsAt("<!")) {
            if (!SkipDeclaration()) return Fail();
        } else {
            return (IsAt("</") ? ReadEnd() : ReadStart()) || Fail();
        }
    }
}

bool XmlReader::SkipPast(std::string_view end) {
    const auto found = text_.find(end, at_ + 2);
    if (found == text_.npos) return false;
    at_ = found + end.size();
    return true;
}

// A document type without texts of its own, which old manifests name, before the root.
bool XmlReader::SkipDeclaration() {
    if (hadRoot_ || !IsAt("<!DOCTYPE")) return false;
    const auto end = text_.find('>', at_);
    if (end == text_.npos || text_.substr(at_, end - at_).find('[') != text_.npos) return false;
    at_ = end + 1;
    return true;
}

std::size_t XmlReader::SkipSpace() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && IsSpace(text_[at_])) ++at_;
    return at_ - begin;
}

std::string_view XmlReader::ReadName() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && !EndsName(text_[at_])) ++at_;
    return text_.substr(begin, at_ - begin);
}

bool XmlReader::ReadStart() {
    if (open_.empty() && hadRoot_) return false;
    if (open_.size() >= kDeepest) return false;
    hadRoot_ = true;
    current_ = {};
    current_.begin = at_++;
    current_.bindings = bindings_.size();
    current_.qualified = ReadName();
    if (current_.qualified.empty() || !ReadAttributes()) return false;
    Bind();
    if (bindings_.size() > kMostBindings) return false;
    current_.ns = Resolve(current_.qualified, false);
    current_.name = LocalName(current_.qualified);
    current_.tagEnd = at_;
    event_ = XmlEvent::Start;
    pushes_ = !isEmptyElement_;
    return true;
}

// To the end of the tag.
bool XmlReader::ReadAttributes() {
    attributes_.clear();
    for (;;) {
        const std::size_t begin = at_;
        const bool isParted = SkipSpace() != 0;
        if (IsAt(">")) {
            ++at_;
            return true;
        }
        if (IsAt("/>")) {
            at_ += 2;
            isEmptyElement_ = true;
            return true;
        }
        if (!isParted || !ReadAttribute(begin)) return false;
    }
}

bool XmlReader::ReadAttribute(std::size_t begin) {
    XmlAttribute attribute;
    attribute.name = ReadName(); // with its prefix until the tag's bindings are known
    SkipSpace();
    if (attribute.name.empty() || !IsAt("=")) return false;
    ++at_;
    SkipSpace();
    if (!IsAt("\"") && !IsAt("'")) return false;
    const auto end = text_.find(text_[at_], at_ + 1);
    if (end == text_.npos) return false;
    attribute.value = text_.substr(at_ + 1, end - at_ - 1);
    if (attribute.value.find('<') != text_.npos) return false;
    at_ = end + 1;
    attribute.whole = text_.substr(begin, at_ - begin);
    attributes_.push_back(attribute);
    return true;
}

void XmlReader::Bind() {
    for (const XmlAttribute& attribute : attributes_) {
        const auto prefix = BoundPrefix(attribute.name);
        if (prefix) bindings_.push_back({*prefix, NsOf(attribute.value)});
    }
    for (XmlAttribute& attribute : attributes_) {
        attribute.ns = Resolve(attribute.name, true);
        attribute.name = LocalName(attribute.name);
    }
}

// An attribute without a prefix has no namespace.
Ns XmlReader::Resolve(std::string_view qualified, bool isAttribute) const {
    const auto colon = qualified.find(':');
    if (colon == qualified.npos && isAttribute) return Ns::None;
    const auto prefix = colon == qualified.npos ? std::string_view() : qualified.substr(0, colon);
    const auto found = std::find_if(bindings_.rbegin(), bindings_.rend(),
                                    [&](const Binding& one) { return one.prefix == prefix; });
    if (found != bindings_.rend()) return found->ns;
    return prefix.empty() ? Ns::None : Ns::Other;
}

bool XmlReader::ReadEnd() {
    if (open_.empty()) return false;
    at_ += 2;
    if (ReadName() != open_.back().qualified) return false;
    SkipSpace();
    if (!IsAt(">")) return false;
    ++at_;
    current_ = open_.back();
    open_.pop_back();
    bindings_.resize(current_.bindings);
    attributes_.clear();
    event_ = XmlEvent::End;
    return true;
}

std::string_view XmlReader::Value(Ns ns, std::string_view name) const {
    for (const XmlAttribute& attribute : attributes_) {
        if (attribute.ns == ns && attribute.name == name) return attribute.value;
    }
    return {};
}

bool IsUtf8Xml(std::string_view text) {
    if (text.starts_with(kBom)) text.remove_prefix(kBom.size());
    if (text.find('\0') != text.npos) return false;
    if (!text.starts_with("<?xml")) return true;
    const auto declaration = text.substr(0, text.find("?>"));
    const auto encoding = declaration.find("encoding");
    if (encoding == declaration.npos) return true;
    auto name = declaration.substr(encoding);
    const auto quote = name.find_first_of("\"'");
    if (quote == name.npos) return false;
    name = name.substr(quote + 1);
    name = name.substr(0, name.find_first_of("\"'"));
    const auto isEqual = [&](std::string_view lower) {
        return std::ranges::equal(name, lower, {}, ObLib::FoldAscii<char>);
    };
    return isEqual("utf-8") || isEqual("us-ascii");
}

std::string PlainText(std::string_view value) {
    std::string plain;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const auto reference = value.substr(at, kLongestReference);
        const auto end = value[at] == '&' ? reference.find(';') : reference.npos;
        const auto meant =
            end == reference.npos ? std::string() : MeaningOf(reference.substr(1, end - 1));
        if (meant.empty()) {
            plain += value[at];
        } else {
            plain += meant;
            at += end;
        }
    }
    return plain;
}

} // namespace transforms::documents
