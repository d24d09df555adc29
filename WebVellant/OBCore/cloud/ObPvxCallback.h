// The object that a provider talks to while an upload runs, from its root to the last class that
// the manager's contract knows. The upload step derives from the last one.
//
// The table of slots is the contract: 24 of them, in this order, reached from another module by
// their number. So there is no virtual destructor (it would take two slots here), no overload, and
// a slot is never moved. The comment after each function is its number.
#pragma once

#include <cstdint>

namespace ObPVX {

class ObPvxCallback {
public:
    // The destructor slot: makes the object a plain ObPvxCallback again, and frees it if the low
    // bit of `flags` is set, in which case it must have come from operator new. Answers the object.
    virtual void* Destroy(std::uint32_t flags); // 0
    virtual bool Answer1();                     // 1: false
    virtual void Notify2();                     // 2: nothing
};

class ObPvxCloudCallback : public ObPvxCallback {
public:
    virtual bool Answer3();                                                // 3: false
    virtual void Notify4();                                                // 4: nothing
    virtual void SetStatus(std::uint32_t value) = 0;                       // 5
    virtual std::uint32_t GetStatus() = 0;                                 // 6
    virtual void SetStatusFlag(std::uint8_t value) = 0;                    // 7
    virtual std::uint8_t GetStatusFlag() = 0;                              // 8
    virtual bool Answer9();                                                // 9: false
    virtual void TellReason(std::uint64_t value, std::int32_t reason) = 0; // 10
    virtual void Cancel() = 0;                                             // 11
    virtual std::uint8_t IsCancelled() = 0;                                // 12
};

class ObPvxCloudCallback2 : public ObPvxCloudCallback {
public:
    virtual std::uint8_t GetCountFlag() = 0; // 13
    virtual std::uint32_t GetCount() = 0;    // 14
    virtual std::uint64_t GetAmount() = 0;   // 15
    virtual void Notify16();                 // 16: nothing
    virtual void Notify17();                 // 17: nothing
};

class ObPvxCloudCallback3 : public ObPvxCloudCallback2 {
public:
    virtual void Finish() = 0;             // 18
    virtual std::uint8_t IsFinished() = 0; // 19
    virtual bool Answer20();               // 20: false
};

class ObPvxCloudCallback4 : public ObPvxCloudCallback3 {
public:
    virtual bool Answer21();                           // 21: true
    virtual void Notify22();                           // 22: nothing
    virtual void SetCancelled(std::uint8_t value) = 0; // 23
};

} // namespace ObPVX
