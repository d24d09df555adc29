// Strings beside the C++ library's, with copies that share their text.
#include <cstring>
#include <cwctype>
#include <string>

#include "ObLib/Src/ObString.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using ObLib::ObString;

namespace {

constexpr std::uint32_t kStrings = 4;
constexpr std::size_t kLongestPiece = 40;
constexpr std::size_t kLongest = 2000;

// A string and the text that it should have.
struct Both {
    ObString own;
    std::wstring expected;
    bool null = true;

    void Set(const std::wstring& text) {
        expected = text;
        null = false;
    }
    void SetNull() {
        expected.clear();
        null = true;
    }
};

void RequireSame(const Both& both) {
    Require(both.own.Length() == both.expected.size(), "the length");
    Require(std::memcmp(both.own.CStr(), both.expected.c_str(),
                        (both.expected.size() + 1) * sizeof(wchar_t)) == 0,
            "the text and its end");
    Require(both.own.IsNull() == both.null, "null or not");
    Require(both.own.HasText() == !both.expected.empty(), "a text or none");
    Require(both.own.Equals(both.expected.c_str()) == !both.null, "equal to its text");
}

std::int64_t PlainInteger(const std::wstring& text, bool& isInteger) {
    const bool sign = !text.empty() && (text[0] == L'+' || text[0] == L'-');
    const std::wstring digits = text.substr(sign ? 1 : 0);
    isInteger = !digits.empty() && digits.size() <= 9 &&
                digits.find_first_not_of(L"0123456789") == std::wstring::npos;
    std::int64_t value = 0;
    for (std::size_t i = 0; isInteger && i < digits.size(); ++i)
        value = value * 10 + digits[i] - L'0';
    return sign && text[0] == L'-' ? -value : value;
}

void RequireInteger(const Both& both) {
    bool isInteger = false;
    const std::int64_t value = PlainInteger(both.expected, isInteger);
    Require(both.own.IsInteger() == isInteger, "a whole number or not");
    Require(both.own.ToInteger() == (isInteger ? value : INT32_MIN), "and which");
}

void Compare(const Both& one, const Both& other) {
    const bool less =
        one.null || other.null ? one.null && !other.null : one.expected < other.expected;
    Require(one.own.Compare(other.own) == less, "the order is that of the units");
    const int noCase = one.own.CompareNoCase(other.own);
    const int opposite = other.own.CompareNoCase(one.own);
    Require((noCase == 0) == (opposite == 0), "ignoring case is symmetric");
    Require(one.expected != other.expected || noCase == 0, "equal texts are equal in any case");
}

class Strings {
public:
    explicit Strings(FuzzInput& input) : input_(input) {}

    void Run() {
        while (!input_.IsUsedUp()) {
            Both& one = strings_[input_.Below(kStrings)];
            Both& other = strings_[input_.Below(kStrings)];
            Act(one, other);
            for (const Both& both : strings_) RequireSame(both);
            RequireInteger(one);
            Compare(one, other);
        }
    }

private:
    void Act(Both& one, Both& other);
    void Append(Both& one, Both& other);
    void Trim(Both& one, bool left);
    void Replace(Both& one);

    FuzzInput& input_;
    Both strings_[kStrings];
};

void Strings::Act(Both& one, Both& other) {
    const std::uint32_t choice = input_.Below(15);
    switch (choice) {
    case 0:
        one.own = other.own;
        one.expected = std::wstring(other.expected);
        one.null = other.null;
        break;
    case 1:
        one.own.Swap(other.own);
        std::swap(one.expected, other.expected);
        std::swap(one.null, other.null);
        break;
    case 2:
        one.own.Clear();
        one.SetNull();
        break;
    case 3:
        one.own.MakeSecure();
        break;
    case 4:
    case 5:
        Trim(one, choice == 4);
        break;
    case 6:
        one.own.DropLast();
        if (!one.expected.empty()) one.expected.pop_back();
        break;
    case 7:
        one.own.ToLower();
        one.expected = one.own.CStr(); // the rule is the C library's
        break;
    case 8:
    case 9:
    case 10:
        Append(one, other);
        break;
    default:
        Replace(one);
        break;
    }
}

void Strings::Append(Both& one, Both& other) {
    if (one.expected.size() + other.expected.size() > kLongest) return;
    switch (input_.Below(3)) {
    case 0: {
        const std::wstring piece = input_.Name(kLongestPiece);
        one.own.Append(piece.c_str());
        one.Set(one.expected + piece);
        break;
    }
    case 1:
        one.own.AppendString(other.own);
        if (!other.null) one.Set(one.expected + other.expected);
        break;
    default:
        // From its own text.
        if (one.null) break;
        one.own.Append(one.own.CStr() + one.expected.size() / 2);
        one.Set(one.expected + one.expected.substr(one.expected.size() / 2));
        break;
    }
}

// Blanks only.
void Strings::Trim(Both& one, bool left) {
    if (left) {
        one.own.TrimLeft();
        one.expected.erase(0, std::min(one.expected.find_first_not_of(L' '), one.expected.size()));
    } else {
        one.own.TrimRight();
        one.expected.erase(one.expected.find_last_not_of(L' ') + 1);
    }
}

void Strings::Replace(Both& one) {
    const std::wstring piece = input_.Name(kLongestPiece);
    switch (input_.Below(4)) {
    case 0:
        one.own.AssignText(piece.c_str());
        one.Set(piece);
        break;
    case 1: {
        const int number = input_.Byte() - 128;
        Require(one.own.Format(L"%ls|%d|%ls", piece.c_str(), number, one.own.CStr()), "a format");
        const std::string digits = std::to_string(number);
        one.Set((piece + L"|" + std::wstring(digits.begin(), digits.end()) + L"|" + one.expected)
                    .substr(0, std::wstring::npos));
        break;
    }
    case 2: {
        const std::string bytes = Utf8Of(WithWholePairs(piece));
        one.own = ObString(bytes.c_str(), ObLib::kCodePageUtf8);
        one.Set(WithWholePairs(piece));
        break;
    }
    default:
        if (one.null) break;
        one.own.AssignText(one.own.CStr() + one.expected.size() / 3);
        one.Set(one.expected.substr(one.expected.size() / 3));
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    Strings(input).Run();
    return 0;
}
