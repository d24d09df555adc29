"""What the judges of changed pictures share: checks, other people's tools, sample pictures, the result."""
import argparse
import os
import subprocess
import sys
import tempfile

SIZE = "400x300"
BASE = ["base.miff"]  # in place of it, the picture that all samples are made from
WRITTEN, UNCHANGED, UNSUPPORTED, DAMAGED = 0, 1, 2, 3  # outcomes
# A second thread of these tools only waits, on pictures of this size.
ENV = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC", OMP_NUM_THREADS="1", MAGICK_THREAD_LIMIT="1")

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


def make_pictures(work, folder, pictures, tagged, pages):
    """The pictures by their names; those that are turned and have an author; a moving one, one with pages of
    these colours, and one that was cut off."""
    base = os.path.join(work, "base.miff")
    made(["convert", "-seed", "7", "-size", SIZE, "plasma:tomato-steelblue", base])
    for name, options in pictures.items():
        made(["convert", *[base if word == BASE[0] else word for word in options], os.path.join(folder, name)])
    made(["exiftool", "-q", "-n", "-overwrite_original", "-Orientation=6", "-Artist=A name", "-XMP-dc:Title=A title",
          *[os.path.join(folder, name) for name in tagged]])
    made(["convert", "-delay", "10", "-size", SIZE, "xc:red", "xc:blue", os.path.join(folder, "moving.gif")])
    made(["convert", "-size", SIZE, *[f"xc:{colour}" for colour in pages], os.path.join(folder, "pages.tif")])
    with open(os.path.join(folder, "plain.jpg"), "rb") as file:
        whole = file.read()
    with open(os.path.join(folder, "cut.jpg"), "wb") as file:
        file.write(whole[:len(whole) // 2])


def outcomes_of(options, arguments, source, target):
    """Has the tool work on the files of a folder under Wine: the outcome by the file's name."""
    def windows(path):
        return "Z:" + path.replace("/", "\\")

    result = run(options.wine_run, "--timeout", "120", "--", options.tool, *arguments, windows(source), windows(target))
    if result.returncode != 0:
        sys.exit(f"{os.path.basename(options.tool)} ended with {result.returncode}: {result.stdout}{result.stderr}")
    lines = [line.split("\t") for line in result.stdout.splitlines() if "\t" in line]
    return {name: int(float(outcome)) for name, outcome in lines if name not in ("seconds", "megabytes")}


def check_outcomes(outcomes, expected):
    for name, outcome in expected.items():
        check(outcomes.get(name) == outcome, f"{name}: outcome {outcomes.get(name)}, not {outcome}")


def main(check_all):
    """Runs the checks in a folder of their own; what they return lists what was looked at."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--tool", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as work:
        looked_at = check_all(options, work)
    print(f"{looked_at}; {len(failures)} failures")
    return 1 if failures else 0
