#include "services/archive/password/PassPhrase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "services/archive/password/PhraseWords.h"

namespace {

using namespace obarchive;

std::wstring Phrase(const PasswordPolicy& policy, std::uint32_t expectedBits) {
    PhraseText text;
    EXPECT_EQ(MakePassPhrase(policy, text), expectedBits);
    return text.data;
}

bool IsPhraseWord(const std::wstring& text) {
    for (std::size_t index = 0; index < kPhraseWordCount; ++index) {
        const std::string_view word = PhraseWord(index);
        if (std::equal(word.begin(), word.end(), text.begin(), text.end())) return true;
    }
    return false;
}

std::vector<std::wstring> Words(const std::wstring& phrase) {
    std::vector<std::wstring> words(1);
    for (const wchar_t unit : phrase) {
        if (unit == L'-') {
            words.emplace_back();
        } else {
            words.back() += unit;
        }
    }
    return words;
}

TEST(PassPhraseTest, TheListHas1024DifferentPlainWords) {
    std::set<std::string_view> words;
    for (std::size_t index = 0; index < kPhraseWordCount; ++index) {
        const std::string_view word = PhraseWord(index);
        EXPECT_TRUE(word.size() >= 3 && word.size() <= 8) << word;
        EXPECT_TRUE(std::all_of(word.begin(), word.end(), [](char letter) {
            return letter >= 'a' && letter <= 'z';
        })) << word;
        EXPECT_TRUE(index == 0 || PhraseWord(index - 1) < word) << word;
        words.insert(word);
    }
    EXPECT_EQ(words.size(), 1024U);
    EXPECT_EQ(PhraseWord(1024), PhraseWord(0));
}

TEST(PassPhraseTest, SevenWordsOfTheListAreSeventyBits) {
    const std::vector<std::wstring> words = Words(Phrase({}, 70));
    ASSERT_EQ(words.size(), 7U);
    for (const std::wstring& word : words) EXPECT_TRUE(IsPhraseWord(word));
}

TEST(PassPhraseTest, NoTwoAreTheSameAndEveryPartOfTheListOccurs) {
    std::set<std::wstring> phrases;
    std::set<std::wstring> words;
    for (int count = 0; count < 500; ++count) {
        const std::wstring phrase = Phrase({}, 70);
        phrases.insert(phrase);
        for (const std::wstring& word : Words(phrase)) words.insert(word);
    }
    EXPECT_EQ(phrases.size(), 500U);
    // 3,500 draws of 1,024 words miss each with a chance of 3 in 100.
    EXPECT_GT(words.size(), 900U);
}

TEST(PassPhraseTest, MeetsEveryPolicyWithAtMost99Characters) {
    for (std::uint32_t classes = 0; classes < 16; ++classes) {
        for (std::uint32_t length = 1; length <= kMostPasswordBytes; ++length) {
            const PasswordPolicy policy{length, classes};
            PhraseText text;
            EXPECT_GE(MakePassPhrase(policy, text), classes & kDigit ? 76U : 70U);
            EXPECT_TRUE(Meets(policy, text.data)) << classes << " " << length;
            EXPECT_LE(std::wstring_view(text.data).size(), 99U);
        }
    }
}

// The longest length leaves no room for another whole word in most draws.
TEST(PassPhraseTest, EndsWithDigitsWhereNoFurtherWordFits) {
    for (int count = 0; count < 200; ++count) {
        PhraseText text;
        EXPECT_GE(MakePassPhrase({99, 0}, text), 100U);
        EXPECT_EQ(std::wstring_view(text.data).size(), 99U);
    }
}

TEST(PassPhraseTest, AnUpperCaseLetterBeginsEachWordAndTwoDigitsEndThePhrase) {
    const std::wstring phrase = Phrase({1, kUpperCase | kDigit}, 76);
    std::vector<std::wstring> words = Words(phrase);
    for (const std::wstring& word : words) EXPECT_TRUE(word[0] >= L'A' && word[0] <= L'Z');
    EXPECT_EQ(ClassesOf(phrase.substr(phrase.size() - 2)), kDigit);
}

} // namespace
