#include "services/providers/dav/DavXml.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "ObLib/Src/AsciiLetters.h"

namespace providers {
namespace {

constexpr std::size_t kDeepest = 64;
constexpr std::size_t kMostDeclarations = 256;
constexpr std::string_view kBlanks = " \t\r\n";
constexpr DavXmlEvent kGoesOn = DavXmlEvent::Text; // of a part of a tag: nothing wrong

struct Entity {
    std::string_view name;
    char character;
};
constexpr Entity kEntities[] = {
    {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

bool IsNameByte(char c) {
    return ObLib::IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.' ||
           c == ':' || (c & 0x80);
}

bool IsCharacter(std::uint32_t code) {
    if (code < 0x20) return code == 9 || code == 10 || code == 13;
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE && code != 0xFFFF;
}

void AppendUtf8(std::string& to, std::uint32_t code) {
    if (code < 0x80) {
        to += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned kFirst[] = {0, 0xC0, 0xE0, 0xF0};
    to += static_cast<char>(kFirst[more] | code >> (6 * more));
    for (int i = more - 1; i >= 0; --i) to += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
}

// The digits between "&#" and ";".
std::optional<std::uint32_t> CharacterNumber(std::string_view digits) {
    const bool isHex = digits.starts_with('x');
    if (isHex) digits.remove_prefix(1);
    if (digits.empty() || digits.size() > 8) return std::nullopt;
    std::uint64_t code = 0;
    for (const char c : digits) {
        const int value = c >= '0' && c <= '9'            ? c - '0'
                          : isHex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : isHex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                          : -1;
        if (value < 0) return std::nullopt;
        code = code * (isHex ? 16 : 10) + static_cast<unsigned>(value);
    }
    if (!IsCharacter(static_cast<std::uint32_t>(std::min<std::uint64_t>(code, 0x110000))))
        return std::nullopt;
    return static_cast<std::uint32_t>(code);
}

bool AppendReference(std::string& to, std::string_view name) {
    if (name.starts_with('#')) {
        const auto code = CharacterNumber(name.substr(1));
        if (code) AppendUtf8(to, *code);
        return code.has_value();
    }
    const auto* entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                      [name](const Entity& known) { return known.name == name; });
    if (entity == std::end(kEntities)) return false;
    to += entity->character;
    return true;
}

bool IsUtf8Name(std::string_view declaration) {
    const std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) return true;
    std::string rest(declaration.substr(at + 8));
    std::transform(rest.begin(), rest.end(), rest.begin(), ObLib::FoldAscii<char>);
    return rest.find("utf-8") != std::string::npos || rest.find("us-ascii") != std::string::npos;
}

} // namespace

DavXml::DavXml(std::string_view text) : text_(text) {
    if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
}

DavXmlEvent DavXml::Next() {
    if (last_ == DavXmlEvent::Bad || last_ == DavXmlEvent::Finished) return last_;
    if (closes_) CloseElement();
    return last_ = Step();
}

DavXmlEvent DavXml::Step() {
    if (isEmptyElement_) {
        isEmptyElement_ = false;
        closes_ = true;
        return DavXmlEvent::End;
    }
    while (at_ < text_.size()) {
        if (Take("<?")) {
            if (!SkipDeclaration()) return DavXmlEvent::Bad;
        } else if (Take("<!--")) {
            if (!SkipTo("-->")) return DavXmlEvent::Bad;
        } else if (text_[at_] == '<') {
            return Markup();
        } else {
            const DavXmlEvent event = CharacterData();
            if (event == DavXmlEvent::Bad || depth_ > 0) return event;
        }
    }
    return EndOfText();
}

DavXmlEvent DavXml::EndOfText() const {
    return hadRoot_ && open_.empty() ? DavXmlEvent::Finished : DavXmlEvent::Bad;
}

bool DavXml::SkipDeclaration() {
    const std::size_t from = at_;
    if (!SkipTo("?>")) return false;
    const std::string_view declaration = text_.substr(from, at_ - from);
    return !declaration.starts_with("xml ") || IsUtf8Name(declaration);
}

// A piece of text up to the next tag; outside of all elements only blanks may be.
DavXmlEvent DavXml::CharacterData() {
    const std::size_t end = std::min(text_.find('<', at_), text_.size());
    const std::string_view piece = text_.substr(at_, end - at_);
    at_ = end;
    if (depth_ == 0) {
        return piece.find_first_not_of(kBlanks) == std::string_view::npos ? DavXmlEvent::Text
                                                                          : DavXmlEvent::Bad;
    }
    return Decode(piece) ? DavXmlEvent::Text : DavXmlEvent::Bad;
}

DavXmlEvent DavXml::Markup() {
    if (Take("</")) return EndTag();
    if (Take("<![CDATA[") && depth_ > 0) {
        const std::size_t from = at_;
        if (!SkipTo("]]>")) return DavXmlEvent::Bad;
        decoded_ = text_.substr(from, at_ - 3 - from);
        return DavXmlEvent::Text;
    }
    if (!Take("<") || (hadRoot_ && depth_ == 0))
        return DavXmlEvent::Bad; // a second outermost element
    return StartTag();
}

DavXmlEvent DavXml::StartTag() {
    const std::string_view name = TakeName();
    if (name.empty() || depth_ == kDeepest) return DavXmlEvent::Bad;
    open_.push_back(name);
    depth_ = open_.size();
    hadRoot_ = true;
    for (;;) {
        const std::size_t before = at_;
        SkipBlanks();
        isEmptyElement_ = Take("/>");
        if (isEmptyElement_ || Take(">")) break;
        if (at_ == before || Attribute() == DavXmlEvent::Bad) return DavXmlEvent::Bad;
    }
    return Resolve(name) ? DavXmlEvent::Start : DavXmlEvent::Bad;
}

DavXmlEvent DavXml::Attribute() {
    const std::string_view name = TakeName();
    SkipBlanks();
    if (name.empty() || !Take("=")) return DavXmlEvent::Bad;
    SkipBlanks();
    if (at_ == text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) return DavXmlEvent::Bad;
    const std::size_t end = text_.find(text_[at_], at_ + 1);
    if (end == std::string_view::npos) return DavXmlEvent::Bad;
    const std::string_view value = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    if (value.find('<') != std::string_view::npos || !Decode(value)) return DavXmlEvent::Bad;
    if (name != "xmlns" && !name.starts_with("xmlns:")) return kGoesOn;
    if (declarations_.size() == kMostDeclarations) return DavXmlEvent::Bad;
    declarations_.push_back({name.substr(std::min<std::size_t>(name.size(), 6)), decoded_, depth_});
    return kGoesOn;
}

DavXmlEvent DavXml::EndTag() {
    const std::string_view name = TakeName();
    SkipBlanks();
    if (!Take(">") || open_.empty() || open_.back() != name || !Resolve(name))
        return DavXmlEvent::Bad;
    closes_ = true;
    return DavXmlEvent::End;
}

// The caller may still ask for the depth of an element that has ended, so it is closed a call
// later.
void DavXml::CloseElement() {
    while (!declarations_.empty() && declarations_.back().depth == depth_) declarations_.pop_back();
    open_.pop_back();
    depth_ = open_.size();
    closes_ = false;
}

bool DavXml::SkipTo(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    if (found == std::string_view::npos) return false;
    at_ = found + end.size();
    return true;
}

bool DavXml::Take(std::string_view word) {
    if (!text_.substr(at_).starts_with(word)) return false;
    at_ += word.size();
    return true;
}

void DavXml::SkipBlanks() { at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size()); }

std::string_view DavXml::TakeName() {
    const std::size_t from = at_;
    const bool mayBegin = at_ < text_.size() && std::string_view("0123456789-.").find(text_[at_]) ==
                                                    std::string_view::npos;
    while (mayBegin && at_ < text_.size() && IsNameByte(text_[at_])) ++at_;
    return text_.substr(from, at_ - from);
}

bool DavXml::Decode(std::string_view text) {
    decoded_.clear();
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '&') {
            const std::size_t end = std::min(text.find('&', at), text.size());
            decoded_.append(text.substr(at, end - at));
            at = end;
            continue;
        }
        const std::size_t end = text.find(';', at);
        if (end == std::string_view::npos ||
            !AppendReference(decoded_, text.substr(at + 1, end - at - 1)))
            return false;
        at = end + 1;
    }
    return true;
}

bool DavXml::Resolve(std::string_view prefixed) {
    const std::size_t colon = prefixed.find(':');
    const std::string_view prefix =
        colon == std::string_view::npos ? "" : prefixed.substr(0, colon);
    name_ = colon == std::string_view::npos ? prefixed : prefixed.substr(colon + 1);
    const auto declared =
        std::find_if(declarations_.rbegin(), declarations_.rend(),
                     [prefix](const Declaration& item) { return item.prefix == prefix; });
    if (declared == declarations_.rend()) {
        namespace_.clear();
        return prefix.empty() && !name_.empty();
    }
    namespace_ = declared->space;
    return !name_.empty();
}

} // namespace providers
