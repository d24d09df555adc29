// What the tests of the personal data remover build their samples from.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "services/transforms/personal/PersonalData.h"

namespace samples {

using namespace std::string_literals;
using namespace std::string_view_literals;
using transforms::CleanOutcome;
using transforms::Finding;
using transforms::FindingKind;

// A file, or a part of one. Characters are its bytes.
using Sample = std::string;

// A text that a sample has in a place that is cleaned, and a clean file nowhere.
inline constexpr std::string_view kCanary = "CANARY";

inline std::span<const std::byte> BytesOf(const Sample& sample) {
    return std::as_bytes(std::span(sample));
}

inline Sample SampleOf(const std::vector<std::byte>& bytes) {
    return Sample(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

inline Sample Big16(unsigned value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}
inline Sample Big32(unsigned value) { return Big16(value >> 16) + Big16(value & 0xFFFF); }
inline Sample Little16(unsigned value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}
inline Sample Little32(unsigned value) { return Little16(value & 0xFFFF) + Little16(value >> 16); }

inline bool HasCanary(const Sample& sample) { return sample.find(kCanary) != Sample::npos; }

struct Cleaned {
    CleanOutcome outcome;
    Sample file;
    std::vector<Finding> removed;
};

inline Cleaned Clean(const Sample& sample) {
    const auto result = transforms::RemovePersonalData(BytesOf(sample));
    return {result.outcome, SampleOf(result.bytes), result.removed};
}

// Whatever the bytes are: a result is clean, equal input gives equal bytes, cleaning it again
// changes nothing, and what is found is what is removed.
inline void CheckProperties(const Sample& sample) {
    const auto found = transforms::FindPersonalData(BytesOf(sample));
    const Cleaned once = Clean(sample);
    if (once.outcome == CleanOutcome::Damaged) {
        EXPECT_EQ(found, (std::vector<Finding>{{FindingKind::Unreadable, 1}}));
        EXPECT_TRUE(once.file.empty());
        return;
    }
    EXPECT_EQ(found, once.removed);
    if (once.outcome == CleanOutcome::NotSupported) {
        EXPECT_TRUE(once.file.empty());
        return;
    }
    EXPECT_EQ(once.outcome == CleanOutcome::NothingFound, found.empty());
    EXPECT_TRUE(!found.empty() || once.file == sample);
    EXPECT_EQ(Clean(sample).file, once.file);
    const Cleaned twice = Clean(once.file);
    EXPECT_EQ(twice.outcome, CleanOutcome::NothingFound);
    EXPECT_EQ(twice.file, once.file);
    EXPECT_TRUE(transforms::FindPersonalData(BytesOf(once.file)).empty());
}

// The properties, and the exact result.
inline void ExpectCleaned(const Sample& sample, const Sample& expected,
                          const std::vector<Finding>& removed) {
    const Cleaned cleaned = Clean(sample);
    EXPECT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(cleaned.file, expected);
    EXPECT_EQ(cleaned.removed, removed);
    EXPECT_FALSE(HasCanary(cleaned.file));
    CheckProperties(sample);
}

inline void ExpectUnchanged(const Sample& sample) {
    EXPECT_EQ(Clean(sample).outcome, CleanOutcome::NothingFound);
    EXPECT_EQ(Clean(sample).file, sample);
    CheckProperties(sample);
}

inline void ExpectDamaged(const Sample& sample) {
    EXPECT_EQ(Clean(sample).outcome, CleanOutcome::Damaged);
    CheckProperties(sample);
}

// Every beginning of a file that is shorter than `whole` is damaged, once its format is known.
inline void ExpectDamagedWhenCut(const Sample& sample, std::size_t known, std::size_t whole) {
    for (std::size_t size = 0; size < whole; ++size) {
        const Sample cut(sample, 0, size);
        const CleanOutcome expected =
            size < known ? CleanOutcome::NotSupported : CleanOutcome::Damaged;
        EXPECT_EQ(Clean(cut).outcome, expected) << size << " bytes";
    }
}

// Bytes changed, removed, repeated and swapped at random places.
inline Sample Mutated(const Sample& sample, std::mt19937& random) {
    Sample mutated = sample;
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (std::size_t changes = 1 + below(4); changes != 0 && !mutated.empty(); --changes) {
        const std::size_t at = below(mutated.size());
        const std::size_t size = below(std::min<std::size_t>(mutated.size() - at, 24)) + 1;
        switch (below(4)) {
        case 0:
            mutated[at] = static_cast<char>(random());
            break;
        case 1:
            mutated.erase(at, size);
            break;
        case 2:
            mutated.insert(below(mutated.size()), mutated.substr(at, size));
            break;
        default:
            mutated[at] = static_cast<char>(mutated[at] ^ 1 << below(8));
        }
    }
    return mutated;
}

inline void CheckMutations(const Sample& sample, int rounds = 3000) {
    std::mt19937 random(static_cast<unsigned>(sample.size()));
    for (int round = 0; round < rounds; ++round) {
        const Sample mutated = Mutated(sample, random);
        CheckProperties(mutated);
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "round " << round << " of a sample of " << sample.size() << " bytes";
            return;
        }
    }
}

} // namespace samples
