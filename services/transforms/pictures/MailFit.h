// Makes pictures fit a mail together: one quality and size for all, the best at which they and the
// other attachments stay within the limit. Each picture is coded from its unshrunk copy, which is
// converted, turned, made smaller and stamped on the way, so that it is coded once.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ObLib/Src/MailRoom.h"
#include "services/transforms/pictures/Picture.h"
#include "services/transforms/pictures/SizeSearch.h"

namespace transforms {

using ObLib::RoomForFiles;

// Makes a picture of another form than the file's, as by a conversion.
class FitMaker {
public:
    virtual ~FitMaker() = default;
    // Writes the picture that the step makes, whatever its size. Throws PictureFailure.
    virtual void Make(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                      const PictureControl& control) const = 0;
};

// One picture, and what else is done with it; what it points to outlives the search.
struct FitSource {
    PictureSource* file;
    const Stamp* stamp = nullptr;    // null for none
    const FitMaker* maker = nullptr; // null: the picture keeps its form
    PictureSize madeSize{};          // with a maker: of the unshrunk picture
};

class MailFit {
public:
    // The sources must outlive the object and be as they are until the last Write. `mailLimit` is
    // for the mail as it is sent; `otherBytes` what the files that aren't in `sources` count for.
    MailFit(std::vector<FitSource> sources, std::uint64_t mailLimit, std::uint64_t otherBytes,
            const PictureControl& control);

    // Writes nothing. Written: a step was found; Unchanged: all fits as it is, which isn't known of
    // pictures with a stamp or a maker; CannotFit: neither, see below; Unsupported: the work isn't
    // supported on the form of the pictures unsupported(). Another outcome is that of the picture
    // failed(). Throws nothing. Takes as long as coding all pictures a few times.
    PictureOutcome Search() noexcept;

    // Rising.
    const std::vector<std::size_t>& unsupported() const noexcept { return unsupported_; }

    std::size_t failed() const noexcept { return failed_; }
    // After CannotFit: whether the files that can't shrink exceed the room already.
    bool OthersAreTooMuch() const noexcept { return OtherBytes() > room_; }
    // All files that can't shrink, those among the sources included.
    std::uint64_t OtherBytes() const noexcept { return others_ + fixed_; }
    // Of all files, after Written and Unchanged.
    std::uint64_t TotalBytes() const noexcept { return total_; }
    // The step that was found.
    const ShrinkStep& step() const noexcept { return step_; }

    // Whether a source became smaller or got its stamp or form; the others go out as they are.
    bool IsShrunk(std::size_t number) const noexcept { return pictures_[number].isShrunk; }
    // Writes such a picture: the bytes that were counted, coded again if they weren't kept.
    PictureOutcome Write(std::size_t number, PictureTarget& target) noexcept;

private:
    struct FitPicture {
        FitSource from;
        PictureForm form;
        bool isShrunk = false;
        std::uint64_t bytes = 0; // at the step that was tried last
        PictureBytes coded;      // kept while there is room

        PictureSource& File() const noexcept { return *from.file; }
        // Whether it is coded even if that takes more bytes than the file.
        bool IsAlwaysCoded() const noexcept { return from.stamp || from.maker; }
    };

    bool CanShrink(const FitPicture& picture) const noexcept;
    void LookAtPictures();
    void LookAt(FitPicture& picture) const;
    PictureOutcome SearchStep();
    std::uint64_t CodeAll(const ShrinkStep& step);
    bool TryCode(FitPicture& picture, const ShrinkStep& step);
    void Code(FitPicture& picture, const ShrinkStep& step);
    void Make(const FitPicture& picture, PictureTarget& target, const ShrinkStep& step) const;

    std::vector<FitPicture> pictures_;
    PictureControl control_;
    std::uint64_t room_, others_, fixed_ = 0, shrinkable_ = 0, total_ = 0, kept_ = 0;
    std::uint32_t longestEdge_ = 1;
    std::size_t failed_ = 0;
    std::vector<std::size_t> unsupported_;
    ShrinkStep step_;
};

} // namespace transforms
