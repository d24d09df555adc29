#include "services/transforms/documents/XmlReader.h"

#include <algorithm>
#include <charconv>
#include <iterator>

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
    const auto isEqual = [&](std::string_view other) {
        return std::ranges::equal(name, other,
                                  [](char c, char lower) { return (c | 0x20) == (lower | 0x20); });
    };
    return isEqual("utf-8") || isEqual("us-ascii");
}

std::string PlainText(std::string_view value) {
    struct Reference {
        std::string_view name;
        char c;
    };
    constexpr Reference kReferences[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    std::string plain;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const auto end = value[at] == '&' ? value.find(';', at) : value.npos;
        const auto name =
            end == value.npos ? std::string_view() : value.substr(at + 1, end - at - 1);
        const auto row = std::ranges::find(kReferences, name, &Reference::name);
        int code = 0;
        if (name.starts_with("#")) {
            const bool isHex = name.starts_with("#x");
            const auto digits = name.substr(isHex ? 2 : 1);
            std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
        }
        if (row != std::end(kReferences)) code = row->c;
        plain += code > 0 && code < 128 ? static_cast<char>(code) : value[at];
        if (code > 0 && code < 128) at = end;
    }
    return plain;
}

} // namespace transforms::documents
