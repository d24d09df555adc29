// The list of attributes with which a process is created.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace providers {

// What an attribute points to is the caller's and outlives the list.
class AttributeList {
public:
    explicit AttributeList(DWORD count) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, count, 0, &size);
        memory_.resize(size);
        ok_ = InitializeProcThreadAttributeList(Get(), count, 0, &size) != FALSE;
    }
    ~AttributeList() {
        if (ok_) DeleteProcThreadAttributeList(Get());
    }
    AttributeList(const AttributeList&) = delete;
    AttributeList& operator=(const AttributeList&) = delete;

    // False, also for a list that couldn't be made, when the attribute can't be added.
    bool Add(DWORD_PTR attribute, void* value, SIZE_T size) {
        return ok_ && UpdateProcThreadAttribute(Get(), 0, attribute, value, size, nullptr, nullptr);
    }
    LPPROC_THREAD_ATTRIBUTE_LIST Get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    }

private:
    std::vector<std::uint8_t> memory_;
    bool ok_ = false;
};

} // namespace providers
