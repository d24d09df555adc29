// No DLL and no codec of the system is there natively: such photos pass.
#include "services/transforms/photos/HeicDecoder.h"
#include "services/transforms/photos/PlatformDecoder.h"

namespace transforms {

std::optional<DecodedPhoto> DecodeHeic(PictureSource&, const std::wstring&, const PictureControl&) {
    return std::nullopt;
}

std::optional<PictureSize> HeicSize(PictureSource&, const std::wstring&, const PictureControl&) {
    return std::nullopt;
}

DecodedPhoto DecodeByPlatform(PictureSource&, PhotoKind, const PictureControl&) {
    throw PictureFailure{PictureOutcome::Unsupported};
}

} // namespace transforms
