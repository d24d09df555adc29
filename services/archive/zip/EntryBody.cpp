#include "services/archive/zip/EntryBody.h"

#include <algorithm>

namespace obarchive {
namespace {

constexpr std::size_t kBufferSize = 256 * 1024;

} // namespace

bool PackedBody::AddMore(EntrySink& stream) {
    if (isAdded_) task_ = stream.TakeNext();
    if (!task_) return false;
    isAdded_ = true;
    stream.AddChecksum(*task_);
    stream.Add(task_->Body(), task_->order.keys != nullptr);
    if (task_->order.last) stream.End(task_->tail);
    return true;
}

CopiedBody::CopiedBody(EntrySink& stream, const EntryRecord& original)
    : original_(original), buffer_(kBufferSize) {
    stream.Record().checksum = original.checksum;
    stream.Record().packing = original.packing;
    if (!original.keys) return;
    decryption_.emplace(*stream.Context().settings.algorithms, *original.keys);
    copied_ = original.keys->HeadSize();
}

bool CopiedBody::AddMore(EntrySink& stream) {
    StreamContext& context = stream.Context();
    const std::uint64_t end = original_.packedSize - (decryption_ ? kAe2CodeSize : 0);
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(kBufferSize, end - copied_));
    if (count == 0) return stream.End({}), true;
    static_cast<void>(buffer_.Resize(count));
    if (!context.output.ReadAt(original_.position + copied_, buffer_.Data(), count)) {
        context.run.Fail(context.output.LastFailure());
        return false;
    }
    copied_ += count;
    if (decryption_) decryption_->Decrypt(buffer_.Bytes());
    stream.Add(buffer_.Bytes(), false);
    return context.run.Report();
}

// The first piece begins the stream; the further ones go on with it.
bool XzBody::Feed(EntrySink& stream) {
    if (xz_) task_ = stream.TakeNext();
    if (!task_) return false;
    if (!xz_) {
        buffer_ = ByteBuffer(kBufferSize);
        if (!xz_.emplace().Begin(stream.Size())) {
            stream.Context().run.Fail(ZipResult::OutOfMemory);
            return false;
        }
    }
    stream.AddChecksum(*task_);
    xz_->Feed(task_->raw.Bytes(), task_->order.last);
    return true;
}

bool XzBody::AddMore(EntrySink& stream) {
    if ((!xz_ || xz_->IsUsedUp()) && !Feed(stream)) return false;
    if (!xz_->Advance(buffer_)) {
        stream.Context().run.Fail(ZipResult::EngineFailed);
        return false;
    }
    stream.Add(buffer_.Bytes(), false);
    if (xz_->HasEnded()) stream.End({});
    return stream.Context().run.Report();
}

} // namespace obarchive
