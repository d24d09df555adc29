// The requests by which all pictures of a mail are made smaller together.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/WorkChannel.h"
#include "services/transforms/pictures/MailFit.h"

namespace transforms {

// What lasts between these requests. One thread; the channel outlives the object.
class FitWork {
public:
    explicit FitWork(WorkChannel& channel) noexcept : watch_(channel) {}
    FitWork(const FitWork&) = delete;
    FitWork& operator=(const FitWork&) = delete;

    // Each is one kind of request; results as for CarryOut. A request out of its order, which is
    // adding, one search, writing, isn't valid.
    std::optional<WorkEnd> Add(WorkRequest& request); // keeps the source
    std::optional<WorkEnd> Search(WorkRequest& request);
    std::optional<WorkEnd> Write(WorkRequest& request);

private:
    // Reports which picture is worked on when its first bytes are read. Only one picture at a time
    // keeps a block in memory.
    class FitSource final : public FileSource {
    public:
        FitSource(FitWork& fit, std::uint32_t number, ObLib::UniqueKernelHandle file)
            : FileSource(file.Get()), fit_(fit), number_(number), owned_(std::move(file)) {}
        bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;

    private:
        FitWork& fit_;
        std::uint32_t number_;
        ObLib::UniqueKernelHandle owned_;
    };

    void Enter(std::uint32_t number) noexcept;

    PictureWatch watch_;
    std::vector<std::unique_ptr<FitSource>> sources_;
    std::optional<std::uint32_t> current_; // the picture that is worked on
    std::optional<MailFit> fit_;           // from the search on
};

} // namespace transforms
