// The library's callbacks. They throw through its C code, whose frames this platform can unwind;
// the library's objects are then in the state that its own long jump would leave, and are
// destroyed.
#include "services/transforms/codecs/JpegLibrary.h"

#include <algorithm>

#include <jerror.h>

namespace transforms {
namespace {

const std::size_t BufferSize = 64 * 1024;

PictureOutcome OutcomeOf(int code) noexcept {
    switch (code) {
    case JERR_OUT_OF_MEMORY:
        return PictureOutcome::OutOfMemory;
    case JERR_NO_BACKING_STORE: // more than the limit for what has to be in memory at once
    case JERR_WIDTH_OVERFLOW:
    case JERR_IMAGE_TOO_BIG:
        return PictureOutcome::TooLarge;
    case JERR_BAD_PRECISION:
    case JERR_SOF_UNSUPPORTED:
    case JERR_NOT_COMPILED:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_ARITH_NOTIMPL:
        return PictureOutcome::Unsupported;
    default:
        return PictureOutcome::Damaged;
    }
}

bool IsDamage(int warning) noexcept {
    return warning == JWRN_HIT_MARKER || warning == JWRN_HUFF_BAD_CODE ||
           warning == JWRN_JPEG_EOF || warning == JWRN_MUST_RESYNC ||
           warning == JWRN_ARITH_BAD_CODE || warning == JWRN_BOGUS_PROGRESSION;
}

} // namespace

struct JpegCallbacks {
    [[noreturn]] static void Fail(j_common_ptr info) {
        throw PictureFailure{OutcomeOf(info->err->msg_code)};
    }

    static void Warn(j_common_ptr info, int level) {
        if (level < 0 && IsDamage(info->err->msg_code))
            throw PictureFailure{PictureOutcome::Damaged};
    }

    static void Nothing(j_common_ptr) {}
    static void NoReading(j_decompress_ptr) {}

    static void SetErrors(jpeg_error_mgr& errors) {
        jpeg_std_error(&errors);
        errors.error_exit = Fail;
        errors.emit_message = Warn;
        errors.output_message = Nothing;
    }

    static boolean Refill(j_decompress_ptr jpeg) {
        auto& reader = static_cast<JpegReader&>(*jpeg);
        reader.control_.ThrowIfCancelled();
        if (reader.inHeader_ && reader.offset_ > reader.control_.limits.metadata)
            throw PictureFailure{PictureOutcome::TooLarge};
        const std::size_t read = ReadPicture(reader.file_, reader.offset_, reader.buffer_);
        if (!read) throw PictureFailure{PictureOutcome::Damaged}; // past the end
        reader.offset_ += read;
        reader.reading_.next_input_byte = reader.buffer_.data();
        reader.reading_.bytes_in_buffer = read;
        return TRUE;
    }

    static void Skip(j_decompress_ptr jpeg, long count) {
        if (count <= 0) return;
        auto& reader = static_cast<JpegReader&>(*jpeg);
        const auto buffered =
            std::min(static_cast<std::size_t>(count), reader.reading_.bytes_in_buffer);
        reader.reading_.next_input_byte += buffered;
        reader.reading_.bytes_in_buffer -= buffered;
        reader.offset_ += static_cast<std::size_t>(count) - buffered;
    }

    // A scan is decoded whole before the first row of a progressive picture comes out: here cancel
    // is noticed, and a file of endless scans.
    static void Watch(j_common_ptr info) {
        auto& reader = static_cast<JpegReader&>(*reinterpret_cast<j_decompress_ptr>(info));
        reader.control_.ThrowIfCancelled();
        if (reader.input_scan_number > reader.control_.limits.scans)
            throw PictureFailure{PictureOutcome::TooLarge};
    }

    static void BeginWriting(j_compress_ptr jpeg) {
        auto& writer = static_cast<JpegWriter&>(*jpeg);
        writer.writing_.next_output_byte = writer.buffer_.data();
        writer.writing_.free_in_buffer = writer.buffer_.size();
    }

    // The whole buffer is written, whatever the library reports as free.
    static boolean Flush(j_compress_ptr jpeg) {
        auto& writer = static_cast<JpegWriter&>(*jpeg);
        WritePicture(writer.file_, writer.offset_, writer.buffer_);
        writer.offset_ += writer.buffer_.size();
        BeginWriting(jpeg);
        return TRUE;
    }

    static void EndWriting(j_compress_ptr jpeg) {
        auto& writer = static_cast<JpegWriter&>(*jpeg);
        const std::size_t left = writer.buffer_.size() - writer.writing_.free_in_buffer;
        WritePicture(writer.file_, writer.offset_, {writer.buffer_.data(), left});
    }
};

JpegReader::JpegReader(PictureSource& source, const PictureControl& control)
    : jpeg_decompress_struct{}, file_(source), control_(control), buffer_(BufferSize) {
    JpegCallbacks::SetErrors(errors_);
    err = &errors_;
    jpeg_create_decompress(this);
    mem->max_memory_to_use =
        static_cast<long>(std::min<std::uint64_t>(control.limits.memory, 0x7FFFFFFF));
    reading_.init_source = JpegCallbacks::NoReading;
    reading_.fill_input_buffer = JpegCallbacks::Refill;
    reading_.skip_input_data = JpegCallbacks::Skip;
    reading_.resync_to_restart = jpeg_resync_to_restart;
    reading_.term_source = JpegCallbacks::NoReading;
    src = &reading_;
    progress_.progress_monitor = JpegCallbacks::Watch;
    progress = &progress_;
}

JpegReader::~JpegReader() { jpeg_destroy_decompress(this); }

JpegWriter::JpegWriter(PictureTarget& target)
    : jpeg_compress_struct{}, file_(target), buffer_(BufferSize) {
    JpegCallbacks::SetErrors(errors_);
    err = &errors_;
    jpeg_create_compress(this);
    writing_.init_destination = JpegCallbacks::BeginWriting;
    writing_.empty_output_buffer = JpegCallbacks::Flush;
    writing_.term_destination = JpegCallbacks::EndWriting;
    dest = &writing_;
}

JpegWriter::~JpegWriter() { jpeg_destroy_compress(this); }

} // namespace transforms
