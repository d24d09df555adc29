#include "obwmv/HostEntry.h"

#include "OBCore/exchange/ExchangeMapping.h"
#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/picker/Drivers.h"

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;

namespace obwmv {
namespace {

constexpr int kServed = 0;
constexpr int kFailed = -1;

// Null when there is no such block. What is found stays mapped: the exit of the process ends it,
// after everything that may still write.
ExchangeBlock* FindBlock(std::uint32_t id) {
    ObLib::UniqueKernelHandle mapping;
    obcore::MappedExchangeBlock block = obcore::OpenExchangeBlock(id, mapping);
    static_cast<void>(mapping.Release());
    return block.Release();
}

// The drivers move the status, so their result is stored once they are done.
int ServeDialog(HWND owner, ExchangeBlock& block) {
    const HRESULT result = obcore::DialogDriver(owner, block);
    block.Result = result;
    return kServed;
}

int ServeOpenFileName(HWND owner, ExchangeBlock& block) {
    block.Status = ExchangeStatus::OpenFileNameTaken;
    OPENFILENAMEW request = obcore::ReadOpenFileNameRequest(block, owner);
    const BOOL result = obcore::OpenFileNameDriver(&request, block);
    block.Result = result;
    return kServed;
}

} // namespace

int HostEntry(HWND owner, std::uint32_t id) {
    ExchangeBlock* block = FindBlock(id);
    if (!block) return kFailed;
    switch (block->Status) {
    case ExchangeStatus::DialogRequest:
        return ServeDialog(owner, *block);
    case ExchangeStatus::OpenFileNameRequest:
        return ServeOpenFileName(owner, *block);
    default:
        return kFailed;
    }
}

} // namespace obwmv
