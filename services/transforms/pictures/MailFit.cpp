// The search over all pictures, and the final coding.
#include "services/transforms/pictures/MailFit.h"

#include <algorithm>

#include "services/transforms/pictures/StampPicture.h"

namespace transforms {
namespace {

// Of a picture in another form than its file's, coded finely: a guess, where the search begins.
std::uint64_t FineBytes(PictureSize size) noexcept {
    return std::uint64_t{size.width} * size.height * 3 / 4 + 1;
}

// A picture whose stamp has no room at the step's size stays larger than the others: at the least
// size at which there is room. The stamp has room in the unshrunk picture.
void KeepRoom(const Stamp& stamp, PictureSize size, ShrinkStep& step) {
    if (stamp.HasRoomIn(SizeAfter(size, step))) return;
    std::uint32_t without = step.longestEdge, with = std::max(size.width, size.height);
    while (with - without > 1) {
        step.longestEdge = without + (with - without) / 2;
        (stamp.HasRoomIn(SizeAfter(size, step)) ? with : without) = step.longestEdge;
    }
    step.longestEdge = with;
}

// Coded pictures that are kept in memory; beyond that they are coded again when they are written.
const std::uint64_t MostKept = 64ull << 20;

} // namespace

MailFit::MailFit(std::vector<FitSource> sources, std::uint64_t mailLimit, std::uint64_t otherBytes,
                 const PictureControl& control)
    : control_(control), room_(RoomForFiles(mailLimit)), others_(otherBytes) {
    for (const auto& source : sources)
        pictures_.push_back({source, {}, false, source.file->Size(), {}});
}

bool MailFit::CanShrink(const FitPicture& picture) const noexcept {
    return picture.from.maker ||
           (picture.form.kind != PictureKind::None && !picture.form.hasManyPictures);
}

PictureOutcome MailFit::Search() noexcept {
    return RunPictureWork([this] {
        total_ = others_;
        for (const auto& picture : pictures_) total_ += picture.File().Size();
        const bool isKnown =
            std::none_of(pictures_.begin(), pictures_.end(),
                         [](const FitPicture& picture) { return picture.IsAlwaysCoded(); });
        if (isKnown && total_ <= room_) return PictureOutcome::Unchanged;
        LookAtPictures();
        if (OthersAreTooMuch() || !shrinkable_) return PictureOutcome::CannotFit;
        return SearchStep();
    });
}

void MailFit::LookAtPictures() {
    for (failed_ = 0; failed_ < pictures_.size(); ++failed_) {
        auto& picture = pictures_[failed_];
        LookAt(picture);
        (CanShrink(picture) ? shrinkable_ : fixed_) +=
            picture.from.maker ? FineBytes(picture.from.madeSize) : picture.File().Size();
        if (CanShrink(picture))
            longestEdge_ =
                std::max({longestEdge_, picture.form.size.width, picture.form.size.height});
    }
}

void MailFit::LookAt(FitPicture& picture) const {
    try {
        if (picture.from.maker)
            picture.form.size = picture.from.madeSize;
        else
            picture.form = FormOfPicture(picture.File(), control_);
    } catch (const PictureFailure& failure) {
        // Of a form that isn't worked on: it goes out as it is.
        if (failure.outcome != PictureOutcome::Unsupported) throw;
    }
    const Stamp*& stamp = picture.from.stamp;
    if (stamp && !stamp->HasRoomIn(picture.form.size)) stamp = nullptr;
}

PictureOutcome MailFit::SearchStep() {
    const std::uint64_t budget = room_ - OtherBytes();
    std::vector<FitPicture> best;
    std::uint64_t bestBytes = 0;
    const auto bytesAt = [&](const ShrinkStep& step) {
        const std::uint64_t bytes = CodeAll(step);
        // Of those that fit the last one is the one that is found.
        if (bytes <= budget) {
            best = std::move(pictures_);
            pictures_.clear();
            for (const auto& picture : best)
                pictures_.push_back({picture.from, picture.form, false, 0, {}});
            bestBytes = bytes;
        }
        return bytes;
    };
    const auto found = FindStep(longestEdge_, shrinkable_, budget, bytesAt);
    if (!found) return PictureOutcome::CannotFit;
    pictures_ = std::move(best);
    step_ = *found;
    total_ = OtherBytes() + bestBytes;
    return PictureOutcome::Written;
}

std::uint64_t MailFit::CodeAll(const ShrinkStep& step) {
    std::uint64_t bytes = 0;
    kept_ = 0;
    for (failed_ = 0; failed_ < pictures_.size(); ++failed_) {
        auto& picture = pictures_[failed_];
        if (!CanShrink(picture)) continue;
        if (!TryCode(picture, step)) unsupported_.push_back(failed_);
        bytes += picture.bytes;
    }
    if (!unsupported_.empty()) throw PictureFailure{PictureOutcome::Unsupported};
    return bytes;
}

// False for a form on which the work isn't supported, so that all of these are found at once.
bool MailFit::TryCode(FitPicture& picture, const ShrinkStep& step) {
    try {
        Code(picture, step);
        return true;
    } catch (const PictureFailure& failure) {
        if (failure.outcome != PictureOutcome::Unsupported) throw;
        return false;
    }
}

void MailFit::Code(FitPicture& picture, const ShrinkStep& step) {
    MemoryTarget coded;
    picture.coded.clear();
    picture.isShrunk = false;
    picture.bytes = picture.File().Size();
    Make(picture, coded, step);
    if (!picture.IsAlwaysCoded() && coded.bytes.size() >= picture.bytes) return;
    picture.isShrunk = true;
    picture.bytes = coded.bytes.size();
    if (kept_ + picture.bytes > MostKept) return;
    kept_ += picture.bytes;
    picture.coded = std::move(coded.bytes);
}

// A picture with a stamp is never coded more finely than by StampPicture.
void MailFit::Make(const FitPicture& picture, PictureTarget& target, const ShrinkStep& step) const {
    ShrinkStep own = step;
    own.stamp = picture.from.stamp;
    if (own.stamp) KeepRoom(*own.stamp, picture.form.size, own);
    if (picture.from.maker) return picture.from.maker->Make(picture.File(), target, own, control_);
    if (own.stamp && own.coarseness < kCoarsenessOfStamped) {
        own.coarseness = kCoarsenessOfStamped;
        own.sixteenths = 0;
    }
    ShrinkPicture(picture.form.kind, picture.File(), target, own, control_);
}

PictureOutcome MailFit::Write(std::size_t number, PictureTarget& target) noexcept {
    return RunPictureWork([&] {
        auto& picture = pictures_[number];
        if (!picture.isShrunk) return PictureOutcome::Unchanged;
        if (picture.coded.empty())
            Make(picture, target, step_);
        else
            WritePicture(target, 0, picture.coded);
        return PictureOutcome::Written;
    });
}

} // namespace transforms
