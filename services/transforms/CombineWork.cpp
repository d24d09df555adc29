#include "services/transforms/CombineWork.h"

#include <string>
#include <utility>

#include "ObLib/Src/Win32/Utf8.h"
#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/transforms/WholeFile.h"

namespace transforms {
namespace {

using namespace obcontract;

struct Asked {
    std::string title; // UTF-8
    bool breaksSignatures;
};

// Nothing for values that the contract lacks.
std::optional<Asked> AskedFor(const WorkRequest& request) {
    const auto settings = request.SettingsAs<WorkCombineAdd>();
    const auto title = request.TextAfter<WorkCombineAdd>();
    const bool isKnown =
        settings.signatures == WorkSignatures::Keep || settings.signatures == WorkSignatures::Break;
    if (!isKnown || settings.reserved != 0 || !title) return {};
    return Asked{ObLib::ToUtf8(*title), settings.signatures == WorkSignatures::Break};
}

class TargetSink final : public combine::PdfSink {
public:
    explicit TargetSink(HANDLE target) noexcept : target_(target) {}
    bool Write(personal::Bytes bytes) override {
        size_ += bytes.size();
        return ObLib::WriteWhole(target_, bytes.data(), bytes.size());
    }
    std::uint64_t Size() const noexcept { return size_; }

private:
    HANDLE target_;
    std::uint64_t size_ = 0;
};

} // namespace

std::optional<WorkEnd> CombineWork::Add(WorkRequest& request) {
    const auto asked = AskedFor(request);
    if (!asked || isWritten_) return {};
    WorkFailure failure{};
    auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    const auto bytes = source->Bytes();
    if (!ReadAhead(bytes, steps_.Channel())) return {};
    steps_.Begin(bytes.size());
    sources_.push_back(std::move(*source));
    if (!combiner_) combiner_.emplace(&steps_);
    const CleanOutcome outcome =
        combiner_->Add({asked->title, bytes, asked->breaksSignatures, request.password.Text()});
    if (steps_.IsUnread()) return {};
    return outcome == CleanOutcome::Cleaned ? WorkEnd(WorkOutcome::Changed)
                                            : EndOfWholeFile(outcome);
}

std::optional<WorkEnd> CombineWork::Write(WorkRequest& request) {
    if (request.SettingsAs<WorkPlain>().reserved != 0 || isWritten_) return {};
    if (!combiner_ || combiner_->Count() == 0) return {};
    isWritten_ = true;
    steps_.Begin(0);
    TargetSink sink(request.target.Get());
    const bool isWhole = combiner_->Write(sink);
    if (const auto failed = combiner_->Failed()) steps_.Enter(*failed);
    if (steps_.IsUnread()) return {};
    if (isWhole) return WorkEnd(WorkOutcome::Changed, sink.Size());
    return WorkEnd(combiner_->Failed() ? WorkFailure::Damaged : WorkFailure::Unwritable);
}

} // namespace transforms
