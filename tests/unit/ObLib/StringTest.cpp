#include "ObLib/Src/ObString.h"

#include <cwchar>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::ObString;

constexpr wchar_t kLong[] = L"a text that is on the heap";

TEST(StringBasics, AHandleIsOnePointerAndMovesWithoutFail) {
    static_assert(sizeof(ObString) == 8);
    static_assert(std::is_nothrow_move_constructible_v<ObString>);
    static_assert(std::is_nothrow_move_assignable_v<ObString>);
}

TEST(StringBasics, ANewOneIsNullAndReadsAsEmpty) {
    const ObString string;
    EXPECT_TRUE(string.IsNull());
    EXPECT_FALSE(string.HasText());
    EXPECT_EQ(0u, string.Length());
    EXPECT_STREQ(L"", string.CStr());
}

TEST(StringBasics, FromANullTextComesANullString) {
    const ObString string(static_cast<const wchar_t*>(nullptr));
    EXPECT_TRUE(string.IsNull());
    EXPECT_FALSE(string.HasText());
    EXPECT_TRUE(ObString(nullptr, ObLib::kCodePageUtf8).IsNull());
}

TEST(StringBasics, FromAnEmptyTextComesAnEmptyStringThatIsNotNull) {
    const ObString string(L"");
    EXPECT_FALSE(string.IsNull());
    EXPECT_FALSE(string.HasText());
}

TEST(StringBasics, TakesAPartOfALongerText) {
    const ObString string(std::wstring_view(kLong).substr(2, 4));
    EXPECT_STREQ(L"text", string.CStr());
    EXPECT_EQ(4u, string.Length());
    EXPECT_STREQ(kLong, ObString(std::wstring_view(kLong)).CStr());
    const ObString empty{std::wstring_view()};
    EXPECT_FALSE(empty.IsNull());
    EXPECT_FALSE(empty.HasText());
}

TEST(StringBasics, StoresTextsOfEveryLengthAroundTheInlineLimit) {
    for (const std::size_t units : {1, 11, 12, 13, 14, 1000}) {
        const std::wstring text(units, L'u');
        const ObString string(text.c_str());
        EXPECT_EQ(units, string.Length());
        EXPECT_EQ(text, string.CStr());
        EXPECT_TRUE(string.HasText());
        EXPECT_EQ(units <= 12, string.Core()->IsInline());
    }
}

TEST(StringBasics, ACopySharesALongTextAndAWriteParts) {
    const ObString one(kLong);
    ObString other(one);
    EXPECT_EQ(one.CStr(), other.CStr());
    other.ToLower();
    EXPECT_NE(one.CStr(), other.CStr());
    EXPECT_STREQ(kLong, one.CStr());
}

TEST(StringBasics, AMoveStealsTheCoreAndLeavesANullString) {
    ObString one(kLong);
    const auto* const core = one.Core();
    ObString other(L"short");
    other = std::move(one);
    EXPECT_EQ(core, other.Core());
    EXPECT_TRUE(one.IsNull());
    one = ObString(L"again");
    EXPECT_STREQ(L"again", one.CStr());
    const ObString third(std::move(other));
    EXPECT_EQ(core, third.Core());
}

TEST(StringBasics, AssignsFromEveryKindToEveryKind) {
    const std::vector<ObString> strings = {ObString(), ObString(L""), ObString(L"short"),
                                           ObString(kLong)};
    for (const ObString& from : strings) {
        for (const ObString& to : strings) {
            ObString string(to);
            string.Assign(from);
            EXPECT_EQ(from.IsNull(), string.IsNull());
            EXPECT_STREQ(from.CStr(), string.CStr());
            EXPECT_EQ(from.Length(), string.Length());
        }
    }
    EXPECT_EQ(1, strings[3].Core()->ShareCount()) << "every reference was given back";
}

TEST(StringBasics, AssigningItselfOrAPartOfItselfIsSafe) {
    ObString string(kLong);
    string = *&string;
    EXPECT_STREQ(kLong, string.CStr());
    string.AssignText(string.CStr() + 7);
    EXPECT_STREQ(L"that is on the heap", string.CStr());
    string.AssignText(string.CStr() + 15);
    EXPECT_STREQ(L"heap", string.CStr());
    string.AssignText(nullptr);
    EXPECT_TRUE(string.IsNull());
}

TEST(StringBasics, SwapExchangesAlsoWithANullString) {
    ObString one(kLong);
    ObString other;
    one.Swap(other);
    EXPECT_TRUE(one.IsNull());
    EXPECT_STREQ(kLong, other.CStr());
    other.Swap(other);
    EXPECT_STREQ(kLong, other.CStr());
}

TEST(StringBasics, ClearMakesANullString) {
    for (const wchar_t* const text : {L"", L"short", kLong}) {
        ObString string(text);
        string.Clear();
        EXPECT_TRUE(string.IsNull());
        EXPECT_EQ(0u, string.Length());
    }
}

TEST(StringCompare, EqualsIsExact) {
    EXPECT_TRUE(ObString(L"Text").Equals(L"Text"));
    EXPECT_FALSE(ObString(L"Text").Equals(L"text"));
    EXPECT_FALSE(ObString(L"Text").Equals(L"Tex"));
    EXPECT_FALSE(ObString(L"Text").Equals(nullptr));
    EXPECT_TRUE(ObString().Equals(nullptr));
    EXPECT_FALSE(ObString().Equals(L""));
    EXPECT_TRUE(ObString(L"").Equals(L""));
}

TEST(StringCompare, OrdersByUnitsWithNullBeforeAnything) {
    EXPECT_TRUE(ObString().Compare(ObString(L"")));
    EXPECT_FALSE(ObString(L"").Compare(ObString()));
    EXPECT_FALSE(ObString().Compare(ObString()));
    EXPECT_TRUE(ObString(L"").Compare(ObString(L"a")));
    EXPECT_TRUE(ObString(L"Z").Compare(ObString(L"a")));
    EXPECT_TRUE(ObString(L"a").Compare(ObString(L"ab")));
    EXPECT_FALSE(ObString(L"b").Compare(ObString(L"ab")));
    EXPECT_TRUE(ObString(L"\xD800").Compare(ObString(L"\xFF00")));
}

TEST(StringCompare, ServesAnOrderedContainer) {
    const std::set<ObString> strings = {ObString(L"b"), ObString(kLong), ObString(), ObString(L"b"),
                                        ObString(L"")};
    ASSERT_EQ(4u, strings.size());
    EXPECT_TRUE(strings.begin()->IsNull());
    EXPECT_STREQ(L"b", strings.rbegin()->CStr());
}

TEST(StringCompare, WithoutCaseAnEmptyStringEqualsEmptyOnesOnly) {
    EXPECT_EQ(0, ObString(L"HeadER").CompareNoCase(ObString(L"hEADer")));
    EXPECT_LT(ObString(L"a").CompareNoCase(ObString(L"B")), 0);
    EXPECT_GT(ObString(L"C").CompareNoCase(ObString(L"b")), 0);
    EXPECT_NE(0, ObString(L"a").CompareNoCase(ObString(L"")));
    EXPECT_NE(0, ObString(L"").CompareNoCase(ObString(L"a")));
    EXPECT_NE(0, ObString().CompareNoCase(ObString(L"a")));
    EXPECT_EQ(0, ObString().CompareNoCase(ObString(L"")));
    EXPECT_EQ(0, ObString().CompareNoCase(ObString()));
}

TEST(StringBytes, AreReadInTheirCodePage) {
    // Code page 437, 1252 and UTF-8; each other kind is the first.
    EXPECT_STREQ(L"\xE4", ObString("\x84", ObLib::kCodePageOem).CStr());
    EXPECT_STREQ(L"\xE4", ObString("\xE4", ObLib::kCodePageAnsi).CStr());
    EXPECT_STREQ(L"\xE4\x20AC", ObString("\xC3\xA4\xE2\x82\xAC", ObLib::kCodePageUtf8).CStr());
    EXPECT_STREQ(L"\xE4", ObString("\x84", 4).CStr());
    EXPECT_STREQ(L"\xE4", ObString("\x84", -1).CStr());
}

TEST(StringBytes, MayBeNoneOrMany) {
    const ObString none("", ObLib::kCodePageUtf8);
    EXPECT_FALSE(none.IsNull());
    EXPECT_FALSE(none.HasText());
    const std::string bytes(500, 'b');
    EXPECT_EQ(std::wstring(500, L'b'), ObString(bytes.c_str(), ObLib::kCodePageAnsi).CStr());
    EXPECT_TRUE(ObString("123456789012", ObLib::kCodePageUtf8).Core()->IsInline());
}

TEST(StringBytes, KindTwoEndsTheProcess) {
    EXPECT_FATAL_ASSERT(ObString("a", 2), "ObString");
    EXPECT_FATAL_ASSERT(ObString(nullptr, 2), "ObString");
}

TEST(StringSecure, TheSecureFlagIsCopiedAndStaysThroughChanges) {
    ObString string(kLong);
    string.MakeSecure();
    EXPECT_EQ(1, ObString(string).Core()->secure);
    string.AssignText(L"short");
    EXPECT_EQ(1, string.Core()->secure);
    string.Append(L" and more that goes to the heap");
    EXPECT_EQ(1, string.Core()->secure);
    EXPECT_TRUE(string.Format(L"%d", 5));
    EXPECT_EQ(1, string.Core()->secure);
    string.Clear();
    EXPECT_EQ(1, string.Core()->secure);
}

TEST(StringSecure, AStringThatMeetsASecureOneBecomesSecure) {
    ObString secret(L"secret");
    secret.MakeSecure();
    ObString assigned(L"open");
    assigned.Assign(secret);
    EXPECT_EQ(1, assigned.Core()->secure);
    ObString exchanged(L"open");
    exchanged.Swap(secret);
    EXPECT_EQ(1, exchanged.Core()->secure);
    EXPECT_EQ(1, secret.Core()->secure);
}

TEST(StringScratch, IsCopiedAssignedAndExchangedWithTheText) {
    ObString string(L"text");
    string.Buffer().Resize(5, ObLib::kResizeClears);
    ObString copy(string);
    EXPECT_EQ(5u, copy.Buffer().size);
    ObString assigned(L"other");
    assigned.Assign(string);
    EXPECT_EQ(5u, assigned.Buffer().size);
    EXPECT_STREQ(L"text", assigned.CStr());
    assigned.Assign(ObString(L"without"));
    EXPECT_EQ(0u, assigned.Buffer().size);
}

} // namespace
