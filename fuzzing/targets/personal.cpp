// The personal data remover: whatever the file, what is found is what is removed, a result is clean
// and cleaning it again changes nothing, equal files give equal results, and a refusal gives no
// bytes.
#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "fuzzing/support/Require.h"
#include "services/transforms/personal/Crc32.h"
#include "services/transforms/personal/PersonalData.h"

using namespace transforms;

namespace {

using Bytes = std::span<const std::byte>;

// On the heap and of the exact size, so that the sanitizer sees a read past the end.
class ExactCopy {
public:
    explicit ExactCopy(Bytes bytes)
        : size_(bytes.size()), bytes_(std::make_unique<std::byte[]>(bytes.size())) {
        std::ranges::copy(bytes, bytes_.get());
    }
    Bytes View() const { return {bytes_.get(), size_}; }

private:
    std::size_t size_;
    std::unique_ptr<std::byte[]> bytes_;
};

bool IsOneUnreadable(const std::vector<Finding>& found) {
    return found == std::vector<Finding>{{FindingKind::Unreadable, 1}};
}

void CheckRefusal(const CleanedFile& refused, const std::vector<Finding>& found) {
    Require(refused.bytes.empty() && refused.removed.empty(), "a refusal gives nothing");
    const bool isDamaged = refused.outcome == CleanOutcome::Damaged;
    Require(isDamaged ? IsOneUnreadable(found) : found.empty(), "and a check reports damage");
}

void CheckResult(Bytes file, const CleanedFile& cleaned, const std::vector<Finding>& found) {
    Require(found == cleaned.removed, "what is found is what is removed");
    Require(found.empty() == (cleaned.outcome == CleanOutcome::NothingFound),
            "the outcome is what was found");
    Require(!found.empty() || std::ranges::equal(cleaned.bytes, file), "a clean file is unchanged");
    Require(cleaned.bytes.size() <= 8 * file.size() + 64, "a result doesn't grow without bounds");
    const ExactCopy result(cleaned.bytes);
    Require(FindPersonalData(result.View()).empty(), "nothing is found in a result");
    const CleanedFile twice = RemovePersonalData(result.View());
    Require(twice.outcome == CleanOutcome::NothingFound, "and nothing is removed from it");
    Require(twice.bytes == cleaned.bytes, "which leaves it as it is");
}

void CheckFile(Bytes bytes) {
    const ExactCopy file(bytes);
    const std::vector<Finding> found = FindPersonalData(file.View());
    const CleanedFile cleaned = RemovePersonalData(file.View());
    const bool isRefused =
        cleaned.outcome == CleanOutcome::Damaged || cleaned.outcome == CleanOutcome::NotSupported;
    if (isRefused) {
        CheckRefusal(cleaned, found);
    } else {
        CheckResult(file.View(), cleaned, found);
        Require(RemovePersonalData(ExactCopy(bytes).View()).bytes == cleaned.bytes,
                "equal files give equal results");
    }
}

std::uint32_t NumberAt(Bytes bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (const std::byte byte : bytes.subspan(at, 4)) {
        number = number << 8 | std::to_integer<std::uint32_t>(byte);
    }
    return number;
}

// Gives each chunk of a PNG its right checksum, without which no changed one would be looked at.
void CheckWithRightChecksums(Bytes bytes) {
    constexpr std::size_t kSignature = 8;
    std::vector<std::byte> file(bytes.begin(), bytes.end());
    for (std::size_t at = kSignature; at + 12 <= file.size();) {
        const std::size_t length = NumberAt(file, at);
        if (length > file.size() - at - 12) break;
        const std::uint32_t sum = personal::Crc32(Bytes(file).subspan(at + 4, 4 + length));
        for (std::size_t byte = 0; byte < 4; ++byte) {
            file[at + 8 + length + byte] = static_cast<std::byte>(sum >> (24 - 8 * byte));
        }
        at += 12 + length;
    }
    CheckFile(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const Bytes file = std::as_bytes(std::span(bytes, size));
    CheckFile(file);
    if (size > 1 && bytes[0] == 0x89 && bytes[1] == 'P') CheckWithRightChecksums(file);
    return 0;
}
