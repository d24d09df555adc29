#include "services/transforms/photos/PlatformDecoder.h"

#include <windows.h>

#include <wincodec.h>

#include <algorithm>
#include <cstring>

#include "ObLib/Src/Win32/ComResources.h"
#include "services/transforms/photos/CarriedExif.h"

namespace transforms {
namespace {

using ObLib::ComPtr;

constexpr UINT kBandRows = 64;
// Bytes a pixel that a codec and its result take.
constexpr std::uint64_t kBytesAPixel = 8;
// Of HEIC and AVIF; the compiler's headers lack it.
constexpr GUID kHeifFormat = {
    0xe1e62521, 0x6787, 0x405b, {0xa3, 0x39, 0x50, 0x07, 0x15, 0xb5, 0x76, 0x3f}};

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

void Check(HRESULT result) {
    if (FAILED(result)) Throw(OutcomeOfPlatform(result));
}

template <class Interface>
void** PutVoid(ComPtr<Interface>& pointer) noexcept {
    return reinterpret_cast<void**>(pointer.Put());
}

// Any thread of the process may use objects that are made while it exists.
class Apartment {
public:
    Apartment() { Check(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

class PlatformRows final : public RowReader {
public:
    PlatformRows(PictureBytes file, PhotoKind kind, const PictureControl& control)
        : file_(std::move(file)) {
        Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IWICImagingFactory, PutVoid(factory_)));
        OpenFrame(kind);
        UINT width = 0, height = 0;
        Check(frame_->GetSize(&width, &height));
        if (!width || !height) Throw(PictureOutcome::Damaged);
        form_.size = {width, height};
        control.ThrowIfTooLarge(width, height);
        control.ThrowIfTooMuch(std::uint64_t{width} * height * kBytesAPixel);
        Convert();
        if (kind != PhotoKind::JpegXr) KeepPixels();
        band_.resize(form_.RowBytes() * kBandRows);
    }

    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        if (next_ % kBandRows == 0) ReadBand();
        const std::uint8_t* from = &band_[next_++ % kBandRows * form_.RowBytes()];
        // The system's order is blue, green, red.
        for (std::size_t at = 0; at < form_.RowBytes(); at += form_.channels) {
            for (std::size_t c = 0; c < 3; ++c) row[at + c] = from[at + 2 - c];
            if (form_.hasAlpha) row[at + 3] = from[at + 3];
        }
    }

    PictureBytes Profile() const {
        ComPtr<IWICColorContext> context;
        if (FAILED(factory_->CreateColorContext(context.Put()))) return {};
        IWICColorContext* contexts[] = {context.Get()};
        UINT count = 0, size = 0;
        WICColorContextType type = WICColorContextUninitialized;
        if (FAILED(frame_->GetColorContexts(1, contexts, &count)) || count == 0 ||
            FAILED(context->GetType(&type)) || type != WICColorContextProfile ||
            FAILED(context->GetProfileBytes(0, nullptr, &size)) || size > kMostMetadata) {
            return {};
        }
        PictureBytes profile(size);
        return SUCCEEDED(context->GetProfileBytes(size, profile.data(), &size)) ? profile
                                                                                : PictureBytes();
    }

    // The turn that the codec leaves to be made.
    unsigned Orientation() const {
        ComPtr<IWICMetadataQueryReader> reader;
        PROPVARIANT value;
        PropVariantInit(&value);
        if (FAILED(frame_->GetMetadataQueryReader(reader.Put())) ||
            FAILED(reader->GetMetadataByName(L"System.Photo.Orientation", &value))) {
            return 1;
        }
        const unsigned orientation = value.vt == VT_UI2 ? value.uiVal : 1;
        PropVariantClear(&value);
        return orientation >= 1 && orientation <= 8 ? orientation : 1;
    }

private:
    static constexpr UINT kMostMetadata = 32u << 20;

    void OpenFrame(PhotoKind kind) {
        ComPtr<IWICStream> stream;
        ComPtr<IWICBitmapDecoder> decoder;
        Check(factory_->CreateStream(stream.Put()));
        Check(stream->InitializeFromMemory(file_.data(), static_cast<DWORD>(file_.size())));
        Check(factory_->CreateDecoderFromStream(stream.Get(), nullptr,
                                                WICDecodeMetadataCacheOnDemand, decoder.Put()));
        GUID format{};
        Check(decoder->GetContainerFormat(&format));
        if (!IsFormatOf(kind, format)) Throw(PictureOutcome::Unsupported);
        Check(decoder->GetFrame(0, frame_.Put()));
    }

    // Another codec may claim the file too: the one for TIFF sees a raw photo's thumbnail.
    static bool IsFormatOf(PhotoKind kind, const GUID& format) noexcept {
        switch (kind) {
        case PhotoKind::JpegXr:
            return IsEqualGUID(format, GUID_ContainerFormatWmp);
        case PhotoKind::Bmp:
            return IsEqualGUID(format, GUID_ContainerFormatBmp);
        case PhotoKind::Heic:
        case PhotoKind::Avif:
            return IsEqualGUID(format, kHeifFormat);
        default:
            return !IsEqualGUID(format, GUID_ContainerFormatTiff);
        }
    }

    bool HasTransparency(const GUID& pixels) const {
        ComPtr<IWICComponentInfo> info;
        ComPtr<IWICPixelFormatInfo2> form;
        WINBOOL has = FALSE;
        return SUCCEEDED(factory_->CreateComponentInfo(pixels, info.Put())) &&
               SUCCEEDED(info->QueryInterface(IID_IWICPixelFormatInfo2, PutVoid(form))) &&
               SUCCEEDED(form->SupportsTransparency(&has)) && has;
    }

    void Convert() {
        GUID pixels{};
        Check(frame_->GetPixelFormat(&pixels));
        form_.hasAlpha = HasTransparency(pixels);
        form_.channels = form_.hasAlpha ? 4 : 3;
        const GUID& wanted =
            form_.hasAlpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
        Check(factory_->CreateFormatConverter(converter_.Put()));
        Check(converter_->Initialize(frame_.Get(), wanted, WICBitmapDitherTypeNone, nullptr, 0,
                                     WICBitmapPaletteTypeCustom));
    }

    // An installed codec may decode the whole photo anew for each band, and may lack a part that it
    // needs: so its photo is decoded at once, before anything is written.
    void KeepPixels() {
        Check(factory_->CreateBitmapFromSource(converter_.Get(), WICBitmapCacheOnLoad,
                                               pixels_.Put()));
    }

    void ReadBand() {
        const UINT rows = std::min<UINT>(kBandRows, static_cast<UINT>(form_.size.height - next_));
        const WICRect part{0, static_cast<INT>(next_), static_cast<INT>(form_.size.width),
                           static_cast<INT>(rows)};
        IWICBitmapSource* const from =
            pixels_ ? static_cast<IWICBitmapSource*>(pixels_.Get()) : converter_.Get();
        Check(from->CopyPixels(&part, static_cast<UINT>(form_.RowBytes()),
                               static_cast<UINT>(band_.size()), band_.data()));
    }

    Apartment apartment_;
    PictureBytes file_; // the stream reads it until the end
    ComPtr<IWICImagingFactory> factory_;
    ComPtr<IWICBitmapFrameDecode> frame_;
    ComPtr<IWICFormatConverter> converter_;
    ComPtr<IWICBitmap> pixels_; // of a photo that was decoded at once; otherwise empty
    RasterForm form_;
    PictureBytes band_;
    std::size_t next_ = 0;
};

// A container in boxes has its turns as instructions for the codec, a JPEG XR file in a directory
// like that of EXIF data; of a raw photo the codec reports whether it still has to be turned.
unsigned OrientationOf(const PlatformRows& rows, PictureSource& source, PhotoKind kind) {
    if (kind == PhotoKind::JpegXr) return ExifOrientation(TiffDirectories(source));
    return kind == PhotoKind::Raw ? rows.Orientation() : 1;
}

// A codec may fill what is missing of a JPEG XR picture with grey.
void CheckJpegXr(PictureSource& source) {
    constexpr std::uint32_t kOffsets[] = {0xBCC0,
                                          0xBCC2}; // of the picture and its alpha; then sizes
    const TiffDirectories file(source);
    const auto entries = file.Entries(file.First());
    for (const std::uint32_t tag : kOffsets) {
        const TiffEntry* offset = FindEntry(entries, tag);
        const TiffEntry* size = FindEntry(entries, tag + 1);
        if (offset && size &&
            std::uint64_t{file.Number(*offset)} + file.Number(*size) > source.Size())
            Throw(PictureOutcome::Damaged);
    }
}

PictureSize Turned(PictureSize size, unsigned orientation) noexcept {
    return orientation >= 5 ? PictureSize{size.height, size.width} : size;
}

} // namespace

PictureOutcome OutcomeOfPlatform(long result) noexcept {
    // Of the codecs for video, on which those for HEIC and AVIF rely.
    constexpr int kMediaFoundation = 0xD;
    constexpr DWORD kDynamicCodeBlocked = 1655; // ERROR_DYNAMIC_CODE_BLOCKED
    if (HRESULT_FACILITY(result) == kMediaFoundation) return PictureOutcome::Unsupported;
    switch (result) {
    case E_OUTOFMEMORY:
    case WINCODEC_ERR_IMAGESIZEOUTOFRANGE:
        return PictureOutcome::TooLarge;
    case WINCODEC_ERR_COMPONENTNOTFOUND:
    case WINCODEC_ERR_COMPONENTINITIALIZEFAILURE:
    case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
    case WINCODEC_ERR_UNSUPPORTEDOPERATION:
    case WINCODEC_ERR_UNSUPPORTEDVERSION:
    case REGDB_E_CLASSNOTREG:
    case E_ACCESSDENIED: // a codec that can't be loaded at this process's rights
    case HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND):
    case HRESULT_FROM_WIN32(kDynamicCodeBlocked):
        return PictureOutcome::Unsupported;
    default:
        return PictureOutcome::Damaged;
    }
}

DecodedPhoto DecodeByPlatform(PictureSource& source, PhotoKind kind,
                              const PictureControl& control) {
    if (kind == PhotoKind::JpegXr) CheckJpegXr(source);
    auto rows = std::make_unique<PlatformRows>(ReadWholePicture(source, control.limits.memory / 4),
                                               kind, control);
    DecodedPhoto photo;
    photo.hasFineColours = kind == PhotoKind::JpegXr || kind == PhotoKind::Bmp;
    photo.zeroAlphaIsUnset = true; // also of a codec that doesn't decode alpha
    photo.profile = rows->Profile();
    photo.orientation = OrientationOf(*rows, source, kind);
    photo.exif = CarriedExif(TiffDirectories(source), Turned(rows->Form().size, photo.orientation));
    photo.rows = std::move(rows);
    return photo;
}

} // namespace transforms
