#include "services/transforms/FileRequests.h"

#include "services/transforms/CleanWork.h"
#include "services/transforms/MeasureWork.h"
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
};

// The requests that belong together.
struct FitRow {
    WorkKind kind;
    std::optional<WorkEnd> (FitWork::*carryOut)(WorkRequest&);
};

constexpr FitRow kFitRequests[] = {
    {WorkKind::FitAdd, &FitWork::Add},
    {WorkKind::FitSearch, &FitWork::Search},
    {WorkKind::FitWrite, &FitWork::Write},
};

} // namespace

std::optional<WorkEnd> CarryOut(WorkRequest& request, WorkChannel& channel, FitWork& fit) {
    for (const RequestRow& row : kRequests) {
        if (row.kind == request.kind) return row.carryOut(request, channel);
    }
    for (const FitRow& row : kFitRequests) {
        if (row.kind == request.kind) return (fit.*row.carryOut)(request);
    }
    return WorkEnd(obcontract::WorkFailure::NotServed);
}

} // namespace transforms
