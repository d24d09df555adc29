#include "services/transforms/watermark/PdfStamp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qpdf/Pl_Buffer.hh>
#include <qpdf/Pl_Flate.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QUtil.hh>

#include "services/transforms/documents/PdfDictionaries.h"
#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfPages.h"
#include "services/transforms/documents/PdfStreamSizes.h"
#include "services/transforms/documents/PdfWalk.h"
#include "services/transforms/watermark/OpenContents.h"

namespace transforms {
namespace {

using Object = QPDFObjectHandle;

// A stamp is drawn with two pixels a point, and pages of posters with fewer.
constexpr double kPixelsOfPoint = 2;
constexpr double kMostPixels = 3000; // of the longer side
constexpr double kLargestPage = 1e6; // points; a format's own limit is below it

// A page as it is shown: its box, turned by `turns` quarters to the right.
struct ShownPage {
    Object::Rectangle box;
    int turns = 0;
    double width = 0, height = 0; // points, after turning
    double scale = 1;             // pixels a point
    // Of the stamp's picture. Scanned pages differ by some points and share one.
    PictureSize Pixels() const {
        constexpr std::uint32_t kRounded = 16, kExact = 256;
        const auto side = [this](double points) {
            const auto pixels =
                static_cast<std::uint32_t>(std::max(std::lround(points * scale), 1L));
            return pixels < kExact ? pixels : pixels / kRounded * kRounded;
        };
        return {side(width), side(height)};
    }
};

int TurnsOf(QPDFPageObjectHelper& page) {
    constexpr long long kQuarter = 90, kQuarters = 4;
    auto rotate = page.getAttribute("/Rotate", false);
    if (!rotate.isInteger() || rotate.getIntValue() % kQuarter != 0) return 0;
    const long long turns = rotate.getIntValue() / kQuarter % kQuarters;
    return static_cast<int>((turns + kQuarters) % kQuarters);
}

// Corners may be in any order.
Object::Rectangle Ordered(Object box) {
    const auto corners = box.getArrayAsRectangle();
    return {std::min(corners.llx, corners.urx), std::min(corners.lly, corners.ury),
            std::max(corners.llx, corners.urx), std::max(corners.lly, corners.ury)};
}

// What is seen of a page: the crop box, as far as it is inside the media box.
Object::Rectangle BoxOf(QPDFPageObjectHelper& page) {
    const auto media = Ordered(page.getMediaBox(false));
    auto crop = page.getCropBox(false);
    if (!crop.isRectangle()) return media;
    const auto shown = Ordered(crop);
    return {std::max(shown.llx, media.llx), std::max(shown.lly, media.lly),
            std::min(shown.urx, media.urx), std::min(shown.ury, media.ury)};
}

ShownPage Shown(QPDFPageObjectHelper& page) {
    ShownPage shown{BoxOf(page), TurnsOf(page)};
    shown.width = shown.box.urx - shown.box.llx;
    shown.height = shown.box.ury - shown.box.lly;
    if (shown.turns % 2 != 0) std::swap(shown.width, shown.height);
    const double longer = std::max(shown.width, shown.height);
    shown.scale = std::min(kPixelsOfPoint, kMostPixels / std::max(longer, 1.0));
    return shown;
}

bool IsSensible(const ShownPage& page) {
    return page.width >= 1 && page.height >= 1 && page.width < kLargestPage &&
           page.height < kLargestPage;
}

std::string Numbers(std::initializer_list<double> numbers) {
    std::string text;
    for (const double number : numbers) text += QUtil::double_to_string(number, 4) + " ";
    return text;
}

// From the page as it is shown, from its lower left corner, to the page's own coordinates.
std::string TurnedBack(const ShownPage& page) {
    const double width = page.box.urx - page.box.llx, height = page.box.ury - page.box.lly;
    const double x = page.box.llx, y = page.box.lly;
    switch (page.turns) {
    case 1:
        return Numbers({0, 1, -1, 0, x + width, y}) + "cm ";
    case 2:
        return Numbers({-1, 0, 0, -1, x + width, y + height}) + "cm ";
    case 3:
        return Numbers({0, -1, 1, 0, x, y + height}) + "cm ";
    default:
        return Numbers({1, 0, 0, 1, x, y}) + "cm ";
    }
}

// One colour of each pixel, or how opaque it is.
std::string Channels(const PlacedStamp& stamp, std::size_t first, std::size_t count) {
    std::string bytes;
    bytes.reserve(stamp.pixels.size() / 4 * count);
    for (std::size_t at = first; at < stamp.pixels.size(); at += 4) {
        for (std::size_t channel = 0; channel < count; ++channel)
            bytes += static_cast<char>(stamp.pixels[at + channel]);
    }
    return bytes;
}

std::shared_ptr<Buffer> Deflated(const std::string& bytes) {
    Pl_Buffer deflated("deflated");
    Pl_Flate deflate("deflate", &deflated, Pl_Flate::a_deflate);
    deflate.writeString(bytes);
    deflate.finish();
    return deflated.getBufferSharedPointer();
}

// Kept in its compressed form, as a file may have pages of many sizes.
Object MakePicture(QPDF& pdf, PictureSize size, const char* colours, const std::string& bytes) {
    auto picture = pdf.newStream();
    picture.replaceStreamData(Deflated(bytes), Object::newName("/FlateDecode"), Object::newNull());
    auto keys = picture.getDict();
    keys.replaceKey("/Type", Object::newName("/XObject"));
    keys.replaceKey("/Subtype", Object::newName("/Image"));
    keys.replaceKey("/Width", Object::newInteger(size.width));
    keys.replaceKey("/Height", Object::newInteger(size.height));
    keys.replaceKey("/ColorSpace", Object::newName(colours));
    keys.replaceKey("/BitsPerComponent", Object::newInteger(8));
    return picture;
}

// A stamp that is in the file once: for all pages of a size, or for all pages when it is only
// scaled.
struct PdfPicture {
    Object object;
    PlacedStamp place; // without its pixels
};

PdfPicture AddPicture(QPDF& pdf, PlacedStamp stamp) {
    auto mask = MakePicture(pdf, stamp.size, "/DeviceGray", Channels(stamp, 3, 1));
    auto picture = MakePicture(pdf, stamp.size, "/DeviceRGB", Channels(stamp, 0, 3));
    picture.getDict().replaceKey("/SMask", mask);
    stamp.pixels = PictureBytes(); // and its memory
    return {picture, std::move(stamp)};
}

// A dictionary of the page's own, as other pages may share the one that it has.
Object OwnDictionary(Object parent, const std::string& key) {
    auto old = parent.getKey(key);
    auto own = old.isDictionary() ? old.shallowCopy() : Object::newDictionary();
    parent.replaceKey(key, own);
    return own;
}

// The name under which the page's contents draw the picture.
std::string Register(QPDFPageObjectHelper& page, const Object& picture) {
    auto resources = page.getAttribute("/Resources", false);
    auto own = resources.isDictionary() ? resources.shallowCopy() : Object::newDictionary();
    page.getObjectHandle().replaceKey("/Resources", own);
    int number = 1;
    const std::string name = own.getUniqueResourceName("/ObStamp", number);
    OwnDictionary(own, "/XObject").replaceKey(name, picture);
    return name;
}

std::string Drawing(const ShownPage& page, const PlacedStamp& place, const std::string& name) {
    const double width = place.size.width / page.scale, height = place.size.height / page.scale;
    const double left = place.left / page.scale;
    const double bottom = page.height - place.top / page.scale - height;
    return "/Artifact BMC q " + TurnedBack(page) + Numbers({width, 0, 0, height, left, bottom}) +
           "cm " + name + " Do Q EMC\n";
}

class PdfStamper {
public:
    PdfStamper(const Stamp& stamp, const PictureControl& control)
        : stamp_(stamp), control_(control) {}

    StampedPdf Run(personal::Bytes file, std::string_view password) {
        documents::OpenPdf(pdf_, file, {control_.steps, password});
        if (const auto refusal = documents::RefusalOf(pdf_)) return {*refusal, {}};
        if (IsSigned()) return {CleanOutcome::Signed, {}};
        StampPages();
        if (!isStamped_) return {CleanOutcome::NothingFound, {}};
        auto written = documents::WritePdf(pdf_, documents::PdfStreams::Compressed, control_.steps);
        if (pdf_.anyWarnings()) return {};
        return {CleanOutcome::Cleaned, std::move(written)};
    }

private:
    bool IsSigned() {
        bool isSigned = false;
        const auto look = [&](Object& object) {
            isSigned |= object.isDictionary() && documents::IsPdfSignature(object);
        };
        documents::VisitPdfObjects(pdf_.getRoot(), look, control_.steps);
        return isSigned;
    }

    // A page that is in the tree twice is one object, and is stamped once.
    void StampPages() {
        std::set<QPDFObjGen> seen;
        const auto pages = documents::PagesOf(pdf_);
        FindLargest(pages);
        for (const documents::PdfPage& found : pages) {
            control_.ThrowIfCancelled();
            if (found.page.isIndirect() && !seen.insert(found.page.getObjGen()).second) continue;
            QPDFPageObjectHelper page(found.page);
            StampPage(page);
        }
    }

    // The page size at which a stamp that is only scaled is largest.
    void FindLargest(const std::vector<documents::PdfPage>& pages) {
        std::uint64_t most = 0;
        for (const documents::PdfPage& found : pages) {
            control_.ThrowIfCancelled();
            QPDFPageObjectHelper page(found.page);
            const ShownPage shown = Shown(page);
            if (!IsSensible(shown)) continue;
            const auto place = stamp_.PlaceFor(shown.Pixels());
            if (!place) return;
            const std::uint64_t area = std::uint64_t{place->size.width} * place->size.height;
            if (area > std::exchange(most, std::max(most, area))) largest_ = shown.Pixels();
        }
    }

    void StampPage(QPDFPageObjectHelper& page) {
        const ShownPage shown = Shown(page);
        if (!IsSensible(shown)) return;
        const auto picture = PictureFor(shown.Pixels());
        if (!picture) return;
        documents::RequireContentsFit(page.getObjectHandle(), control_.steps);
        isStamped_ = true;
        const std::string name = Register(page, picture->object);
        // What the page's own contents leave changed is put back before the stamp is drawn.
        const std::string closing = ClosingOf(pdf_, page) + "\nQ\n";
        page.addPageContents(pdf_.newStream("q\n"), true);
        page.addPageContents(pdf_.newStream(closing + Drawing(shown, picture->place, name)), false);
    }

    // Nothing for a page that is too small for a stamp.
    std::optional<PdfPicture> PictureFor(PictureSize pixels) {
        auto place = stamp_.PlaceFor(pixels);
        if (!place) return PictureOf(pixels);
        if (place->size.width == 0) return {};
        return PdfPicture{PictureOf(largest_)->object, std::move(*place)};
    }

    // The same for a page of this size, drawn for it.
    std::optional<PdfPicture> PictureOf(PictureSize pixels) {
        const auto key = std::pair(pixels.width, pixels.height);
        auto found = pictures_.find(key);
        if (found == pictures_.end()) {
            PlacedStamp stamp = StampAsStored(stamp_, pixels, 1);
            PdfPicture made;
            if (!stamp.pixels.empty()) made = AddPicture(pdf_, std::move(stamp));
            found = pictures_.emplace(key, std::move(made)).first;
        }
        if (!found->second.object.isStream()) return {};
        return found->second;
    }

    const Stamp& stamp_;
    const PictureControl& control_;
    QPDF pdf_;
    bool isStamped_ = false;
    PictureSize largest_; // see FindLargest
    std::map<std::pair<std::uint32_t, std::uint32_t>, PdfPicture> pictures_;
};

} // namespace

StampedPdf StampPdf(personal::Bytes file, const Stamp& stamp, const PictureControl& control,
                    std::string_view password) {
    try {
        return PdfStamper(stamp, control).Run(file, password);
    } catch (const PictureFailure&) {
        throw;
    } catch (const std::exception&) {
        return {documents::OutcomeOfPdfError(), {}};
    }
}

} // namespace transforms
