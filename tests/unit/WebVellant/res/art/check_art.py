#!/usr/bin/env python3
"""The pictures of the dialog toolkit look as they should, pixel by pixel, at each of the eight scales.

    check_art.py --sets SETS.txt --draw-art PROGRAM FOLDER

FOLDER has the bitmaps that were built. Checked is, besides their sizes: straight edges are sharp, lines have the
thickness of their scale, colours are those of the set or between two of them, marks differ enough from the ground that
they are on, disabled ones are paler, and drawing them again gives the same bytes.
"""
import argparse
import os
import struct
import subprocess
import sys
import tempfile

SCALES = (96, 120, 144, 192, 240, 288, 384, 480)
PALETTE = {"white": 0xFFFFFF, "light": 0xF6F6F6, "accent": 0x1B76C0, "grey": 0x797979, "soft": 0xA8A8A8,
           "pale": 0xCCCCCC, "dark": 0x212121}
# What pictures are seen on: a white page and a grey dialog; buttons at rest, hot and pressed.
DIALOGS = (0xFFFFFF, 0xF6F6F6, 0xF0F0F0)
BUTTONS = (*DIALOGS, 0xE5F3FB, 0xD4E8FC)
READABLE = 3.0
HEADER = 54


def channels(colour):
    return colour >> 16, colour >> 8 & 255, colour & 255


class Set:
    """One line of the table."""

    def __init__(self, line):
        first, size, turn, layers, frame, field, sign, self.text = line.split(maxsplit=7)
        self.first, self.size, self.turn = int(first), int(size), int(turn)
        self.layers = layers.split(",")
        self.frame, self.field, self.sign = (channels(PALETTE[name]) if name != "-" else None
                                             for name in (frame, field, sign))
        self.colours = [colour for colour in (self.frame, self.field, self.sign) if colour]
        self.disabled = "disabled" in self.text


def sets_of(table):
    with open(table, encoding="utf-8") as file:
        return [Set(line.strip()) for line in file if line.strip() and not line.startswith("#")]


def scaled(length, dpi):
    return int(length * dpi / 96 + 0.5)


class Picture:
    """The pixels of a file as rows of red, green, blue and alpha, the top row first, turned back as they were drawn."""

    def __init__(self, path, turn):
        with open(path, "rb") as file:
            data = file.read()
        self.kind, self.offset, self.width, self.height, self.bits = struct.unpack_from("<2s8xI4xii2xH", data)
        rows = []
        for y in range(self.height):
            start = HEADER + y * self.width * 4
            line = [data[start + 4 * x:start + 4 * x + 4] for x in range(self.width)]
            rows.insert(0, [(red, green, blue, alpha) for blue, green, red, alpha in line])
        for _ in range(turn // 90):
            rows = [list(row) for row in zip(*rows)][::-1]
        self.rows = rows

    def column(self, x):
        return [row[x] for row in self.rows]

    def pixels(self):
        return [pixel for row in self.rows for pixel in row]


def check_colours(row, picture, dpi):
    """An opaque pixel is a colour of the set or between two of them, a paler one as far as its alpha can express it."""
    for pixel in set(picture.pixels()):
        *colour, alpha = pixel
        if alpha == 0 and any(colour):
            yield f"{pixel}: a transparent pixel has a colour"
        elif alpha and distance(colour, row.colours) > 2 + (255 / alpha if alpha < 255 else 0):
            yield f"{pixel} isn't a colour of the set or between two of them"


def distance(colour, colours):
    """How far a colour is from the nearest mixture of two of these, in its worst channel."""
    return min(from_line(colour, one, other) for one in colours for other in colours)


def from_line(colour, one, other):
    length = sum((b - a) ** 2 for a, b in zip(one, other))
    share = sum((b - a) * (c - a) for a, b, c in zip(one, other, colour)) / length if length else 0
    share = min(max(share, 0), 1)
    return max(abs(a + (b - a) * share - c) for a, b, c in zip(one, other, colour))


def check_edges(row, picture, dpi):
    """An edge that isn't on whole pixels is a row of equal pixels between two colours; curves and slopes have none."""
    lines = [*picture.rows, *(picture.column(x) for x in range(picture.width))]
    for line in lines:
        run = 1
        for before, pixel in zip(line, line[1:]):
            run = run + 1 if pixel == before and is_between(pixel, row.colours) else 1
            if run == 4:
                yield f"{pixel}: a straight edge isn't sharp"
                return


def is_between(pixel, colours):
    *colour, alpha = pixel
    if alpha not in (0, 255):
        return True
    return alpha == 255 and min(max(abs(a - b) for a, b in zip(colour, one)) for one in colours) > 2


def share(pixel, colour, ground):
    """How much of a pixel a colour covers on a ground, which is transparent if it is None."""
    if ground is None:
        return pixel[3] / 255
    spread = [abs(a - b) for a, b in zip(colour, ground)]
    channel = spread.index(max(spread))
    return pixel[3] / 255 * (pixel[channel] - ground[channel]) / (colour[channel] - ground[channel])


def box_lines(row, picture, line):
    middle = picture.width // 2
    for pixels in (picture.rows[middle], picture.column(middle)):
        for side in (pixels, pixels[::-1]):
            edge = [(*row.frame, 255)] * line + [(*row.field, 255)]
            if side[:line + 1] != edge:
                yield f"the frame isn't {line} pixels thick"


def circle_lines(row, picture, line):
    if row.frame == row.field:
        return
    middle = picture.width // 2
    for pixels in (picture.rows[middle], picture.column(middle)):
        for side in (pixels, pixels[::-1]):
            thick = sum(share(pixel, row.frame, row.field) for pixel in side[:line + 1])
            if abs(thick - line) > 0.15:
                yield f"the ring is {thick:.2f} pixels thick and not {line}"


def window_lines(row, picture, line):
    middle = picture.width // 2
    for name, pixels in (("left", picture.rows[middle]), ("right", picture.rows[middle][::-1]),
                         ("lower", picture.column(middle)[::-1])):
        start = next(at for at, pixel in enumerate(pixels) if pixel[3])
        if [pixel[3] for pixel in pixels[start:start + line + 1]] != [255] * line + [0]:
            yield f"the {name} line isn't {line} pixels thick"


def eye_lines(row, picture, line):
    column = picture.column(picture.width // 2)
    for name, pixels in (("upper", column), ("lower", column[::-1])):
        start = next(at for at, pixel in enumerate(pixels) if pixel[3])
        thick = sum(pixel[3] / 255 for pixel in pixels[start:start + line + 1])
        if abs(thick - line) > 0.2:
            yield f"the {name} lid is {thick:.2f} pixels thick and not {line}"


def arm_lines(row, picture, line, thick):
    """An arm at 45 degrees: two lines from one edge down to the other, which makes one with a row of full pixels."""
    column = picture.column(picture.width * 5 // 8)
    if "crossed-eye" in row.layers:
        x = picture.width - 2 * thick  # near the lower right end of the line, in rows that the lids don't reach
        column = picture.column(x)[x - (thick - thick // 2):x + thick // 2 + 1]
    down = sum(share(pixel, row.sign, row.field) for pixel in column)
    if row.field:
        down -= 2 * line * share((*row.frame, 255), row.sign, row.field)
    if abs(down - thick) > 0.1:
        yield f"an arm measures {down:.2f} pixels from edge to edge and not {thick}"


LINES = {"box": box_lines, "circle": circle_lines, "window": window_lines, "eye": eye_lines, "crossed-eye": eye_lines}
ARMS = ("check", "arrow", "crossed-eye")


def check_lines(row, picture, dpi):
    line = scaled(1, dpi)
    for layer in row.layers:
        if layer in LINES:
            yield from LINES[layer](row, picture, line)
        if layer in ARMS:
            yield from arm_lines(row, picture, line, scaled(2, dpi))


def luminance(colour):
    """As the guidelines for accessible content define it."""
    linear = [value / 255 / 12.92 if value <= 10 else ((value / 255 + 0.055) / 1.055) ** 2.4 for value in colour]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    light, dark = sorted((luminance(one), luminance(other)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


def over(pixel, ground):
    return tuple((a * pixel[3] + b * (255 - pixel[3])) / 255 for a, b in zip(pixel, channels(ground)))


def inner_contrast(picture):
    """Between the darkest and the lightest 3 of 100 pixels of a picture with a ground of its own."""
    seen = sorted((pixel[:3] for pixel in picture.pixels() if pixel[3] > 223), key=luminance)
    few = max(len(seen) * 3 // 100, 1)
    return contrast(seen[few - 1], seen[-few])


def glyph_contrast(picture, ground):
    """That which half of the ink has at least, on this ground."""
    ink = sorted(((contrast(over(pixel, ground), channels(ground)), pixel[3])
                  for pixel in picture.pixels() if pixel[3]), reverse=True)
    total, seen = sum(alpha for _, alpha in ink), 0
    for ratio, alpha in ink:
        seen += alpha
        if 2 * seen >= total:
            return ratio
    return 1.0


def contrast_of(row, picture):
    """The lowest contrast of the picture's mark, over all grounds that it may be on."""
    if row.field:
        return inner_contrast(picture)
    return min(glyph_contrast(picture, ground) for ground in BUTTONS)


def check_contrast(row, picture, dpi):
    if row.disabled:
        return
    ratio = contrast_of(row, picture)
    if ratio < READABLE:
        yield f"the contrast is {ratio:.2f} to 1"
    if row.field:
        edge = picture.rows[picture.width // 2][0]
        ratio = min(contrast(over(edge, ground), channels(ground)) for ground in DIALOGS)
        if ratio < READABLE:
            yield f"the contrast of the edge is {ratio:.2f} to 1"


def check_size(row, picture, dpi):
    wanted = (b"BM", HEADER, scaled(row.size, dpi), scaled(row.size, dpi), 32)
    if (picture.kind, picture.offset, picture.width, picture.height, picture.bits) != wanted:
        yield f"is {picture.width} by {picture.height} pixels of {picture.bits} bits"


CHECKS = (check_size, check_colours, check_edges, check_lines, check_contrast)


def errors_in_set(row, folder):
    for number, dpi in enumerate(SCALES):
        path = os.path.join(folder, f"{row.first + number}.bmp")
        if not os.path.exists(path):
            yield f"{row.first + number}: there is no bitmap of this number"
            continue
        picture = Picture(path, row.turn)
        for check in CHECKS:
            for text in check(row, picture, dpi):
                yield f"{row.first + number}, {row.text}, {dpi} dpi: {text}"


def errors_in_pairs(rows, folder):
    """A picture is paler than the enabled one: without its shape alone people see that it can't be used."""
    enabled = {row.text: row for row in rows if not row.disabled}
    for row in rows:
        if not row.disabled:
            continue
        partner = enabled[row.text.replace(", disabled", "")]
        for number, dpi in enumerate(SCALES):
            paths = [os.path.join(folder, f"{each.first + number}.bmp") for each in (row, partner)]
            if not all(map(os.path.exists, paths)):
                continue
            pale, full = (contrast_of(each, Picture(path, each.turn)) for each, path in zip((row, partner), paths))
            if pale >= full:
                yield f"{row.first + number}, {row.text}, {dpi} dpi: isn't paler than {partner.text}"


def errors_in_bytes(folder, again):
    for name in sorted(set(os.listdir(again)) | {name for name in os.listdir(folder) if name.endswith(".bmp")}):
        contents = []
        for place in (folder, again):
            path = os.path.join(place, name)
            contents.append(open(path, "rb").read() if os.path.exists(path) else None)
        if contents[0] != contents[1]:
            yield f"{name}: drawn again it is another file"


def errors_in(rows, folder, again):
    """One line for each error in these sets, whose pictures were drawn a second time into the folder `again`."""
    errors = [error for row in rows for error in errors_in_set(row, folder)]
    return [*errors, *errors_in_pairs(rows, folder), *errors_in_bytes(folder, again)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sets", required=True)
    parser.add_argument("--draw-art", required=True)
    parser.add_argument("folder")
    options = parser.parse_args()
    rows = sets_of(options.sets)
    with tempfile.TemporaryDirectory() as again:
        subprocess.run([sys.executable, options.draw_art, options.sets, again], check=True)
        errors = errors_in(rows, options.folder, again)
    for error in errors:
        print(error)
    print(f"art: {len(errors)} errors" if errors else
          f"art: {len(rows)} sets of {len(SCALES)} pictures are as they should be")
    return 1 if errors or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
