// The XML reader for texts of bytes, with which the tests of documents judge what was written.
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include <string>

TEST(PugixmlBytesLibrary, ReadsATextOfBytes) {
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<a b='\xC3\xA4'>text</a>"));
    EXPECT_EQ(std::string(document.child("a").attribute("b").value()), "\xC3\xA4");
    EXPECT_EQ(std::string(document.child("a").text().get()), "text");
}

TEST(PugixmlBytesLibrary, RefusesATextThatIsCutOff) {
    EXPECT_FALSE(pugi::xml_document().load_string("<a><b></a>"));
}
