#include "services/transforms/FitWork.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "services/transforms/PhotoWork.h"
#include "services/transforms/PictureWork.h"
#include "services/transforms/WatermarkWork.h"
#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

using namespace obcontract;

// Whether a picture can be made smaller in its own form.
PictureOutcome CanShrink(PictureSource& source, const PictureControl& control) {
    const PictureForm form = FormOfPicture(source, control);
    if (form.kind == PictureKind::None) return PictureOutcome::Unsupported;
    return form.hasManyPictures ? PictureOutcome::Unchanged : PictureOutcome::Written;
}

struct Asked {
    std::optional<PhotoRequest> conversion; // nothing without kinds
    bool isStamped;
};

// Nothing for values that the contract lacks.
std::optional<Asked> AskedFor(const WorkFitAdd& settings) {
    if (settings.reserved != 0 || settings.isStamped > 1) return {};
    Asked asked{{}, settings.isStamped == 1};
    if (settings.kinds == WorkPhotoKinds::None) {
        return settings.quality == 0 ? std::optional(std::move(asked)) : std::nullopt;
    }
    asked.conversion = PhotoRequestOf({settings.quality, settings.kinds});
    return asked.conversion ? std::optional(std::move(asked)) : std::nullopt;
}

} // namespace

std::optional<WorkEnd> CheckForFit(const WorkRequest& request, WorkChannel& channel) {
    const auto settings = request.SettingsAs<WorkFitCheck>();
    const auto kinds = static_cast<unsigned>(settings.kinds);
    if (settings.reserved != 0 || (kinds & ~kAllPhotoKinds) != 0) return {};
    FileSource source(request.source.Get());
    if (!source.IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    PictureWatch watch(channel);
    const PictureControl control = watch.Control();
    const PictureOutcome outcome = RunPictureWork([&] {
        return kinds ? CanConvertPhoto(source, kinds, control) : CanShrink(source, control);
    });
    return EndOfPicture(outcome, 0);
}

// Pictures are read one after the other, by one thread at a time.
void FitWork::Enter(std::uint32_t number) noexcept {
    if (current_ == number) return;
    if (current_ && *current_ < sources_.size()) sources_[*current_].file->Rest();
    current_ = number;
    watch_.Begin(number);
}

bool FitWork::FitFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    fit_.Enter(number_);
    return FileSource::ReadAt(offset, to, read);
}

std::optional<WorkEnd> FitWork::TakeText(WorkRequest& request) {
    if (!MayTakeStamp()) return {};
    stamp_ = TextStampOf(request);
    if (!stamp_) return {};
    return WorkEnd(WorkOutcome::Changed);
}

std::optional<WorkEnd> FitWork::TakePicture(WorkRequest& request) {
    if (!MayTakeStamp()) return {};
    StampOrEnd taken = PictureStampOf(request, watch_);
    if (const auto* const end = std::get_if<std::optional<WorkEnd>>(&taken)) return *end;
    stamp_ = std::move(std::get<std::unique_ptr<Stamp>>(taken));
    return WorkEnd(WorkOutcome::Changed);
}

PictureOutcome FitWork::OpenPhoto(Added& added, const PhotoRequest& conversion) {
    const PictureControl control = watch_.Control();
    const PictureOutcome outcome = CanConvertPhoto(*added.file, conversion.kinds, control);
    if (outcome != PictureOutcome::Written) return outcome;
    added.photoSize = SizeOfPhoto(*added.file, conversion, control);
    added.photo = std::make_unique<FittedPhoto>(conversion);
    return outcome;
}

// What isn't to be converted may still be a picture that keeps its form.
PictureOutcome FitWork::Open(Added& added, const std::optional<PhotoRequest>& conversion) {
    return RunPictureWork([&] {
        const bool isPhoto = conversion && IsPhotoOf(*added.file, conversion->kinds);
        return isPhoto ? OpenPhoto(added, *conversion) : CanShrink(*added.file, watch_.Control());
    });
}

std::optional<WorkEnd> FitWork::Add(WorkRequest& request) {
    const auto asked = AskedFor(request.SettingsAs<WorkFitAdd>());
    if (fit_ || !asked || (asked->isStamped && !stamp_)) return {};
    const auto number = static_cast<std::uint32_t>(sources_.size());
    Added added;
    added.isStamped = asked->isStamped;
    added.file = std::make_unique<FitFile>(*this, number, std::move(request.source));
    if (!added.file->IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    const PictureOutcome outcome = Open(added, asked->conversion);
    added.file->Rest();
    if (outcome == PictureOutcome::Written) sources_.push_back(std::move(added));
    return EndOfPicture(outcome, 0);
}

std::vector<FitSource> FitWork::Sources() const {
    std::vector<FitSource> sources;
    for (const Added& added : sources_) {
        const Stamp* const stamp = added.isStamped ? stamp_.get() : nullptr;
        sources.push_back({added.file.get(), stamp, added.photo.get(), added.photoSize});
    }
    return sources;
}

std::optional<WorkEnd> FitWork::Search(WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkFitSearch>();
    if (fit_ || sources_.empty() || settings.mailLimit == 0) return {};
    current_ = {};
    fit_.emplace(Sources(), settings.mailLimit, settings.otherBytes, watch_.Control());
    const PictureOutcome outcome = fit_->Search();
    if (outcome != PictureOutcome::Written && outcome != PictureOutcome::Unchanged &&
        outcome != PictureOutcome::CannotFit && fit_->failed() < sources_.size()) {
        Enter(static_cast<std::uint32_t>(fit_->failed()));
    }
    if (outcome == PictureOutcome::Unsupported && !SendUnsupported()) return {};
    return EndOfPicture(outcome, fit_->TotalBytes());
}

// As many as a request may have findings.
bool FitWork::SendUnsupported() {
    const auto& numbers = fit_->unsupported();
    const auto last =
        numbers.begin() + static_cast<std::ptrdiff_t>(std::min(numbers.size(), kMostWorkFindings));
    return std::all_of(numbers.begin(), last, [&](std::size_t number) {
        return channel_.SendFinding(kWorkPictureKey + std::to_string(number), 1);
    });
}

std::optional<WorkEnd> FitWork::Write(WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkFitWrite>();
    if (!fit_ || settings.number >= sources_.size() || settings.reserved != 0) return {};
    FileTarget target(request.target.Get());
    PictureOutcome outcome = fit_->Write(settings.number, target);
    if (outcome == PictureOutcome::Written && !target.Flush())
        outcome = PictureOutcome::WriteFailed;
    return EndOfPicture(outcome, target.Size());
}

} // namespace transforms
