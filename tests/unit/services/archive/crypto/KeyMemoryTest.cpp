// After an encrypting run neither the password nor a key that was made of it is anywhere in the
// memory of the process. The test knows them under a mask only, and makes the keys anew of the
// salts in the zip.
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "services/archive/crypto/Ae2.h"
#include "services/archive/crypto/Ae2Algorithms.h"
#include "services/archive/crypto/Pbkdf2Simd.h"
#include "tests/support/ReadableMemory.h"
#include "tests/unit/services/archive/crypto/MaskedKeys.h"
#include "tests/unit/services/archive/zip/EngineFixture.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace obtest {
namespace {

using obarchive::Secret;
using obarchive::ZipResult;

constexpr std::uint8_t kMask = 0xA5;
constexpr std::uint8_t kMaskedPassword[] = {
    'R' ^ kMask, 'z' ^ kMask, '7' ^ kMask, '!' ^ kMask, 'k' ^ kMask, 'B' ^ kMask, 'V' ^ kMask,
    'x' ^ kMask, '3' ^ kMask, 'j' ^ kMask, 'w' ^ kMask, 'P' ^ kMask, 'e' ^ kMask, '9' ^ kMask};

// What is looked for, under the mask.
using Masked = std::vector<std::uint8_t>;

// Volatile, or the compiler may put the plain bytes together.
std::uint8_t Unmask(std::uint8_t byte) {
    const volatile std::uint8_t mask = kMask;
    return byte ^ mask;
}

Secret Password() {
    obarchive::WipedBuffer<char, sizeof kMaskedPassword + 1> text;
    for (std::size_t index = 0; index < sizeof kMaskedPassword; ++index) {
        text.data[index] = static_cast<char>(Unmask(kMaskedPassword[index]));
    }
    return Secret(text.data);
}

// `with` is what each byte may have been combined with, as an authentication code does.
bool StandsAt(const std::uint8_t* at, const Masked& masked, std::uint8_t with) {
    for (std::size_t index = 0; index < masked.size(); ++index) {
        if (at[index] != (Unmask(masked[index]) ^ with)) return false;
    }
    return true;
}

int TimesIn(const std::uint8_t* start, const std::uint8_t* end, const std::vector<Masked>& wanted) {
    constexpr std::uint8_t kForms[] = {0, 0x36, 0x5C};
    // By first byte, so that most of the memory is passed over at once.
    std::array<std::vector<std::pair<const Masked*, std::uint8_t>>, 256> byFirst;
    for (const Masked& masked : wanted) {
        for (const std::uint8_t form : kForms) {
            byFirst[Unmask(masked[0]) ^ form].push_back({&masked, form});
        }
    }
    int times = 0;
    for (const std::uint8_t* at = start; at < end; ++at) {
        for (const auto& [masked, form] : byFirst[*at]) {
            if (at + masked->size() <= end) times += StandsAt(at, *masked, form);
        }
    }
    return times;
}

// How often any of them is in the readable memory of this process, in the clear.
int TimesInMemory(const std::vector<Masked>& wanted) {
    int times = 0;
    obtest::ForEachReadableRegion(
        [&](const MEMORY_BASIC_INFORMATION& region, const std::uint8_t* start) {
            times += TimesIn(start, start + region.RegionSize, wanted);
        });
    return times;
}

const std::vector<Masked> kPassword{Masked(std::begin(kMaskedPassword), std::end(kMaskedPassword))};

std::uint8_t PasswordByteAt(std::size_t at) { return Unmask(kMaskedPassword[at]); }

// The bytes of each word turned round, as words are computed with.
Masked AsWords(std::span<const std::uint8_t> masked) {
    Masked words;
    for (std::size_t at = 0; at + 4 <= masked.size(); at += 4) {
        for (std::size_t byte = 4; byte-- > 0;) words.push_back(masked[at + byte]);
    }
    return words;
}

// A word in four lanes.
Masked InLanes(std::span<const std::uint8_t> word) {
    Masked lanes;
    for (int lane = 0; lane < 4; ++lane) lanes.insert(lanes.end(), word.begin(), word.end());
    return lanes;
}

// What a derivation works with: the password's words and the states that follow from it, one like
// the other in each lane, and the keys, whose words may be one after the other or by SIMD lanes.
std::vector<Masked> LanesOfThePassword() {
    const Masked password = AsWords(kMaskedPassword);
    std::vector<Masked> lanes{password};
    for (std::size_t at = 0; at + 4 <= password.size(); at += 4) {
        lanes.push_back(InLanes(std::span(password).subspan(at, 4)));
    }
    for (const std::uint32_t word : MaskedPads(sizeof kMaskedPassword, PasswordByteAt, kMask)) {
        std::uint8_t bytes[sizeof word];
        std::memcpy(bytes, &word, sizeof word);
        lanes.push_back(InLanes(bytes));
    }
    return lanes;
}

std::vector<Masked> LanesOfTheKeys(const Masked& keys) {
    constexpr std::size_t kHash = 20;
    std::vector<Masked> lanes;
    for (std::size_t at = 0; at + 16 <= keys.size(); at += 16) {
        lanes.push_back(Masked(keys.begin() + static_cast<std::ptrdiff_t>(at),
                               keys.begin() + static_cast<std::ptrdiff_t>(at + 16)));
        lanes.push_back(AsWords(lanes.back()));
    }
    const Masked words = AsWords(keys);
    for (std::size_t word = 0; word < kHash; word += 4) {
        Masked side;
        for (std::size_t at = word; at + 4 <= words.size(); at += kHash) {
            side.insert(side.end(), words.begin() + static_cast<std::ptrdiff_t>(at),
                        words.begin() + static_cast<std::ptrdiff_t>(at + 4));
        }
        if (side.size() >= 8) lanes.push_back(side);
    }
    return lanes;
}

class KeyMemoryTest : public EngineFixture {
protected:
    void SetUp() override {
        Add(L"small.txt", EngineProse(40'000));
        Add(L"empty.txt", "");
        Add(L"large.txt", EngineProse(5'000'000));
        Add(L"stored.bin", EngineNoise(5'000'000));
        job_.files.push_back(in_.File(L"copy of stored.bin", EngineNoise(5'000'000)));
        job_.duplicateReferences = true;
    }

    // The halves of both keys of each entry: a half is what a platform handles in one piece.
    std::vector<Masked> KeysOfTheZip(std::size_t keySize) {
        std::vector<Masked> keys;
        for (const RawEntry& entry : ReadRawEntries(job_.target)) {
            const std::span front(reinterpret_cast<const std::uint8_t*>(entry.packed.data()),
                                  keySize / 2 + 2);
            const Masked made = MaskedKeys(sizeof kMaskedPassword, PasswordByteAt,
                                           front.first(keySize / 2), 2 * keySize + 2, kMask);
            // The verifier after the salt shows that these are the zip's own.
            EXPECT_EQ(Unmask(made[2 * keySize]), front[keySize / 2]);
            EXPECT_EQ(Unmask(made[2 * keySize + 1]), front[keySize / 2 + 1]);
            for (auto at = made.begin(); at + 16 <= made.end(); at += 16) {
                keys.push_back(Masked(at, at + 16));
            }
        }
        return keys;
    }

    void ExpectCleanMemory(std::size_t keySize) {
        EXPECT_EQ(TimesInMemory(kPassword), 0);
        const std::vector<Masked> keys = KeysOfTheZip(keySize);
        EXPECT_EQ(keys.size(), 5 * 2 * keySize / 16);
        EXPECT_EQ(TimesInMemory(keys), 0);
        EXPECT_EQ(TimesInMemory(kPassword), 0);
    }
};

TEST_F(KeyMemoryTest, TheSearchFindsWhatIsThere) {
    {
        const Secret password = Password();
        EXPECT_GE(TimesInMemory(kPassword), 1);
    }
    EXPECT_EQ(TimesInMemory(kPassword), 0);
    const std::vector<std::uint8_t> padded(16, 0x3D ^ 0x5C);
    EXPECT_GE(TimesInMemory({Masked(16, 0x3D ^ kMask)}), 1) << padded.size();
}

TEST_F(KeyMemoryTest, NothingIsLeftAfterARun) {
    for (const auto& [method, keySize] : {std::pair{4U, 16U}, std::pair{8U, 32U}}) {
        job_.encryptionMethod = method;
        job_.password = Password();
        ASSERT_EQ(Run(), ZipResult::Ok);
        job_.password = {};
        ExpectCleanMemory(keySize);
        DeleteFileW(job_.target.c_str());
    }
}

// Searched at once, on the thread that derived, before its stack is used for anything else.
class Pbkdf2SimdMemoryTest : public testing::Test {
protected:
    void ExpectNothingLeftOf(std::size_t keySize, std::size_t count) {
        std::vector<Masked> wanted = LanesOfThePassword();
        std::vector<obarchive::Ae2Keys> keys(count);
        for (obarchive::Ae2Keys& one : keys) {
            one.keySize = keySize;
            one.salt.fill(static_cast<std::uint8_t>(&one - keys.data() + 1));
            const Masked made =
                MaskedKeys(sizeof kMaskedPassword, PasswordByteAt,
                           std::span(one.salt).first(one.SaltSize()), one.DerivedSize(), kMask);
            const std::vector<Masked> lanes = LanesOfTheKeys(made);
            wanted.insert(wanted.end(), lanes.begin(), lanes.end());
        }
        {
            const Secret password = Password();
            algorithms_->Derive(password, keys);
        }
        EXPECT_GE(TimesInMemory(wanted), 1) << "what is searched for is what was made";
        keys.clear();
        EXPECT_EQ(TimesInMemory(wanted), 0) << keySize << " " << count;
    }

    const std::unique_ptr<obarchive::Ae2Algorithms> algorithms_ =
        MakeAe2Algorithms(obarchive::Cryptography::Library);
};

TEST_F(Pbkdf2SimdMemoryTest, NothingIsLeftOfOneKey) {
    ExpectNothingLeftOf(16, 1);
    ExpectNothingLeftOf(32, 1);
}

TEST_F(Pbkdf2SimdMemoryTest, NothingIsLeftOfAsManyAsAreMadeAtOnce) {
    ExpectNothingLeftOf(16, algorithms_->KeysAtOnce(16));
    ExpectNothingLeftOf(32, algorithms_->KeysAtOnce(32));
}

// The registers that a call may leave something in, as they are at this moment.
using Registers = std::array<std::array<std::uint8_t, 16>, 6>;
[[gnu::always_inline]] inline void Look(Registers& registers) {
    asm volatile("movdqu %%xmm0, (%0)\n\t"
                 "movdqu %%xmm1, 16(%0)\n\t"
                 "movdqu %%xmm2, 32(%0)\n\t"
                 "movdqu %%xmm3, 48(%0)\n\t"
                 "movdqu %%xmm4, 64(%0)\n\t"
                 "movdqu %%xmm5, 80(%0)"
                 :
                 : "r"(registers.data())
                 : "memory");
}

TEST(KeyRegistersTest, NothingIsLeftAfterTheWorkWithKeys) {
    const Registers empty{};
    Registers seen;
    const auto algorithms = MakeAe2Algorithms(obarchive::Cryptography::Library);
    const Secret password = Password();
    obarchive::Ae2Keys keys;
    keys.keySize = 16;
    algorithms->Derive(password, std::span(&keys, 1));
    Look(seen);
    EXPECT_TRUE(seen == empty) << "deriving";
    const auto primitives = algorithms->Begin(keys);
    std::array<std::uint8_t, 64> blocks{};
    primitives->EncryptBlocks(blocks);
    Look(seen);
    EXPECT_TRUE(seen == empty) << "the cipher";
    EXPECT_TRUE((blocks != std::array<std::uint8_t, 64>{}));
    obarchive::Ae2Keys copy(keys);
    Look(seen);
    EXPECT_TRUE(seen == empty) << "a copy";
    EXPECT_EQ(copy.derived, keys.derived);
}

// Which only lanes that rotate use.
TEST(KeyRegistersTest, TheUpperOnesAreClearedToo) {
    if (!obarchive::HasEightLanesRotating()) GTEST_SKIP() << "this processor has none";
    obarchive::Pbkdf2Simd lanes{};
    lanes.iterations = 2;
    lanes.begin[0][0] = 1;
    std::array<std::array<std::uint8_t, 32>, 16> seen;
    obarchive::DeriveEightLanesRotating(lanes);
    asm volatile("vmovdqu32 %%ymm16, (%0)\n\t"
                 "vmovdqu32 %%ymm17, 32(%0)\n\t"
                 "vmovdqu32 %%ymm18, 64(%0)\n\t"
                 "vmovdqu32 %%ymm19, 96(%0)\n\t"
                 "vmovdqu32 %%ymm20, 128(%0)\n\t"
                 "vmovdqu32 %%ymm21, 160(%0)\n\t"
                 "vmovdqu32 %%ymm22, 192(%0)\n\t"
                 "vmovdqu32 %%ymm23, 224(%0)\n\t"
                 "vmovdqu32 %%ymm24, 256(%0)\n\t"
                 "vmovdqu32 %%ymm25, 288(%0)\n\t"
                 "vmovdqu32 %%ymm26, 320(%0)\n\t"
                 "vmovdqu32 %%ymm27, 352(%0)\n\t"
                 "vmovdqu32 %%ymm28, 384(%0)\n\t"
                 "vmovdqu32 %%ymm29, 416(%0)\n\t"
                 "vmovdqu32 %%ymm30, 448(%0)\n\t"
                 "vmovdqu32 %%ymm31, 480(%0)"
                 :
                 : "r"(seen.data())
                 : "memory");
    EXPECT_TRUE((seen == std::array<std::array<std::uint8_t, 32>, 16>{}));
    EXPECT_NE(lanes.result[0][0], lanes.result[1][0]);
}

} // namespace
} // namespace obtest
