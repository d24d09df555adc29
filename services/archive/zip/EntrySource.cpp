#include "services/archive/zip/EntrySource.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

namespace obarchive {
namespace {

// The library chooses the 64-bit form of an entry by the size that it is given, without the few
// bytes that encryption adds. For sizes just below the border this source reports no size, and the
// library then always chooses the 64-bit form.
constexpr std::uint64_t kZip64Border = 4293656963;
constexpr std::uint64_t kSurplus = 1024 * 1024;

zip_uint16_t MethodOf(Packing packing) {
    if (packing == Packing::Store) return ZIP_CM_STORE;
    return packing == Packing::Xz ? ZIP_CM_XZ : ZIP_CM_DEFLATE;
}

// Owned by the library, which ends it with ZIP_SOURCE_FREE.
class EntrySource {
public:
    EntrySource(StreamContext& context, std::size_t entry, zip_uint16_t encryption)
        : context_(context), entry_(entry), encryption_(encryption) {
        zip_error_init(&error_);
    }
    EntrySource(const EntrySource&) = delete;
    EntrySource& operator=(const EntrySource&) = delete;
    ~EntrySource() { zip_error_fini(&error_); }

    static zip_int64_t Serve(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command);

private:
    zip_int64_t Do(void* data, zip_uint64_t length, zip_source_cmd_t command);
    zip_int64_t Read(void* data, zip_uint64_t length);
    zip_int64_t Stat(void* data, zip_uint64_t length);
    zip_int64_t Fail(ZipResult result, int libraryError);

    StreamContext& context_;
    const std::size_t entry_;
    const zip_uint16_t encryption_;
    zip_error_t error_;
    std::unique_ptr<EntryStream> stream_;
    bool done_ = false;
};

zip_int64_t EntrySource::Fail(ZipResult result, int libraryError) {
    context_.run.Fail(result);
    zip_error_set(&error_, libraryError, EIO);
    return -1;
}

zip_int64_t EntrySource::Read(void* data, zip_uint64_t length) {
    const zip_int64_t count =
        stream_->Read(static_cast<std::uint8_t*>(data), static_cast<std::size_t>(length));
    if (count < 0) return Fail(ZipResult::EngineFailed, ZIP_ER_READ);
    done_ = done_ || count == 0;
    return count;
}

// The library compresses or encrypts where this record differs from what the entry is to be.
// Whether a file is only stored is known after its data was read, so the second record reports it.
// In the first record, "stored" would make the library compute the checksum of the packed bytes.
zip_int64_t EntrySource::Stat(void* data, zip_uint64_t length) {
    zip_stat_t stat;
    if (length < sizeof stat) return Fail(ZipResult::EngineFailed, ZIP_ER_INVAL);
    zip_stat_init(&stat);
    const SourceFacts& facts = context_.sources[entry_].facts;
    stat.mtime = static_cast<time_t>(ZipTime(facts.lastWrite));
    stat.size = facts.size;
    stat.encryption_method = encryption_;
    stat.comp_method = ZIP_CM_DEFLATE;
    stat.valid = ZIP_STAT_MTIME | ZIP_STAT_COMP_METHOD | ZIP_STAT_ENCRYPTION_METHOD;
    const bool nearBorder = facts.size <= kZip64Border && facts.size > kZip64Border - kSurplus;
    if (done_ || !nearBorder) stat.valid |= ZIP_STAT_SIZE;
    if (done_) {
        const EntryRecord& record = context_.records[entry_];
        stat.comp_method = MethodOf(record.packing);
        stat.comp_size = record.packedSize;
        // AE-2: the sum of the plain data would let anybody confirm a guess of the file.
        stat.crc = encryption_ == ZIP_EM_NONE ? record.checksum : 0;
        stat.valid |= ZIP_STAT_COMP_SIZE | ZIP_STAT_CRC;
    }
    std::memcpy(data, &stat, sizeof stat);
    return sizeof stat;
}

zip_int64_t EntrySource::Do(void* data, zip_uint64_t length, zip_source_cmd_t command) {
    switch (command) {
    case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE,
                                              ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE,
                                              ZIP_SOURCE_SUPPORTS, -1);
    case ZIP_SOURCE_OPEN:
        stream_ = std::make_unique<EntryStream>(context_, entry_);
        return 0;
    case ZIP_SOURCE_READ:
        return Read(data, length);
    case ZIP_SOURCE_CLOSE:
        stream_.reset();
        return 0;
    case ZIP_SOURCE_STAT:
        return Stat(data, length);
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&error_, data, length);
    default:
        zip_error_set(&error_, ZIP_ER_OPNOTSUPP, 0);
        return -1;
    }
}

// Nothing may throw through the library's C code.
zip_int64_t EntrySource::Serve(void* self, void* data, zip_uint64_t length,
                               zip_source_cmd_t command) {
    auto* const source = static_cast<EntrySource*>(self);
    if (command == ZIP_SOURCE_FREE) {
        delete source;
        return 0;
    }
    try {
        return source->Do(data, length, command);
    } catch (const std::bad_alloc&) {
        return source->Fail(ZipResult::OutOfMemory, ZIP_ER_MEMORY);
    } catch (...) {
        return source->Fail(ZipResult::EngineFailed, ZIP_ER_INTERNAL);
    }
}

} // namespace

zip_source_t* MakeEntrySource(StreamContext& context, std::size_t entry, zip_uint16_t encryption,
                              zip_error_t* error) {
    auto file = std::make_unique<EntrySource>(context, entry, encryption);
    zip_source_t* source = zip_source_function_create(&EntrySource::Serve, file.get(), error);
    // From here on the library ends it.
    if (source) static_cast<void>(file.release());
    return source;
}

} // namespace obarchive
