// A dialog template of the system, given another font and more styles.
//
// Its bytes, little-endian:
//   plain:     style 32, extended style 32, number of items 16, x y cx cy 16 each
//   extended:  version 16 (1), signature 16 (0xFFFF), help id 32, extended style 32, style 32,
//              number of items 16, x y cx cy 16 each
//   both:      menu, class: 0xFFFF and an ordinal, or a text that ends with a NUL; title: a text;
//              with DS_SETFONT: point size 16 (0x7FFF: the message font, and nothing of the rest),
//              in an extended one weight 16, italic 8, charset 8, then the face, a text
//              the items, from the next multiple of four on
// Source: the documentation of DLGTEMPLATE and DLGTEMPLATEEX.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ObLibX {

struct TemplateFont {
    std::wstring face;
    std::uint16_t size = 9; // points
};

// The template with `extraStyle` added to its style and, if there is a font, DS_SETFONT and that
// font in place of its own. Nothing for bytes that end before the items do begin. Never reads past
// the end of `bytes`. Throws std::bad_alloc only. Any thread.
std::optional<std::vector<std::byte>> RewriteTemplate(std::span<const std::byte> bytes,
                                                      std::uint32_t extraStyle,
                                                      const std::optional<TemplateFont>& font);

} // namespace ObLibX
