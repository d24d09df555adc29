// Encrypted PDFs: what opens them, that a cleaned one is encrypted as before, and what is refused.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/unit/services/transforms/documents/DocumentSamples.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

using namespace samples;

namespace {

std::string Plain() { return OnePage("/PieceInfo <</A (CANARY)>>").File(); }

CleanedDocument CleanWith(const std::string& file, std::string_view password) {
    const auto result = transforms::CleanFile(BytesOf(file), {nullptr, password});
    return {result.outcome, SampleOf(result.bytes), result.removed, result.stays};
}

struct Encryption {
    int revision = 0, permissions = 0, version = 0;
    bool opensForTheOwner = false, opensForTheUser = false;
    bool operator==(const Encryption&) const = default;
};

Encryption EncryptionOf(const std::string& file, const char* password) {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.processMemoryFile("encrypted", file.data(), file.size(), password);
    Encryption found;
    QPDF::encryption_method_e streams{}, strings{}, files{};
    EXPECT_TRUE(
        pdf.isEncrypted(found.revision, found.permissions, found.version, streams, strings, files));
    found.opensForTheOwner = pdf.ownerPasswordMatched();
    found.opensForTheUser = pdf.userPasswordMatched();
    return found;
}

bool Opens(const std::string& file, const char* password) {
    try {
        EncryptionOf(file, password);
        return true;
    } catch (const QPDFExc&) {
        return false;
    }
}

class PdfEncryption : public testing::TestWithParam<Cipher> {
protected:
    const std::string file_ = Encrypted(Plain(), {GetParam()});
};

TEST_P(PdfEncryption, OpensWithEitherPasswordAndNoOther) {
    EXPECT_EQ(CleanDocument(file_).outcome, CleanOutcome::Encrypted);
    EXPECT_EQ(CleanWith(file_, "Secret").outcome, CleanOutcome::Encrypted);
    EXPECT_EQ(CleanWith(file_, "secret").outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CleanWith(file_, "owner").outcome, CleanOutcome::Cleaned);
}

TEST_P(PdfEncryption, IsKeptWithItsPasswordsAndPermissions) {
    const std::string cleaned = CleanWith(file_, "secret").file;
    for (const char* password : {"secret", "owner"}) {
        EXPECT_EQ(EncryptionOf(cleaned, password), EncryptionOf(file_, password));
    }
    EXPECT_FALSE(Opens(cleaned, ""));
    EXPECT_FALSE(Opens(cleaned, "Secret"));
    EXPECT_EQ(cleaned.find("KEPT"), std::string::npos);
}

TEST_P(PdfEncryption, HidesNoPersonalData) {
    const CleanedDocument cleaned = CleanWith(file_, "secret");
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::PrivateData));
    EXPECT_NE(Unpacked(file_, "secret").find(kCanary), std::string::npos);
    const std::string unpacked = Unpacked(cleaned.file, "secret");
    EXPECT_EQ(unpacked.find(kCanary), std::string::npos);
    EXPECT_NE(unpacked.find(kKept), std::string::npos);
}

TEST_P(PdfEncryption, GivesEqualResultsAndLeavesThemAsTheyAre) {
    const CleanedDocument once = CleanWith(file_, "secret");
    EXPECT_TRUE(CleanWith(file_, "secret").file == once.file);
    EXPECT_TRUE(CleanWith(file_, "owner").file == once.file);
    const CleanedDocument twice = CleanWith(once.file, "secret");
    EXPECT_EQ(twice.outcome, CleanOutcome::NothingFound);
    EXPECT_TRUE(twice.file == once.file);
    EXPECT_TRUE(transforms::FindInFile(BytesOf(once.file), {nullptr, "secret"}).empty());
}

TEST_P(PdfEncryption, OfDifferentContentSharesNoRandomBytes) {
    if (GetParam() < Cipher::Aes128) GTEST_SKIP() << "a cipher without random bytes";
    const auto other = OnePage("/PieceInfo <</A (CANARY)>> /Lang (en)").File();
    const std::string one = CleanWith(file_, "secret").file;
    const std::string two = CleanWith(Encrypted(other, {GetParam()}), "secret").file;
    const auto content = [](const std::string& file) {
        return file.substr(file.find("stream\n", file.find("4 0 obj")) + 7, 16);
    };
    EXPECT_NE(content(one), content(two));
}

TEST_P(PdfEncryption, ThatForbidsChangesNeedsTheOwnersPassword) {
    const std::string file = Encrypted(Plain(), {GetParam(), "secret", "owner", false});
    EXPECT_EQ(CleanDocument(file).outcome, CleanOutcome::Encrypted);
    EXPECT_EQ(CleanWith(file, "secret").outcome, CleanOutcome::Locked);
    const CleanedDocument cleaned = CleanWith(file, "owner");
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(EncryptionOf(cleaned.file, "secret"), EncryptionOf(file, "secret"));
}

TEST_P(PdfEncryption, ThatOpensForEverybodyNeedsNoPasswordUnlessItForbidsChanges) {
    EXPECT_EQ(CleanDocument(Encrypted(Plain(), {GetParam(), "", "owner", true})).outcome,
              CleanOutcome::Cleaned);
    const std::string file = Encrypted(Plain(), {GetParam(), "", "owner", false});
    EXPECT_EQ(CleanDocument(file).outcome, CleanOutcome::Locked);
    EXPECT_EQ(CleanWith(file, "Owner").outcome, CleanOutcome::Encrypted);
    const CleanedDocument cleaned = CleanWith(file, "owner");
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_TRUE(Opens(cleaned.file, ""));
}

TEST_P(PdfEncryption, TakesPasswordsThatAreNotAscii) {
    constexpr char kUtf8[] = "p\xC3\xA4sse";
    const bool isUtf8 = GetParam() >= Cipher::Aes256Old;
    const std::string stored = isUtf8 ? kUtf8 : "p\xE4sse"; // as older programs write it
    const std::string file = Encrypted(Plain(), {GetParam(), stored});
    EXPECT_EQ(CleanWith(file, kUtf8).outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CleanWith(file, "p\xC3\xB6sse").outcome, CleanOutcome::Encrypted);
}

// Another maker may leave the key's length out from the fourth version on.
TEST_P(PdfEncryption, NeedsNoLengthOfItsKeyWhereTheCipherGivesIt) {
    std::string file = file_;
    const std::size_t at = file.rfind("/Encrypt");
    ASSERT_NE(at, file.npos);
    const bool isInFilters = file.find("/CF ") != file.npos;
    for (const char* length : {"/Length 128", "/Length 256"}) {
        const std::size_t found = file.rfind(length);
        if (isInFilters && found != file.npos) file.replace(found, 11, 11, ' ');
    }
    EXPECT_EQ(CleanWith(file, "secret").outcome, CleanOutcome::Cleaned);
}

TEST_P(PdfEncryption, ThatIsDamagedGivesACleanFileOrARefusal) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::string changed = file_;
        changed[random() % changed.size()] ^= static_cast<char>(1u << random() % 8);
        const CleanedDocument cleaned = CleanWith(changed, "secret");
        if (cleaned.outcome != CleanOutcome::Cleaned) continue;
        EXPECT_EQ(CleanWith(cleaned.file, "secret").outcome, CleanOutcome::NothingFound);
    }
}

TEST(PdfEncryptionVersion, IsThatOfTheResultFromTheFirstTimeOn) {
    std::string file = Encrypted(Plain());
    file.replace(file.find("/ExtensionLevel"), 15, "/OtherThanLevel"); // as of another program
    const CleanedDocument once = CleanWith(file, "secret");
    ASSERT_EQ(once.outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CleanWith(once.file, "secret").outcome, CleanOutcome::NothingFound);
}

INSTANTIATE_TEST_SUITE_P(Of, PdfEncryption, testing::ValuesIn(kCiphers));

std::string Replaced(std::string file, std::string_view what, std::string_view by) {
    const auto at = file.find(what);
    EXPECT_NE(at, std::string::npos);
    return file.replace(at, what.size(), by);
}

TEST(PdfEncryptionDictionary, OfAnUnknownKindTakesNoPassword) {
    const std::string file = Encrypted(Plain());
    EXPECT_EQ(CleanWith(Replaced(file, "/Filter /Standard", "/Filter /Stranger"), "secret").outcome,
              CleanOutcome::OtherCipher);
    EXPECT_EQ(CleanWith(Replaced(file, "/V 5", "/V 9"), "secret").outcome,
              CleanOutcome::OtherCipher);
}

TEST(PdfEncryptionDictionary, ThatLacksAValueIsDamaged) {
    const std::string file = Encrypted(Plain());
    for (const char* key : {"/O <", "/U <", "/OE <", "/UE <", "/P ", "/R "}) {
        std::string renamed = key;
        renamed[1] = 'X';
        EXPECT_EQ(CleanWith(Replaced(file, key, renamed), "secret").outcome, CleanOutcome::Damaged)
            << key;
    }
}

TEST(PdfEncryptionDictionary, TakesTheLongestPassword) {
    const std::string longest(127, 'x');
    const std::string file = Encrypted(Plain(), {Cipher::Aes256, longest});
    EXPECT_EQ(CleanWith(file, longest).outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CleanWith(file, longest.substr(1)).outcome, CleanOutcome::Encrypted);
}

} // namespace
