// The encoding that a text declares of itself.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/xml/encoding/TextConverter.h"

namespace {

using ObLibX::GetDeclaredEncoding;

std::wstring Html(const std::wstring& inHead) {
    return L"<html><head>" + inHead + L"</head><body/></html>";
}

TEST(DeclaredEncoding, IsTheOneOfTheXmlDeclaration) {
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml version=\"1.0\" encoding=\"windows-1252\"?><a/>"),
              L"windows-1252");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml encoding='utf-8' version='1.0'?>"), L"utf-8");
    EXPECT_EQ(GetDeclaredEncoding(L"<?XML version=\"1.0\" Encoding = \"Latin1\" ?>"), L"Latin1");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml encoding=utf-8?>"), L"utf-8");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml encoding=\"\"?>"), L"");
}

TEST(DeclaredEncoding, IsNoneWhenTheXmlDeclarationHasNone) {
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml version=\"1.0\"?>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml?>"), L"");
    // The search is over: the meta isn't asked.
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml version=\"1.0\"?><html><meta http-equiv=\"Content-Type\" "
                                  L"content=\"text/html; charset=utf-8\"/></html>"),
              L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xml version=\"1.0\"?><a encoding=\"utf-8\"/>"), L"");
}

TEST(DeclaredEncoding, TakesOnlyAnXmlDeclarationAtTheStart) {
    EXPECT_EQ(GetDeclaredEncoding(L" <?xml encoding=\"utf-8\"?><a/>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<?other encoding=\"utf-8\"?><a/>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<?xmlish encoding=\"utf-8\"?><a/>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<?other encoding=\"utf-8\"?>" +
                                  Html(L"<meta http-equiv='Content-Type' content='charset=x'/>")),
              L"x");
}

TEST(DeclaredEncoding, IsTheOneOfTheMetaInAnHtmlHead) {
    EXPECT_EQ(GetDeclaredEncoding(Html(L"<meta http-equiv=\"content-type\" content=\"text/html; "
                                       L"charset=windows-1252\">")),
              L"windows-1252");
    EXPECT_EQ(GetDeclaredEncoding(L"<!DOCTYPE html><!-- c --> text <HTML lang=en>\n<HEAD><TITLE>"
                                  L"t</TITLE><META CONTENT='text/html;charset=utf-8' "
                                  L"HTTP-EQUIV=CONTENT-TYPE></HEAD>"),
              L"utf-8");
}

TEST(DeclaredEncoding, WalksTheTokensOfTheContent) {
    const auto charset = [](const std::wstring& content) {
        return GetDeclaredEncoding(
            Html(L"<meta http-equiv=\"Content-Type\" content=\"" + content + L"\">"));
    };
    EXPECT_EQ(charset(L"text/html; charset=utf-8"), L"utf-8");
    EXPECT_EQ(charset(L"charset=utf-8;x=y"), L"utf-8");
    EXPECT_EQ(charset(L"text/html; CharSet = koi8-r "), L"koi8-r");
    EXPECT_EQ(charset(L"text/html; charset='utf-8'"), L"utf-8");
    EXPECT_EQ(charset(L"charset; charset=utf-8"), L"utf-8");
    EXPECT_EQ(charset(L"text/html; xcharset=a; charsets=b"), L"");
    EXPECT_EQ(charset(L"text/html; charset="), L"");
    EXPECT_EQ(charset(L"text/html; charset"), L"");
    EXPECT_EQ(charset(L"charset=;utf-8"), L"");
    EXPECT_EQ(charset(L""), L"");
    EXPECT_EQ(charset(L"/;=?!"), L"");
}

TEST(DeclaredEncoding, IsNoneWhenTheRightMetaNamesNoCharset) {
    const std::wstring good = L"<meta http-equiv='Content-Type' content='charset=utf-8'>";
    EXPECT_EQ(GetDeclaredEncoding(Html(L"<meta http-equiv='Content-Type'>" + good)), L"");
    EXPECT_EQ(
        GetDeclaredEncoding(Html(L"<meta http-equiv='Content-Type' content='text/html'>" + good)),
        L"");
}

TEST(DeclaredEncoding, PassesOverOtherMetasAndElements) {
    const std::wstring good = L"<meta http-equiv='Content-Type' content='charset=utf-8'>";
    EXPECT_EQ(GetDeclaredEncoding(Html(L"<meta name='x' content='charset=a'>"
                                       L"<meta http-equiv='Refresh' content='charset=b'>"
                                       L"<meta http-equiv='Content-Types' content='charset=c'>"
                                       L"<meta><title>t</title><link charset=d>" +
                                       good)),
              L"utf-8");
    EXPECT_EQ(GetDeclaredEncoding(L"<html>" + good), L"utf-8");
}

TEST(DeclaredEncoding, IsNoneAfterTheHead) {
    const std::wstring good = L"<meta http-equiv='Content-Type' content='charset=utf-8'>";
    EXPECT_EQ(GetDeclaredEncoding(L"<html><head></head>" + good + L"</html>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<html><head></HEAD>" + good + L"</html>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"</head><html>" + good + L"</html>"), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<html><title></title>" + good + L"</html>"), L"utf-8");
}

TEST(DeclaredEncoding, IsNoneWhenTheFirstElementIsNotHtml) {
    const std::wstring good = L"<meta http-equiv='Content-Type' content='charset=utf-8'>";
    EXPECT_EQ(GetDeclaredEncoding(good), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<body><html>" + good), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<htmlx>" + good), L"");
}

TEST(DeclaredEncoding, IsNoneAfterAScanErrorAndAtTheEnd) {
    const std::wstring good = L"<meta http-equiv='Content-Type' content='charset=utf-8'>";
    EXPECT_EQ(GetDeclaredEncoding(L"<html><1>" + good), L"");
    EXPECT_EQ(GetDeclaredEncoding(L"<html><!-x>" + good), L"");
    for (const wchar_t* text : {L"", L" ", L"text", L"<", L"<?", L"<?xml", L"<?xml encoding",
                                L"<html", L"<html>", L"<html><meta", L"<html><meta http-equiv=",
                                L"<html><meta http-equiv='Content-Type' content='charset=u"}) {
        EXPECT_EQ(GetDeclaredEncoding(text), L"");
    }
}

} // namespace
