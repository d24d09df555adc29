// Reads a text of XML tag by tag, with the place of everything in the text.
//
// The cleaner changes a document by replacing places of its text: so everything else stays byte for
// byte as it was, white space, references and comments with it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "services/transforms/documents/XmlNames.h"

namespace transforms::documents {

struct XmlAttribute {
    Ns ns = Ns::None;
    std::string_view name;  // without its prefix
    std::string_view value; // as it is written, between the quotes
    std::string_view whole; // with the white space before it
};

enum class XmlEvent : std::uint8_t { Start, End };

// An open element, and at its end what it was.
struct XmlElement {
    Ns ns = Ns::None;
    std::string_view name;
    std::size_t begin = 0; // of its tag in the text
    std::size_t tagEnd = 0;
    std::string_view qualified; // the name as it is written
    std::size_t bindings = 0;   // of namespaces that were known before the element
};

// The text outlives the reader.
class XmlReader {
public:
    static constexpr std::size_t kDeepest = 256;

    explicit XmlReader(std::string_view text);

    // The next start or end of an element; an empty-element tag gives both. False at the end of the
    // text and when it isn't XML.
    bool Next();
    // Whether the whole text was read, and is one element with its tags in pairs.
    bool IsWhole() const { return at_ == text_.size() && !failed_ && hadRoot_ && open_.empty(); }

    std::string_view Text() const { return text_; }
    XmlEvent Event() const { return event_; }
    const XmlElement& Element() const { return current_; } // that starts or ends
    const std::vector<XmlAttribute>& Attributes() const { return attributes_; } // at a start
    std::size_t At() const { return at_; }                                      // after the tag
    // Elements around the current one, without it at its start and end; the innermost is the last.
    const std::vector<XmlElement>& Around() const { return open_; }

    // The attribute's value at a start; empty when there is none.
    std::string_view Value(Ns ns, std::string_view name) const;

private:
    struct Binding {
        std::string_view prefix;
        Ns ns;
    };
    bool Fail();
    bool SkipPast(std::string_view end);
    bool SkipDeclaration();
    bool ReadStart();
    bool ReadEnd();
    bool ReadAttributes();
    bool ReadAttribute(std::size_t begin);
    std::string_view ReadName();
    std::size_t SkipSpace();
    bool IsAt(std::string_view text) const { return text_.substr(at_).starts_with(text); }
    void Bind();
    Ns Resolve(std::string_view qualified, bool isAttribute) const;
    bool Close();

    std::string_view text_;
    std::size_t at_ = 0;
    bool failed_ = false;
    bool hadRoot_ = false;
    bool isEmptyElement_ = false; // its start was given, its end comes next
    XmlEvent event_ = XmlEvent::Start;
    XmlElement current_;
    std::vector<XmlElement> open_;
    bool pushes_ = false; // the current element is opened by the next step
    std::vector<XmlAttribute> attributes_;
    std::vector<Binding> bindings_;
};

// Whether the text is in UTF-8 by its BOM and its declaration: nothing else is read.
bool IsUtf8Xml(std::string_view text);

// A value with the five references of XML and those to numbers replaced, in UTF-8. A number that is
// no character of XML stays as it is written.
std::string PlainText(std::string_view value);

} // namespace transforms::documents
