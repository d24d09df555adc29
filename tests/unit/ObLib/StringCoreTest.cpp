#include "ObLib/Src/StringCore.h"

#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::StringCore;

const std::wstring kShort(12, L's');
const std::wstring kLong(13, L'l');

std::unique_ptr<StringCore> Core(const std::wstring& text) {
    return std::make_unique<StringCore>(text.c_str(), text.size());
}
std::unique_ptr<StringCore> CopyOf(const StringCore& core) {
    return std::make_unique<StringCore>(core);
}
std::wstring TextOf(const StringCore& core) { return core.IsNull() ? L"(null)" : core.text; }

// A core beside memory that stays readable after it: to see what was wiped.
struct Kept {
    alignas(StringCore) unsigned char memory[sizeof(StringCore)];
    StringCore* core;
    explicit Kept(const std::wstring& text)
        : core(::new (memory) StringCore(text.c_str(), text.size())) {}
    bool Contains(wchar_t unit) const {
        const auto* const units = reinterpret_cast<const wchar_t*>(memory);
        return std::wmemchr(units, unit, sizeof memory / sizeof(wchar_t)) != nullptr;
    }
};

TEST(StringCore, ANewOneIsNull) {
    const StringCore core;
    EXPECT_TRUE(core.IsNull());
    EXPECT_EQ(0u, core.length);
    EXPECT_EQ(0, core.secure);
    EXPECT_EQ(nullptr, core.buffer.data);
}

TEST(StringCore, TwelveUnitsAreInlineAndThirteenGoToTheHeap) {
    const auto inside = Core(kShort);
    EXPECT_TRUE(inside->IsInline());
    EXPECT_EQ(0, inside->ShareCount());
    EXPECT_EQ(L'\0', inside->inlineText[12]);
    const auto outside = Core(kLong);
    EXPECT_TRUE(outside->IsShared());
    EXPECT_EQ(1, outside->ShareCount());
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(outside->text) % 4);
}

TEST(StringCore, ACopyCopiesAnInlineTextAndSharesABlock) {
    const auto inside = Core(kShort);
    const auto insideCopy = CopyOf(*inside);
    EXPECT_EQ(insideCopy->inlineText, insideCopy->text);
    EXPECT_EQ(kShort, TextOf(*insideCopy));
    const auto outside = Core(kLong);
    {
        const auto copy = CopyOf(*outside);
        EXPECT_EQ(outside->text, copy->text);
        EXPECT_EQ(2, outside->ShareCount());
    }
    EXPECT_EQ(1, outside->ShareCount());
    EXPECT_TRUE(CopyOf(StringCore())->IsNull());
}

TEST(StringCore, ACopyTakesTheSecureFlagAndTheBuffer) {
    const auto core = Core(kLong);
    core->secure = 1;
    core->buffer.Resize(3, ObLib::kResizeClears);
    const auto copy = CopyOf(*core);
    EXPECT_EQ(1, copy->secure);
    EXPECT_EQ(3u, copy->buffer.size);
    EXPECT_NE(core->buffer.data, copy->buffer.data);
}

TEST(StringCore, NoBlockIsSharedMoreThan32767Times) {
    const auto first = Core(kLong);
    std::vector<std::unique_ptr<StringCore>> copies;
    for (int count = 0; count < 40000; ++count) copies.push_back(CopyOf(*first));
    EXPECT_EQ(32767, first->ShareCount());
    EXPECT_EQ(first->text, copies[32765]->text);
    for (std::size_t index = 32766; index < copies.size(); ++index) {
        ASSERT_NE(first->text, copies[index]->text);
        ASSERT_EQ(1, copies[index]->ShareCount());
        ASSERT_EQ(kLong, TextOf(*copies[index]));
    }
    copies.erase(copies.begin());
    EXPECT_EQ(first->text, CopyOf(*first)->text) << "one place is free again";
}

TEST(StringCore, MakeUniqueLeavesASharedBlockToTheOthers) {
    const auto core = Core(kLong);
    const auto copy = CopyOf(*core);
    copy->MakeUnique();
    EXPECT_NE(core->text, copy->text);
    EXPECT_EQ(1, core->ShareCount());
    EXPECT_EQ(1, copy->ShareCount());
    EXPECT_EQ(kLong, TextOf(*copy));
}

TEST(StringCore, MakeUniqueLeavesWhatIsUniqueWhereItIs) {
    const auto outside = Core(kLong);
    const wchar_t* const block = outside->text;
    outside->MakeUnique();
    EXPECT_EQ(block, outside->text);
    const auto inside = Core(kShort);
    inside->MakeUnique();
    EXPECT_TRUE(inside->IsInline());
    StringCore().MakeUnique();
}

TEST(StringCore, SetLengthBelowThirteenMovesTheTextInsideAndLetsTheBlockGo) {
    const auto core = Core(kLong);
    const auto copy = CopyOf(*core);
    copy->SetLength(12);
    EXPECT_TRUE(copy->IsInline());
    EXPECT_EQ(kLong.substr(0, 12), TextOf(*copy));
    EXPECT_EQ(12u, copy->length);
    EXPECT_EQ(1, core->ShareCount());
    copy->SetLength(0);
    EXPECT_EQ(L"", TextOf(*copy));
}

TEST(StringCore, SetLengthFromThirteenOnMakesANewBlock) {
    const auto core = Core(kShort);
    core->SetLength(13);
    EXPECT_TRUE(core->IsShared());
    EXPECT_EQ(0, std::wmemcmp(core->text, kShort.c_str(), 12));
    EXPECT_EQ(L'\0', core->text[13]);
    const auto copy = CopyOf(*core);
    core->SetLength(20);
    EXPECT_NE(copy->text, core->text);
    EXPECT_EQ(1, core->ShareCount());
    EXPECT_EQ(1, copy->ShareCount());
    core->SetLength(13);
    EXPECT_TRUE(core->IsShared());
}

TEST(StringCore, ATextOfNoPossibleLengthIsExhaustedMemoryAndChangesNothing) {
    const auto core = Core(kLong);
    // 2 * 0x3FFFFFFD + 6 is the first block size over 0x7FFFFFFF.
    for (const std::uint64_t units : {0x3FFFFFFDull, 0x7FFFFFFFull, 0x80000000ull, ~0ull})
        EXPECT_THROW(core->SetLength(units), std::bad_alloc) << units;
    EXPECT_EQ(kLong, TextOf(*core));
    EXPECT_EQ(13u, core->length);
}

TEST(StringCore, SwapExchangesEveryPairOfKinds) {
    const wchar_t* const texts[] = {nullptr,
                                    L"",
                                    L"short",
                                    L"another one",
                                    L"one that is on the heap",
                                    L"and another that is on the heap"};
    const auto make = [](const wchar_t* text) {
        return text != nullptr ? Core(text) : std::make_unique<StringCore>();
    };
    for (const wchar_t* const one : texts) {
        for (const wchar_t* const other : texts) {
            const auto first = make(one);
            const auto second = make(other);
            const auto before = TextOf(*second);
            const auto beforeFirst = TextOf(*first);
            const wchar_t* const block = first->IsShared() ? first->text : nullptr;
            first->Swap(*second);
            EXPECT_EQ(before, TextOf(*first));
            EXPECT_EQ(beforeFirst, TextOf(*second));
            EXPECT_EQ(first->IsNull() ? 0 : before.size(), first->length);
            EXPECT_TRUE(block == nullptr || block == second->text) << "blocks move by pointer";
            for (const auto* const core : {first.get(), second.get()})
                EXPECT_EQ(!core->IsNull() && core->length <= 12, core->IsInline());
        }
    }
}

TEST(StringCore, SwapMakesBothSecureAndExchangesTheBuffers) {
    const auto one = Core(kShort);
    const auto other = Core(kLong);
    one->secure = 1;
    one->buffer.Resize(7, ObLib::kResizeClears);
    one->Swap(*other);
    EXPECT_EQ(1, one->secure);
    EXPECT_EQ(1, other->secure);
    EXPECT_EQ(0u, one->buffer.size);
    EXPECT_EQ(7u, other->buffer.size);
}

TEST(StringCore, ASecureInlineTextIsWipedBeforeItIsReleased) {
    Kept secret(L"XXXXXXXXXXXX");
    ASSERT_TRUE(secret.Contains(L'X'));
    secret.core->secure = 1;
    secret.core->~StringCore();
    EXPECT_FALSE(secret.Contains(L'X'));
    Kept open(L"XXXXXXXXXXXX");
    open.core->~StringCore();
    EXPECT_TRUE(open.Contains(L'X')) << "the test sees what isn't wiped";
}

TEST(StringCore, ASecureTextThatMovesToTheHeapLeavesNothingInside) {
    Kept secret(L"XXXXXXXXXXXX");
    secret.core->secure = 1;
    secret.core->SetLength(40);
    EXPECT_FALSE(secret.Contains(L'X'));
    secret.core->~StringCore();
}

// What a released block contained.
bool g_sawSecret = false;
void* AllocateForTest(std::size_t bytes) { return std::malloc(bytes); }
void ReleaseAndLook(void* block) {
    g_sawSecret = *static_cast<char*>(block) == 'X';
    std::free(block);
}

TEST(StringCore, TheBufferOfASecureStringIsWipedToo) {
    for (const std::uint8_t secure : {0, 1}) {
        StringCore core;
        core.buffer = ObLib::ObBuffer(&AllocateForTest, &ReleaseAndLook);
        core.buffer.Resize(4, ObLib::kResizeClears);
        *static_cast<char*>(core.buffer.data) = 'X';
        core.secure = secure;
        g_sawSecret = false;
        {
            StringCore end;
            end.Swap(core);
        }
        EXPECT_EQ(secure == 0, g_sawSecret);
    }
}

TEST(StringCore, ACountBelowZeroEndsTheProcess) {
    EXPECT_FATAL_ASSERT(
        {
            const auto core = Core(kLong);
            reinterpret_cast<std::int32_t*>(core->text)[-1] = 0;
        },
        "StringCore");
}

TEST(StringCore, AFailedCopyOfATextEndsTheProcessAndACutOneDoesNot) {
    ObLib::CheckTextCopy(0);
    ObLib::CheckTextCopy(80);
    EXPECT_FATAL_ASSERT(ObLib::CheckTextCopy(34), "StringCore");
    EXPECT_FATAL_ASSERT(ObLib::CheckTextCopy(22), "StringCore");
    EXPECT_FATAL_ASSERT(StringCore(nullptr, 3), "StringCore");
}

} // namespace
