#include "services/transforms/FitWork.h"

#include "services/transforms/PictureWork.h"
#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

using namespace obcontract;

// Whether a picture can be made smaller.
PictureOutcome CanShrink(PictureSource& source, const PictureControl& control) {
    return RunPictureWork([&] {
        const PictureForm form = FormOfPicture(source, control);
        if (form.kind == PictureKind::None) return PictureOutcome::Unsupported;
        return form.hasManyPictures ? PictureOutcome::Unchanged : PictureOutcome::Shrunk;
    });
}

} // namespace

// Pictures are read one after the other, by one thread at a time.
void FitWork::Enter(std::uint32_t number) noexcept {
    if (current_ == number) return;
    if (current_ && *current_ < sources_.size()) sources_[*current_]->Rest();
    current_ = number;
    watch_.Begin(number);
}

bool FitWork::FitSource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to,
                                std::size_t& read) {
    fit_.Enter(number_);
    return FileSource::ReadAt(offset, to, read);
}

std::optional<WorkEnd> FitWork::Add(WorkRequest& request) {
    if (fit_ || request.SettingsAs<WorkPlain>().reserved != 0) return {};
    const auto number = static_cast<std::uint32_t>(sources_.size());
    auto source = std::make_unique<FitSource>(*this, number, std::move(request.source));
    if (!source->IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    const PictureOutcome outcome = CanShrink(*source, watch_.Control());
    source->Rest();
    if (outcome == PictureOutcome::Shrunk) sources_.push_back(std::move(source));
    return EndOfPicture(outcome, 0);
}

std::optional<WorkEnd> FitWork::Search(WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkFitSearch>();
    if (fit_ || sources_.empty() || settings.mailLimit == 0) return {};
    std::vector<PictureSource*> sources;
    for (const auto& source : sources_) sources.push_back(source.get());
    current_ = {};
    fit_.emplace(std::move(sources), settings.mailLimit, settings.otherBytes, watch_.Control());
    const PictureOutcome outcome = fit_->Search();
    if (outcome != PictureOutcome::Shrunk && outcome != PictureOutcome::Unchanged &&
        outcome != PictureOutcome::CannotFit && fit_->failed() < sources_.size()) {
        Enter(static_cast<std::uint32_t>(fit_->failed()));
    }
    return EndOfPicture(outcome, fit_->TotalBytes());
}

std::optional<WorkEnd> FitWork::Write(WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkFitWrite>();
    if (!fit_ || settings.number >= sources_.size() || settings.reserved != 0) return {};
    FileTarget target(request.target.Get());
    PictureOutcome outcome = fit_->Write(settings.number, target);
    if (outcome == PictureOutcome::Shrunk && !target.Flush()) outcome = PictureOutcome::WriteFailed;
    return EndOfPicture(outcome, target.Size());
}

} // namespace transforms
