// The requests by which PDFs become one.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "services/transforms/PictureWatch.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/WorkChannel.h"
#include "services/transforms/combine/PdfCombine.h"

namespace transforms {

// What lasts between these requests. One thread; the channel outlives the object.
class CombineWork {
public:
    explicit CombineWork(WorkChannel& channel) noexcept : steps_(channel) {}
    CombineWork(const CombineWork&) = delete;
    CombineWork& operator=(const CombineWork&) = delete;

    // Each carries out one kind of request; results as for CarryOut. Any number of Add comes first,
    // then one Write; a request in another order isn't valid.
    std::optional<WorkEnd> Add(WorkRequest& request); // keeps the source mapped
    std::optional<WorkEnd> Write(WorkRequest& request);

private:
    // Each request has records of its own.
    class Steps final : public combine::PdfCombineSteps {
    public:
        explicit Steps(WorkChannel& channel) noexcept : channel_(channel) {}
        void Begin(std::uint64_t reported) noexcept { watch_.emplace(channel_, reported); }
        void Step() noexcept override { watch_->Step(); }
        void Enter(std::size_t part) noexcept override {
            watch_->Begin(static_cast<std::uint32_t>(part));
        }
        bool IsUnread() const noexcept { return watch_->IsUnread(); }
        WorkChannel& Channel() noexcept { return channel_; }

    private:
        WorkChannel& channel_;
        std::optional<PictureWatch> watch_; // from Begin on
    };

    Steps steps_;
    std::vector<SourceView> sources_;              // outlive the combiner
    std::optional<combine::PdfCombiner> combiner_; // from the first source on
    bool isWritten_ = false;
};

} // namespace transforms
