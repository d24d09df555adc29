#!/usr/bin/env python3
"""Makes the HEIC, AVIF and JPEG XR photos of the tests, with encoders of the machine: make_photos.py FOLDER.

Each shows four quarters, red, green, blue and white, when it is turned as its container asks.
"""
import os
import struct
import subprocess
import sys
import zlib

WIDTH, HEIGHT = 96, 64
COLOURS = [(200, 20, 20), (20, 200, 20), (20, 20, 200), (230, 230, 230)]
# The place in the upright picture of a stored pixel, by the orientation that is stored with it.
UPRIGHT = {
    1: lambda x, y, w, h: (x, y), 2: lambda x, y, w, h: (w - 1 - x, y),
    3: lambda x, y, w, h: (w - 1 - x, h - 1 - y), 4: lambda x, y, w, h: (x, h - 1 - y),
    5: lambda x, y, w, h: (y, x), 6: lambda x, y, w, h: (h - 1 - y, x),
    7: lambda x, y, w, h: (h - 1 - y, w - 1 - x), 8: lambda x, y, w, h: (y, w - 1 - x),
}


def quarter(x, y):
    return COLOURS[(x >= WIDTH // 2) + 2 * (y >= HEIGHT // 2)]


def run(*command):
    result = subprocess.run(command, capture_output=True, check=False)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}: {result.stderr.decode(errors='replace')}")


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(path, pixel, colour_type, bits=8, width=WIDTH, height=HEIGHT):
    form = ">B" if bits == 8 else ">H"
    rows = b"".join(b"\0" + b"".join(struct.pack(form, value) for x in range(width) for value in pixel(x, y))
                    for y in range(height))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, bits, colour_type, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def exif(orientation):
    """Maker, orientation and a date in big-endian order."""
    first = 8
    dated = first + 2 + 3 * 12 + 4 + 8
    entries = [struct.pack(">HHII", 0x10F, 2, 8, first + 2 + 3 * 12 + 4),
               struct.pack(">HHIHH", 0x112, 3, 1, orientation, 0),
               struct.pack(">HHII", 0x8769, 4, 1, dated)]
    date = b"2024:05:06 07:08:09\0"
    return (b"MM\0*" + struct.pack(">I", first) + struct.pack(">H", 3) + b"".join(entries) + struct.pack(">I", 0) + b"MakerCo\0" +
            struct.pack(">H", 1) + struct.pack(">HHII", 0x9003, 2, 20, dated + 18) + struct.pack(">I", 0) + date)


def profile():
    """The header of a colour profile without tags: nothing here applies it."""
    header = bytearray(132)
    header[0:4] = struct.pack(">I", len(header))
    header[8:12] = b"\x02\x10\0\0"
    header[12:24] = b"mntrRGB XYZ "
    header[36:40] = b"acsp"
    return bytes(header)


def stored(path, orientation):
    """A picture that is upright once it is turned by the orientation."""
    width, height = (HEIGHT, WIDTH) if orientation >= 5 else (WIDTH, HEIGHT)
    png(path, lambda x, y: quarter(*UPRIGHT[orientation](x, y, width, height)), 2, 8, width, height)


def bmp(path, pixel, width, height, bits=24):
    rows = b"".join(bytes(pixel(x, y)) for y in reversed(range(height)) for x in range(width))
    head = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, len(rows), 0, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54) + head + rows)


def bgr(x, y, orientation, width, height):
    return quarter(*UPRIGHT[orientation](x, y, width, height))[::-1]


def jpeg_xr(folder, work):
    """One for each orientation, which is still to be written into it, then with alpha."""
    source = os.path.join(work, "photo.bmp")
    encoder = ["JxrEncApp", "-q", "0.95", "-i", source, "-o"]
    for orientation in range(1, 9):
        width, height = (HEIGHT, WIDTH) if orientation >= 5 else (WIDTH, HEIGHT)
        bmp(source, lambda x, y: bgr(x, y, orientation, width, height), width, height)
        run(*encoder, os.path.join(folder, f"stored{orientation}.jxr"), "-c", "0")
    for name, alpha in (("alpha.jxr", 100), ("opaque.jxr", 255)):
        bmp(source, lambda x, y: (*bgr(x, y, 1, WIDTH, HEIGHT), 255 if y >= HEIGHT // 2 else alpha), WIDTH, HEIGHT, 32)
        run(*encoder, os.path.join(folder, name), "-c", "22", "-a", "3")


def encode(source, target, *options):
    run("heif-enc", "-q", "95", *options, source, "-o", target)


def patched(source, target, old, new):
    with open(source, "rb") as file:
        content = file.read()
    if content.count(old) < 1:
        sys.exit(f"{source} lacks {old!r}")
    with open(target, "wb") as file:
        file.write(content.replace(old, new))


def box(kind, data, full=None):
    head = b"" if full is None else struct.pack(">I", full)
    return struct.pack(">I", 8 + len(head) + len(data)) + kind + head + data


def boxes(data):
    at = 0
    while at + 8 <= len(data):
        size, kind = struct.unpack(">I4s", data[at:at + 8])
        yield kind, data[at + 8:at + size]
        at += size


def inner(data, *path):
    for kind in path:
        data = dict(boxes(data))[kind][4 if kind == b"meta" else 0:]
    return data


def item(number, kind):
    return box(b"infe", struct.pack(">HH4s", number, 0, kind) + b"\0", 2 << 24)


def used(number, *properties):
    """A row of the table that gives an item its properties."""
    return struct.pack(">HB", number, len(properties)) + bytes(properties)


def container(target, primary, items, references, properties, uses, contents, idat=b""):
    """Items whose contents are in `contents`, in order; the last item's is `idat` where there is one."""
    def meta(start):
        places = b""
        for number, data in enumerate(contents):
            places += struct.pack(">HHHHII", number + 1, 0, 0, 1, start, len(data))
            start += len(data)
        if idat:
            places += struct.pack(">HHHHII", len(contents) + 1, 1, 0, 1, 0, len(idat))
        iloc = box(b"iloc", b"\x44\0" + struct.pack(">H", len(items)) + places, 1 << 24)
        hdlr = box(b"hdlr", struct.pack(">I4s12x", 0, b"pict") + b"\0", 0)
        ipma = box(b"ipma", struct.pack(">I", len(uses)) + b"".join(uses), 0)
        return box(b"meta", hdlr + box(b"pitm", struct.pack(">H", primary), 0) + iloc +
                   box(b"iinf", struct.pack(">H", len(items)) + b"".join(items), 0) + references +
                   box(b"iprp", box(b"ipco", b"".join(properties)) + ipma) + (box(b"idat", idat) if idat else b""), 0)

    ftyp = box(b"ftyp", b"heic\0\0\0\0mif1heic")
    start = len(ftyp) + len(meta(0)) + 8
    with open(target, "wb") as file:
        file.write(ftyp + meta(start) + box(b"mdat", b"".join(contents)))


def parts(path):
    """The coded picture of a file, its decoder's set-up and its size."""
    with open(path, "rb") as file:
        content = file.read()
    properties = dict(boxes(inner(content, b"meta", b"iprp", b"ipco")))
    return dict(boxes(content))[b"mdat"], box(b"hvcC", properties[b"hvcC"]), box(b"ispe", properties[b"ispe"])


# How a container asks to turn a picture as an orientation of EXIF does: quarters of a turn to the left,
# then a mirror.
TURNS = {1: (), 2: ((b"imir", 1),), 3: ((b"irot", 2),), 4: ((b"imir", 0),), 5: ((b"irot", 3), (b"imir", 1)),
         6: ((b"irot", 3),), 7: ((b"irot", 3), (b"imir", 0)), 8: ((b"irot", 1),)}


def turned(source, target, orientation, exif_orientation, *more):
    coded, setup, size = parts(source)
    properties = [setup, size, *(box(kind, bytes([value])) for kind, value in TURNS[orientation]), *more]
    references = box(b"iref", box(b"cdsc", struct.pack(">HHH", 2, 1, 1)), 0)
    container(target, 1, [item(1, b"hvc1"), item(2, b"Exif")], references, properties,
              [used(1, 0x81, *range(2, len(properties) + 1))], [coded, struct.pack(">I", 0) + exif(exif_orientation)])


def grid(tiles, target):
    """One picture of two by two tiles, as telephones write them, cropped to WIDTH by HEIGHT."""
    all_parts = [parts(tile) for tile in tiles]
    _, setup, size = all_parts[0]
    whole = box(b"ispe", struct.pack(">II", WIDTH, HEIGHT), 0)
    container(target, 5, [*(item(number + 1, b"hvc1") for number in range(4)), item(5, b"grid")],
              box(b"iref", box(b"dimg", struct.pack(">HHHHHH", 5, 4, 1, 2, 3, 4)), 0), [setup, size, whole],
              [*(used(number + 1, 0x81, 2) for number in range(4)), used(5, 3)],
              [coded for coded, _, _ in all_parts], struct.pack(">BBBBHH", 0, 0, 1, 1, WIDTH, HEIGHT))


def main():
    folder = sys.argv[1]
    work = os.path.join(folder, "work")
    os.makedirs(work, exist_ok=True)
    jpeg_xr(folder, work)
    here = lambda name: os.path.join(folder, name)
    there = lambda name: os.path.join(work, name)
    png(there("plain.png"), quarter, 2)
    encode(there("plain.png"), here("plain.heic"))
    encode(there("plain.png"), here("plain.avif"), "-A")
    for orientation in range(1, 9):
        stored(there("stored.png"), orientation)
        encode(there("stored.png"), there("stored.heic"))
        turned(there("stored.heic"), here(f"turn{orientation}.heic"), orientation, orientation)
    turned(here("plain.heic"), here("remark.heic"), 1, 6)
    turned(here("plain.heic"), here("profile.heic"), 1, 1, box(b"colr", b"prof" + profile()))
    turned(here("plain.heic"), here("p3.heic"), 1, 1, box(b"colr", b"nclx" + struct.pack(">HHHB", 12, 13, 6, 0x80)))
    png(there("alpha.png"), lambda x, y: (*quarter(x, y), 255 if x < WIDTH // 2 else 64), 6)
    encode(there("alpha.png"), here("alpha.heic"))
    png(there("opaque.png"), lambda x, y: (*quarter(x, y), 255), 6)
    encode(there("opaque.png"), here("opaque.heic"))
    png(there("deep.png"), lambda x, y: [value * 257 for value in quarter(x, y)], 2, 16)
    encode(there("deep.png"), here("deep.heic"), "-b", "10")
    for number in range(4):
        left, top = 64 * (number % 2), 48 * (number // 2)
        png(there(f"tile{number}.png"), lambda x, y: quarter(x + left, y + top), 2, 8, 64, 48)
        encode(there(f"tile{number}.png"), there(f"tile{number}.heic"))
    grid([there(f"tile{number}.heic") for number in range(4)], here("grid.heic"))
    size = struct.pack(">II", WIDTH, HEIGHT)
    patched(here("plain.heic"), here("huge.heic"), b"ispe\0\0\0\0" + size, b"ispe\0\0\0\0" + struct.pack(">II", 16384, 12288))
    patched(here("plain.heic"), here("other.heic"), b"ispe\0\0\0\0" + size, b"ispe\0\0\0\0" + struct.pack(">II", 2 * WIDTH, HEIGHT))
    patched(here("plain.heic"), here("moving.heic"), b"ftypheic", b"ftypmsf1")


main()
