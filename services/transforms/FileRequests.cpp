#include "services/transforms/FileRequests.h"

namespace transforms {

// No transform is built in yet: no provider of the manager sends a request.
bool CarryOut(const WorkRequest&, WorkChannel& channel) {
    return channel.SendFailed(obcontract::WorkFailure::NotServed);
}

} // namespace transforms
