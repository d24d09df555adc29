#!/usr/bin/env python3
"""Has pictures of every form shrunk under Wine and asks other people's tools what came out.

They made the pictures too: sizes, depth, channels, profile and orientation must be those of the source but
for the size, and each result must decode without a word.
"""
import argparse
import json
import os
import subprocess
import sys
import tempfile

SIZE, EDGE = "400x300", 160
SHRUNK, UNCHANGED, DAMAGED = 0, 1, 3
# A second thread of these tools only waits, on pictures of this size.
ENV = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC", OMP_NUM_THREADS="1", MAGICK_THREAD_LIMIT="1")
BASE = ["base.miff"]
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
failures = []


def check(condition, text):
    if not condition:
        failures.append(text)
        print(f"FAILED: {text}", flush=True)


def run(*command):
    return subprocess.run(command, env=ENV, stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", check=False)


def made(command):
    result = run(*command)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}: {result.stderr}")


def windows(path):
    return "Z:" + path.replace("/", "\\")


def make_pictures(work, folder):
    base = os.path.join(work, "base.miff")
    made(["convert", "-seed", "7", "-size", SIZE, "plasma:tomato-steelblue", base])
    for name, options in PICTURES.items():
        made(["convert", *[base if word == BASE[0] else word for word in options], os.path.join(folder, name)])
    tagged = [os.path.join(folder, name) for name in ("plain.jpg", "progressive.jpg", "plain.png", "deep.tif")]
    made(["exiftool", "-q", "-n", "-overwrite_original", "-Orientation=6", "-Artist=A name", "-XMP-dc:Title=A title", *tagged])
    made(["convert", "-delay", "10", "-size", SIZE, "xc:red", "xc:blue", os.path.join(folder, "moving.gif")])
    made(["convert", "-size", SIZE, "xc:red", "xc:blue", os.path.join(folder, "pages.tif")])
    with open(os.path.join(folder, "plain.jpg"), "rb") as file:
        whole = file.read()
    with open(os.path.join(folder, "cut.jpg"), "wb") as file:
        file.write(whole[:len(whole) // 2])


def shrink(options, source, target):
    result = run(options.wine_run, "--timeout", "120", "--", options.tool, "edge", str(EDGE), "90", windows(source), windows(target))
    if result.returncode != 0:
        sys.exit(f"picture_tool ended with {result.returncode}: {result.stdout}{result.stderr}")
    lines = [line.split("\t") for line in result.stdout.splitlines() if "\t" in line]
    return {name: int(float(outcome)) for name, outcome in lines if name not in ("seconds", "megabytes")}


def check_outcomes(outcomes):
    expected = {**{name: SHRUNK for name in PICTURES}, "moving.gif": UNCHANGED, "pages.tif": UNCHANGED, "cut.jpg": DAMAGED}
    for name, outcome in expected.items():
        check(outcomes.get(name) == outcome, f"{name}: outcome {outcomes.get(name)}, not {outcome}")


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


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--tool", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as work:
        source, target = os.path.join(work, "source"), os.path.join(work, "target")
        os.mkdir(source)
        os.mkdir(target)
        make_pictures(work, source)
        check_outcomes(shrink(options, source, target))
        check_pictures(source, target)
    print(f"{len(PICTURES)} pictures looked at by identify, convert, djpeg and exiftool; {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
