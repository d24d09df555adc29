#!/usr/bin/env python3
"""Has other tools judge pictures before and after the personal data remover.

Makes pictures of every format and coding (convert, cjpeg, cwebp, gif2webp, tiffcp), has exiftool write a canary
into every place that it knows, and cleans them under Wine. Then
  - no cleaned file has the canary, compressed texts included, as exiftool finds no text in it;
  - exiftool lists only what describes the picture itself, the orientation as it was, and no warning;
  - the colour profile is the same bytes;
  - identify and djpeg decode the same pixels.
"""
import json
import os
import struct
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from cleaning_judge import CANARY, check, clean, main, run

CONVERT = "convert-im6.q16"

# What exiftool may find in a cleaned file, by group; "*" is any tag.
ALLOWED = {
    "ExifTool": ["ExifToolVersion"],
    "System": ["*"],  # of the file on the disk
    "File": ["FileType", "FileTypeExtension", "MIMEType", "ExifByteOrder", "ImageWidth", "ImageHeight",
             "EncodingProcess", "BitsPerSample", "ColorComponents", "YCbCrSubSampling"],
    "JFIF": ["JFIFVersion", "ResolutionUnit", "XResolution", "YResolution"],
    "Adobe": ["DCTEncodeVersion", "APP14Flags0", "APP14Flags1", "ColorTransform"],
    "IFD0": ["Orientation"],
    "PNG": ["ImageWidth", "ImageHeight", "BitDepth", "ColorType", "Compression", "Filter", "Interlace", "Gamma",
            "Palette", "Transparency", "BackgroundColor", "SRGBRendering", "WhitePointX", "WhitePointY", "RedX",
            "RedY", "GreenX", "GreenY", "BlueX", "BlueY", "SignificantBits", "ProfileName"],
    "PNG-pHYs": ["PixelsPerUnitX", "PixelsPerUnitY", "PixelUnits"],
    "GIF": ["GIFVersion", "ImageWidth", "ImageHeight", "HasColorMap", "ColorResolutionDepth", "BitsPerPixel",
            "BackgroundColor", "TransparentColor", "AnimationIterations", "FrameCount", "Duration"],
    "RIFF": ["VP8Version", "ImageWidth", "ImageHeight", "HorizontalScale", "VerticalScale", "AlphaIsUsed",
             "WebP_Flags", "BackgroundColor", "AnimationLoopCount", "FrameCount", "Duration", "AlphaPreprocessing",
             "AlphaFiltering", "AlphaCompression"],
    "Composite": ["*"],  # made by exiftool from the rest
    "ICC-header": ["*"],
    "ICC_Profile": ["*"],
}
TIFF_PAGE = ["SubfileType", "ImageWidth", "ImageHeight", "BitsPerSample", "Compression", "PhotometricInterpretation",
             "FillOrder", "StripOffsets", "Orientation", "SamplesPerPixel", "RowsPerStrip", "StripByteCounts",
             "XResolution", "YResolution", "PlanarConfiguration", "ResolutionUnit", "PageNumber", "Predictor",
             "WhitePoint", "PrimaryChromaticities", "ColorMap", "TileWidth", "TileLength", "TileOffsets",
             "TileByteCounts", "ExtraSamples", "SampleFormat", "JPEGTables", "YCbCrSubSampling", "T6Options",
             "YCbCrPositioning", "ReferenceBlackWhite", "MinSampleValue", "MaxSampleValue", "OldSubfileType",
             "T4Options"]


def profile():
    """A small profile of a display: a matrix and a gamma."""
    def xyz(*values):
        return b"XYZ \0\0\0\0" + b"".join(struct.pack(">i", round(value * 65536)) for value in values)

    text = b"Display\0"
    tags = {
        b"desc": b"desc\0\0\0\0" + struct.pack(">I", len(text)) + text + bytes(78),
        b"cprt": b"text\0\0\0\0" + b"none\0",
        b"wtpt": xyz(0.9642, 1, 0.8249),
        b"rXYZ": xyz(0.4361, 0.2225, 0.0139),
        b"gXYZ": xyz(0.3851, 0.7169, 0.0971),
        b"bXYZ": xyz(0.1431, 0.0606, 0.7141),
        b"rTRC": b"curv\0\0\0\0\0\0\0\1\2\x33",
        b"gTRC": b"curv\0\0\0\0\0\0\0\1\2\x33",
        b"bTRC": b"curv\0\0\0\0\0\0\0\1\2\x33",
    }
    table, data = struct.pack(">I", len(tags)), b""
    start = 128 + 4 + 12 * len(tags)
    for name, value in tags.items():
        table += name + struct.pack(">II", start + len(data), len(value))
        data += value + bytes(-len(value) % 4)
    size = start + len(data)
    header = struct.pack(">I", size) + bytes(4) + b"\2\x10\0\0mntrRGB XYZ " + bytes(12) + b"acsp" + bytes(28)
    header += xyz(0.9642, 1, 0.8249)[8:]
    return header + bytes(128 - len(header)) + table + data


class Samples:
    """Pictures without metadata, and then with a canary everywhere."""

    def __init__(self, folder):
        self.folder = folder
        self.names = []
        self.source = os.path.join(os.path.dirname(folder), "source.ppm")
        run(CONVERT, "-size", "48x32", "plasma:red-blue", "-seed", "5", "-depth", "8", self.source)

    def path(self, name):
        self.names.append(name)
        return os.path.join(self.folder, name)

    def convert(self, name, *options, source=None):
        run(CONVERT, source or self.source, *options, self.path(name))

    def jpegs(self):
        for name, options in {
            "baseline.jpg": [], "progressive.jpg": ["-progressive"], "grey.jpg": ["-grayscale"],
            "restart.jpg": ["-restart", "1"], "arithmetic.jpg": ["-arithmetic"],
            "arithmetic progressive.jpg": ["-arithmetic", "-progressive"], "sampled.jpg": ["-sample", "1x1"],
        }.items():
            run("cjpeg", *options, "-outfile", self.path(name), self.source)
        self.convert("cmyk.jpg", "-colorspace", "CMYK")
        self.convert("rgb.jpg", "-set", "colorspace", "RGB", "-type", "TrueColor", "-sampling-factor", "1x1")

    def pngs(self):
        self.convert("rgb.png")
        self.convert("grey 16 bit.png", "-colorspace", "Gray", "-depth", "16")
        self.convert("palette.png", "-colors", "16", "-type", "PaletteAlpha")
        self.convert("alpha.png", "-alpha", "set", "-channel", "A", "-evaluate", "set", "40%")
        self.convert("interlaced.png", "-interlace", "PNG", "-density", "300", "-units", "PixelsPerInch")

    def gifs(self):
        self.convert("still.gif")
        run(CONVERT, "-delay", "7", "-loop", "3", self.source, "(", self.source, "-flip", ")", "(", self.source,
            "-negate", ")", self.path("animated.gif"))

    def webps(self):
        self.convert("source.png")
        source = os.path.join(self.folder, self.names.pop())
        run("cwebp", "-quiet", source, "-o", self.path("lossy.webp"))
        run("cwebp", "-quiet", "-lossless", source, "-o", self.path("lossless.webp"))
        run("cwebp", "-quiet", os.path.join(self.folder, "alpha.png"), "-o", self.path("alpha.webp"))
        run("gif2webp", "-quiet", os.path.join(self.folder, "animated.gif"), "-o", self.path("animated.webp"))
        os.remove(source)

    def tiffs(self):
        self.convert("plain.tif", "-compress", "none")
        plain = os.path.join(self.folder, "plain.tif")
        for name, options in {
            "lzw.tif": ["-c", "lzw:2", "-r", "4"], "deflate.tif": ["-c", "zip", "-r", "8"],
            "jpeg.tif": ["-c", "jpeg:r:80", "-r", "16"], "tiles.tif": ["-t", "-w", "16", "-l", "16"],
            "planes.tif": ["-p", "separate", "-r", "8"], "big-endian.tif": ["-B", "-r", "4"],
            "jpeg tiles.tif": ["-c", "jpeg", "-t", "-w", "16", "-l", "16"],
        }.items():
            run("tiffcp", *options, plain, self.path(name))
        run("tiffcp", "-c", "none", plain, os.path.join(self.folder, "lzw.tif"), self.path("pages.tif"))
        self.convert("fax.tif", "-monochrome", "-compress", "Group4")
        self.convert("16 bit alpha.tif", "-depth", "16", "-alpha", "set", "-compress", "lzw")

    def add_canaries(self, icc, thumbnail):
        text = f"{CANARY} was here"
        common = ["-overwrite_original", "-q", "-m", f"-EXIF:Make={text}", f"-EXIF:Model={text}",
                  f"-EXIF:Artist={text}", f"-EXIF:Copyright={text}", f"-EXIF:Software={text}",
                  f"-EXIF:ImageDescription={text}", f"-EXIF:UserComment={text}", f"-EXIF:SerialNumber={text}",
                  f"-EXIF:OwnerName={text}", f"-EXIF:LensModel={text}", f"-EXIF:XPAuthor={text}",
                  "-EXIF:DateTimeOriginal=2026:01:02 03:04:05", "-EXIF:GPSLatitude=48.1", "-EXIF:GPSLongitude=11.5",
                  "-EXIF:GPSLatitudeRef=N", "-EXIF:GPSLongitudeRef=E", f"-EXIF:GPSProcessingMethod={text}",
                  "-EXIF:Orientation#=6", f"-XMP:Creator={text}", f"-XMP:Description={text}",
                  f"-XMP:History={text}"]
        jpeg = [f"-IPTC:By-line={text}", f"-IPTC:City={text}", f"-Comment={text}", f"-XMP:Title={text * 3000}",
                f"-ThumbnailImage<={thumbnail}", f"-Photoshop:URL=http://{CANARY}", f"-Ducky:Comment={text}",
                f"-ICC_Profile<={icc}"]
        png = ["-z", f"-PNG:Author={text}", f"-PNG:Comment={text * 20}", "-PNG:ModifyDate=2026:01:02 03:04:05",
               f"-ICC_Profile<={icc}"]
        more = {"jpg": jpeg, "png": png, "gif": [f"-GIF:Comment={text}"], "webp": [f"-ICC_Profile<={icc}"],
                "tif": [f"-IPTC:By-line={text}", f"-EXIF:DocumentName={text}", f"-EXIF:HostComputer={text}",
                        f"-EXIF:PageName={text}", f"-ICC_Profile<={icc}"]}
        for kind, options in more.items():
            files = [os.path.join(self.folder, name) for name in self.names if name.endswith("." + kind)]
            # The colours of these have no profile of a display.
            own = [path for path in files if "cmyk" in path or "grey" in path or "fax" in path]
            without = [option for option in options if not option.startswith("-ICC")]
            given = common if kind != "gif" else [option for option in common if "-EXIF" not in option]
            run("exiftool", *given, *options, *[path for path in files if path not in own])
            if own:
                run("exiftool", *given, *without, *own)
        # exiftool writes none of this size; tiffcp copies the tags that it knows.
        tagged = os.path.join(self.folder, "plain.tif")
        run("tiffcp", "-8", "-r", "4", tagged, self.path("big.tif"))
        for name in self.names:
            with open(os.path.join(self.folder, name), "ab") as file:
                file.write(f"\n{CANARY} after the end".encode())


def listed_by_exiftool(folder, *options):
    """For each file what exiftool finds, as a dictionary of group:tag."""
    listed = json.loads(run("exiftool", "-a", "-G1", "-s", "-j", *options, folder))
    return {os.path.basename(file["SourceFile"]): file for file in listed}


def pixels(folder, names):
    """For each file what identify decodes: the frames' sizes, times and hashes of their pixels."""
    lines = run("identify", "-quiet", "-format", "%f\t%w %h %T %#\n",
                *[os.path.join(folder, name) for name in names]).decode().splitlines()
    frames = {name: [] for name in names}
    for line in lines:
        name, _, frame = line.partition("\t")
        frames[name].append(frame)
    return frames


class Looks:
    """What the tools say of one folder."""

    def __init__(self, folder, names):
        self.tags = listed_by_exiftool(folder)
        self.profiles = listed_by_exiftool(folder, "-b", "-ICC_Profile")
        self.pixels = pixels(folder, names)
        self.djpeg = {name: run("djpeg", os.path.join(folder, name)) for name in names if name.endswith(".jpg")}


def is_allowed(name, tag):
    group, _, short = tag.partition(":")
    if short.endswith("ByteOrder"):
        return True
    # exiftool takes strips that are coded as JPEG for previews, and their list for a number.
    if name == "jpeg.tif" and (short.startswith("PreviewImage") or short == "Warning"):
        return True
    if name.endswith(".tif") and group.startswith("IFD"):
        return short in TIFF_PAGE
    allowed = ALLOWED.get(group, [])
    return "*" in allowed or short in allowed


def judge(name, before, after, cleaned):
    for mark in (CANARY.encode(), CANARY.encode("utf-16-le"), CANARY.encode("utf-16-be")):
        check(mark not in cleaned, f"{name}: no canary in the bytes, written as {mark[:4]}")
    tags = after.tags[name]
    stray = [tag for tag in tags if tag != "SourceFile" and not is_allowed(name, tag)]
    check(not stray, f"{name}: exiftool lists only what describes the picture {stray}")
    check(CANARY in json.dumps(before.tags[name]), f"{name}: exiftool found canaries before")
    check(CANARY not in json.dumps(tags), f"{name}: and finds none now")
    turned = "IFD0:Orientation"
    check(before.tags[name].get(turned) == tags.get(turned), f"{name}: the orientation stays")
    check(bool(tags.get(turned)) != name.endswith(".gif"), f"{name}: which every format but GIF has")
    check(bool(before.pixels[name]) and before.pixels[name] == after.pixels[name],
          f"{name}: identify decodes the same pixels of {len(before.pixels[name])} frames")
    check(before.djpeg.get(name) == after.djpeg.get(name), f"{name}: djpeg, if it is for it, too")
    profiles = [looks.profiles.get(name, {}).get("ICC_Profile:ICC_Profile") for looks in (before, after)]
    check(profiles[0] == profiles[1], f"{name}: the profile is the same ({len(profiles[0] or '')} characters)")


def check_all(options, work):
    before = os.path.join(work, "in")
    os.makedirs(before)
    icc, thumbnail = os.path.join(work, "display.icc"), os.path.join(work, "thumbnail.jpg")
    with open(icc, "wb") as file:
        file.write(profile())
    samples = Samples(before)
    for make in (samples.jpegs, samples.pngs, samples.gifs, samples.webps, samples.tiffs):
        make()
    run("cjpeg", "-outfile", thumbnail, samples.source)
    samples.add_canaries(icc, thumbnail)
    after, report = clean(options, before, work)
    first, second = Looks(before, samples.names), Looks(after, samples.names)
    for name in samples.names:
        check(report[name][0] == "cleaned", f"{name}: {' '.join(report[name])}")
        with open(os.path.join(after, name), "rb") as file:
            judge(name, first, second, file.read())
    with_profile = [name for name in samples.names if second.profiles.get(name, {}).get("ICC_Profile:ICC_Profile")]
    check(len(with_profile) > 20, f"{len(with_profile)} pictures have a profile")


if __name__ == "__main__":
    sys.exit(main(check_all))
