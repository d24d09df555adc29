#include "services/transforms/FileRequests.h"

#include "services/transforms/CleanWork.h"
#include "services/transforms/DatesWork.h"
#include "services/transforms/MeasureWork.h"
#include "services/transforms/PdfWork.h"
#include "services/transforms/PhotoWork.h"
#include "services/transforms/PictureWork.h"
#include "services/transforms/WatermarkWork.h"

namespace transforms {
namespace {

using obcontract::WorkKind;

struct RequestRow {
    WorkKind kind;
    std::optional<WorkEnd> (*carryOut)(const WorkRequest&, WorkChannel&);
};

constexpr RequestRow kRequests[] = {
    {WorkKind::Clean, &Clean},
    {WorkKind::CheckClean, &Clean},
    {WorkKind::Resize, &Resize},
    {WorkKind::Measure, &Measure},
    {WorkKind::ConvertPhoto, &ConvertPhotoFile},
    {WorkKind::Watermark, &AddWatermark},
    {WorkKind::PictureWatermark, &AddPictureWatermark},
    {WorkKind::PictureToPdf, &MakePdf},
    {WorkKind::RemoveDates, &RemoveDates},
    {WorkKind::FitCheck, &CheckForFit},
};

// The requests that belong together.
struct SeriesRow {
    WorkKind kind;
    std::optional<WorkEnd> (*carryOut)(WorkRequest&, SeriesWork&);
};

template <auto Member, auto Request>
std::optional<WorkEnd> On(WorkRequest& request, SeriesWork& series) {
    return ((series.*Member).*Request)(request);
}

constexpr SeriesRow kSeriesRequests[] = {
    {WorkKind::FitWatermark, &On<&SeriesWork::fit, &FitWork::TakeText>},
    {WorkKind::FitPictureWatermark, &On<&SeriesWork::fit, &FitWork::TakePicture>},
    {WorkKind::FitAdd, &On<&SeriesWork::fit, &FitWork::Add>},
    {WorkKind::FitSearch, &On<&SeriesWork::fit, &FitWork::Search>},
    {WorkKind::FitWrite, &On<&SeriesWork::fit, &FitWork::Write>},
    {WorkKind::CombineAdd, &On<&SeriesWork::combine, &CombineWork::Add>},
    {WorkKind::CombineWrite, &On<&SeriesWork::combine, &CombineWork::Write>},
};

} // namespace

std::optional<WorkEnd> CarryOut(WorkRequest& request, WorkChannel& channel, SeriesWork& series) {
    for (const RequestRow& row : kRequests) {
        if (row.kind == request.kind) return row.carryOut(request, channel);
    }
    for (const SeriesRow& row : kSeriesRequests) {
        if (row.kind == request.kind) return row.carryOut(request, series);
    }
    return WorkEnd(obcontract::WorkFailure::NotServed);
}

} // namespace transforms
