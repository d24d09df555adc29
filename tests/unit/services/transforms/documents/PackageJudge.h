// What is true of every cleaned package, as other libraries read it.
#pragma once

#include <pugixml.hpp>

#include <algorithm>
#include <sstream>
#include <string>

#include "tests/unit/services/transforms/documents/DocumentSamples.h"
#include "tests/unit/services/transforms/documents/ZipBuilder.h"

namespace samples {

inline bool IsXmlPart(const std::string& name) {
    return name.ends_with(".xml") || name.ends_with(".rels") || name.ends_with(".rdf");
}

// All text of an XML document, without its tags.
inline std::string TextOfXml(const std::string& content) {
    pugi::xml_document document;
    const auto read = document.load_buffer(content.data(), content.size(),
                                           pugi::parse_default | pugi::parse_ws_pcdata);
    EXPECT_TRUE(read) << read.description() << content;
    std::string text;
    struct TextCollector : pugi::xml_tree_walker {
        std::string& text;
        explicit TextCollector(std::string& to) : text(to) {}
        bool for_each(pugi::xml_node& node) override {
            text += node.value();
            return true;
        }
    } collector(text);
    document.traverse(collector);
    return text;
}

inline void ExpectNoCanary(const std::string& file) {
    EXPECT_EQ(file.find(kCanary), std::string::npos);
    for (const ZipPart& part : PartsOf(file)) {
        EXPECT_EQ(part.name.find(kCanary), std::string::npos);
        EXPECT_EQ(part.content.find(kCanary), std::string::npos) << part.name << part.content;
        if (IsXmlPart(part.name) && !part.content.empty()) TextOfXml(part.content);
    }
}

// Cleans a package with canaries, and checks that none is left and the kept texts are.
inline CleanedDocument ExpectPackageCleaned(const ZipBuilder& zip) {
    const std::string file = zip.File();
    CleanedDocument cleaned = CheckDocument(file);
    EXPECT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    if (cleaned.outcome == CleanOutcome::Cleaned) ExpectNoCanary(cleaned.file);
    return cleaned;
}

} // namespace samples
