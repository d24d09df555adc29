#include "OBCore/cloud/CloudUploadCallBack.h"

namespace obcore {
namespace {

constexpr std::int32_t kReasonNameTaken = 1;

} // namespace

void CloudUploadCallBack::SetStatus(std::uint32_t value) { status = value; }
std::uint32_t CloudUploadCallBack::GetStatus() { return status; }

void CloudUploadCallBack::SetStatusFlag(std::uint8_t value) { statusFlag = value; }
std::uint8_t CloudUploadCallBack::GetStatusFlag() { return statusFlag; }

void CloudUploadCallBack::TellReason(std::uint64_t, std::int32_t reason) {
    if (reason == kReasonNameTaken) retryWithNewName = 1;
}

void CloudUploadCallBack::Cancel() { cancelled = 1; }
void CloudUploadCallBack::SetCancelled(std::uint8_t value) { cancelled = value; }
std::uint8_t CloudUploadCallBack::IsCancelled() { return cancelled; }

std::uint8_t CloudUploadCallBack::GetCountFlag() { return countFlag; }
std::uint32_t CloudUploadCallBack::GetCount() { return count; }
std::uint64_t CloudUploadCallBack::GetAmount() { return amount; }

void CloudUploadCallBack::Finish() { finished = 1; }
std::uint8_t CloudUploadCallBack::IsFinished() { return finished; }

} // namespace obcore
