"""Personal data removed from pictures, beside one call of exiftool for all of them."""
import os
import shutil
import subprocess
import sys
import time

from measure import built, median, run_program, say, table, verdict

GOAL, FILES = 0.2, 200
TAGS = ["-Make=Example", "-Model=Phone 3", "-SerialNumber=12345678", "-Artist=Ann Example", "-GPSLatitude=48.1",
        "-GPSLongitude=11.5", "-XMP:Creator=Ann Example", "-IPTC:By-line=Ann Example", "-Comment=on holiday"]


def windows(path):
    return "Z:" + path.replace("/", "\\")


def make_files(photos, folder):
    """The pictures with what a phone and a program write into them, under several names."""
    if os.path.isdir(folder):
        return folder
    say(f"transforms: making {FILES} pictures with personal data")
    work = folder + ".tmp"
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    names = sorted(name for name in os.listdir(photos) if name.endswith("-0.jpg"))
    for name in names:
        shutil.copyfile(os.path.join(photos, name), os.path.join(work, name))
    subprocess.run(["exiftool", "-q", "-overwrite_original", *TAGS, work], check=True)
    for number in range(len(names), FILES):
        first = names[number % len(names)]
        shutil.copyfile(os.path.join(work, first), os.path.join(work, f"{number:03d}.jpg"))
    os.rename(work, folder)
    return folder


def ours(files, target):
    program = built("tests/unit/services/transforms/documents/clean_files.exe")
    return run_program(program, windows(files), windows(target))["seconds"][0]


def copying(files, target):
    """What reading and writing the same bytes takes, with nothing done to them."""
    before = time.perf_counter()
    subprocess.run(["cp", "-r", files + "/.", target], check=True)
    return time.perf_counter() - before


def exiftool(files, target):
    before = time.perf_counter()
    subprocess.run(["exiftool", "-q", "-all=", "-o", target + "/", files], check=True)
    return time.perf_counter() - before


def check(target, name):
    """Every file is there, and none has a tag that was written."""
    if len(os.listdir(target)) != FILES:
        sys.exit(f"bench: {name} didn't clean {FILES} files")
    left = subprocess.run(["exiftool", "-q", "-if", "$Artist or $GPSLatitude or $Comment", "-p", "$FileName", target],
                          stdout=subprocess.PIPE, text=True).stdout
    if left.strip():
        sys.exit(f"bench: {name} left personal data in {left.split()[0]}")


def measure(photos, folder, work, turns):
    """The table."""
    files = make_files(photos, folder)
    cleaners = {"ours": ours, "exiftool": exiftool, "cp, which only copies": copying}
    seconds = {name: [] for name in cleaners}
    for turn in range(turns):
        say(f"transforms: cleaning, turn {turn + 1} of {turns}")
        for name, cleaner in cleaners.items():
            target = os.path.join(work, "clean")
            shutil.rmtree(target, ignore_errors=True)
            os.mkdir(target)
            seconds[name].append(cleaner(files, target))
            if cleaner is not copying:
                check(target, name)
    size = sum(entry.stat().st_size for entry in os.scandir(files)) / 1e6
    rows = [["ours", f"{median(seconds['ours']):.2f}", "", ""]]
    for name in list(cleaners)[1:]:
        ratio = median([own / other for own, other in zip(seconds["ours"], seconds[name])])
        goal = f"{GOAL:g}: {verdict(ratio, GOAL)}" if cleaners[name] is exiftool else ""
        rows.append([name, f"{median(seconds[name]):.2f}", f"{ratio:.2f}", goal])
    return table([f"personal data removed from {FILES} JPEGs, {size:.0f} MB", "seconds", "ours over it", "goal"], rows)
