// The validating reader of what the work process sends. A hostile file may have taken that process
// over: every byte is checked, every number limited, and one invalid record ends the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "contracts/TransformWork.h"
#include "services/providers/worker/WorkReport.h"

namespace providers {

// Bytes of the payload that follows a header of a reply; nothing when the header isn't valid.
std::optional<std::size_t> ReplyPayload(const obcontract::WorkHeader& header) noexcept;

// Collects the replies of one request after the other. Not locked: its owner does that.
class ReplyReader {
public:
    // A request is about to be sent; forgets the one before.
    void Begin() noexcept;

    // Takes one record, whose header ReplyPayload accepted and whose payload has that size. False,
    // for good, when the record isn't valid or no request waits for one.
    bool Take(obcontract::WorkKind kind, std::span<const std::byte> payload);

    bool IsComplete() const noexcept { return complete_; }
    const obcontract::WorkProgress& Progress() const noexcept { return progress_; }
    const WorkReport& Report() const noexcept { return report_; }

private:
    bool TakeProgress(const obcontract::WorkProgress& progress) noexcept;
    bool TakeFinding(const obcontract::WorkFinding& finding);
    bool TakeDone(const obcontract::WorkDone& done) noexcept;
    bool TakeFailed(const obcontract::WorkFailed& failed) noexcept;
    bool Complete(WorkResult result, std::uint64_t size) noexcept;

    bool waiting_ = false; // a request was sent, and its last record hasn't come
    bool complete_ = false;
    obcontract::WorkProgress progress_{};
    WorkReport report_;
};

} // namespace providers
