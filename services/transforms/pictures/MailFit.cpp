// The search over all pictures, and the final coding.
#include "services/transforms/pictures/MailFit.h"

#include <algorithm>

namespace transforms {
namespace {

// Coded pictures that are kept in memory; beyond that they are coded again when they are written.
const std::uint64_t MostKept = 64ull << 20;

} // namespace

std::uint64_t RoomForFiles(std::uint64_t mailLimit) noexcept {
    return mailLimit / 137 * 100 + mailLimit % 137 * 100 / 137;
}

MailFit::MailFit(std::vector<PictureSource*> sources, std::uint64_t mailLimit,
                 std::uint64_t otherBytes, const PictureControl& control)
    : control_(control), room_(RoomForFiles(mailLimit)), others_(otherBytes) {
    for (auto* source : sources) pictures_.push_back({source, {}, false, source->Size(), {}});
}

bool MailFit::CanShrink(const FitPicture& picture) const noexcept {
    return picture.form.kind != PictureKind::None && !picture.form.hasManyPictures;
}

PictureOutcome MailFit::Search() noexcept {
    return RunPictureWork([this] {
        total_ = others_;
        for (const auto& picture : pictures_) total_ += picture.source->Size();
        if (total_ <= room_) return PictureOutcome::Unchanged;
        LookAtPictures();
        if (OthersAreTooMuch() || !shrinkable_) return PictureOutcome::CannotFit;
        return SearchStep();
    });
}

void MailFit::LookAtPictures() {
    for (failed_ = 0; failed_ < pictures_.size(); ++failed_) {
        auto& picture = pictures_[failed_];
        try {
            picture.form = FormOfPicture(*picture.source, control_);
        } catch (const PictureFailure& failure) {
            // Of a form that isn't worked on: it goes out as it is.
            if (failure.outcome != PictureOutcome::Unsupported) throw;
        }
        (CanShrink(picture) ? shrinkable_ : fixed_) += picture.source->Size();
        if (CanShrink(picture))
            longestEdge_ =
                std::max({longestEdge_, picture.form.size.width, picture.form.size.height});
    }
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
                pictures_.push_back({picture.source, picture.form, false, 0, {}});
            bestBytes = bytes;
        }
        return bytes;
    };
    const auto found = FindStep(longestEdge_, shrinkable_, budget, bytesAt);
    if (!found) return PictureOutcome::CannotFit;
    pictures_ = std::move(best);
    step_ = *found;
    total_ = OtherBytes() + bestBytes;
    return PictureOutcome::Shrunk;
}

std::uint64_t MailFit::CodeAll(const ShrinkStep& step) {
    std::uint64_t bytes = 0;
    kept_ = 0;
    for (failed_ = 0; failed_ < pictures_.size(); ++failed_) {
        auto& picture = pictures_[failed_];
        if (!CanShrink(picture)) continue;
        Code(picture, step);
        bytes += picture.bytes;
    }
    return bytes;
}

void MailFit::Code(FitPicture& picture, const ShrinkStep& step) {
    MemoryTarget coded;
    picture.coded.clear();
    picture.isShrunk = false;
    picture.bytes = picture.source->Size();
    ShrinkPicture(picture.form.kind, *picture.source, coded, step, control_);
    if (coded.bytes.size() >= picture.bytes) return;
    picture.isShrunk = true;
    picture.bytes = coded.bytes.size();
    if (kept_ + picture.bytes > MostKept) return;
    kept_ += picture.bytes;
    picture.coded = std::move(coded.bytes);
}

PictureOutcome MailFit::Write(std::size_t number, PictureTarget& target) noexcept {
    return RunPictureWork([&] {
        auto& picture = pictures_[number];
        if (!picture.isShrunk) return PictureOutcome::Unchanged;
        if (picture.coded.empty())
            ShrinkPicture(picture.form.kind, *picture.source, target, step_, control_);
        else
            WritePicture(target, 0, picture.coded);
        return PictureOutcome::Shrunk;
    });
}

} // namespace transforms
