#include "OBCore/exchange/ExchangeMapping.h"

#include <cwchar>

using obcontract::ExchangeBlock;
using obcontract::kExchangeBlockNameCapacity;
using obcontract::kExchangeBlockNameFormat;
using obcontract::kExchangeBlockSize;

namespace obcore {
namespace {

// The size is asked for outright: with 0 a smaller section of this name would be mapped as far as
// it goes, and the block would end early.
MappedExchangeBlock MapWhole(ObLib::UniqueKernelHandle& mapping) {
    if (!mapping) return {};
    MappedExchangeBlock block(static_cast<ExchangeBlock*>(
        MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, kExchangeBlockSize)));
    if (!block) mapping.Reset();
    return block;
}

} // namespace

std::wstring ExchangeBlockName(std::uint32_t id) {
    wchar_t name[kExchangeBlockNameCapacity];
    _snwprintf(name, kExchangeBlockNameCapacity, kExchangeBlockNameFormat, static_cast<int>(id));
    return name;
}

MappedExchangeBlock CreateExchangeBlock(std::uint32_t id, ObLib::UniqueKernelHandle& mapping) {
    SECURITY_ATTRIBUTES security = {sizeof(security), nullptr, TRUE};
    mapping.Reset(CreateFileMappingW(INVALID_HANDLE_VALUE, &security, PAGE_READWRITE | SEC_COMMIT,
                                     0, kExchangeBlockSize, ExchangeBlockName(id).c_str()));
    return MapWhole(mapping);
}

MappedExchangeBlock OpenExchangeBlock(std::uint32_t id, ObLib::UniqueKernelHandle& mapping) {
    mapping.Reset(OpenFileMappingW(FILE_MAP_WRITE, FALSE, ExchangeBlockName(id).c_str()));
    return MapWhole(mapping);
}

} // namespace obcore
