// After the prompt has closed, the password is nowhere in the process but in the caller's buffer.
// The test itself never has it in one piece: it stores it under a mask, types it letter by letter
// and compares bytes one by one.
#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "services/archive/crypto/Secret.h"
#include "services/archive/password/PasswordPrompt.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ReadableMemory.h"
#include "tests/unit/services/archive/password/PromptDriver.h"

namespace {

using obarchive::AskNewPassword;
using obarchive::PromptResult;
using obtest::PromptDriver;
using obtest::PromptOnScreen;

// Half of the letters are outside ASCII, so that UTF-8 and the ANSI code page differ. The mask has
// the high bit set and is applied to each unit.
constexpr wchar_t kMask = 0x0155;
constexpr wchar_t kMasked[] = {L'Q' ^ kMask, 0x00E4 ^ kMask, L'7' ^ kMask, 0x00FC ^ kMask,
                               L'k' ^ kMask, 0x00DF ^ kMask, L'V' ^ kMask, 0x00E9 ^ kMask,
                               L'3' ^ kMask, 0x00F1 ^ kMask, L'w' ^ kMask, 0x00E5 ^ kMask};
constexpr std::size_t kLetters = std::size(kMasked);

// Volatile, or the compiler may store the plain letters in one piece.
wchar_t Letter(std::size_t index) {
    const volatile wchar_t mask = kMask;
    return static_cast<wchar_t>(kMasked[index] ^ mask);
}

std::vector<std::uint8_t> MaskedBytes(bool utf8) {
    std::vector<std::uint8_t> bytes;
    const auto add = [&](unsigned value) { bytes.push_back(static_cast<std::uint8_t>(~value)); };
    for (std::size_t index = 0; index < kLetters; ++index) {
        const unsigned unit = Letter(index);
        if (!utf8) {
            add(unit & 0xFF);
            add(unit >> 8);
        } else if (unit < 0x80) {
            add(unit);
        } else {
            add(0xC0 | unit >> 6);
            add(0x80 | (unit & 0x3F));
        }
    }
    return bytes;
}

bool IsAt(const std::uint8_t* at, const std::vector<std::uint8_t>& masked) {
    for (std::size_t index = 0; index < masked.size(); ++index) {
        if (at[index] != static_cast<std::uint8_t>(~masked[index])) return false;
    }
    return true;
}

// How often the readable memory of this process contains the bytes without the mask.
int TimesInMemory(const std::vector<std::uint8_t>& masked) {
    int times = 0;
    obtest::ForEachReadableRegion(
        [&](const MEMORY_BASIC_INFORMATION& region, const std::uint8_t* at) {
            const auto* const end = at + region.RegionSize;
            for (; at + masked.size() <= end; ++at) times += IsAt(at, masked);
        });
    return times;
}

int TimesInAnyForm() {
    return TimesInMemory(MaskedBytes(false)) + TimesInMemory(MaskedBytes(true));
}

void TypeLetters(const PromptOnScreen& prompt, int field) {
    for (std::size_t index = 0; index < kLetters; ++index) {
        SendMessageW(prompt.Item(field), WM_CHAR, Letter(index), 1);
    }
}

class PasswordMemory : public testing::Test {
protected:
    using UiActions = std::function<void(const PromptOnScreen&)>;

    PromptResult Ask(const UiActions& act, char (&buffer)[260]) {
        PromptDriver driver(act);
        return AskNewPassword(nullptr, buffer, sizeof buffer);
    }
};

TEST_F(PasswordMemory, TheSearchFindsAPasswordInMemory) {
    obarchive::WipedBuffer<wchar_t, kLetters> plain;
    for (std::size_t index = 0; index < kLetters; ++index) plain.data[index] = Letter(index);
    EXPECT_GE(TimesInMemory(MaskedBytes(false)), 1);
    SecureZeroMemory(plain.data, sizeof plain.data);
    EXPECT_EQ(TimesInAnyForm(), 0);
}

// As another thread of this process may do in the middle of a search.
TEST_F(PasswordMemory, TheSearchPassesOverMemoryThatIsGivenBackMeanwhile) {
    constexpr std::size_t kPage = 4096;
    auto* const memory = static_cast<std::uint8_t*>(
        VirtualAlloc(nullptr, 3 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_TRUE(memory);
    std::memset(memory, 'x', 3 * kPage);
    MEMORY_BASIC_INFORMATION region{};
    ASSERT_NE(VirtualQuery(memory, &region, sizeof region), 0U);
    ASSERT_EQ(region.RegionSize, 3 * kPage);
    ASSERT_TRUE(VirtualFree(memory + kPage, kPage, MEM_DECOMMIT));
    obtest::MemoryCopy copy;
    const std::uint8_t* const bytes = copy.Of(region);
    const std::string kept(kPage, 'x');
    EXPECT_EQ(std::string(bytes, bytes + 3 * kPage), kept + std::string(kPage, '\0') + kept);
    VirtualFree(memory, 0, MEM_RELEASE);
}

TEST_F(PasswordMemory, NothingIsLeftAfterAPasswordWasGiven) {
    char buffer[260];
    int whileOpen = 0;
    const auto act = [&](const PromptOnScreen& prompt) {
        TypeLetters(prompt, OB_PASSWORD_FIRST);
        TypeLetters(prompt, OB_PASSWORD_REPEAT);
        whileOpen = TimesInAnyForm();
        prompt.Press(IDOK);
    };
    ASSERT_EQ(Ask(act, buffer), PromptResult::Given);
    EXPECT_GE(whileOpen, 2); // one a field
    EXPECT_EQ(std::strlen(buffer), 18U);
    EXPECT_GE(TimesInMemory(MaskedBytes(true)), 1); // the caller's
    SecureZeroMemory(buffer, sizeof buffer);
    EXPECT_EQ(TimesInMemory(MaskedBytes(false)), 0);
    EXPECT_EQ(TimesInMemory(MaskedBytes(true)), 0);
}

TEST_F(PasswordMemory, NothingIsLeftAfterACancelOrOfDeletedText) {
    char buffer[260];
    const auto act = [&](const PromptOnScreen& prompt) {
        TypeLetters(prompt, OB_PASSWORD_FIRST);
        // Deleted as by a user: the field keeps the text for undoing.
        SendMessageW(prompt.Item(OB_PASSWORD_FIRST), EM_SETSEL, 0, -1);
        SendMessageW(prompt.Item(OB_PASSWORD_FIRST), WM_CHAR, VK_BACK, 1);
        TypeLetters(prompt, OB_PASSWORD_REPEAT);
        EXPECT_GE(TimesInAnyForm(), 1);
        prompt.Press(IDCANCEL);
    };
    ASSERT_EQ(Ask(act, buffer), PromptResult::Cancelled);
    EXPECT_EQ(TimesInAnyForm(), 0);
}

TEST_F(PasswordMemory, NothingIsLeftOfAShownPassword) {
    char buffer[260];
    const auto act = [&](const PromptOnScreen& prompt) {
        TypeLetters(prompt, OB_PASSWORD_FIRST);
        SendMessageW(prompt.Item(OB_PASSWORD_SHOW), BM_CLICK, 0, 0);
        UpdateWindow(prompt.Item(OB_PASSWORD_FIRST));
        TypeLetters(prompt, OB_PASSWORD_REPEAT);
        prompt.Press(IDOK);
    };
    ASSERT_EQ(Ask(act, buffer), PromptResult::Given);
    SecureZeroMemory(buffer, sizeof buffer);
    EXPECT_EQ(TimesInAnyForm(), 0);
}

decltype(&HeapFree) realHeapFree = nullptr;
std::atomic<int> freedLetters = 0;

// Counts blocks that the field gives back with the letters in them.
BOOL WINAPI LookAndFree(HANDLE heap, DWORD flags, void* block) {
    const std::vector<std::uint8_t> masked = MaskedBytes(false);
    const SIZE_T size = block ? HeapSize(heap, 0, block) : 0;
    const auto* const bytes = static_cast<const std::uint8_t*>(block);
    for (std::size_t at = 0; size != SIZE_MAX && at + masked.size() <= size; ++at)
        freedLetters += IsAt(bytes + at, masked);
    return realHeapFree(heap, flags, block);
}

// This system's field copies a text that is replaced, and frees the copy unwiped. Most often, but
// not always, what is allocated next overwrites it.
TEST_F(PasswordMemory, TheFieldFreesNoCopyOfAPasswordThatIsWiped) {
    char buffer[260];
    const auto act = [&](const PromptOnScreen& prompt) {
        for (int field : {OB_PASSWORD_FIRST, OB_PASSWORD_REPEAT}) {
            for (int times = 0; times < 20; ++times) TypeLetters(prompt, field);
        }
        prompt.Press(IDCANCEL);
    };
    const obtest::ImportPatch<decltype(HeapFree)> patch("kernelbase.dll", "HeapFree", &LookAndFree,
                                                        GetModuleHandleW(L"user32.dll"));
    ASSERT_TRUE(patch.Ok());
    realHeapFree = patch.Real();
    freedLetters = 0;
    ASSERT_EQ(Ask(act, buffer), PromptResult::Cancelled);
    EXPECT_EQ(freedLetters, 0);
}

TEST_F(PasswordMemory, NothingIsLeftOfARefusedPassword) {
    char buffer[260];
    const auto act = [&](const PromptOnScreen& prompt) {
        for (int field : {OB_PASSWORD_FIRST, OB_PASSWORD_REPEAT}) {
            for (int times = 0; times < 20; ++times) TypeLetters(prompt, field);
        }
        prompt.Press(IDOK);
        EXPECT_TRUE(IsWindow(prompt.Window()));
        prompt.Press(IDCANCEL);
    };
    ASSERT_EQ(Ask(act, buffer), PromptResult::Cancelled);
    EXPECT_EQ(TimesInAnyForm(), 0);
}

TEST_F(PasswordMemory, NothingIsLeftOfASuggestion) {
    char buffer[260];
    std::vector<std::uint8_t> masked;
    const auto act = [&](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        obarchive::WipedBuffer<wchar_t, 260> phrase;
        GetWindowTextW(prompt.Item(OB_PASSWORD_FIRST), phrase.data, 260);
        for (const wchar_t* at = phrase.data; *at; ++at) {
            masked.push_back(static_cast<std::uint8_t>(~*at));
            masked.push_back(0xFF);
        }
        EXPECT_GE(TimesInMemory(masked), 2);
        prompt.Press(IDOK);
    };
    ASSERT_EQ(Ask(act, buffer), PromptResult::Given);
    EXPECT_EQ(std::strlen(buffer) * 2, masked.size());
    EXPECT_EQ(TimesInMemory(masked), 0);
}

} // namespace
