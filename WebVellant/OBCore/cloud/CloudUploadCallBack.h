// What the upload step hands to a provider, and reads when the transfer is over.
#pragma once

#include <cstdint>

#include "OBCore/cloud/ObPvxCallback.h"

namespace obcore {

// Lives on the stack of the upload step. A provider calls it from inside RunUpload, on the thread
// that called RunUpload, so nothing is locked. Only `retryWithNewName` means something on this
// side; the other fields are kept for the provider.
class CloudUploadCallBack : public ObPVX::ObPvxCloudCallback4 {
public:
    void SetStatus(std::uint32_t value) override;
    std::uint32_t GetStatus() override;
    void SetStatusFlag(std::uint8_t value) override;
    std::uint8_t GetStatusFlag() override;
    // Reason 1: the cloud already has a file of that name. Every other reason is ignored, and
    // so is the value.
    void TellReason(std::uint64_t value, std::int32_t reason) override;
    void Cancel() override;
    std::uint8_t IsCancelled() override;
    std::uint8_t GetCountFlag() override;
    std::uint32_t GetCount() override;
    std::uint64_t GetAmount() override;
    void Finish() override;
    std::uint8_t IsFinished() override;
    void SetCancelled(std::uint8_t value) override;

    std::uint32_t status = 0;
    std::uint8_t statusFlag = 0;
    std::uint32_t count = 0;
    std::uint8_t countFlag = 0;
    std::uint64_t amount = 0;
    std::uint8_t spare = 0; // reached by no slot
    std::uint8_t finished = 0;
    std::uint8_t cancelled = 0;
    std::int32_t retryWithNewName = 0; // read and reset by the upload step
};

} // namespace obcore
