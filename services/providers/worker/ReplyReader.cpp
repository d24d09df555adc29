#include "services/providers/worker/ReplyReader.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace providers {
namespace {

using namespace obcontract;

struct ReplySize {
    WorkKind kind;
    std::size_t size;
};

constexpr ReplySize kReplySizes[] = {
    {WorkKind::Progress, sizeof(WorkProgress)},
    {WorkKind::Finding, sizeof(WorkFinding)},
    {WorkKind::Done, sizeof(WorkDone)},
    {WorkKind::Failed, sizeof(WorkFailed)},
};

struct OutcomeRow {
    WorkOutcome outcome;
    WorkResult result;
};

constexpr OutcomeRow kOutcomes[] = {
    {WorkOutcome::Changed, WorkResult::Changed},
    {WorkOutcome::Unchanged, WorkResult::Unchanged},
    {WorkOutcome::NotSupported, WorkResult::NotSupported},
};

struct FailureRow {
    WorkFailure failure;
    WorkResult result;
};

// A request that the work process doesn't know comes from another version of it.
constexpr FailureRow kFailures[] = {
    {WorkFailure::Damaged, WorkResult::Damaged},
    {WorkFailure::TooLarge, WorkResult::TooLarge},
    {WorkFailure::Unreadable, WorkResult::Unreadable},
    {WorkFailure::Unwritable, WorkResult::Unwritable},
    {WorkFailure::NotServed, WorkResult::ProcessFailed},
    {WorkFailure::CannotFit, WorkResult::CannotFit},
    {WorkFailure::Encrypted, WorkResult::Encrypted},
    {WorkFailure::Signed, WorkResult::Signed},
    {WorkFailure::Locked, WorkResult::Locked},
    {WorkFailure::OtherCipher, WorkResult::OtherCipher},
    {WorkFailure::BadPicture, WorkResult::BadPicture},
};

// The payload comes from bytes without alignment.
template <class Payload>
Payload Read(std::span<const std::byte> payload) noexcept {
    Payload read;
    std::memcpy(&read, payload.data(), sizeof read);
    return read;
}

bool IsKeyCharacter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-';
}

// Nothing unless the key is a text of the allowed characters, with zeros up to the field's end.
std::optional<std::string> KeyOf(const WorkFinding& finding) {
    const auto end = std::find(std::begin(finding.key), std::end(finding.key), '\0');
    if (end == std::begin(finding.key) || end == std::end(finding.key)) return {};
    if (!std::all_of(std::begin(finding.key), end, IsKeyCharacter)) return {};
    const auto isZero = [](char c) { return c == '\0'; };
    if (!std::all_of(end, std::end(finding.key), isZero)) return {};
    return std::string(std::begin(finding.key), end);
}

} // namespace

std::optional<std::size_t> ReplyPayload(const WorkHeader& header) noexcept {
    if (header.magic != kWorkMagic || header.reserved != 0) return {};
    const auto row = std::ranges::find(kReplySizes, header.kind, &ReplySize::kind);
    if (row == std::end(kReplySizes) || header.size != row->size) return {};
    return row->size;
}

void ReplyReader::Begin() noexcept {
    waiting_ = true;
    complete_ = false;
    progress_ = {};
    report_ = {};
}

bool ReplyReader::Take(WorkKind kind, std::span<const std::byte> payload) {
    if (!waiting_) return false;
    switch (kind) {
    case WorkKind::Progress:
        return TakeProgress(Read<WorkProgress>(payload));
    case WorkKind::Finding:
        return TakeFinding(Read<WorkFinding>(payload));
    case WorkKind::Done:
        return TakeDone(Read<WorkDone>(payload));
    case WorkKind::Failed:
        return TakeFailed(Read<WorkFailed>(payload));
    default:
        return false;
    }
}

// A step that makes no progress isn't valid: a process that hangs could send it for ever.
bool ReplyReader::TakeProgress(const WorkProgress& progress) noexcept {
    if (progress.done > progress.total || progress.done <= progress_.done) return false;
    if (progress.reserved != 0) return false;
    progress_ = progress;
    report_.number = progress.number;
    return true;
}

bool ReplyReader::TakeFinding(const WorkFinding& finding) {
    auto key = KeyOf(finding);
    if (!key || finding.count == 0 || report_.found.size() >= kMostWorkFindings) return false;
    if (std::ranges::find(report_.found, *key, &WorkFound::key) != report_.found.end()) {
        return false;
    }
    report_.found.push_back({std::move(*key), finding.count});
    return true;
}

bool ReplyReader::TakeDone(const WorkDone& done) noexcept {
    const auto row = std::ranges::find(kOutcomes, done.outcome, &OutcomeRow::outcome);
    if (row == std::end(kOutcomes) || done.reserved != 0) return false;
    if (done.outcome != WorkOutcome::Changed && done.size != 0) return false;
    return Complete(row->result, done.size);
}

bool ReplyReader::TakeFailed(const WorkFailed& failed) noexcept {
    const auto row = std::ranges::find(kFailures, failed.failure, &FailureRow::failure);
    if (row == std::end(kFailures) || failed.reserved != 0) return false;
    return Complete(row->result, 0);
}

bool ReplyReader::Complete(WorkResult result, std::uint64_t size) noexcept {
    report_.result = result;
    report_.size = size;
    waiting_ = false;
    complete_ = true;
    return true;
}

} // namespace providers
