// A photo that is converted on its way into a mail that has to fit.
#pragma once

#include <utility>

#include "services/transforms/photos/ConvertPhoto.h"
#include "services/transforms/pictures/MailFit.h"

namespace transforms {

// Usable on any thread.
class FittedPhoto final : public FitMaker {
public:
    explicit FittedPhoto(PhotoRequest request) : request_(std::move(request)) {}
    void Make(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
              const PictureControl& control) const override {
        ShrinkPhoto(source, target, request_, step, control);
    }

private:
    PhotoRequest request_;
};

} // namespace transforms
