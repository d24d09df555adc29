#include "services/transforms/photos/HeicDecoder.h"

#include <cstring>
#include <memory>
#include <utility>

#include "services/transforms/photos/CarriedExif.h"
#include "services/transforms/photos/ColourProfile.h"
#include "services/transforms/photos/HeifLibrary.h"
#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

// Tiles are decoded side by side; more threads take more memory and gain little.
constexpr int kThreads = 4;
// Bytes a pixel that the library and its result take, with tiles and a turned copy.
constexpr std::uint64_t kBytesAPixel = 8, kDeepBytesAPixel = 12;

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

void Check(const HeifError& error) {
    if (error.code == 0) return;
    if (error.code == kHeifNoMemory || error.subcode == kHeifLimitExceeded)
        Throw(PictureOutcome::TooLarge);
    const bool isUnknown =
        error.code == kHeifUnsupportedFile || error.code == kHeifUnsupportedFeature;
    Throw(isUnknown ? PictureOutcome::Unsupported : PictureOutcome::Damaged);
}

// Frees an object of the library by the library's function.
template <class Type>
class Owned {
public:
    using Free = void (*)(Type*);
    Owned(Type* object, Free free) noexcept : object_(object), free_(free) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() {
        if (object_) free_(object_);
    }
    Type* Get() const noexcept { return object_; }

private:
    Type* object_ = nullptr;
    Free free_ = nullptr;
};

class HeicRows final : public RowReader {
public:
    HeicRows(PictureBytes file, HeifLibrary library, const PictureControl& control)
        : file_(std::move(file)), library_(std::move(library)),
          context_(library_->heif_context_alloc(), library_->heif_context_free) {
        if (!context_.Get()) Throw(PictureOutcome::OutOfMemory);
        library_->heif_context_set_max_decoding_threads(context_.Get(), kThreads);
        Check(library_->heif_context_read_from_memory_without_copy(context_.Get(), file_.data(),
                                                                   file_.size(), nullptr));
        heif_image_handle* handle = nullptr;
        Check(library_->heif_context_get_primary_image_handle(context_.Get(), &handle));
        picture_.emplace(handle, library_->heif_image_handle_release);
        CheckSize(control);
    }

    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        std::memcpy(row, plane_ + next_++ * stride_, form_.RowBytes());
    }

    // Before the first row; takes its time.
    void Decode(const PictureControl& control) {
        control.ThrowIfCancelled();
        heif_image* image = nullptr;
        const Owned options(library_->heif_decoding_options_alloc(),
                            library_->heif_decoding_options_free);
        if (!options.Get()) Throw(PictureOutcome::OutOfMemory);
        SetOptions(*options.Get(), control);
        Check(library_->heif_decode_image(
            picture_->Get(), &image, kHeifRgb,
            form_.hasAlpha ? kHeifInterleavedRgba : kHeifInterleavedRgb, options.Get()));
        image_.emplace(image, library_->heif_image_release);
        control.ThrowIfCancelled();
        TakePlane();
    }

    PictureBytes Profile() const {
        const std::size_t size =
            library_->heif_image_handle_get_raw_color_profile_size(picture_->Get());
        PictureBytes profile(size <= kMostMetadata ? size : 0);
        if (!profile.empty()) {
            Check(
                library_->heif_image_handle_get_raw_color_profile(picture_->Get(), profile.data()));
            return profile;
        }
        HeifColourNumbers* numbers = nullptr;
        const HeifError error =
            library_->heif_image_handle_get_nclx_color_profile(picture_->Get(), &numbers);
        const Owned owned(numbers, library_->heif_nclx_color_profile_free);
        if (error.code != 0 || !numbers) return {};
        return ProfileOfNumbers(static_cast<unsigned>(numbers->primaries),
                                static_cast<unsigned>(numbers->transfer));
    }

    // Carried over, for the size that the rows have.
    PictureBytes Exif() const {
        std::uint32_t id = 0;
        if (library_->heif_image_handle_get_list_of_metadata_block_IDs(picture_->Get(), "Exif", &id,
                                                                       1) != 1)
            return {};
        const std::size_t size = library_->heif_image_handle_get_metadata_size(picture_->Get(), id);
        if (size <= kOffsetSize || size > kMostMetadata) return {};
        PictureBytes bytes(size);
        if (library_->heif_image_handle_get_metadata(picture_->Get(), id, bytes.data()).code != 0)
            return {};
        // The data are preceded by their offset from there.
        const std::size_t offset = BigEndian32(bytes);
        if (offset >= size - kOffsetSize) return {};
        return CarriedExif(std::span(bytes).subspan(kOffsetSize + offset), form_.size);
    }

private:
    static constexpr std::size_t kMostMetadata = 32u << 20, kOffsetSize = 4;

    // By the container, before anything is decoded.
    void CheckSize(const PictureControl& control) {
        const int width = library_->heif_image_handle_get_width(picture_->Get());
        const int height = library_->heif_image_handle_get_height(picture_->Get());
        if (width <= 0 || height <= 0) Throw(PictureOutcome::Damaged);
        form_.size = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
        control.ThrowIfTooLarge(form_.size.width, form_.size.height);
        const bool isDeep =
            library_->heif_image_handle_get_luma_bits_per_pixel(picture_->Get()) > 8;
        control.ThrowIfTooMuch(std::uint64_t{form_.size.width} * form_.size.height *
                               (isDeep ? kDeepBytesAPixel : kBytesAPixel));
        form_.hasAlpha = library_->heif_image_handle_has_alpha_channel(picture_->Get()) != 0;
        form_.channels = form_.hasAlpha ? 4 : 3;
        form_.isPremultiplied =
            form_.hasAlpha &&
            library_->heif_image_handle_is_premultiplied_alpha(picture_->Get()) != 0;
    }

    // Strict: a tile that is missing or doesn't decode would come out grey otherwise.
    static void SetOptions(HeifDecodingOptions& options, const PictureControl& control) {
        if (options.version < kHeifOptionsVersion) Throw(PictureOutcome::Unsupported);
        options.convertsTo8Bits = 1;
        options.isStrict = 1;
        options.onProgress = [](int, int, void* user) {
            static_cast<void>(static_cast<const PictureControl*>(user)->IsCancelled());
        };
        options.user = const_cast<PictureControl*>(&control);
    }

    void TakePlane() {
        const int width = library_->heif_image_get_primary_width(image_->Get());
        const int height = library_->heif_image_get_primary_height(image_->Get());
        int stride = 0;
        plane_ = library_->heif_image_get_plane_readonly(image_->Get(), kHeifInterleaved, &stride);
        // The pixels may differ from what the container promised.
        const RasterForm& form = form_;
        const bool isWhole = plane_ && width == static_cast<int>(form.size.width) &&
                             height == static_cast<int>(form.size.height) &&
                             stride >= static_cast<int>(form.RowBytes());
        if (!isWhole) Throw(PictureOutcome::Damaged);
        stride_ = static_cast<std::size_t>(stride);
    }

    PictureBytes file_; // the library reads it until the end
    HeifLibrary library_;
    Owned<heif_context> context_;
    std::optional<Owned<const heif_image_handle>> picture_;
    std::optional<Owned<const heif_image>> image_;
    RasterForm form_;
    const std::uint8_t* plane_ = nullptr;
    std::size_t stride_ = 0;
    std::size_t next_ = 0;
};

// Null when the library isn't there.
std::unique_ptr<HeicRows> Open(PictureSource& source, const std::wstring& libraryPath,
                               const PictureControl& control) {
    auto library = HeifLibrary::Load(libraryPath);
    if (!library) return nullptr;
    return std::make_unique<HeicRows>(ReadWholePicture(source, control.limits.memory / 4),
                                      std::move(*library), control);
}

} // namespace

std::optional<DecodedPhoto> DecodeHeic(PictureSource& source, const std::wstring& libraryPath,
                                       const PictureControl& control) {
    auto rows = Open(source, libraryPath, control);
    if (!rows) return {};
    DecodedPhoto photo;
    photo.hasFineColours = false;
    photo.profile = rows->Profile();
    photo.exif = rows->Exif();
    rows->Decode(control);
    photo.rows = std::move(rows);
    return photo;
}

std::optional<PictureSize> HeicSize(PictureSource& source, const std::wstring& libraryPath,
                                    const PictureControl& control) {
    try {
        const auto rows = Open(source, libraryPath, control);
        return rows ? std::optional(rows->Form().size) : std::nullopt;
    } catch (const PictureFailure& failure) {
        if (failure.outcome != PictureOutcome::Unsupported) throw;
        return {};
    }
}

} // namespace transforms
