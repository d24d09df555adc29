#include "OBCore/transforms/TransformRun.h"

#include <utility>

namespace obcore {

TransformRun::TransformRun(const OBAttachJob& job, PathList files, std::wstring folder)
    : Manager(job.OwnedProviderManager), Folder(std::move(folder)), Dialog(job.ParentWindow),
      BeforeArchive(job.TransformsBeforeArchive), files_(std::move(files)) {}

std::optional<ManagerCall> TransformRun::EnterCall() const {
    const std::lock_guard guard(lock_);
    if (HasEnded()) return std::nullopt;
    return std::optional<ManagerCall>(std::in_place, Manager);
}

bool TransformRun::IsOpen() const {
    const std::lock_guard guard(lock_);
    return !HasEnded();
}

PathList TransformRun::Files() const {
    const std::lock_guard guard(lock_);
    return files_;
}

bool TransformRun::FinishStep(PathList files) {
    const std::lock_guard guard(lock_);
    if (HasEnded()) return false;
    files_ = std::move(files);
    return true;
}

bool TransformRun::FinishFile(std::size_t index, const std::wstring& path) {
    const std::lock_guard guard(lock_);
    if (HasEnded() || index >= files_.size()) return false;
    if (path.empty()) {
        files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(index));
    } else {
        files_[index] = path;
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
