"""What the judges of cleaned files share: checks, other people's tools, the cleaner under Wine, the result."""
import argparse
import os
import subprocess
import sys
import tempfile

CANARY = "CanaryOfAPerson"
ENV = dict(os.environ, LC_ALL="C.UTF-8", OMP_NUM_THREADS="1")

failures = []


def check(condition, text):
    if not condition:
        failures.append(text)
    print(f"{'ok' if condition else 'FAILED'}: {text}", flush=True)


def run(*command, accepted=(0,)):
    """What the tool prints; ends the run with its message when it ends with another number."""
    done = subprocess.run(command, env=ENV, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if done.returncode not in accepted:
        raise SystemExit(f"{' '.join(command[:8])} ended with {done.returncode}: {done.stderr.decode()[:600]}")
    return done.stdout


def clean(options, before, work):
    """Cleans the files of a folder: the folder with the results, and a row of the report for each name."""
    kept = os.path.join(work, "kept")
    done = subprocess.run([options.wine_run, "--timeout", "240", "--stage", before, "--keep", kept, "--",
                           options.cleaner], env=ENV, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    sys.stderr.write(done.stderr.decode(errors="replace"))
    check(done.returncode == 0, "every file was read and written")
    after = os.path.join(kept, "out")
    with open(os.path.join(after, "report.txt"), encoding="utf-8") as file:
        lines = [line.rstrip("\n").split("\t") for line in file]
    os.remove(os.path.join(after, "report.txt"))
    return after, {line[0]: line[1:] for line in lines}


def main(check_all):
    """Runs the checks in a folder of their own; the program's exit code."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--cleaner", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-cleaning-") as work:
        check_all(options, work)
    print(f"{len(failures)} failures")
    for failure in failures:
        print(f"  {failure}")
    return 1 if failures else 0
