"""Reads the PNG files that rsvg-convert writes."""
import struct
import sys
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {2: 3, 6: 4}  # by the colour type of a PNG file


def chunks(png):
    at = len(SIGNATURE)
    while at < len(png):
        length, kind = struct.unpack_from(">I4s", png, at)
        yield kind, png[at + 8:at + 8 + length]
        at += 12 + length


def paeth(left, above, corner):
    guess = left + above - corner
    distances = [(abs(guess - value), value) for value in (left, above, corner)]
    return min(distances, key=lambda pair: pair[0])[1]


def unfiltered(line, kind, above, step):
    """One row of a PNG file, of which every byte is stored as the difference from a guess."""
    row = bytearray(line)
    for at, byte in enumerate(line):
        left = row[at - step] if at >= step else 0
        corner = above[at - step] if at >= step else 0
        guess = (0, left, above[at], (left + above[at]) // 2, paeth(left, above[at], corner))[kind]
        row[at] = (byte + guess) & 0xFF
    return row


def pixels_of(png):
    """Width, and the rows from the top as tuples of red, green, blue and, where the file has it, alpha."""
    parts = list(chunks(png))
    width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", dict(parts)[b"IHDR"])
    if depth != 8 or colour not in CHANNELS or interlaced:
        sys.exit("rsvg-convert wrote another kind of PNG file than it used to")
    step = CHANNELS[colour]
    data = zlib.decompress(b"".join(body for kind, body in parts if kind == b"IDAT"))
    rows, above, length = [], bytearray(width * step), width * step + 1
    for start in range(0, height * length, length):
        above = unfiltered(data[start + 1:start + length], data[start], above, step)
        rows.append([tuple(above[at:at + step]) for at in range(0, width * step, step)])
    return width, rows
