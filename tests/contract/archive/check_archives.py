#!/usr/bin/env python3
"""Has the archive service write zips under Wine and opens them with other people's tools.

Each tool must give back every file byte for byte under its name, refuse a wrong password, and notice
a flipped bit. A tool that can't read a form at all is named in CANNOT with the reason, and the check
makes sure that it still can't, so that no case goes missing unseen.
"""
import argparse
import os
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import unicodedata
import zipfile

PASSWORD = "pässwörd 7"
ARCHIVES = {  # name: encryption strength (of the 0x9901 field), method after it
    "plain.zip": (0, 8),
    "plain.zipx": (0, 95),
    "aes128.zip": (1, 8),
    "aes256.zip": (3, 8),
    "aes256.zipx": (3, 95),
}
CANNOT = {
    ("unzip", "plain.zipx"): "knows no xz",
    ("unzip", "aes128.zip"): "knows no AES",
    ("unzip", "aes256.zip"): "knows no AES",
    ("unzip", "aes256.zipx"): "knows neither",
    ("bsdtar", "aes256.zipx"): "does not decrypt what is compressed with xz",
    ("python", "plain.zipx"): "knows no xz in a zip",
    ("python", "aes128.zip"): "knows no AES",
    ("python", "aes256.zip"): "knows no AES",
    ("python", "aes256.zipx"): "knows neither",
}
ENV = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC")
OLD = 1551675968  # 2019-03-04 05:06:08 UTC
FIRST = 315619200  # 1980-01-02, so that no time zone makes it 1979
LAST = 4354732800  # 2107-12-31
MANY = 2500

failures = []


def check(condition, text):
    if not condition:
        failures.append(text)
        print(f"FAILED: {text}", flush=True)


def run(*command, **options):
    return subprocess.run(command, env=ENV, stdin=subprocess.DEVNULL, capture_output=True, check=False, **options)


def prose(noise, size):
    """Words in a random order: shrinks to about a third."""
    words = [f"word{number}" for number in range(2000)]
    text = " ".join(noise.choices(words, k=size // 5 + 2))
    return text.encode()[:size]


def make_sources(folder):
    """Writes the tree and returns what each zip must contain: name -> content."""
    noise = random.Random(7)
    expected = {}

    def add(path, content, name=None, when=OLD):
        full = os.path.join(folder, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "wb") as file:
            file.write(content)
        os.utime(full, (when, when))
        expected[name or os.path.basename(path)] = content

    add("a/text.txt", b"The quick brown fox. " * 20000)
    add("a/empty.bin", b"")
    block = 1024 * 1024  # what the service cuts large files into
    for size in (1, 15, 16, 17, 18, 19, 20, 8191, 8192, 8193, 65535, 65536, 65537, 300000, block - 1, block, block + 1):
        add(f"a/noise{size}.bin", noise.randbytes(size))
        add(f"a/prose{size}.txt", prose(noise, size))
    add("a/blocks.txt", prose(noise, 3 * block + 12345))
    add("a/noise blocks.bin", noise.randbytes(2 * block + 54321))
    add("u/1980.txt", b"the first day", when=FIRST)
    add("u/2107.txt", b"the last day", when=LAST)
    add("u/1970.txt", b"before all days", when=0)
    for number in range(MANY):
        add(f"m/many{number}.txt", f"file {number} of many ".encode() * (number % 50))
    add("n/Übergröße ñ.txt", "umlauts".encode())
    add("n/e\u0301 combining.txt", b"combining")
    add("n/\U0001F600\U0001F468\u200D\U0001F469.txt", b"emoji")
    add("n/\u05E9\u05DC\u05D5\u05DD.txt", b"right to left")
    add("n/\u65E5\u672C.txt", b"ideographs")
    add("n/" + "l" * 200 + ".txt", b"long name")
    add("o/same.txt", b"first of the name")
    add("p/same.txt", b"second of the name", "same (2).txt")
    add("/".join(["q"] + ["d" * 90] * 4) + "/deep.txt", b"deep")
    # Two files to this side; whoever unpacks where case makes no difference needs two names.
    add("t/CASE.txt", b"upper case")
    add("t/case.txt", b"lower case", "case (2).txt")
    return expected


def make_archives(options, work):
    expected = make_sources(os.path.join(work, "in"))
    kept = os.path.join(work, "kept")
    done = run(options.wine_run, "--timeout", "200", "--stage", os.path.join(work, "in"), "--stage", options.service,
               "--env", f"OB_PASSWORD={PASSWORD}", "--env", "TZ=UTC", "--keep", kept, "--", options.maker)
    sys.stdout.write(done.stdout.decode(errors="replace"))
    sys.stderr.write(done.stderr.decode(errors="replace"))
    check(done.returncode == 0, f"the service wrote every zip (exit code {done.returncode})")
    out = os.path.join(kept, "out")
    check(sorted(os.listdir(out)) == sorted(ARCHIVES), f"nothing but the zips is left: {os.listdir(out)}")
    return out, expected


def unpack(tool, archive, target, password):
    """Unpacks with one tool and returns its success."""
    os.makedirs(target)
    if tool == "7z":
        return run("7z", "x", "-y", f"-p{password}", f"-o{target}", archive).returncode == 0
    if tool == "unzip":
        return run("unzip", "-q", "-o", "-P", password, archive, "-d", target).returncode == 0
    if tool == "bsdtar":
        return run("bsdtar", "-x", "--passphrase", password, "-f", archive, "-C", target).returncode == 0
    try:
        with zipfile.ZipFile(archive) as file:
            file.extractall(target, pwd=password.encode())
        return True
    except (NotImplementedError, RuntimeError, zipfile.BadZipFile):
        return False


def same_tree(folder, expected, tool=""):
    # bsdtar composes letters and their marks, whatever the zip has.
    if tool == "bsdtar":
        expected = {unicodedata.normalize("NFC", name): content for name, content in expected.items()}
    names = sorted(os.listdir(folder))
    if names != sorted(expected):
        return f"names {sorted(set(names) ^ set(expected))}"
    for name, content in expected.items():
        with open(os.path.join(folder, name), "rb") as file:
            if file.read() != content:
                return f"content of {name}"
    return ""


def check_tool(tool, archive, expected, work):
    name = os.path.basename(archive)
    if name != "plain.zip":  # only that one has them
        expected = {entry: content for entry, content in expected.items() if not entry.startswith("many")}
    target = os.path.join(work, f"{tool}-{name}")
    done = unpack(tool, archive, target, PASSWORD)
    if (tool, name) in CANNOT:
        check(not done, f"{tool} reads {name} now: take it out of CANNOT ({CANNOT[tool, name]})")
        print(f"{tool} {name}: passed over, it {CANNOT[tool, name]}", flush=True)
        return
    check(done, f"{tool} unpacks {name}")
    difference = same_tree(target, expected, tool)
    check(not difference, f"{tool} gives back {name}: {difference}")
    if ARCHIVES[name][0]:
        wrong = os.path.join(work, f"wrong-{tool}-{name}")
        refused = not unpack(tool, archive, wrong, PASSWORD + "x")
        check(refused and same_tree(wrong, expected, tool), f"{tool} refuses a wrong password for {name}")
    print(f"{tool} {name}: ok", flush=True)


def check_times(work):
    """7z, unzip and bsdtar set the times that the zip has."""
    for tool in ("7z", "unzip", "bsdtar"):
        path = os.path.join(work, f"{tool}-plain.zip", "text.txt")
        check(os.path.exists(path) and int(os.stat(path).st_mtime) == OLD, f"{tool} restores the time")


def entries(data):
    """Offset of each central header, with its local one."""
    end = data.rfind(b"PK\5\6")
    count, _, at = struct.unpack_from("<HII", data, end + 10)
    for _ in range(count):
        name, extra, comment = struct.unpack_from("<HHH", data, at + 28)
        yield at, struct.unpack_from("<I", data, at + 42)[0], data[at + 46 + name:at + 46 + name + extra]
        at += 46 + name + extra + comment


def check_headers(archive):
    """Encrypted entries have no checksum of what they hide, and what doesn't shrink is stored."""
    name = os.path.basename(archive)
    strength, method = ARCHIVES[name]
    surplus = {0: 0, 1: 8 + 2 + 10, 3: 16 + 2 + 10}[strength]
    with open(archive, "rb") as file:
        data = file.read()
    for at, local, extra in entries(data):
        flags, stored, checksum, packed, size, length = struct.unpack_from("<HH4xIIIH", data, at + 8)
        entry = data[at + 46:at + 46 + length].decode()
        check(bool(flags & 1) == bool(strength), f"{name}: encryption flag of {entry}")
        if strength:
            check(stored == 99, f"{name}: method of {entry}")
            check(checksum == 0 and data[local + 14:local + 18] == bytes(4), f"{name}: no checksum of {entry}")
            place = extra.find(struct.pack("<HHH2sB", 0x9901, 7, 2, b"AE", strength))
            check(place >= 0, f"{name}: AE-2 field of {entry}")
            stored = struct.unpack_from("<H", extra, place + 9)[0]
        check(stored in (0, method), f"{name}: method {stored} of {entry}")
        if stored == 95:
            versions = struct.unpack_from("<H", data, at + 6)[0], struct.unpack_from("<H", data, local + 4)[0]
            check(versions == (63, 63), f"{name}: {entry} needs version 6.3, {versions}")
        check(packed == size + surplus if stored == 0 else packed < size + surplus, f"{name}: size of {entry}")
        if entry.startswith("noise"):
            check(stored == 0, f"{name}: {entry} doesn't shrink and is stored")
        if entry.startswith("prose") and size > 1000:
            check(stored == method, f"{name}: {entry} shrinks")


def check_date_fields(archive):
    """A time outside the range of the zip's own fields becomes their first or last."""
    with zipfile.ZipFile(archive) as file:
        for name, years in (("1980.txt", (1980,)), ("2107.txt", (2107,)), ("1970.txt", (1979, 1980))):
            check(file.getinfo(name).date_time[0] in years, f"{name}: {file.getinfo(name).date_time}")


def flip_targets(data, strength):
    """The largest entry, a small one that is deflated, an empty one and a stored one: name, offset of
    the data, its size."""
    wanted = {"the largest": None, "prose8191.txt": None, "empty.bin": None, "noise8191.bin": None}
    largest = 0
    for at, local, _ in entries(data):
        size, length = struct.unpack_from("<I", data, at + 20)[0], struct.unpack_from("<H", data, at + 28)[0]
        start = local + 30 + sum(struct.unpack_from("<HH", data, local + 26))
        name = data[at + 46:at + 46 + length].decode()
        if name in wanted:
            wanted[name] = start, size
        if size > largest:
            largest, wanted["the largest"] = size, (start, size)
    check(None not in wanted.values(), f"every entry to damage is there: {wanted}")
    return {name: place for name, place in wanted.items() if strength or place[1]}


def check_flipped_bits(archive, work):
    """Two tools notice one bit in salt, password verifier, data and authentication code, or without
    encryption in the data, of entries of all kinds."""
    label = os.path.basename(archive)
    strength = ARCHIVES[label][0]
    with open(archive, "rb") as file:
        data = file.read()
    salt = {0: 0, 1: 8, 3: 16}[strength]
    path = os.path.join(work, "flipped.zip")
    tools = {"7z": ["7z", "t", f"-p{PASSWORD}", path]}
    tools.update({"bsdtar": ["bsdtar", "-x", "-O", "--passphrase", PASSWORD, "-f", path]} if strength else {"unzip": ["unzip", "-tq", path]})
    for name, (start, size) in flip_targets(data, strength).items():
        places = {"salt": 0, "verifier": salt, "authentication code": size - 1} if strength else {}
        content = size - (salt + 12 if strength else 0)
        if content:
            places["data"] = (salt + 2 if strength else 0) + content // 2
        for place, offset in places.items():
            broken = bytearray(data)
            broken[start + offset] ^= 1
            with open(path, "wb") as file:
                file.write(broken)
            for tool, command in tools.items():
                check(run(*command).returncode != 0, f"{tool} notices a flipped bit in the {place} of {name} of {label}")


def shown_times(tool, archive):
    """The times of summer.txt and winter.txt as the tool shows them. 7z isn't asked: it shows a date of
    the summer by the hour of the season in which it runs."""
    if tool == "unzip":
        text = run("unzip", "-Z", "-T", archive).stdout.decode()
        fields = {line.split()[-1]: line.split()[-2] for line in text.splitlines() if line.endswith(".txt")}
        return {name: f"{at[:4]}-{at[4:6]}-{at[6:8]} {at[9:11]}:{at[11:13]}" for name, at in fields.items()}
    with zipfile.ZipFile(archive) as file:
        return {entry.filename: "{:04}-{:02}-{:02} {:02}:{:02}".format(*entry.date_time) for entry in file.infolist()}


def check_summer_time(options, work):
    """In a zone with summer time the tools show each file's own wall clock."""
    folder, out = os.path.join(work, "berlin"), os.path.join(work, "berlin-out")
    os.makedirs(folder)
    os.makedirs(out)
    expected = {"summer.txt": (1562756400, "2019-07-10 13:00"), "winter.txt": (1547121600, "2019-01-10 13:00")}
    for name, (when, _) in expected.items():
        path = os.path.join(folder, name)
        with open(path, "wb") as file:
            file.write(name.encode())
        os.utime(path, (when, when))
    archive = os.path.join(out, "berlin.zip")
    windows = ["Z:" + path.replace("/", "\\") for path in (folder, archive)]
    done = run(options.wine_run, "--timeout", "100", "--stage", options.service, "--env", f"OB_PASSWORD={PASSWORD}",
               "--env", "TZ=Europe/Berlin", "--", options.maker, *windows, "0")
    check(done.returncode == 0, f"the service wrote a zip in a zone with summer time (exit code {done.returncode})")
    if done.returncode != 0:
        return
    ENV["TZ"] = "Europe/Berlin"
    for tool in ("unzip", "python"):
        given = shown_times(tool, archive)
        check(given == {name: shown for name, (_, shown) in expected.items()}, f"{tool} shows the files' own times: {given}")
        print(f"{tool} berlin.zip: {given}", flush=True)
    for tool in ("7z", "unzip", "bsdtar"):
        target = os.path.join(work, f"{tool}-berlin")
        check(unpack(tool, archive, target, PASSWORD), f"{tool} unpacks in a zone with summer time")
        given = {name: int(os.stat(os.path.join(target, name)).st_mtime) for name in os.listdir(target)}
        check(given == {name: when for name, (when, _) in expected.items()}, f"{tool} restores the files' own times: {given}")
    ENV["TZ"] = "UTC"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--service", required=True)
    parser.add_argument("--keep", help="copy the zips there")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-archives-") as work:
        out, expected = make_archives(options, work)
        if not failures:
            for name in ARCHIVES:
                archive = os.path.join(out, name)
                for tool in ("7z", "unzip", "bsdtar", "python"):
                    check_tool(tool, archive, expected, work)
                check_headers(archive)
            check_times(work)
            check_date_fields(os.path.join(out, "plain.zip"))
            for name in ("plain.zip", "aes128.zip", "aes256.zip"):
                check_flipped_bits(os.path.join(out, name), work)
            check_summer_time(options, work)
        if options.keep:
            shutil.copytree(out, options.keep, dirs_exist_ok=True)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
