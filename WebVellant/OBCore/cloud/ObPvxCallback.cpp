#include "OBCore/cloud/ObPvxCallback.h"

#include <new>

namespace ObPVX {

void* ObPvxCallback::Destroy(std::uint32_t flags) {
    // A destructor of the platform's own compiler leaves the root's table in the object. A derived
    // class has nothing that needs an end of its own.
    void* object = new (this) ObPvxCallback;
    if (flags & 1) ::operator delete(object);
    return object;
}

bool ObPvxCallback::Answer1() { return false; }
void ObPvxCallback::Notify2() {}

bool ObPvxCloudCallback::Answer3() { return false; }
void ObPvxCloudCallback::Notify4() {}
bool ObPvxCloudCallback::Answer9() { return false; }

void ObPvxCloudCallback2::Notify16() {}
void ObPvxCloudCallback2::Notify17() {}

bool ObPvxCloudCallback3::Answer20() { return false; }

bool ObPvxCloudCallback4::Answer21() { return true; }
void ObPvxCloudCallback4::Notify22() {}

} // namespace ObPVX
