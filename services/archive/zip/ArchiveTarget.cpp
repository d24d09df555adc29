#include "services/archive/zip/ArchiveTarget.h"

#include <cerrno>
#include <memory>
#include <new>

namespace obarchive {
namespace {

// Owned by the library, which ends it with ZIP_SOURCE_FREE.
class ArchiveTarget {
public:
    ArchiveTarget(OutputFile& output, RunState& run) : output_(output), run_(run) {
        zip_error_init(&error_);
    }
    ArchiveTarget(const ArchiveTarget&) = delete;
    ArchiveTarget& operator=(const ArchiveTarget&) = delete;
    ~ArchiveTarget() { zip_error_fini(&error_); }

    static zip_int64_t Serve(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command);

private:
    zip_int64_t Do(void* data, zip_uint64_t length, zip_source_cmd_t command);
    zip_int64_t Seek(void* data, zip_uint64_t length);
    zip_int64_t Answer(bool done, zip_int64_t value);
    zip_int64_t Refuse(int libraryError, int systemError);

    OutputFile& output_;
    RunState& run_;
    zip_error_t error_;
};

zip_int64_t ArchiveTarget::Refuse(int libraryError, int systemError) {
    zip_error_set(&error_, libraryError, systemError);
    return -1;
}

zip_int64_t ArchiveTarget::Answer(bool done, zip_int64_t value) {
    if (done) return value;
    run_.Fail(output_.LastFailure());
    return Refuse(ZIP_ER_WRITE, EIO);
}

zip_int64_t ArchiveTarget::Seek(void* data, zip_uint64_t length) {
    const zip_int64_t place =
        zip_source_seek_compute_offset(output_.Position(), output_.Length(), data, length, &error_);
    if (place < 0) return -1;
    return Answer(output_.Seek(static_cast<std::uint64_t>(place)), 0);
}

zip_int64_t ArchiveTarget::Do(void* data, zip_uint64_t length, zip_source_cmd_t command) {
    switch (command) {
    case ZIP_SOURCE_SUPPORTS:
        return ZIP_SOURCE_SUPPORTS_WRITABLE;
    case ZIP_SOURCE_STAT:
        return Refuse(ZIP_ER_READ, ENOENT); // what the library takes for "not there yet"
    case ZIP_SOURCE_BEGIN_WRITE:
    case ZIP_SOURCE_ROLLBACK_WRITE:
    case ZIP_SOURCE_REMOVE:
    case ZIP_SOURCE_CLOSE:
        return 0;
    case ZIP_SOURCE_COMMIT_WRITE:
        return Answer(output_.Flush(), 0);
    case ZIP_SOURCE_WRITE:
        return Answer(output_.Write(data, static_cast<std::size_t>(length)),
                      static_cast<zip_int64_t>(length));
    case ZIP_SOURCE_SEEK_WRITE:
        return Seek(data, length);
    case ZIP_SOURCE_TELL_WRITE:
        return static_cast<zip_int64_t>(output_.Position());
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&error_, data, length);
    default:
        return Refuse(ZIP_ER_OPNOTSUPP, 0);
    }
}

zip_int64_t ArchiveTarget::Serve(void* self, void* data, zip_uint64_t length,
                                 zip_source_cmd_t command) {
    auto* const target = static_cast<ArchiveTarget*>(self);
    if (command == ZIP_SOURCE_FREE) {
        delete target;
        return 0;
    }
    try {
        return target->Do(data, length, command);
    } catch (const std::bad_alloc&) {
        target->run_.Fail(ZipResult::OutOfMemory);
        return target->Refuse(ZIP_ER_MEMORY, 0);
    }
}

} // namespace

zip_source_t* MakeArchiveTarget(OutputFile& output, RunState& run, zip_error_t* error) {
    auto target = std::make_unique<ArchiveTarget>(output, run);
    zip_source_t* source = zip_source_function_create(&ArchiveTarget::Serve, target.get(), error);
    // From here on the library ends it.
    if (source) static_cast<void>(target.release());
    return source;
}

} // namespace obarchive
