#include "OBCore/transforms/TransformRun.h"

#include <utility>

namespace obcore {

TransformRun::TransformRun(const OBAttachJob& job, PathList files, std::wstring folder)
    : Manager(job.OwnedProviderManager), Files(std::move(files)), Folder(std::move(folder)),
      Dialog(job.ParentWindow), BeforeArchive(job.TransformsBeforeArchive) {}

std::optional<ManagerCall> TransformRun::EnterCall() const {
    const std::lock_guard guard(lock_);
    if (HasEnded()) return std::nullopt;
    return std::optional<ManagerCall>(std::in_place, Manager);
}

bool TransformRun::IsOpen() const {
    const std::lock_guard guard(lock_);
    return !HasEnded();
}

PathList TransformRun::CurrentFiles() const {
    const std::lock_guard guard(lock_);
    return Files;
}

bool TransformRun::FinishStep(PathList files) {
    const std::lock_guard guard(lock_);
    if (HasEnded()) return false;
    Files = std::move(files);
    return true;
}

bool TransformRun::FinishFile(std::size_t index, const std::wstring& path) {
    const std::lock_guard guard(lock_);
    if (HasEnded() || index >= Files.size()) return false;
    if (path.empty()) {
        Files.erase(Files.begin() + static_cast<std::ptrdiff_t>(index));
    } else {
        Files[index] = path;
    }
    return true;
}

void TransformRun::Cancel() {
    const std::lock_guard guard(lock_);
    cancelled_ = true;
}

bool TransformRun::MarkEnd() {
    const std::lock_guard guard(lock_);
    ended_ = true;
    return cancelled_;
}

} // namespace obcore
