// The named mapping in which an exchange block lives: made by the browser side, opened by the host.
#pragma once

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ExchangeBlock.h"

namespace obcore {

using MappedExchangeBlock = ObLib::UniqueMappedView<obcontract::ExchangeBlock>;

// The mapping's name: the id as signed decimal.
std::wstring ExchangeBlockName(std::uint32_t id);

// Browser side. Makes the mapping of 65536 bytes and maps all of it. An existing mapping of that
// name is simply taken, its contents included; one that is too small can't be mapped. Null, with an
// empty `mapping`, on failure.
MappedExchangeBlock CreateExchangeBlock(std::uint32_t id, ObLib::UniqueKernelHandle& mapping);

// Host side. Null, with an empty `mapping`, when there is no block of that id.
MappedExchangeBlock OpenExchangeBlock(std::uint32_t id, ObLib::UniqueKernelHandle& mapping);

} // namespace obcore
