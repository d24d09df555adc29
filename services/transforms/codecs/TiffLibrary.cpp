// The library's callbacks.
#include "services/transforms/codecs/TiffLibrary.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace transforms {

struct TiffCallbacks {
    static TiffFile& Of(thandle_t handle) noexcept { return *static_cast<TiffFile*>(handle); }

    static tmsize_t Read(thandle_t handle, void* to, tmsize_t count) noexcept {
        auto& file = Of(handle);
        const std::span<std::uint8_t> bytes(static_cast<std::uint8_t*>(to),
                                            static_cast<std::size_t>(count));
        try {
            std::size_t read = 0;
            if (file.source_)
                read = ReadPicture(*file.source_, file.offset_, bytes);
            else if (!file.target_->ReadBack(file.offset_, bytes, read))
                throw PictureFailure{PictureOutcome::WriteFailed};
            file.offset_ += read;
            return static_cast<tmsize_t>(read);
        } catch (...) {
            file.failure_ = std::current_exception();
            return -1;
        }
    }

    static tmsize_t Write(thandle_t handle, void* from, tmsize_t count) noexcept {
        auto& file = Of(handle);
        try {
            if (!file.target_) return -1;
            WritePicture(*file.target_, file.offset_,
                         {static_cast<const std::uint8_t*>(from), static_cast<std::size_t>(count)});
        } catch (...) {
            file.failure_ = std::current_exception();
            return -1;
        }
        file.offset_ += static_cast<std::uint64_t>(count);
        file.size_ = std::max(file.size_, file.offset_);
        return count;
    }

    static toff_t Seek(thandle_t handle, toff_t offset, int from) noexcept {
        auto& file = Of(handle);
        file.offset_ = from == SEEK_CUR   ? file.offset_ + offset
                       : from == SEEK_END ? file.size_ + offset
                                          : offset;
        return file.offset_;
    }

    static int Close(thandle_t) noexcept { return 0; }
    static toff_t Size(thandle_t handle) noexcept { return Of(handle).size_; }
};

TiffFile::TiffFile(PictureSource& source, const PictureControl&)
    : source_(&source), size_(source.Size()) {
    Open("rm");
}

TiffFile::TiffFile(PictureTarget& target, bool isBigEndian) : target_(&target) {
    Open(isBigEndian ? "wbm" : "wlm");
}

TiffFile::~TiffFile() {
    if (tiff_) TIFFClose(tiff_);
}

void TiffFile::Open(const char* mode) {
    static std::once_flag once;
    std::call_once(once, [] {
        TIFFSetErrorHandler(nullptr);
        TIFFSetWarningHandler(nullptr);
    });
    tiff_ = TIFFClientOpen("picture", mode, this, TiffCallbacks::Read, TiffCallbacks::Write,
                           TiffCallbacks::Seek, TiffCallbacks::Close, TiffCallbacks::Size, nullptr,
                           nullptr);
    if (!tiff_) ThrowFailure();
}

void TiffFile::Close() {
    const bool good = TIFFFlush(tiff_);
    TIFFClose(tiff_);
    tiff_ = nullptr;
    Check(good && !failure_);
}

void TiffFile::ThrowFailure() const {
    if (failure_) std::rethrow_exception(failure_);
    throw PictureFailure{target_ ? PictureOutcome::OutOfMemory : PictureOutcome::Damaged};
}

std::uint16_t TiffShort(TIFF* tiff, std::uint32_t tag) noexcept {
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

std::uint32_t TiffLong(TIFF* tiff, std::uint32_t tag) noexcept {
    std::uint32_t value = 0;
    TIFFGetField(tiff, tag, &value);
    return value;
}

} // namespace transforms
