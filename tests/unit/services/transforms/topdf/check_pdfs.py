#!/usr/bin/env python3
"""Has PDFs made of pictures of every form under Wine and asks other people's tools what is in them.

They made the pictures too: JPEG data must be those of the file, other pixels equal, pages as large and as
upright as the picture, and no tool may have anything to say about a file.
"""
import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from picture_judge import (BASE, DAMAGED, ENV, SIZE, UNCHANGED, UNSUPPORTED, WRITTEN, check, check_outcomes, made, main, make_pictures,
                           outcomes_of, run)

# Name: what convert makes the picture from.
JPEGS = {
    "plain.jpg": [*BASE, "-quality", "93", "-units", "PixelsPerInch", "-density", "200"],
    "progressive.jpg": [*BASE, "-interlace", "JPEG"],
    "grey.jpg": [*BASE, "-colorspace", "Gray"],
    "cmyk.jpg": [*BASE, "-colorspace", "CMYK"],
    "turned.jpg": [*BASE, "-quality", "90"],
}
LOSSLESS = {
    "plain.png": [*BASE, "-depth", "8", "-units", "PixelsPerInch", "-density", "150"],
    "deep.png": [*BASE, "-depth", "16"],
    "grey.png": [*BASE, "-colorspace", "Gray", "-depth", "8"],
    "interlaced.png": [*BASE, "-depth", "8", "-interlace", "PNG"],
    "palette.png": [*BASE, "-colors", "13", "-type", "Palette"],
    "alpha.png": ["-size", SIZE, "gradient:red-none"],
    "still.gif": [*BASE, "-colors", "200"],
    "woven.gif": [*BASE, "-colors", "200", "-interlace", "GIF"],
    "plain.bmp": [*BASE, "-type", "TrueColor"],
    "lossless.webp": [*BASE, "-define", "webp:lossless=true"],
    "deep.tif": [*BASE, "-depth", "16", "-compress", "LZW"],
    "fax.tif": [*BASE, "-monochrome", "-compress", "Group4"],
    "palette.tif": [*BASE, "-colors", "16", "-type", "Palette", "-compress", "LZW"],
    "cmyk.tif": [*BASE, "-depth", "8", "-colorspace", "CMYK", "-compress", "Zip"],
    "turned.png": [*BASE, "-depth", "8"],
}
# pdfimages rounds 16 bits, white to black; the samples as they are stored are compared instead.
DEEP = ("deep.png", "deep.tif")
# Colours of a palette have 8 bits in a PDF and 16 in a TIFF file.
ROUNDED = ("palette.tif",)


def make_samples(work, folder):
    make_pictures(work, folder, {**JPEGS, **LOSSLESS}, ("turned.jpg", "turned.png"), ("red", "blue", "green"))
    made(["convert", os.path.join(work, "base.miff"), os.path.join(work, "base.ppm")])
    made(["cjpeg", "-arithmetic", "-outfile", os.path.join(folder, "arithmetic.jpg"), os.path.join(work, "base.ppm")])
    with open(os.path.join(folder, "letter.txt"), "w", encoding="ascii") as file:
        file.write("Dear all\n")


def make_pdfs(options, page, source, target):
    os.mkdir(target)
    return outcomes_of(options, [page], source, target)


def check_files(folder):
    for name in sorted(os.listdir(folder)):
        path = os.path.join(folder, name)
        result = run("qpdf", "--check", path)
        check(result.returncode == 0 and "WARNING" not in result.stdout + result.stderr, f"{name}: qpdf: {result.stdout}{result.stderr}")
        result = run("pdfinfo", path)
        check(result.returncode == 0 and not result.stderr, f"{name}: pdfinfo: {result.stderr}")
        check("Producer" not in result.stdout and "Date" not in result.stdout, f"{name}: has information: {result.stdout}")


def pictures_in(path, work):
    """What pdfimages takes out of a PDF: files in their own forms, and its table's rows."""
    prefix = os.path.join(work, "taken")
    for old in os.listdir(work):
        if old.startswith("taken"):
            os.remove(os.path.join(work, old))
    result = run("pdfimages", "-all", path, prefix)
    check(result.returncode == 0 and not result.stderr, f"{path}: pdfimages: {result.stderr}")
    rows = [line.split() for line in run("pdfimages", "-list", path).stdout.splitlines()[2:]]
    return sorted(os.path.join(work, name) for name in os.listdir(work) if name.startswith("taken")), rows


def check_jpegs(source, target, work):
    for name in JPEGS:
        taken, rows = pictures_in(os.path.join(target, name + ".pdf"), work)
        check(len(rows) == 1 and rows[0][8] == "jpeg", f"{name}: {rows}")
        with open(os.path.join(source, name), "rb") as old, open(taken[0], "rb") as new:
            check(old.read() == new.read(), f"{name}: the JPEG's data changed")


def shown(path, name, work):
    """The first page, a point for each pixel of the picture."""
    size = run("pdfinfo", path).stdout.split("Page size:")[1].split()
    turned = name.startswith("turned")
    width, height = (300, 400) if turned else (400, 300)
    check((float(size[0]) < float(size[2])) == turned, f"{name}: the page is {size[:3]}")
    result = run("pdftoppm", "-png", "-scale-to-x", str(width), "-scale-to-y", str(height), path, os.path.join(work, "page"))
    check(result.returncode == 0 and not result.stderr, f"{name}: pdftoppm: {result.stderr}")
    pages = sorted(entry for entry in os.listdir(work) if entry.startswith("page"))
    for page in pages[1:]:
        os.remove(os.path.join(work, page))
    os.replace(os.path.join(work, pages[0]), os.path.join(work, "shown.png"))
    return os.path.join(work, "shown.png")


def check_likeness(source, target, work, metric, least, names):
    for name in names:
        page = shown(os.path.join(target, name + ".pdf"), name, work)
        turn = ["-rotate", "90"] if name.startswith("turned") else []
        result = run("convert", "(", os.path.join(source, name) + "[0]", *turn, "-background", "white", "-alpha", "remove",
                     "-colorspace", "sRGB", ")", page, "-resize", "25%", "-metric", metric, "-compare", "-format", "%[distortion]", "info:")
        check(result.returncode == 0, f"{name}: {result.stderr}")
        check(result.stdout == "inf" or float(result.stdout or 0) > least, f"{name}: the page looks unlike the picture: {result.stdout}")


def check_deep(source, target, number):
    old = subprocess.run(["convert", source, "-depth", "16", "-endian", "MSB", "rgb:-"], env=ENV, capture_output=True, check=False).stdout
    new = subprocess.run(["qpdf", f"--show-object={number}", "--filtered-stream-data", target], env=ENV, capture_output=True, check=False).stdout
    check(len(old) == 400 * 300 * 6 and old == new, f"{target}: other samples of 16 bits")


def check_samples(source, target, work):
    """The pixels that another tool takes out are those of the picture."""
    for name in LOSSLESS:
        taken, rows = pictures_in(os.path.join(target, name + ".pdf"), work)
        if name in DEEP:
            check_deep(os.path.join(source, name), os.path.join(target, name + ".pdf"), rows[0][10])
            continue
        options = ["-alpha", "off"] if name == "alpha.png" else ["-fuzz", "1%"] if name in ROUNDED else []
        result = run("compare", "-metric", "AE", *options, os.path.join(source, name), taken[0], "null:")
        check(result.stderr.strip() == "0", f"{name}: {result.stderr} pixels differ from {os.path.basename(taken[0])}")


def check_pages(folder):
    def page_of(name):
        return run("pdfinfo", os.path.join(folder, name + ".pdf")).stdout.split("Page size:")[1].splitlines()[0].strip()

    check(page_of("plain.jpg").startswith("144 x 108 pts"), f"plain.jpg: {page_of('plain.jpg')}")
    check(page_of("plain.png").startswith("192.0"), f"plain.png: {page_of('plain.png')}")  # a whole number of pixels a metre
    pages = run("qpdf", "--show-npages", os.path.join(folder, "pages.tif.pdf")).stdout.strip()
    check(pages == "3", f"pages.tif: {pages} pages")


def check_sheets(folder):
    for name in ("plain.png", "turned.jpg"):
        text = run("pdfinfo", os.path.join(folder, name + ".pdf")).stdout
        check("(A4)" in text, f"{name}: {text}")


def check_cleaned(target):
    with open(os.path.join(target, "turned.jpg.pdf"), "rb") as file:
        check(b"A name" in file.read(), "the JPEG's data lack their author")
    with open(os.path.join(target, "turned.jpg.clean.pdf"), "rb") as file:
        check(b"A name" not in file.read(), "the author is still in the cleaned PDF")


def check_all(options, work):
    source, target, sheets = (os.path.join(work, name) for name in ("source", "target", "sheets"))
    os.mkdir(source)
    make_samples(work, source)
    check_outcomes(make_pdfs(options, "picture", source, target),
                   {**{name: WRITTEN for name in (*JPEGS, *LOSSLESS, "pages.tif", "arithmetic.jpg")},
                    "moving.gif": UNCHANGED, "cut.jpg": DAMAGED, "letter.txt": UNSUPPORTED})
    few = os.path.join(work, "few")
    os.mkdir(few)
    for name in ("plain.png", "turned.jpg"):
        os.link(os.path.join(source, name), os.path.join(few, name))
    make_pdfs(options, "a4", few, sheets)
    check_files(target)
    check_files(sheets)
    check_jpegs(source, target, work)
    check_samples(source, target, work)
    check_likeness(source, target, work, "PSNR", 30, [name for name in (*JPEGS, *LOSSLESS) if "cmyk" not in name])
    check_pages(target)
    check_sheets(sheets)
    check_cleaned(target)
    return f"{len(JPEGS) + len(LOSSLESS)} pictures looked at by qpdf, pdfimages, pdftoppm and convert"


if __name__ == "__main__":
    sys.exit(main(check_all))
