// The requests by which all pictures of a mail are made smaller together: each is decoded,
// converted, turned, made smaller, stamped and coded in one pass.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/WorkChannel.h"
#include "services/transforms/photos/FittedPhoto.h"
#include "services/transforms/pictures/MailFit.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

// FitCheck: whether FitAdd takes the file. Results as for CarryOut.
std::optional<WorkEnd> CheckForFit(const WorkRequest& request, WorkChannel& channel);

// What lasts between these requests. One thread; the channel outlives the object.
class FitWork {
public:
    explicit FitWork(WorkChannel& channel) noexcept : channel_(channel), watch_(channel) {}
    FitWork(const FitWork&) = delete;
    FitWork& operator=(const FitWork&) = delete;

    // Each is one kind of request; results as for CarryOut. A request out of its order, which is
    // one stamp or none, adding, one search, writing, isn't valid.
    std::optional<WorkEnd> TakeText(WorkRequest& request);
    std::optional<WorkEnd> TakePicture(WorkRequest& request);
    std::optional<WorkEnd> Add(WorkRequest& request); // keeps the source
    std::optional<WorkEnd> Search(WorkRequest& request);
    std::optional<WorkEnd> Write(WorkRequest& request);

private:
    // Reports which picture is worked on when its first bytes are read. Only one picture at a time
    // keeps a block in memory.
    class FitFile final : public FileSource {
    public:
        FitFile(FitWork& fit, std::uint32_t number, ObLib::UniqueKernelHandle file)
            : FileSource(file.Get()), fit_(fit), number_(number), owned_(std::move(file)) {}
        bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;

    private:
        FitWork& fit_;
        std::uint32_t number_;
        ObLib::UniqueKernelHandle owned_;
    };

    struct Added {
        std::unique_ptr<FitFile> file;
        std::unique_ptr<FittedPhoto> photo; // null for a picture that keeps its form
        PictureSize photoSize{};
        bool isStamped = false;
    };

    void Enter(std::uint32_t number) noexcept;
    bool MayTakeStamp() const noexcept { return !fit_ && sources_.empty() && !stamp_; }
    PictureOutcome Open(Added& added, const std::optional<PhotoRequest>& conversion);
    PictureOutcome OpenPhoto(Added& added, const PhotoRequest& conversion);
    std::vector<FitSource> Sources() const;
    bool SendUnsupported();

    WorkChannel& channel_;
    PictureWatch watch_;
    std::unique_ptr<Stamp> stamp_; // null without a watermark
    std::vector<Added> sources_;
    std::optional<std::uint32_t> current_; // the picture that is worked on
    std::optional<MailFit> fit_;           // from the search on
};

} // namespace transforms
