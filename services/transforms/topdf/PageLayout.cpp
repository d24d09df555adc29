#include "services/transforms/topdf/PageLayout.h"

#include <algorithm>
#include <utility>

#include "services/transforms/raster/Numbers.h"
#include "services/transforms/topdf/PdfOutput.h"

namespace transforms {
namespace {

constexpr double kPointsAnInch = 72;
constexpr double kLeast = 50, kMost = 2400; // pixels an inch
// What viewers show of one side.
constexpr double kLeastSide = 3, kMostSide = 14400;

struct Sides {
    double width, height;
    void Turn() noexcept { std::swap(width, height); }
    double Shorter() const noexcept { return std::min(width, height); }
    double Longer() const noexcept { return std::max(width, height); }
};

constexpr Sides kA4{595.276, 841.89}, kLetter{612, 792};

bool IsPlausible(Resolution resolution) noexcept {
    const auto is = [](double value) { return value >= kLeast && value <= kMost; };
    return is(resolution.across) && is(resolution.down);
}

// A sheet that is as wide or as high as the picture.
Sides TurnedAs(Sides sheet, const Sides& picture) noexcept {
    if (picture.width > picture.height) sheet.Turn();
    return sheet;
}

Sides FittedInto(const Sides& picture, const Sides& sheet) noexcept {
    const double scale = std::min(sheet.width / picture.width, sheet.height / picture.height);
    return {picture.width * scale, picture.height * scale};
}

// What turns the unit square, in which a picture's first row is at the top, and the corner that its
// origin gets.
struct TurnRow {
    double a, b, c, d;
    bool fromRight, fromTop;
};

// By the orientation less 1.
constexpr TurnRow kTurns[] = {
    {1, 0, 0, 1, false, false}, {-1, 0, 0, 1, true, false}, {-1, 0, 0, -1, true, true},
    {1, 0, 0, -1, false, true}, {0, -1, -1, 0, true, true}, {0, -1, 1, 0, false, true},
    {0, 1, 1, 0, false, false}, {0, 1, -1, 0, true, false},
};

std::string MatrixOf(const Sides& drawn, const Sides& page, unsigned orientation) {
    const TurnRow& turn = kTurns[orientation - 1];
    const double left = (page.width - drawn.width) / 2, bottom = (page.height - drawn.height) / 2;
    const double numbers[] = {turn.a * drawn.width,
                              turn.b * drawn.height,
                              turn.c * drawn.width,
                              turn.d * drawn.height,
                              left + (turn.fromRight ? drawn.width : 0),
                              bottom + (turn.fromTop ? drawn.height : 0)};
    std::string text;
    for (const double number : numbers) text += NumberText(number) + " ";
    return text + "cm";
}

double Ratio(const TiffDirectories& file, const std::vector<TiffEntry>& entries,
             std::uint32_t tag) {
    constexpr std::uint32_t kRatio = 5;
    const TiffEntry* const entry = FindEntry(entries, tag);
    if (!entry || entry->type != kRatio || entry->count != 1) return 0;
    const PictureBytes value = file.Value(*entry);
    if (value.size() != 8) return 0;
    const std::span<const std::uint8_t> numbers(value);
    const bool isLittle = file.IsLittleEndian();
    const double below = StoredNumber(numbers.last(4), isLittle);
    return below == 0 ? 0 : StoredNumber(numbers.first(4), isLittle) / below;
}

} // namespace

Resolution ResolutionOfExif(const TiffDirectories& exif) {
    constexpr std::uint32_t kAcross = 0x11A, kDown = 0x11B, kUnit = 0x128, kCentimetre = 3;
    constexpr double kUnknown = 72;
    const auto entries = exif.Entries(exif.First());
    Resolution found{Ratio(exif, entries, kAcross), Ratio(exif, entries, kDown)};
    const TiffEntry* const unit = FindEntry(entries, kUnit);
    const bool isMetric = unit && exif.Number(*unit) == kCentimetre;
    if (!isMetric && found.across == kUnknown && found.down == kUnknown) return {};
    const double scale = isMetric ? 2.54 : 1;
    return {found.across * scale, found.down * scale};
}

PageLayout LayOut(PictureSize stored, unsigned orientation, Resolution resolution,
                  PdfPageSize page) {
    const bool isKnown = IsPlausible(resolution);
    Sides picture{stored.width / (isKnown ? resolution.across : 1) * kPointsAnInch,
                  stored.height / (isKnown ? resolution.down : 1) * kPointsAnInch};
    if (orientation >= 5) picture.Turn();
    Sides sheet = TurnedAs(page == PdfPageSize::Letter ? kLetter : kA4, picture);
    const bool isShowable =
        isKnown && picture.Shorter() >= kLeastSide && picture.Longer() <= kMostSide;
    const bool fits = picture.width <= sheet.width && picture.height <= sheet.height;
    const bool asPicture = page == PdfPageSize::AsPicture;
    if (!isShowable || (!asPicture && !fits)) picture = FittedInto(picture, sheet);
    if (asPicture) {
        // A line of pixels is a page of at least that side.
        sheet = {std::max(picture.width, kLeastSide), std::max(picture.height, kLeastSide)};
    }
    return {sheet.width, sheet.height, MatrixOf(picture, sheet, orientation)};
}

} // namespace transforms
