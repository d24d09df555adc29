#!/usr/bin/env python3
"""The check of the pictures finds what it is for: it is run on copies of the built ones with one fault each.

    check_art_selftest.py --sets SETS.txt FOLDER
"""
import argparse
import os
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from check_art import HEADER, SCALES, Picture, errors_in, sets_of  # noqa: E402

CHECKED, CHECKED_DISABLED, CLEAR, THIRD, RADIO, GEAR, ARROW = 62024, 62032, 62048, 62232, 62056, 62088, 62096
WINDOW, CROSSED_EYE, EYE = 62224, 62248, 62256
ACCENT, DARK, GREY, WHITE = ((*colour, 255) for colour in ((0x1B, 0x76, 0xC0), (0x21,) * 3, (0x79,) * 3, (0xFF,) * 3))


def redrawn(folder, number, change):
    """Lets `change` make new rows of the old ones, and writes them over the old ones."""
    path = os.path.join(folder, f"{number}.bmp")
    rows = change(Picture(path, 0).rows)
    with open(path, "r+b") as file:
        file.seek(HEADER)
        file.write(b"".join(bytes((blue, green, red, alpha))
                            for row in reversed(rows) for red, green, blue, alpha in row))


def recoloured(before, after):
    return lambda rows: [[after if pixel == before else pixel for pixel in row] for row in rows]


def with_pixel(x, y, pixel):
    def change(rows):
        rows[y][x] = pixel
        return rows
    return change


def darkened(rows):
    return [[(*DARK[:3], pixel[3]) if pixel[3] else pixel for pixel in row] for row in rows]


def paler(rows):
    """As if half of it were transparent."""
    return [[(*pixel[:3], pixel[3] // 2) for pixel in row] for row in rows]


def half_a_pixel_off(rows):
    return [[tuple((a + b) // 2 for a, b in zip(pixel, before)) for pixel, before in zip(row, [row[0], *row])]
            for row in rows]


def thicker(rows):
    """Each opaque pixel also covers the one to the right and the one below."""
    size = range(len(rows))
    return [[max((rows[b][a] for a, b in ((x, y), (x - 1, y), (x, y - 1)) if a >= 0 and b >= 0),
                 key=lambda pixel: pixel[3]) for x in size] for y in size]


def wider_arm(rows):
    """What isn't the ground covers the pixel above it too."""
    return [[below if pixel == ACCENT else pixel for pixel, below in zip(row, lower)]
            for row, lower in zip(rows, [*rows[1:], rows[-1]])]


def wider_frame(rows):
    rows[1][2:-2] = rows[0][2:-2]
    return rows


def wider_ring(rows):
    middle = len(rows) // 2
    rows[middle][1] = rows[middle][2] = ACCENT
    return rows


# What is planted: the picture, the change, and what the check must print of it.
PLANTED = [
    (CHECKED, with_pixel(6, 2, (0x1B, 0x76, 0xD0, 255)), "isn't a colour of the set"),
    (GEAR + 7, with_pixel(0, 0, (0xF0, 0x20, 0x20, 128)), "isn't a colour of the set"),
    (GEAR, with_pixel(0, 0, (1, 0, 0, 0)), "a transparent pixel has a colour"),
    (THIRD + 1, half_a_pixel_off, "a straight edge isn't sharp"),
    (WINDOW + 4, half_a_pixel_off, "a straight edge isn't sharp"),
    (CLEAR, wider_frame, "the frame isn't 1 pixels thick"),
    (RADIO + 3, wider_ring, "pixels thick and not 2"),
    (WINDOW + 2, thicker, "line isn't 2 pixels thick"),
    (EYE + 5, thicker, "lid is"),
    (CHECKED + 6, wider_arm, "an arm measures"),
    (ARROW + 2, thicker, "an arm measures"),
    (CROSSED_EYE + 6, thicker, "an arm measures"),
    (CHECKED + 5, recoloured(ACCENT, WHITE), "the contrast is"),
    (CLEAR + 2, recoloured(GREY, WHITE), "the contrast of the edge is"),
    (GEAR + 1, paler, "the contrast is"),
    (ARROW + 8, darkened, "isn't paler than down arrow"),
    (ARROW + 7, lambda rows: rows[1:] + rows[:1], "drawn again it is another file"),
]


def printed_after(table, number, built, plant):
    """What the check prints of a set and its partner after `plant` has changed a copy of their pictures."""
    rows = sets_of(table)
    text = next(row.text for row in rows if row.first <= number < row.first + len(SCALES))
    rows = [row for row in rows if row.text in (text, text.replace(", disabled", ""))]
    with tempfile.TemporaryDirectory() as place:
        folders = [os.path.join(place, name) for name in ("before", "after")]
        for folder in folders:
            os.makedirs(folder)
            for each in (row.first + scale for row in rows for scale in range(len(SCALES))):
                shutil.copy(os.path.join(built, f"{each}.bmp"), folder)
        plant(folders[1])
        return errors_in(rows, folders[1], folders[0])


def other_size(folder):
    shutil.copy(os.path.join(folder, f"{ARROW + 1}.bmp"), os.path.join(folder, f"{ARROW}.bmp"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sets", required=True)
    parser.add_argument("folder")
    options = parser.parse_args()
    faults = [(number, lambda folder, number=number, change=change: redrawn(folder, number, change), text)
              for number, change, text in PLANTED]
    faults += [(ARROW, other_size, "is 10 by 10 pixels of 32 bits"),
               (EYE, lambda folder: os.remove(os.path.join(folder, f"{EYE}.bmp")), "there is no bitmap of this number")]
    wrong = []
    for number, plant, text in faults:
        before = printed_after(options.sets, number, options.folder, lambda folder: None)
        printed = printed_after(options.sets, number, options.folder, plant)
        wrong += [f"without a fault the check prints {error}" for error in before]
        if not any(str(number) in error and text in error for error in printed):
            wrong.append(f"{number}: no line with \"{text}\" in {printed}")
    for text in wrong:
        print(text)
    print(f"art: {len(wrong)} faults went unnoticed" if wrong else f"art: all {len(faults)} planted faults are found")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
