// Where the data of one entry comes from, after its first piece has been taken.
#pragma once

#include <memory>
#include <optional>

#include "services/archive/compress/XzStream.h"
#include "services/archive/zip/ReadAhead.h"

namespace obarchive {

class EntryStream;
struct EntryRecord;

// The thread of the run. One entry's data, from its beginning to its end.
class EntryBody {
public:
    virtual ~EntryBody() = default;

    // Gives the stream more bytes, which stay valid until the next call, or ends it; may do neither
    // when it has to wait. False with the run's failure noted. Throws what the stream throws.
    virtual bool AddMore(EntryStream& stream) = 0;
};

// Pieces that workers have deflated or left as they are.
class PackedBody : public EntryBody {
public:
    explicit PackedBody(std::shared_ptr<PackTask> first) : task_(std::move(first)) {}
    bool AddMore(EntryStream& stream) override;

private:
    std::shared_ptr<PackTask> task_; // the current piece
    bool isAdded_ = false;
};

// The data of an earlier entry of the same content, read back and encrypted with other keys.
class CopiedBody : public EntryBody {
public:
    CopiedBody(EntryStream& stream, const EntryRecord& original);
    bool AddMore(EntryStream& stream) override;

private:
    const EntryRecord& original_;
    std::optional<Ae2Stream> decryption_;
    std::uint64_t copied_ = 0; // bytes of the original, with what encryption put before its data
    ByteBuffer buffer_;
};

// One xz stream over all pieces of a larger file, which come as they were read.
class XzBody : public EntryBody {
public:
    explicit XzBody(std::shared_ptr<PackTask> first) : task_(std::move(first)) {}
    bool AddMore(EntryStream& stream) override;

private:
    bool Feed(EntryStream& stream);

    std::shared_ptr<PackTask> task_; // the current piece
    std::optional<XzStream> xz_;
    ByteBuffer buffer_;
};

} // namespace obarchive
