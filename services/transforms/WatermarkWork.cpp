#include "services/transforms/WatermarkWork.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/PictureWork.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/WholeFile.h"
#include "services/transforms/documents/Pdf.h"
#include "services/transforms/pictures/StampPicture.h"
#include "services/transforms/watermark/PdfStamp.h"
#include "services/transforms/watermark/PictureStamp.h"
#include "services/transforms/watermark/StampFile.h"
#include "services/transforms/watermark/TextStamp.h"

namespace transforms {
namespace {

using namespace obcontract;

struct PlaceRow {
    WorkPlace asked;
    WatermarkPlace place;
};

constexpr PlaceRow kPlaces[] = {
    {WorkPlace::TopLeft, WatermarkPlace::TopLeft},
    {WorkPlace::TopRight, WatermarkPlace::TopRight},
    {WorkPlace::BottomLeft, WatermarkPlace::BottomLeft},
    {WorkPlace::BottomRight, WatermarkPlace::BottomRight},
    {WorkPlace::Centre, WatermarkPlace::Centre},
};

// Nothing for values that the contract lacks.
std::optional<WatermarkLook> LookOf(WorkPlace place, std::uint32_t opacity) {
    const auto* const row = std::ranges::find(kPlaces, place, &PlaceRow::asked);
    if (row == std::end(kPlaces) || opacity < 1 || opacity > 100) return {};
    return WatermarkLook{row->place, opacity};
}

struct Asked {
    WatermarkLook look;
    std::wstring text;
};

// Nothing for values that the contract lacks, or without a text.
std::optional<Asked> AskedFor(const WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkWatermark>();
    const auto look = LookOf(settings.place, settings.opacity);
    auto text = request.TextAfter<WorkWatermark>();
    if (!look || !text) return {};
    return Asked{*look, std::move(*text)};
}

std::optional<WorkEnd> OnPicture(const WorkRequest& request, const Stamp& stamp, FileSource& source,
                                 PictureWatch& watch) {
    FileTarget target(request.target.Get());
    PictureOutcome outcome = StampPicture(source, target, stamp, watch.Control());
    if (outcome == PictureOutcome::Written && !target.Flush())
        outcome = PictureOutcome::WriteFailed;
    return EndOfPicture(outcome, target.Size());
}

std::optional<WorkEnd> OnPages(const WorkRequest& request, const Stamp& stamp, WorkChannel& channel,
                               std::uint64_t before) {
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    if (!ReadAhead(source->Bytes(), channel, before)) return {};
    PictureWatch watch(channel, before + source->Bytes().size());
    try {
        const StampedPdf stamped =
            StampPdf(source->Bytes(), stamp, watch.Control(), request.password.Text());
        if (watch.IsUnread()) return {};
        if (stamped.outcome != CleanOutcome::Cleaned) return EndOfWholeFile(stamped.outcome);
        const std::span<const std::byte> parts[] = {stamped.bytes};
        return WriteTarget(request.target.Get(), parts, watch.Steps(), channel);
    } catch (const PictureFailure& notDrawn) {
        return EndOfPicture(notDrawn.outcome, 0);
    }
}

bool IsPages(FileSource& source, bool& isRead) {
    std::uint8_t bytes[1024];
    std::size_t count = 0;
    isRead = source.ReadAt(0, bytes, count);
    return isRead && documents::IsPdf(std::as_bytes(std::span(bytes, count)));
}

// `onPages` and `onPicture` may be the same stamp. `before` is the work that earlier records have
// reported.
std::optional<WorkEnd> AddStamp(const WorkRequest& request, const Stamp& onPages,
                                const Stamp& onPicture, WorkChannel& channel,
                                std::uint64_t before = 0) {
    FileSource source(request.source.Get());
    bool isRead = false;
    const bool isPages = source.IsOpen() && IsPages(source, isRead);
    if (!isRead) return WorkEnd(WorkFailure::Unreadable);
    if (isPages) return OnPages(request, onPages, channel, before);
    PictureWatch watch(channel, before);
    return OnPicture(request, onPicture, source, watch);
}

// Nothing for a picture that can't be used, such as one that is too large for the memory.
std::optional<StampPixels> PixelsOf(const WorkRequest& request, PictureWatch& watch) {
    FileSource source(request.picture.Get());
    if (!source.IsOpen()) return {};
    try {
        return ReadStampFile(source, watch.Control());
    } catch (const PictureFailure&) {
        return {};
    } catch (const std::exception&) {
        return {}; // memory, or a thread that couldn't be made
    }
}

} // namespace

std::optional<WorkEnd> AddWatermark(const WorkRequest& request, WorkChannel& channel) {
    const auto asked = AskedFor(request);
    if (!asked) return {}; // not a valid record
    return AddStamp(request, TextStamp(asked->text, asked->look, Letters::Black),
                    TextStamp(asked->text, asked->look, Letters::White), channel);
}

std::optional<WorkEnd> AddPictureWatermark(const WorkRequest& request, WorkChannel& channel) {
    PictureWatch watch(channel);
    const StampOrEnd taken = PictureStampOf(request, watch);
    if (const auto* const end = std::get_if<std::optional<WorkEnd>>(&taken)) return *end;
    const auto& stamp = *std::get<std::unique_ptr<Stamp>>(taken);
    return AddStamp(request, stamp, stamp, channel, watch.Steps());
}

std::unique_ptr<Stamp> TextStampOf(const WorkRequest& request) {
    const auto asked = AskedFor(request);
    if (!asked) return nullptr;
    return std::make_unique<TextStamp>(asked->text, asked->look, Letters::White);
}

StampOrEnd PictureStampOf(const WorkRequest& request, PictureWatch& watch) {
    const auto settings = request.SettingsAs<WorkPictureWatermark>();
    const auto look = LookOf(settings.place, settings.opacity);
    if (!look) return std::optional<WorkEnd>(); // not a valid record
    auto pixels = PixelsOf(request, watch);
    if (watch.IsUnread()) return std::optional<WorkEnd>();
    if (!pixels) return std::optional(WorkEnd(WorkFailure::BadPicture));
    return std::make_unique<PictureStamp>(std::move(*pixels), *look);
}

} // namespace transforms
