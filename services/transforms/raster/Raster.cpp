// Each channel is a plane of its own to the filter.
#include "services/transforms/raster/Raster.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "services/transforms/raster/BandPipe.h"
#include "services/transforms/raster/Resampler.h"

namespace transforms {
namespace {

// Takes rows and gives shrunk rows.
class RowShrinker {
public:
    virtual ~RowShrinker() = default;
    virtual void Push(const std::uint8_t* row) = 0;
    virtual bool IsReady() const noexcept = 0;
    virtual void Pull(std::uint8_t* row) = 0;
};

class CopiedRows final : public RowShrinker {
public:
    explicit CopiedRows(const RasterForm& form) : row_(form.RowBytes()) {}
    void Push(const std::uint8_t* row) override {
        std::memcpy(row_.data(), row, row_.size());
        ready_ = true;
    }
    bool IsReady() const noexcept override { return ready_; }
    void Pull(std::uint8_t* row) override {
        std::memcpy(row, row_.data(), row_.size());
        ready_ = false;
    }

private:
    std::vector<std::uint8_t> row_;
    bool ready_ = false;
};

struct Axes {
    Axes(PictureSize from, PictureSize to)
        : across(from.width, to.width, static_cast<double>(from.width) / to.width),
          down(from.height, to.height, static_cast<double>(from.height) / to.height) {}
    ResampleAxis across, down;
};

class ShallowRows final : public RowShrinker {
public:
    ShallowRows(const RasterForm& form, PictureSize to)
        : axes_(form.size, to), plane_(form.size.width) {
        for (unsigned i = 0; i < form.channels; ++i)
            planes_.push_back(std::make_unique<PlaneResampler8>(axes_.across, axes_.down));
    }
    void Push(const std::uint8_t* row) override {
        for (std::size_t c = 0; c < planes_.size(); ++c) {
            for (std::size_t x = 0; x < plane_.size(); ++x) plane_[x] = row[x * planes_.size() + c];
            planes_[c]->Push(plane_.data());
        }
    }
    bool IsReady() const noexcept override { return planes_[0]->IsReady(); }
    void Pull(std::uint8_t* row) override {
        for (std::size_t c = 0; c < planes_.size(); ++c) {
            planes_[c]->Pull(plane_.data());
            for (std::size_t x = 0; x < axes_.across.outputs(); ++x)
                row[x * planes_.size() + c] = plane_[x];
        }
    }

private:
    Axes axes_;
    std::vector<std::unique_ptr<PlaneResampler8>> planes_;
    std::vector<std::uint8_t> plane_;
};

// 16 bits, and every depth with alpha.
template <class Sample>
class DeepRows final : public RowShrinker {
public:
    DeepRows(const RasterForm& form, PictureSize to)
        : form_(form), axes_(form.size, to),
          rows_(form.channels, std::vector<float>(form.size.width)) {
        for (unsigned i = 0; i < form.channels; ++i)
            planes_.push_back(std::make_unique<PlaneResamplerFloat>(axes_.across, axes_.down));
    }

    void Push(const std::uint8_t* row) override {
        for (std::size_t c = 0; c < planes_.size(); ++c)
            for (std::size_t x = 0; x < form_.size.width; ++x)
                rows_[c][x] = Get(row, x * planes_.size() + c);
        if (Multiplies()) Multiply();
        for (std::size_t c = 0; c < planes_.size(); ++c) planes_[c]->Push(rows_[c].data());
    }

    bool IsReady() const noexcept override { return planes_[0]->IsReady(); }

    void Pull(std::uint8_t* row) override {
        for (std::size_t c = 0; c < planes_.size(); ++c) planes_[c]->Pull(rows_[c].data());
        if (Multiplies()) Divide();
        for (std::size_t c = 0; c < planes_.size(); ++c)
            for (std::size_t x = 0; x < axes_.across.outputs(); ++x)
                Set(row, x * planes_.size() + c, rows_[c][x]);
    }

private:
    static constexpr float Most = static_cast<Sample>(-1);

    bool Multiplies() const noexcept { return form_.hasAlpha && !form_.isPremultiplied; }

    static float Get(const std::uint8_t* row, std::size_t place) noexcept {
        Sample sample;
        std::memcpy(&sample, row + place * sizeof sample, sizeof sample);
        return sample;
    }
    static void Set(std::uint8_t* row, std::size_t place, float value) noexcept {
        const auto sample = static_cast<Sample>(std::clamp(value, 0.0f, Most) + 0.5f);
        std::memcpy(row + place * sizeof sample, &sample, sizeof sample);
    }

    void Multiply() noexcept {
        const auto& alpha = rows_.back();
        for (std::size_t c = 0; c + 1 < rows_.size(); ++c)
            for (std::size_t x = 0; x < alpha.size(); ++x) rows_[c][x] *= alpha[x] / Most;
    }
    void Divide() noexcept {
        const auto& alpha = rows_.back();
        for (std::size_t c = 0; c + 1 < rows_.size(); ++c)
            for (std::size_t x = 0; x < axes_.across.outputs(); ++x)
                rows_[c][x] = alpha[x] < 0.5f ? 0 : rows_[c][x] * Most / alpha[x];
    }

    RasterForm form_;
    Axes axes_;
    std::vector<std::unique_ptr<PlaneResamplerFloat>> planes_;
    std::vector<std::vector<float>> rows_; // one a channel
};

std::unique_ptr<RowShrinker> MakeShrinker(const RasterForm& form, PictureSize to) {
    if (form.size == to) return std::make_unique<CopiedRows>(form);
    if (form.bits == 16) return std::make_unique<DeepRows<std::uint16_t>>(form, to);
    if (form.hasAlpha) return std::make_unique<DeepRows<std::uint8_t>>(form, to);
    return std::make_unique<ShallowRows>(form, to);
}

const std::size_t BandBytes = 128 * 1024;

} // namespace

void ShrinkRows(RowReader& reader, RowWriter& writer, PictureSize to,
                const PictureControl& control) {
    const RasterForm& form = reader.Form();
    const std::size_t rowBytes = form.RowBytes();
    const std::size_t bandRows = std::max<std::size_t>(BandBytes / rowBytes, 1);
    const auto shrinker = MakeShrinker(form, to);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(to.width) * form.channels * form.bits /
                                  8);
    BandPipe pipe(bandRows * rowBytes, [&](BandPipe& full) {
        for (std::size_t y = 0; y < form.size.height; y += bandRows) {
            std::uint8_t* band = full.Empty();
            if (!band) return;
            for (std::size_t i = y; i < std::min<std::size_t>(y + bandRows, form.size.height);
                 ++i) {
                control.ThrowIfCancelled();
                reader.Read(band + (i - y) * rowBytes);
            }
            full.Fill();
        }
    });
    std::size_t y = 0;
    while (const std::uint8_t* band = pipe.Full()) {
        for (std::size_t i = 0; i < bandRows && y < form.size.height; ++i, ++y) {
            control.ThrowIfCancelled();
            shrinker->Push(band + i * rowBytes);
            for (; shrinker->IsReady(); writer.Write(row.data())) shrinker->Pull(row.data());
        }
    }
}

} // namespace transforms
