#!/usr/bin/env python3
"""Has the archive service write zips that need the 64-bit form, and reads them with other people's
tools. Each part is a test of its own, so that they run side by side.

many: 100,000 entries, each of which every tool must give back byte for byte and in order.

sizes: deflated files of the sizes around 4 GiB at which something changes. Their headers are read here,
every tool lists the sizes, and bsdtar, which is the fastest, reads the data to its end and compares the
checksums.

large: nothing, unless OB_LARGE_ARCHIVES is 1. Then files of 4 GiB minus one and plus one byte, deflated, stored, and encrypted,
so that sizes, packed sizes and offsets pass 4 GiB, each alone and together, by every tool. The sources
have holes; the zips that store them take up to 9 GB of the temporary folder.
"""
import argparse
import hashlib
import os
import random
import re
import struct
import subprocess
import sys
import tempfile
import time
import zipfile

from check_archives import ENV, PASSWORD, check, failures, run

MANY = 100_000
GIB4 = 1 << 32
# The service doesn't foresee the packed size from the first of these on; the second is among them.
STEPS = (4_292_608_388, 4_293_000_000, GIB4 - 1, GIB4, GIB4 + 1)
FULL32 = 0xFFFFFFFF
FULL16 = 0xFFFF
PIECE = 1 << 20
NOISE = 3 << 20  # more than the first block, by which the service finds out what doesn't shrink
SALT_CHECK_CODE = 16 + 2 + 10
TOOLS = ("7z", "unzip", "bsdtar", "python")


def write(path, size, head):
    """A file with a hole between its head and its last bytes."""
    with open(path, "wb") as file:
        file.write(head)
        if size > len(head) + 3:
            file.seek(size - 3)
            file.write(b"end")


def folder_for_holes(work, name):
    """In memory where the system has a file system there: its holes are read without a page of memory for each,
    which takes a hundredth of the time. Files take space for their ends alone."""
    memory = "/dev/shm"
    if os.path.isdir(memory) and os.access(memory, os.W_OK | os.X_OK):
        return tempfile.TemporaryDirectory(prefix="webvellant-archives-", dir=memory)
    return tempfile.TemporaryDirectory(prefix=name, dir=work)


def make(options, folder, archive, encryption):
    start = time.monotonic()
    windows = ["Z:" + path.replace("/", "\\") for path in (folder, archive)]
    done = run(options.wine_run, "--timeout", "900", "--stage", options.service, "--env", f"OB_PASSWORD={PASSWORD}",
               "--env", "TZ=UTC", "--", options.maker, *windows, str(encryption))
    sys.stdout.write(f"{os.path.basename(archive)}: {done.stdout.decode(errors='replace')}")
    sys.stderr.write(done.stderr.decode(errors="replace"))
    made = done.returncode == 0 and os.path.exists(archive)
    check(made, f"the service wrote {os.path.basename(archive)} (exit code {done.returncode})")
    left = sorted(os.listdir(os.path.dirname(archive)))
    check(left == [os.path.basename(archive)], f"nothing but the zip is left: {left}")
    if made:
        print(f"{os.path.basename(archive)}: {os.path.getsize(archive)} bytes, written in "
              f"{time.monotonic() - start:.1f} s", flush=True)
    return made


def command(tool, archive, name):
    """What writes one entry, or with no name all of them, to the standard output."""
    names = [name] if name else []
    return {
        "7z": ["7z", "x", "-so", f"-p{PASSWORD}", archive, *names],
        "unzip": ["unzip", "-p", "-P", PASSWORD, archive, *names],
        "bsdtar": ["bsdtar", "-x", "-O", "--passphrase", PASSWORD, "-f", archive, *names],
    }[tool]


def digest_of(stream):
    """Size and SHA-256 of all that comes."""
    total, digest = 0, hashlib.sha256()
    while piece := stream.read(PIECE):
        total += len(piece)
        digest.update(piece)
    return total, digest.hexdigest()


def digest_of_file(path):
    with open(path, "rb") as file:
        return digest_of(file)


def read_with(tool, archive, name):
    """Size and digest of an entry as the tool gives it; nothing when the tool fails."""
    if tool == "python":
        with zipfile.ZipFile(archive) as file, file.open(name) as entry:
            return digest_of(entry)
    with subprocess.Popen(command(tool, archive, name), env=ENV, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        digest = digest_of(process.stdout)
    return digest if process.returncode == 0 else None


def names_by(tool, archive):
    if tool == "python":
        with zipfile.ZipFile(archive) as file:
            return file.namelist()
    listing = {
        "7z": ["7z", "l", "-ba", "-slt", archive],
        "unzip": ["unzip", "-Z1", archive],
        "bsdtar": ["bsdtar", "-t", "-f", archive],
    }[tool]
    lines = run(*listing).stdout.decode().splitlines()
    return [line[7:] for line in lines if line.startswith("Path = ")] if tool == "7z" else lines


def sizes_by(tool, archive):
    """The sizes of the files as the tool lists them, in the zip's order."""
    if tool == "python":
        with zipfile.ZipFile(archive) as file:
            return [entry.file_size for entry in file.infolist()]
    listing, pattern = {
        "7z": (["7z", "l", "-ba", "-slt", archive], r"^Size = (\d+)$"),
        "unzip": (["unzip", "-l", archive], r"^ *(\d+)  \d{4}-\d\d-\d\d .*$"),
        "bsdtar": (["bsdtar", "-t", "-v", "-f", archive], r"^-\S+ +\d+ +\S+ +\S+ +(\d+) .*$"),
    }[tool]
    return [int(size) for size in re.findall(pattern, run(*listing).stdout.decode(), re.MULTILINE)]


def wide(extra, fields):
    """The values of a header, those that are full taken from the 64-bit field; that field's size."""
    at = 0
    while at + 4 <= len(extra):
        kind, size = struct.unpack_from("<HH", extra, at)
        if kind == 1:
            values = iter(struct.unpack_from(f"<{size // 8}Q", extra, at + 4))
            return [next(values, None) if field == FULL32 else field for field in fields], size
        at += 4 + size
    return fields, 0


def central_headers(archive):
    """The end record's count and, for each entry, name, size, packed size and offset, with the
    values of the 32-bit fields. Read by the 64-bit end record when there is one."""
    with open(archive, "rb") as file:
        file.seek(0, os.SEEK_END)
        length = file.tell()
        file.seek(max(0, length - 4096))
        tail = file.read()
        end = tail.rfind(b"PK\5\6")
        count, size, at = struct.unpack_from("<HII", tail, end + 10)
        locator = tail.rfind(b"PK\6\7", 0, end)
        if locator >= 0:
            file.seek(struct.unpack_from("<Q", tail, locator + 8)[0])
            record = file.read(56)
            check(record[:4] == b"PK\6\6", "the locator leads to the 64-bit end record")
            here, whole, wide_size, wide_at = struct.unpack_from("<QQQQ", record, 24)
            check(here == whole, "all entries are on one disk")
            check(count in (FULL16, whole) and size in (FULL32, wide_size) and at in (FULL32, wide_at),
                  "the end record has the numbers of its 64-bit form, or none")
            count, size, at = whole, wide_size, wide_at
        file.seek(at)
        data = file.read(size)
        entries = []
        at = 0
        for _ in range(count):
            packed, plain = struct.unpack_from("<II", data, at + 20)
            name, extra, comment = struct.unpack_from("<HHH", data, at + 28)
            offset = struct.unpack_from("<I", data, at + 42)[0]
            fields, _ = wide(data[at + 46 + name:at + 46 + name + extra], [plain, packed, offset])
            entries.append((data[at + 46:at + 46 + name].decode(), *fields))
            at += 46 + name + extra + comment
        check(at == len(data), "the directory is as long as its record has it")
        for entry in entries:
            check_local_header(file, entry)
    return locator >= 0, entries


def check_local_header(file, entry):
    """The header in front of the data has the same values."""
    name, plain, packed, offset = entry
    file.seek(offset)
    header = file.read(30)
    check(header[:4] == b"PK\3\4", f"{name}: a header is at its offset")
    here_packed, here_plain, length, extra = struct.unpack_from("<IIHH", header, 18)
    check(file.read(length).decode() == name, f"{name}: the same name in front of the data")
    fields, _ = wide(file.read(extra), [here_plain, here_packed])
    check(fields == [plain, packed], f"{name}: the same sizes in front of the data")


def check_many(options, work, count=MANY):
    folder, out = os.path.join(work, "many"), os.path.join(work, "many-out")
    os.mkdir(folder)
    os.mkdir(out)
    names = [f"{number:06}.txt" for number in range(count)]
    whole = hashlib.sha256()
    total = 0
    for number, name in enumerate(names):
        content = f"{number * 7919} ".encode() * (number % 9)
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content)
        whole.update(content)
        total += len(content)
    archive = os.path.join(out, "many.zip")
    if not make(options, folder, archive, 0):
        return
    has_wide_end, entries = central_headers(archive)
    check(has_wide_end, f"{count} entries have a 64-bit end record")
    check([entry[0] for entry in entries] == names, f"the directory has {count} names in order")
    for tool in TOOLS:
        start = time.monotonic()
        check(names_by(tool, archive) == names, f"{tool} lists {count} names in order")
        given = read_all(archive) if tool == "python" else read_with(tool, archive, None)
        check(given == (total, whole.hexdigest()), f"{tool} gives back {count} files byte for byte")
        print(f"{tool} many.zip: {time.monotonic() - start:.1f} s", flush=True)


def read_all(archive):
    total, digest = 0, hashlib.sha256()
    with zipfile.ZipFile(archive) as file:
        for name in file.namelist():
            content = file.read(name)
            total += len(content)
            digest.update(content)
    return total, digest.hexdigest()


def large_cases(noise):
    """Name, encryption as the service counts, and the sources: name, size, beginning, and whether it
    is stored as it is."""
    below, above, tail = GIB4 - 1, GIB4 + 1, 3
    return (
        ("deflated.zip", 0, (("below", below, b"", False), ("over", above, b"", False), ("tail", tail, b"end", True))),
        ("stored.zip", 0, (("below", below, noise, True), ("over", above, noise, True), ("tail", tail, b"end", True))),
        ("aes256.zip", 8, (("below", below, noise, True), ("over", above, b"", False), ("tail", tail, b"end", True))),
    )


def check_large(options, work, archive_name, encryption, sources):
    out = os.path.join(work, "out-" + archive_name)
    os.mkdir(out)
    with folder_for_holes(work, "in-") as folder:
        check_large_of(options, folder, out, archive_name, encryption, sources)


def check_large_of(options, folder, out, archive_name, encryption, sources):
    for name, size, head, _ in sources:
        write(os.path.join(folder, name), size, head)
    archive = os.path.join(out, archive_name)
    if not make(options, folder, archive, encryption):
        return
    _, entries = central_headers(archive)
    surplus = SALT_CHECK_CODE if encryption else 0
    for (name, size, _, stored), entry in zip(sources, entries, strict=True):
        check(entry[:2] == (name, size), f"{archive_name}: name and size of {entry}")
        check(entry[2] == size + surplus if stored else entry[2] < size // 100, f"{archive_name}: packed {entry}")
        print(f"{archive_name} {name}: {entry[1]} bytes, {entry[2]} packed, at {entry[3]}", flush=True)
    digests = {name: digest_of_file(os.path.join(folder, name)) for name, *_ in sources}
    for tool in TOOLS:
        if encryption and tool in ("unzip", "python"):
            print(f"{tool} {archive_name}: passed over, it knows no AES", flush=True)
            continue
        start = time.monotonic()
        for name, digest in digests.items():
            check(read_with(tool, archive, name) == digest, f"{tool} gives back {name} of {archive_name}")
        print(f"{tool} {archive_name}: {time.monotonic() - start:.1f} s", flush=True)
    os.remove(archive)


def check_steps(options, work):
    """One zip with a file of each size; nearly all of each file is a hole. The bytes themselves aren't
    compared here: a checksum of 4 GiB that is right is proof enough, and the large part does compare."""
    out = os.path.join(work, "steps-out")
    os.mkdir(out)
    archive = os.path.join(out, "steps.zip")
    with folder_for_holes(work, "steps") as folder:
        for size in STEPS:
            write(os.path.join(folder, str(size)), size, b"begin")
        if not make(options, folder, archive, 0):
            return
    start = time.monotonic()
    _, entries = central_headers(archive)
    check([entry[:2] for entry in entries] == [(str(size), size) for size in STEPS], f"names and sizes: {entries}")
    check(all(entry[2] < entry[1] // 100 for entry in entries), f"all of them shrink: {entries}")
    for tool in TOOLS:
        check(sizes_by(tool, archive) == list(STEPS), f"{tool} lists the size of each file: {sizes_by(tool, archive)}")
    done = subprocess.run(command("bsdtar", archive, None), env=ENV, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, check=False)
    check(done.returncode == 0 and not done.stderr, f"bsdtar finds the data of each size whole: {done.stderr.decode()}")
    print(f"tools, steps.zip: {time.monotonic() - start:.1f} s", flush=True)


def check_all_large(options, work):
    if os.environ.get("OB_LARGE_ARCHIVES") != "1":
        print("files of more than 4 GiB that are stored or encrypted are passed over: they take minutes and 9 GB of the "
              "temporary folder; OB_LARGE_ARCHIVES=1 ./test -R archive_readers_large -V runs them")
        return
    for case in large_cases(random.Random(7).randbytes(NOISE)):
        check_large(options, work, *case)


PARTS = {"many": check_many, "sizes": check_steps, "large": check_all_large}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--service", required=True)
    parser.add_argument("part", choices=PARTS)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-archives-") as work:
        PARTS[options.part](options, work)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
