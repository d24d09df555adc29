#include "services/transforms/personal/ExifTags.h"

#include <algorithm>

namespace transforms::personal {
namespace {

struct TagRow {
    std::uint16_t tag;
    FindingKind kind;
};

// Ascending, so that a tag is found by halving.
constexpr TagRow kTags[] = {
    {0x010D, FindingKind::Description}, // document's name
    {0x010E, FindingKind::Description}, // image's description
    {0x010F, FindingKind::Camera},      // maker
    {0x0110, FindingKind::Camera},      // model
    {0x011D, FindingKind::Description}, // page's name
    {0x0131, FindingKind::Software},
    {0x0132, FindingKind::Time},
    {0x013B, FindingKind::Person},      // artist
    {0x013C, FindingKind::Software},    // computer
    {0x0151, FindingKind::Description}, // target printer
    {0x02BC, FindingKind::Xmp},
    {0x4746, FindingKind::Description}, // rating
    {0x4749, FindingKind::Description}, // rating in percent
    {0x80A4, FindingKind::Description}, // annotations
    {0x8298, FindingKind::Person},      // copyright
    {0x830E, FindingKind::Position},    // scale of a map
    {0x83BB, FindingKind::Iptc},
    {0x8480, FindingKind::Position},
    {0x8482, FindingKind::Position}, // points of a map
    {0x8649, FindingKind::Iptc},     // an image editor's block
    {kTagExif, FindingKind::CameraSettings},
    {0x87AF, FindingKind::Position}, // a map's projection
    {0x87B0, FindingKind::Position},
    {0x87B1, FindingKind::Position},
    {kTagGps, FindingKind::Position},
    {0x882A, FindingKind::Time}, // time zone
    {0x9003, FindingKind::Time},
    {0x9004, FindingKind::Time},
    {0x9010, FindingKind::Time},
    {0x9011, FindingKind::Time},
    {0x9012, FindingKind::Time},
    {0x9211, FindingKind::Description}, // image's number
    {0x9213, FindingKind::Description}, // image's history
    {kTagMakerNotes, FindingKind::MakerNotes},
    {0x9286, FindingKind::Description}, // user's comment
    {0x9290, FindingKind::Time},
    {0x9291, FindingKind::Time},
    {0x9292, FindingKind::Time},
    {0x9C9B, FindingKind::Description}, // title
    {0x9C9C, FindingKind::Description}, // comment
    {0x9C9D, FindingKind::Person},      // author
    {0x9C9E, FindingKind::Description}, // key words
    {0x9C9F, FindingKind::Description}, // subject
    {0xA420, FindingKind::Description}, // a number that no other image has
    {0xA430, FindingKind::Person},      // camera's owner
    {0xA431, FindingKind::Camera},      // serial number
    {0xA432, FindingKind::Camera},      // lens
    {0xA433, FindingKind::Camera},
    {0xA434, FindingKind::Camera},
    {0xA435, FindingKind::Camera},
    {0xA436, FindingKind::Description}, // title
    {0xA437, FindingKind::Person},      // photographer
    {0xA438, FindingKind::Person},      // editor
    {0xA439, FindingKind::Camera},      // firmware
    {0xA43A, FindingKind::Software},
    {0xA43B, FindingKind::Software},
    {0xA43C, FindingKind::Software},
    {0xC4A5, FindingKind::PrivateData}, // for a printer
    {0xC62F, FindingKind::Camera},      // serial number
    {0xFDE8, FindingKind::Person},      // owner, and more by one image editor
};

constexpr bool AreAscending() {
    for (std::size_t at = 1; at < std::size(kTags); ++at) {
        if (kTags[at - 1].tag >= kTags[at].tag) return false;
    }
    return true;
}

} // namespace

FindingKind KindOfTag(std::uint16_t tag, FindingKind other) {
    static_assert(AreAscending());
    const auto row = std::ranges::lower_bound(kTags, tag, {}, &TagRow::tag);
    return row != std::end(kTags) && row->tag == tag ? row->kind : other;
}

} // namespace transforms::personal
