#!/usr/bin/env python3
"""Has pictures of every form shrunk under Wine and asks other people's tools what came out.

They made the pictures too: sizes, depth, channels, profile and orientation must be those of the source but
for the size, and each result must decode without a word.
"""
import json
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from picture_judge import BASE, DAMAGED, SIZE, UNCHANGED, WRITTEN, check, check_outcomes, main, make_pictures, outcomes_of, run

EDGE = 160
LOOK = "%d|%f|%w %h|%m %z %[channels] %[profile:icc] %[orientation] %C\\n"
# Name: what convert makes the picture from.
PICTURES = {
    "plain.jpg": [*BASE, "-quality", "93"],
    "progressive.jpg": [*BASE, "-interlace", "JPEG"],
    "grey.jpg": [*BASE, "-colorspace", "Gray"],
    "full.jpg": [*BASE, "-sampling-factor", "1x1"],
    "cmyk.jpg": [*BASE, "-colorspace", "CMYK"],
    "plain.png": [*BASE, "-depth", "8"],
    "deep.png": [*BASE, "-depth", "16"],
    "alpha.png": ["-size", SIZE, "gradient:red-none"],
    "deep.tif": [*BASE, "-depth", "16", "-compress", "LZW"],
    "cmyk.tif": [*BASE, "-depth", "8", "-colorspace", "CMYK", "-compress", "Zip"],
    "big.tif": [*BASE, "-depth", "8", "-endian", "MSB", "-compress", "None"],
    "plain.webp": [*BASE, "-quality", "90"],
    "lossless.webp": [*BASE, "-define", "webp:lossless=true"],
    "plain.bmp": [*BASE, "-type", "TrueColor"],
}


def looked_at(folder):
    """Name -> its size, and what has to stay."""
    lines = run("identify", "-format", LOOK, *[os.path.join(folder, name) for name in PICTURES]).stdout.splitlines()
    return {name: (size, kept) for _, name, size, kept in (line.split("|", 3) for line in lines)}


def tags_in(folder):
    result = run("exiftool", "-j", "-n", "-Orientation", "-Artist", "-Title", folder)
    rows = {os.path.basename(row.pop("SourceFile")): row for row in json.loads(result.stdout)}
    return {name: rows.get(name) for name in PICTURES}


def check_likeness(name, source, target):
    """What another tool makes of the source is the same to the eye."""
    old, new = os.path.join(source, name), os.path.join(target, name)
    result = run("convert", "(", old, "-resize", f"{EDGE}x{EDGE}", ")", new, "-metric", "PSNR", "-compare",
                 "-format", "%[distortion]", "info:")
    check(result.returncode == 0 and not result.stderr, f"{name}: {result.stderr}")
    check(result.stdout == "inf" or float(result.stdout or 0) > 30, f"{name}: unlike another tool's: {result.stdout}")


def check_pictures(source, target):
    before, after = looked_at(source), looked_at(target)
    for name in PICTURES:
        size, kept = after.get(name, ("", ""))
        check(size == f"{EDGE} {EDGE * 3 // 4}", f"{name}: the size is {size}")
        check(kept == before[name][1], f"{name}: {kept} instead of {before[name][1]}")
        check_likeness(name, source, target)
        if name.endswith(".jpg"):
            result = run("djpeg", "-outfile", os.devnull, os.path.join(target, name))
            check(result.returncode == 0 and not result.stderr, f"{name}: djpeg: {result.stderr}")
    old, new = tags_in(source), tags_in(target)
    for name in PICTURES:
        check(old[name] == new[name], f"{name}: tags {new[name]} instead of {old[name]}")
    check(old["plain.jpg"]["Artist"] == "A name", "exiftool wrote no tags")


def check_all(options, work):
    source, target = os.path.join(work, "source"), os.path.join(work, "target")
    os.mkdir(source)
    os.mkdir(target)
    make_pictures(work, source, PICTURES, ("plain.jpg", "progressive.jpg", "plain.png", "deep.tif"), ("red", "blue"))
    check_outcomes(outcomes_of(options, ["edge", str(EDGE), "90"], source, target),
                   {**{name: WRITTEN for name in PICTURES}, "moving.gif": UNCHANGED, "pages.tif": UNCHANGED,
                    "cut.jpg": DAMAGED})
    check_pictures(source, target)
    return f"{len(PICTURES)} pictures looked at by identify, convert, djpeg and exiftool"


if __name__ == "__main__":
    sys.exit(main(check_all))
