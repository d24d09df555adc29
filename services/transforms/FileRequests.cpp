#include "services/transforms/FileRequests.h"

#include "services/transforms/CleanWork.h"
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
    {WorkKind::ConvertPhoto, &ConvertPhotoFile},
    {WorkKind::Watermark, &AddWatermark},
};

} // namespace

std::optional<WorkEnd> CarryOut(const WorkRequest& request, WorkChannel& channel) {
    for (const RequestRow& row : kRequests) {
        if (row.kind == request.kind) return row.carryOut(request, channel);
    }
    return WorkEnd(obcontract::WorkFailure::NotServed);
}

} // namespace transforms
