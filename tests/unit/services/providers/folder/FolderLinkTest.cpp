// Links to files below a folder.
#include "services/providers/folder/FolderLink.h"

#include <gtest/gtest.h>

#include <string>

using namespace providers;

namespace {

constexpr wchar_t kPattern[] = L"https://files.example.com/shared/{path}";

TEST(FolderLink, EscapesEachPartOfThePath) {
    EXPECT_EQ(EscapedPath(L"a.zip"), L"a.zip");
    EXPECT_EQ(EscapedPath(L"Sent files\\50 % & more\\a+b#c?.zip"),
              L"Sent%20files/50%20%25%20%26%20more/a%2Bb%23c%3F.zip");
    EXPECT_EQ(EscapedPath(L"Ab-9._~\\(1)'!"), L"Ab-9._~/%281%29%27%21");
    EXPECT_EQ(EscapedPath(L"\u00E4\u20AC\U0001F511"), L"%C3%A4%E2%82%AC%F0%9F%94%91");
    EXPECT_EQ(EscapedPath(L"a|b"), L"a%7Cb");
    EXPECT_EQ(EscapedPath(std::wstring(1, L'\xD83D')), L"%EF%BF%BD");
    EXPECT_EQ(EscapedPath(L""), L"");
}

TEST(FolderLink, PutsThePathIntoThePattern) {
    EXPECT_EQ(LinkOf(L"\\\\server\\share", kPattern, L"Sent\\a b.zip"),
              L"https://files.example.com/shared/Sent/a%20b.zip");
    EXPECT_EQ(LinkOf(L"C:\\Cloud", L"https://h/?f={path}&again={path}#end", L"x\\y.zip"),
              L"https://h/?f=x/y.zip&again=x/y.zip#end");
}

TEST(FolderLink, EscapesWhatAPatternMayNotContain) {
    EXPECT_EQ(LinkOf(L"C:\\Cloud", L"https://h/a|b/%20/\u00E4/\"<>\\^`/{path}", L"x.zip"),
              L"https://h/a%7Cb/%20/%C3%A4/%22%3C%3E%5C%5E%60/x.zip");
}

TEST(FolderLink, AddressesTheFileItselfWithoutAPattern) {
    EXPECT_EQ(LinkOf(L"\\\\server\\our share\\x", L"", L"Sent\\a b.zip"),
              L"file://server/our%20share/x/Sent/a%20b.zip");
    EXPECT_EQ(LinkOf(L"C:\\Users\\Ann", L"", L"a.zip"), L"file:///C:/Users/Ann/a.zip");
    EXPECT_EQ(LinkOf(L"Z:\\", L"", L"a.zip"), L"file:///Z:/a.zip");
}

TEST(FolderLink, APatternIsAnAddressWithAPlaceForThePath) {
    for (const wchar_t* good : {kPattern, L"http://h/{path}", L"HTTPS://h:8080/d?p={path}",
                                L"file://server/share/{path}", L"https://h/{path}/{path}"}) {
        EXPECT_TRUE(IsLinkPattern(good)) << good;
    }
    for (const wchar_t* bad :
         {L"", L"{path}", L"https://h/", L"https://h/{Path}", L"files.example.com/{path}",
          L"https://{path}", L"https:/h/{path}", L"://h/{path}", L"1https://h/{path}",
          L"ht tps://h/{path}", L"https://h/a b/{path}", L"https://h/{path}\n",
          L"{path}https://h/"}) {
        EXPECT_FALSE(IsLinkPattern(bad)) << bad;
    }
    const std::wstring longest = L"https://h/{path}" + std::wstring(kLongestPattern - 16, L'x');
    EXPECT_TRUE(IsLinkPattern(longest));
    EXPECT_FALSE(IsLinkPattern(longest + L"x"));
}

} // namespace
