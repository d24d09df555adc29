// Reads the XML of a server's reply in one forward pass, within limits and without keeping a tree.
//
// UTF-8 only. Namespaces are resolved, whatever their prefixes. A document type, an entity but the
// five of the language, a tag that doesn't fit and too deep a nesting make a text bad as a whole.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace providers {

enum class DavXmlEvent { Start, End, Text, Finished, Bad };

class DavXml {
public:
    // `text` outlives the reader.
    explicit DavXml(std::string_view text);

    // The next event. After Finished or Bad the same again.
    DavXmlEvent Next();

    // Of the element that Next has started or ended.
    std::string_view Namespace() const { return namespace_; }
    std::string_view Name() const { return name_; }
    bool Is(std::string_view space, std::string_view name) const {
        return namespace_ == space && name_ == name;
    }
    // How many elements are open: 1 inside the outermost one, also at its end.
    std::size_t Depth() const { return depth_; }
    // After Text: a piece of text, decoded. One text may come in several pieces.
    const std::string& Text() const { return decoded_; }

private:
    struct Declaration {
        std::string_view prefix;
        std::string space;
        std::size_t depth; // of the element that has it
    };

    DavXmlEvent Step();
    DavXmlEvent Markup();
    DavXmlEvent StartTag();
    DavXmlEvent EndTag();
    DavXmlEvent Attribute();
    DavXmlEvent CharacterData();
    DavXmlEvent EndOfText() const;
    bool SkipTo(std::string_view end);
    bool SkipDeclaration();
    bool Take(std::string_view word);
    void SkipBlanks();
    std::string_view TakeName();
    bool Decode(std::string_view text);
    bool Resolve(std::string_view prefixed);
    void CloseElement();

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<std::string_view> open_; // names with their prefixes
    std::vector<Declaration> declarations_;
    std::string namespace_;
    std::string_view name_;
    std::string decoded_;
    std::size_t depth_ = 0;
    bool isEmptyElement_ = false; // its end comes next
    bool hadRoot_ = false;
    bool closes_ = false; // the element that Next has ended is closed by the next call
    DavXmlEvent last_ = DavXmlEvent::Text;
};

} // namespace providers
