#include "services/providers/transforms/RunRecord.h"

#include <windows.h>

namespace providers {

bool PathOrder::operator()(const std::wstring& one, const std::wstring& other) const {
    return CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                static_cast<int>(other.size()), TRUE) == CSTR_LESS_THAN;
}

} // namespace providers
