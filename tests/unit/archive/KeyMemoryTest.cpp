// After an encrypting run neither the password nor a key that was made of it stands anywhere in the
// memory of the process. The test knows them under a mask only, and makes the keys anew of the
// salts in the zip.
#include <array>
#include <cstdint>
#include <span>

#include "tests/unit/archive/EngineFixture.h"
#include "tests/unit/archive/MaskedKeys.h"
#include "tests/unit/archive/ZipReader.h"

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

bool IsReadable(const MEMORY_BASIC_INFORMATION& region) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY |
                                PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) &&
           !(region.Protect & (PAGE_GUARD | PAGE_NOACCESS));
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

// How often any of them stands in the readable memory of this process, in the clear.
int TimesInMemory(const std::vector<Masked>& wanted) {
    int times = 0;
    const std::uint8_t* at = nullptr;
    MEMORY_BASIC_INFORMATION region;
    while (VirtualQuery(at, &region, sizeof region) == sizeof region) {
        const auto* const start = static_cast<const std::uint8_t*>(region.BaseAddress);
        at = start + region.RegionSize;
        if (IsReadable(region)) times += TimesIn(start, at, wanted);
    }
    return times;
}

const std::vector<Masked> kPassword{Masked(std::begin(kMaskedPassword), std::end(kMaskedPassword))};

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
            const Masked made = MaskedKeys(
                sizeof kMaskedPassword, [](std::size_t at) { return Unmask(kMaskedPassword[at]); },
                front.first(keySize / 2), 2 * keySize + 2, kMask);
            // The check behind the salt tells that these are the zip's own.
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

TEST_F(KeyMemoryTest, TheSearchFindsWhatStandsThere) {
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
        ASSERT_EQ(Run(), ZipResult::Stands);
        job_.password = {};
        ExpectCleanMemory(keySize);
        DeleteFileW(job_.target.c_str());
    }
}

} // namespace
} // namespace obtest
